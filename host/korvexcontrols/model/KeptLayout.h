// The user's order and widths of a list's columns, and what the user sees of the rows, each kept as one line of
// text.
#pragma once

#include "host/korvexcontrols/model/SortOrder.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace korvex {

struct ColumnsState {
    std::vector<int> order;  // columns in the order they are shown
    std::vector<int> widths; // of each column, in pixels at 96 DPI
    bool operator==(const ColumnsState&) const = default;
};

std::string WriteColumns(const ColumnsState& state);
// There is none when the line is damaged, or of a list with other columns.
std::optional<ColumnsState> ReadColumns(std::string_view line, std::size_t columns);

// What the user sees of the rows, kept as one line of text: "sort;filters;condition;switches", for example
// "12+;3,0,BANK,;Due Today;Mine Only". Bytes that stand between its parts are written as "%3B".
struct RowsState {
    struct By {
        int column;
        bool descending;
        bool operator==(const By&) const = default;
    };
    std::vector<By> sort;
    std::vector<KeptFilter> filters;
    std::string condition; // of the owner's, by name; empty: none
    std::vector<std::string> switches;
    bool operator==(const RowsState&) const = default;
};

std::string WriteRows(const RowsState& state);
// There is none when the line is damaged, or of a list with other columns.
std::optional<RowsState> ReadRows(std::string_view line, std::size_t columns);

// Where the bar between two panes stands: a share of the room that both have, so that it keeps its place while
// the room changes, within the least length of each pane.
class SplitPosition {
public:
    struct Least {
        int first;
        int second;
    };
    static constexpr int kWhole = 10000;

    // The first pane's share of kWhole.
    explicit SplitPosition(int share);
    int Share() const { return m_share; }

    // The first pane's length. A room too small for both is shared as their least lengths are.
    int First(int room, Least least) const;
    // The user wants this length. A room too small for both keeps its share.
    void MoveTo(int first, int room, Least least);

private:
    int m_share;
};

// There is none when the text is no share.
std::optional<SplitPosition> ReadSplit(std::string_view text);

} // namespace korvex
