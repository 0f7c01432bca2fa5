// What the shown and the selected rows of a list come to, by the text of one column ("SIP", "SWP"): rows, money
// and quantity.
//
// What each record adds is remembered, so that a change costs its own record alone. The work waits for Work,
// which does a portion at a time; until it is done the sums are not complete.
#pragma once

#include "host/korvexcontrols/model/ListModel.h"

#include <array>
#include <string>
#include <vector>

namespace korvex {

class ListSums {
public:
    static constexpr std::size_t kMostSides = 4; // further ones are counted with the last

    struct Columns {
        std::int32_t side = -1, amount = -1, quantity = -1;
    };
    struct Side {
        std::string name;
        std::uint32_t rows = 0;
        std::uint64_t paise = 0, quantity = 0; // of signed sums, so that what was added can be taken off
    };
    using Sides = std::vector<Side>;

    ListSums(const ListModel& model, CellSource& source) : m_model(model), m_source(source) {}

    // Nothing is counted before.
    void Begin(const Columns& columns);
    // After each operation on the model; kNone when it was not about one record.
    void Note(const ListChange& change, std::uint32_t record);
    void SelectionChanged();

    // Looks at so many records at most; false when nothing is left to do.
    bool Work(std::uint32_t most);
    bool IsComplete() const { return m_dirty.empty() && m_sweep >= m_known.size() && SelectionIsCounted(); }
    const Sides& Shown() const { return m_shown; }
    // Empty unless several rows are selected.
    const Sides& Selected() const { return m_selected; }

private:
    static constexpr std::uint8_t kNotShown = UINT8_MAX;
    // What a record adds.
    struct Known {
        std::uint64_t paise = 0, quantity = 0;
        std::uint32_t pass = 0; // the selection's in which it was counted
        std::uint8_t side = kNotShown;
        bool dirty = false;
    };

    bool IsOn() const { return m_columns.side >= 0; }
    bool CountsSelection() const { return m_model.Selection().Count() > 1; }
    bool SelectionIsCounted() const { return !CountsSelection() || m_row == kNone; }
    void Touch(std::uint32_t record);
    void Look(std::span<const std::uint32_t> records);
    void CountSelected(std::uint32_t most);
    static void Add(Sides& sides, const Known& known, bool add);
    std::uint8_t SideOf(std::string_view name);

    const ListModel& m_model;
    CellSource& m_source;
    Columns m_columns;
    Sides m_shown, m_selected;
    std::vector<Known> m_known; // by record
    std::vector<std::uint32_t> m_dirty;
    std::size_t m_sweep = 0;  // records from here on are looked at anew
    std::uint32_t m_pass = 1; // of the selection
    std::uint32_t m_row = 0;  // the next to be counted of the selection; kNone when it is
};

} // namespace korvex
