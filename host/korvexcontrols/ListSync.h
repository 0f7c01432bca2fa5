// Keeps the system's control in step with the model: count, selection, focus and scroll position, which it
// holds by index, and repaints only the lines that changed.
//
// What an owner-data list does by itself (measured): setting the count shifts nothing, so a row's selection
// stays at its index; a smaller count drops selection and focus behind it. Inserting an item changes nothing
// at all. The user's clicks and keys come as LVN_ITEMCHANGED with index -1 for all rows, as one a row, or as
// LVN_ODSTATECHANGED for a range. While redrawing is off, state changes cost a hundredth.
#pragma once

#include "framework/Window.h"
#include "host/korvexcontrols/model/ListModel.h"

#include <vector>

namespace korvex {

class ListSync {
public:
    explicit ListSync(ListModel& model) : m_model(model) {}

    void Attach(HWND list);
    void Detach() { m_list = framework::Window(); }

    // The state before a change: which record stands in which line, and which must stay where it is.
    struct Before {
        struct Line {
            std::uint32_t record;
            bool selected, focused;
            bool operator==(const Line&) const = default;
        };
        std::vector<Line> lines;
        std::uint32_t top = 0;
        std::uint32_t mark = kNone; // the record from which Shift selects
        // The record that keeps its line, then those that stand in for it when it goes.
        std::uint32_t anchorLine = kNone;
        std::vector<std::uint32_t> anchors;
    };
    Before Remember();
    // The row that the user chose keeps its line when it is on the screen; else the list stays scrolled as it
    // is.
    static void AnchorFocus(Before& before);
    // At the very top new rows show themselves, whatever row the mouse is on.
    static void ReleaseTop(Before& before);
    // Called after the model has changed; the records are repainted where they stand.
    void Follow(const Before& before, std::span<const std::uint32_t> repainted = {});
    void RepaintAll() const;

    // It is true while the control's notifications are answers to our own messages.
    bool Busy() const { return m_busy; }
    // These take what the user, or another program, did.
    void OnItemChanged(const NMLISTVIEW& change);
    void OnRangeChanged(const NMLVODSTATECHANGE& change);
    // Reads the control's selection when it differs from what is known: a notification may have been lost.
    void AdoptSelection();

    std::uint32_t TopRow() const { return static_cast<std::uint32_t>(m_list.Send(LVM_GETTOPINDEX)); }
    void ScrollTo(std::uint32_t top);
    void EnsureVisible(std::uint32_t row);

private:
    std::vector<Before::Line> Lines() const;
    void RememberAnchor(Before& before) const;
    std::uint32_t RowUnderMouse() const;
    std::uint32_t TopFor(const Before& before) const;
    void SetCount();
    void SelectNone();
    void SetSelection();
    void SetFocusAndMark(const Before& before);
    void SetState(std::uint32_t row, UINT state, UINT mask) const;
    void RepaintChanged(const Before& before, std::span<const std::uint32_t> repainted) const;
    int LineHeight() const;
    RECT RowsArea() const;

    ListModel& m_model;
    framework::Window m_list;
    bool m_busy = false;
    // These three are what the control holds.
    std::uint32_t m_count = 0;
    RowRanges m_selected;
    std::uint32_t m_focusedRow = kNone;
};

} // namespace korvex
