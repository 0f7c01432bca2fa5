// What the free part of the book's status line says.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace planfold {

// What rows of one side come to, a run of each.
struct SideSum {
    std::string side; // "SIP" or "SWP"
    std::uint32_t rows = 0;
    std::int64_t paise = 0;
    std::int64_t shares = 0;
};

struct BookStatus {
    std::uint32_t rows = 0, shown = 0; // of the open page
    std::string client;                // the active one; empty: none
    std::string view;
    bool loading = false;
    std::uint32_t selected = 0;
    // None while they are not known, or where the list makes none: of several selected rows theirs, else those
    // of the shown.
    std::optional<std::vector<SideSum>> sums;

    // "147 of 29,847 shown (client C001, Due Today)   SIP 120: Rs 1,20,000.00, 30 shares   SWP 27: Rs 540.00".
    std::string Text() const;
    // "No registrations yet" and the like; what a list without any row says.
    const char* EmptyText() const;
};

// Whether the book is being filled: from the query on until its answers end, or none has come for a while.
class BookFilling {
public:
    static constexpr int kPatience = 5; // seconds

    void Begin() { m_left = kPatience; }
    void End() { m_left = 0; }
    bool IsUnderWay() const { return m_left > 0; }
    // Every second.
    void OnTime(std::size_t rows);

private:
    int m_left = 0;
    std::size_t m_rows = 0;
};

// "Live", or since when there is no connection; empty when nobody can tell.
class ConnectionNews {
public:
    // `connected` is the host's answer, `time` as "10:42".
    void Hear(std::optional<bool> connected, const std::string& time);
    const std::string& Text() const { return m_text; }

private:
    std::optional<bool> m_connected;
    std::string m_text;
};

} // namespace planfold
