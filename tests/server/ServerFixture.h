// A server over a journal in a folder of its own, with a clock that stands still, and requests to send it.
#pragma once

#include "host/server/Server.h"
#include "host/server/schedule/Schedule.h"
#include "tests/server/Requests.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace vesk {

inline std::string FileText(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return std::string((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
}
inline void WriteFileText(const std::filesystem::path& path, std::string_view text) {
    std::ofstream(path, std::ios::binary).write(text.data(), static_cast<std::streamsize>(text.size()));
}

// The text of a journal with these contents behind those that it has.
inline std::string JournalOf(const std::vector<std::string>& contents, std::string text = {}) {
    JournalChain chain = ReadJournalText(text).chain;
    for (const std::string& content : contents)
        chain.AppendLine(text, content);
    return text;
}
// As if it had never been another one.
inline void WriteJournal(std::filesystem::path path, std::string_view text) {
    WriteFileText(path, text);
    std::filesystem::remove(path += ".head");
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

struct RunningServer {
    explicit RunningServer(const std::filesystem::path& path, ServerConfig config = {},
                           ServerClock clock = FixedClock()) {
        opening = Journal::Open(path);
        EXPECT_EQ(opening.error, "");
        server =
            std::make_unique<Server>(std::move(config), *opening.journal, opening.records, std::move(clock));
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
            dumps.push_back(planfold::test::Named(qmx::Dump(read.Handle())));
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

// All that the server holds and answers.
inline std::string StateOf(RunningServer& running) {
    std::string state = RecordDate(running.server->Clock().Today());
    for (const Registration& registration : running.server->Held().All()) {
        state += registration.Json();
        for (const std::string request : {"qry_eq_sip_orders", "qry_eq_sip_trades"})
            for (const std::string& answer :
                 running.Ask(request + " registrationNumber=" + std::string(registration.Number())))
                state += answer;
    }
    return state + running.Ask("calendar_get_restricted_dates")[0];
}

} // namespace vesk
