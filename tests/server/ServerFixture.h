// A server over a journal in a folder of its own, with a clock that stands still, and requests to send it.
#pragma once

#include "host/server/Server.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace vesk {

// 2026-03-02 00:00 UTC, and days counted in UTC.
inline constexpr std::int64_t kToday = 1772409600;

inline ServerClock FixedClock() {
    return {[] { return kToday; },
            [](std::int64_t seconds) {
                return std::chrono::year_month_day(std::chrono::floor<std::chrono::days>(
                    std::chrono::sys_seconds(std::chrono::seconds(seconds))));
            }};
}

inline std::string FileText(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return std::string((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
}
inline void WriteFileText(const std::filesystem::path& path, std::string_view text) {
    std::ofstream(path, std::ios::binary).write(text.data(), static_cast<std::streamsize>(text.size()));
}

class TemporaryFolder {
public:
    TemporaryFolder() {
        const auto* test = testing::UnitTest::GetInstance()->current_test_info();
        m_path = std::filesystem::temp_directory_path()
                 / ("vesk-" + std::string(test->test_suite_name()) + "-" + test->name());
        std::filesystem::remove_all(m_path);
        std::filesystem::create_directories(m_path);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    std::filesystem::path File(const char* name) const { return m_path / name; }

private:
    std::filesystem::path m_path;
};

using Fields = std::map<std::uint32_t, std::string>;

// "tag=text|tag=text"
inline Fields FieldsOf(const std::string& text) {
    Fields fields;
    std::istringstream pieces(text);
    for (std::string piece; std::getline(pieces, piece, '|');)
        fields[static_cast<std::uint32_t>(std::stoul(piece))] = piece.substr(piece.find('=') + 1);
    return fields;
}

// An order that the server accepts.
inline Fields GoodOrder() {
    return {{tag::requestName, "add_sip_orders"},
            {tag::exchange, "nse_cm"},
            {tag::token, "1013"},
            {tag::tradingSymbol, "ALPHA-EQ"},
            {tag::side, "B"},
            {tag::orderType, "MKT"},
            {tag::product, "CNC"},
            {tag::investType, "value"},
            {tag::amountOrQuantity, "123450"},
            {tag::frequency, "monthly"},
            {tag::startDate, "1772755200"},
            {tag::totalPeriod, "12"},
            {tag::loginId, "USER1"},
            {tag::customerFirm, "C"},
            {tag::account, "CL1"},
            {tag::validity, "DAY"},
            {tag::peerIdA, "BROKER"},
            {tag::peerIdB, ""},
            {tag::orderId, "id-1"},
            {tag::operationMode, "1"},
            {tag::orderSource, "TWS"}};
}

// A good order with some fields set otherwise.
inline Fields Order(const Fields& changes = {}) {
    Fields fields = changes;
    fields.merge(GoodOrder());
    return fields;
}

inline std::string Message(const Fields& fields) {
    qmx::MessageWriter writer;
    for (const auto& [tag, text] : fields)
        writer.Add(tag, text);
    return writer.Finish();
}

struct RunningServer {
    explicit RunningServer(const std::filesystem::path& path, ServerConfig config = {}) {
        opening = Journal::Open(path);
        EXPECT_EQ(opening.error, "");
        server = std::make_unique<Server>(std::move(config), *opening.journal, opening.records, FixedClock());
    }

    Reply Begin(const Fields& request, std::string_view sentAs = {}) {
        const std::string bytes = Message(request);
        const qmx::MessageReader reader(bytes);
        return server->Handle(reader.Handle(), user, sentAs);
    }
    std::vector<std::string> Finish(Reply reply) {
        while (reply.rows && !reply.rows->isDone)
            if (std::string row = server->NextRow(*reply.rows); !row.empty())
                reply.answers.push_back(std::move(row));
        return std::move(reply.answers);
    }
    std::vector<std::string> Ask(const Fields& request, std::string_view sentAs = {}) {
        std::vector<std::string> dumps;
        for (const std::string& answer : Finish(Begin(request, sentAs))) {
            const qmx::MessageReader read(answer);
            dumps.push_back(qmx::Dump(read.Handle()));
        }
        return dumps;
    }

    // By the server's clock, until nothing is due.
    void AdvanceTo(std::chrono::year_month_day date) {
        EXPECT_EQ(server->Clock().AdvanceTo(date), "");
        while (server->Clock().HasDue())
            EXPECT_EQ(server->Clock().ExecuteDue({}).fault, "");
    }

    JournalOpening opening;
    UserIdentity user{"USER1", "BROKER", ""};
    std::unique_ptr<Server> server;
};

} // namespace vesk
