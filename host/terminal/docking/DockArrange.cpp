// Where everything lies: the geometry of DockLayout.
#include "host/terminal/docking/DockLayout.h"

#include <algorithm>
#include <utility>

namespace vesk {
namespace {

// These are pixels at 96 DPI.
constexpr int kSplitter = 5;
constexpr int kLeastExtent = 90;
constexpr int kLeastCentre = 90;
constexpr int kMostTabWidth = 190;
constexpr int kDropZone = 60;

bool IsAcross(DockSide side) {
    return side == DockSide::left || side == DockSide::right;
}

int Along(const DockRect& rect, DockSide side) {
    return IsAcross(side) ? rect.Width() : rect.Height();
}

} // namespace

DockRect CutSlice(DockRect& rest, DockSide side, int size) {
    DockRect slice = rest;
    size = std::clamp(size, 0, Along(rest, side));
    switch (side) {
    case DockSide::left:
        rest.left = slice.right = rest.left + size;
        break;
    case DockSide::right:
        rest.right = slice.left = rest.right - size;
        break;
    case DockSide::top:
        rest.top = slice.bottom = rest.top + size;
        break;
    default:
        rest.bottom = slice.top = rest.bottom - size;
        break;
    }
    return slice;
}

// The most that the group can have of `rest` while those after it and the centre keep their least.
int DockLayout::RoomFor(std::size_t group, const DockRect& rest) const {
    const DockSide side = m_groups[group].side;
    int room = Along(rest, side) - AtDpi(kSplitter, m_metrics.dpi);
    if (m_metrics.centre) room -= AtDpi(kLeastCentre, m_metrics.dpi);
    for (std::size_t i = group + 1; i < m_groups.size(); ++i)
        if (m_groups[i].selected && IsAcross(m_groups[i].side) == IsAcross(side))
            room -= AtDpi(kLeastExtent + kSplitter, m_metrics.dpi);
    return room;
}

DockRect DockLayout::Arrange(const DockRect& area, const DockMetrics& metrics) {
    m_area = area;
    m_metrics = metrics;
    const auto isShown = [](const DockGroup& group) { return group.selected != 0; };
    const auto innermost = std::find_if(m_groups.rbegin(), m_groups.rend(), isShown);
    const int least = AtDpi(kLeastExtent, metrics.dpi);
    DockRect rest = area;
    for (std::size_t i = 0; i < m_groups.size(); ++i) {
        DockGroup& group = m_groups[i];
        group.bounds = group.splitter = {};
        if (isShown(group)) {
            if (!metrics.centre && &group == &*innermost) {
                group.bounds = std::exchange(rest, {});
            } else {
                const int most = std::max(least, RoomFor(i, rest));
                group.bounds =
                    CutSlice(rest, group.side, std::clamp(AtDpi(group.extent, metrics.dpi), least, most));
                group.splitter = CutSlice(rest, group.side, AtDpi(kSplitter, metrics.dpi));
            }
        }
        Furnish(group);
    }
    return metrics.centre ? rest : DockRect{};
}

void DockLayout::Furnish(DockGroup& group) const {
    group.content = group.bounds;
    group.caption = CutSlice(group.content, DockSide::top, m_metrics.caption);
    DockRect bar = group.caption;
    group.closeButton = CutSlice(bar, DockSide::right, bar.Height());
    group.floatButton = CutSlice(bar, DockSide::right, bar.Height());
    group.tabs.clear();
    const std::vector<PaneId> shown = ShownPanes(group);
    if (shown.size() < 2) return;
    DockRect strip = CutSlice(group.content, DockSide::bottom, m_metrics.tabs);
    const int width =
        std::min(AtDpi(kMostTabWidth, m_metrics.dpi), strip.Width() / static_cast<int>(shown.size()));
    for (const PaneId pane : shown)
        group.tabs.push_back({pane, CutSlice(strip, DockSide::left, width)});
}

DockHit DockLayout::HitTest(const DockPoint& point) const {
    using Part = DockHit::Part;
    constexpr std::pair<Part, DockRect DockGroup::*> parts[] = {
        {Part::floatButton, &DockGroup::floatButton},
        {Part::closeButton, &DockGroup::closeButton},
        {Part::caption, &DockGroup::caption},
        {Part::splitter, &DockGroup::splitter},
    };
    for (std::size_t i = 0; i < m_groups.size(); ++i) {
        for (const auto& [part, member] : parts)
            if ((m_groups[i].*member).Holds(point)) return {part, i, m_groups[i].selected};
        for (const DockTab& tab : m_groups[i].tabs)
            if (tab.rect.Holds(point)) return {Part::tab, i, tab.pane};
    }
    return {};
}

std::optional<DockTarget> DockLayout::TargetAt(const DockPoint& point, PaneId dragged) const {
    using Kind = DockTarget::Kind;
    const DockHit hit = HitTest(point);
    if (hit.part != DockHit::Part::nothing && hit.part != DockHit::Part::splitter) {
        const DockGroup& group = m_groups[hit.group];
        if (std::ranges::count(group.panes, dragged)) return std::nullopt;
        return DockTarget{Kind::tabs, group.side, group.selected};
    }
    if (!m_area.Holds(point)) return DockTarget{Kind::floating};
    const std::pair<int, DockSide> distances[] = {
        {point.x - m_area.left, DockSide::left},
        {m_area.right - point.x, DockSide::right},
        {point.y - m_area.top, DockSide::top},
        {m_area.bottom - point.y, DockSide::bottom},
    };
    const auto nearest = *std::ranges::min_element(distances);
    const int zone = std::min(AtDpi(kDropZone, m_metrics.dpi), Along(m_area, nearest.second) / 4);
    if (nearest.first > zone) return DockTarget{Kind::floating};
    return DockTarget{Kind::side, nearest.second};
}

DockRect DockLayout::PreviewOf(PaneId id, const DockTarget& target) const {
    DockLayout moved = *this;
    moved.SetShown(id, true);
    moved.Move(id, target);
    moved.Arrange(m_area, m_metrics);
    const DockGroup* group = moved.GroupOf(id);
    return group ? group->bounds : DockRect{};
}

void DockLayout::DragSplitter(std::size_t index, const DockPoint& corner) {
    if (index >= m_groups.size()) return; // its panes may have ended under the mouse
    DockGroup& group = m_groups[index];
    int size = 0;
    switch (group.side) {
    case DockSide::left:
        size = corner.x - group.bounds.left;
        break;
    case DockSide::right:
        size = group.bounds.right - corner.x - group.splitter.Width();
        break;
    case DockSide::top:
        size = corner.y - group.bounds.top;
        break;
    default:
        size = group.bounds.bottom - corner.y - group.splitter.Height();
        break;
    }
    DockRect rest = m_area;
    for (std::size_t i = 0; i < index; ++i) {
        CutSlice(rest, m_groups[i].side, Along(m_groups[i].bounds, m_groups[i].side));
        CutSlice(rest, m_groups[i].side, Along(m_groups[i].splitter, m_groups[i].side));
    }
    const int least = AtDpi(kLeastExtent, m_metrics.dpi);
    group.extent = AtUsualDpi(std::clamp(size, least, std::max(least, RoomFor(index, rest))), m_metrics.dpi);
    Arrange(m_area, m_metrics);
}

} // namespace vesk
