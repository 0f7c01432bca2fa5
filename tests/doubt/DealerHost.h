// What stands around a dealer's plug-in: files on the disk, the basket's screen, and controls at a real server.
// All of them tell by which step they pass.
#pragma once

#include "host/server/net/RxClient.h"
#include "tests/doubt/Round.h"
#include "tests/plugin/BasketDouble.h"

#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <unistd.h>

namespace planfold::test {
using Gate = std::function<void(Step)>;

inline std::string FileText(const std::string& name) {
    std::ifstream file(name, std::ios::binary);
    return (std::ostringstream() << file.rdbuf()).str();
}

// The record's files, in the folder in which this process lives.
struct DiskFiles final : RecordFiles {
    explicit DiskFiles(Gate comes) : gate(std::move(comes)) {}

    static std::string NameOf(const LocalDateTime& day) { return TimeText(day).substr(0, 10) + ".csv"; }
    bool HasFolder() const override { return true; }
    std::optional<std::string> Read(const LocalDateTime& day) override { return FileText(NameOf(day)); }
    bool Append(const LocalDateTime& day, std::string_view lines, bool flush, std::size_t& whole) override {
        gate(Step::append);
        const std::string before = FileText(NameOf(day));
        std::string text(before.empty() ? RecordHeading() : before.ends_with('\n') ? "" : kTornEnd);
        const std::size_t start = text.size();
        text += lines;
        const int file = open(NameOf(day).c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
        const std::size_t half = before.size() % text.size();
        bool isWritten = !refuses && write(file, text.data(), half) >= 0 && !isFull;
        const std::size_t there = isWritten ? text.size() : refuses ? 0 : half;
        whole = static_cast<std::size_t>(
            std::count(text.begin() + std::min(start, there), text.begin() + there, '\n'));
        gate(Step::amid);
        isWritten = isWritten && write(file, text.data() + half, text.size() - half) >= 0;
        isWritten = isWritten && (!flush || fsync(file) == 0);
        close(file);
        hasFailed = hasFailed || !isWritten;
        if (isWritten) gate(Step::appended);
        return isWritten;
    }

    const Gate gate;
    bool refuses = false, isFull = false, hasFailed = false;
};

struct KeptBasket final : UnsentFile {
    explicit KeptBasket(Gate comes) : gate(std::move(comes)) {}

    std::optional<std::string> Read() override {
        std::string text = FileText("basket.csv");
        return text.empty() ? std::nullopt : std::optional(std::move(text));
    }
    std::string Replace(std::string_view text) override {
        gate(Step::keep);
        std::ofstream("basket.tmp", std::ios::binary) << text;
        std::filesystem::rename("basket.tmp", "basket.csv");
        gate(Step::kept);
        return {};
    }
    std::string SaveAside(std::string_view, const LocalDateTime&) override { return {}; }

    const Gate gate;
};

// A control whose requests and answers pass the gate.
class Line final : public RxControl, public CKeloRxNotifierBase {
public:
    using Take = std::function<void(void* message)>;
    Line(vesk::RxClient& client, int kind, Gate gate, Take answer, Take update = {})
        : m_gate(std::move(gate)), m_answer(std::move(answer)), m_update(std::move(update)),
          m_control(client.Get(kind, this)) {}

    int SendRequest(std::uint64_t* number, void* message, int zero, QmxError* error) override {
        const bool asks = qmx::Text(message, tag::requestName).find("get_") != std::string_view::npos;
        if (!asks) m_gate(Step::send);
        const int isSent = m_control->SendRequest(number, message, zero, error);
        if (!asks) m_gate(Step::sent);
        return isSent;
    }
    int Subscribe(std::uint64_t* out, const std::uint32_t* tags, const QmxDatum* values, std::uint32_t count,
                  RxControl*, int a, int b, int one, QmxError* error) override {
        return m_control->Subscribe(out, tags, values, count, m_control, a, b, one, error);
    }
    int Stop(int zero) override { return m_control->Stop(zero); }
    void OnResponse(void*, void* message, void*) override {
        const bool isRow = qmx::Text(message, tag::echoedRequest).find("get_") != std::string_view::npos;
        if (!isRow) m_gate(Step::answer);
        m_answer(message);
        if (!isRow) m_gate(Step::answered);
    }
    void OnBroadcast(void* message, std::uint32_t, void*) override { m_update(message); }

private:
    void Reserved0() override {}
    void Reserved1() override {}
    void Reserved2() override {}
    void Reserved3() override {}
    void Reserved6() override {}
    void Reserved7() override {}
    void Reserved8() override {}
    void Reserved9() override {}
    void Reserved10() override {}
    void Reserved11() override {}
    void Reserved12() override {}
    void Reserved13() override {}
    void Reserved14() override {}

    const Gate m_gate;
    const Take m_answer, m_update;
    RxControl* const m_control;
};

struct BasketScreen final : BasketDouble {
    explicit BasketScreen(Gate gate) : file(std::move(gate)) {}
    UnsentFile& Unsent() override { return file; }

    KeptBasket file;
};

} // namespace planfold::test
