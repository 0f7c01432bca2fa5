#include "host/server/net/ServerWatch.h"

#include "base/Text.h"
#include "host/files/Files.h"
#include "host/server/schedule/Schedule.h"

#include <algorithm>
#include <cstdio>
#include <fstream>

namespace vesk {
namespace {

constexpr std::int64_t kMinuteMs = 60'000, kPeriodMs = 5'000;
constexpr std::int64_t kCurrentSeconds = 30;

std::filesystem::path Beside(std::filesystem::path journal, const char* ending = ".status") {
    return journal += ending;
}

} // namespace

ServerWatch::ServerWatch(const NetServer& net, Server& server, std::filesystem::path journal,
                         std::int64_t nowMs)
    : m_net(net), m_server(server), m_file(Beside(std::move(journal))), m_sinceMs(nowMs),
      m_lookedMs(nowMs - kPeriodMs) {}

ServerWatch::~ServerWatch() {
    std::error_code ignored;
    std::filesystem::remove(m_file, ignored);
}

std::string ServerWatch::Look(std::int64_t nowMs, std::int64_t time) {
    if (nowMs - m_lookedMs < kPeriodMs) return {};
    m_lookedMs = nowMs;
    std::string line = Line(nowMs);
    // Put in place as a whole: it is read at any time.
    std::ofstream(Beside(m_file, ".new"), std::ios::binary) << time << ' ' << line << '\n';
    std::error_code ignored;
    std::filesystem::rename(Beside(m_file, ".new"), m_file, ignored);
    if (nowMs - m_sinceMs < kMinuteMs) return {};
    m_sinceMs = nowMs;
    m_before = m_net.Carried();
    m_flush.clear();
    return line;
}

std::string ServerWatch::Line(std::int64_t nowMs) {
    const std::vector<double> latest = m_server.Journal().TakeFlushTimes();
    m_flush.insert(m_flush.end(), latest.begin(), latest.end());
    double longest = 0, median = 0;
    if (!m_flush.empty()) {
        const auto middle = m_flush.begin() + std::ssize(m_flush) / 2;
        std::ranges::nth_element(m_flush, middle);
        longest = *std::ranges::max_element(m_flush), median = *middle;
    }
    const double seconds = static_cast<double>(std::max<std::int64_t>(nowMs - m_sinceMs, 1)) / 1000;
    const Traffic now = m_net.Carried();
    return base::Format("%zu sessions, %.1f requests and %.1f updates a second, journal %.1f MB, %zu flushes, "
                        "longest %.1f ms, median %.1f ms",
                        m_net.Connections(), static_cast<double>(now.requests - m_before.requests) / seconds,
                        static_cast<double>(now.updates - m_before.updates) / seconds,
                        static_cast<double>(m_server.Journal().File().Size()) / 1e6, m_flush.size(), longest,
                        median);
}

std::string ServerWatch::Read(const std::filesystem::path& journal, std::int64_t time, bool& isCurrent) {
    isCurrent = false;
    std::ifstream file(Beside(journal), std::ios::binary);
    std::string line;
    std::getline(file, line);
    const std::size_t blank = line.find(' ');
    const auto written = WholeNumber(std::string_view(line).substr(0, blank));
    if (!written || blank == line.npos) return "no server serves this journal";
    const std::int64_t age = std::max<std::int64_t>(time - *written, 0);
    isCurrent = age <= kCurrentSeconds;
    return line.substr(blank + 1) + ", " + std::to_string(age) + " s ago"
           + (isCurrent ? "" : ": no server has told more since");
}

} // namespace vesk
