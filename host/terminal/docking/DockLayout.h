// The panes of the main frame: groups at its four sides, panes in tabs within a group, panes that float.
// Each shown group cuts its slice off what the groups before it left; the centre gets the rest. A group has
// a caption at its top, tabs at its foot when it shows two panes or more, and a splitter at its inner edge.
#pragma once

#include "host/terminal/docking/DockPlace.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vesk {

using PaneId = std::uintptr_t; // never 0

struct DockPane {
    PaneId id;
    std::string caption;
    DockPlace place; // while it is docked, side, size and tabs are its group's
    bool shown;      // as its owner wants it; behind another tab it is shown too
};

struct DockTab {
    PaneId pane;
    DockRect rect;
};

struct DockGroup {
    DockSide side;
    int extent; // pixels at 96 DPI
    std::vector<PaneId> panes;
    PaneId selected = 0; // a shown one, if there is any

    // Arrange sets it; it is empty while no pane of the group is shown.
    DockRect bounds{}, caption{}, floatButton{}, closeButton{}, content{}, splitter{};
    std::vector<DockTab> tabs{};
};

struct DockMetrics {
    unsigned dpi = 96;
    int caption = 22; // heights in pixels, as the font wants them
    int tabs = 24;
    bool centre = true; // false: the innermost group takes the centre's room
};

struct DockHit {
    enum class Part { nothing, caption, floatButton, closeButton, tab, splitter };

    Part part = Part::nothing;
    std::size_t group = 0;
    PaneId pane = 0; // the group's selected one, or the tab's

    bool operator==(const DockHit&) const = default;
};

struct DockTarget {
    enum class Kind { side, tabs, floating };

    Kind kind;
    DockSide side = DockSide::bottom; // for `side`: outermost there
    PaneId partner = 0;               // for `tabs`
};

class DockLayout {
public:
    // The pane comes to its remembered place; a partner that is not there, or floats itself, is done without.
    void Add(PaneId id, std::string caption, DockPlace place, bool shown);
    void Remove(PaneId id);
    // A pane that is shown comes to the front of its tabs.
    void SetShown(PaneId id, bool shown);
    void Move(PaneId id, const DockTarget& target);
    // Moves the pane between the side where it was last docked and a window of its own.
    void ToggleFloating(PaneId id);
    void SetFloatRect(PaneId id, const DockRect& rect);

    const std::vector<DockPane>& Panes() const { return m_panes; }
    const std::vector<DockGroup>& Groups() const { return m_groups; }
    const DockPane* Find(PaneId id) const;
    const DockPane* FindCaption(const std::string& caption) const;
    // The group is null while the pane floats.
    const DockGroup* GroupOf(PaneId id) const;
    // What to remember of it now.
    DockPlace PlaceOf(PaneId id) const;
    bool ShowsDocked() const;

    // Places every group; the result is the centre.
    DockRect Arrange(const DockRect& area, const DockMetrics& metrics);
    DockHit HitTest(const DockPoint& point) const;
    // Where the pane goes when it is let go at the point: over another group's caption or tabs into these,
    // near an edge to that side, elsewhere into a window. Nothing over its own group's caption: it stays.
    std::optional<DockTarget> TargetAt(const DockPoint& point, PaneId dragged) const;
    // Where it would then lie; for sides and tabs only.
    DockRect PreviewOf(PaneId id, const DockTarget& target) const;
    // Brings the top left corner of the group's splitter to the point, as far as there is room.
    void DragSplitter(std::size_t group, const DockPoint& corner);

private:
    DockPane* FindPane(PaneId id);
    bool IsShown(PaneId id) const;
    std::vector<PaneId> ShownPanes(const DockGroup& group) const;
    void Leave(DockPane& pane);
    void Dock(DockPane& pane);
    void Join(DockGroup& group, DockPane& pane);
    void SettleSelection(DockGroup& group) const;
    int RoomFor(std::size_t group, const DockRect& rest) const;
    void Furnish(DockGroup& group) const;

    std::vector<DockPane> m_panes;   // in the order of their coming
    std::vector<DockGroup> m_groups; // from the edges inwards
    DockRect m_area;
    DockMetrics m_metrics;
};

// The slice of this size at a side of `rest`, which loses it.
DockRect CutSlice(DockRect& rest, DockSide side, int size);

} // namespace vesk
