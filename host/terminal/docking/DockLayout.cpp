#include "host/terminal/docking/DockLayout.h"

#include <algorithm>
#include <utility>

namespace vesk {

const DockPane* DockLayout::Find(PaneId id) const {
    const auto found = std::ranges::find(m_panes, id, &DockPane::id);
    return found == m_panes.end() ? nullptr : &*found;
}

const DockPane* DockLayout::FindCaption(const std::string& caption) const {
    const auto found = std::ranges::find(m_panes, caption, &DockPane::caption);
    return found == m_panes.end() ? nullptr : &*found;
}

DockPane* DockLayout::FindPane(PaneId id) {
    return const_cast<DockPane*>(std::as_const(*this).Find(id));
}

const DockGroup* DockLayout::GroupOf(PaneId id) const {
    const auto holds = [id](const DockGroup& group) { return std::ranges::count(group.panes, id) != 0; };
    const auto found = std::ranges::find_if(m_groups, holds);
    return found == m_groups.end() ? nullptr : &*found;
}

DockPlace DockLayout::PlaceOf(PaneId id) const {
    const DockPane* pane = Find(id);
    if (!pane) return {};
    DockPlace place = pane->place;
    const DockGroup* group = GroupOf(id);
    if (!group) return place;
    place.side = group->side;
    place.extent = group->extent;
    const auto partner = std::ranges::find_if(group->panes, [id](PaneId other) { return other != id; });
    place.tabWith = partner == group->panes.end() ? std::string() : Find(*partner)->caption;
    return place;
}

bool DockLayout::IsShown(PaneId id) const {
    const DockPane* pane = Find(id);
    return pane && pane->shown;
}

std::vector<PaneId> DockLayout::ShownPanes(const DockGroup& group) const {
    std::vector<PaneId> shown;
    std::ranges::copy_if(group.panes, std::back_inserter(shown), [this](PaneId id) { return IsShown(id); });
    return shown;
}

bool DockLayout::ShowsDocked() const {
    return std::ranges::any_of(m_groups, [this](const DockGroup& group) { return IsShown(group.selected); });
}

void DockLayout::SettleSelection(DockGroup& group) const {
    const std::vector<PaneId> shown = ShownPanes(group);
    if (std::ranges::count(shown, group.selected)) return;
    group.selected = shown.empty() ? 0 : shown.front();
}

void DockLayout::Join(DockGroup& group, DockPane& pane) {
    group.panes.push_back(pane.id);
    if (pane.shown) group.selected = pane.id;
}

void DockLayout::Leave(DockPane& pane) {
    pane.place = PlaceOf(pane.id);
    for (DockGroup& group : m_groups)
        if (std::erase(group.panes, pane.id)) SettleSelection(group);
    std::erase_if(m_groups, [](const DockGroup& group) { return group.panes.empty(); });
}

void DockLayout::Dock(DockPane& pane) {
    pane.place.floating = false;
    const DockPane* partner = pane.place.tabWith.empty() ? nullptr : FindCaption(pane.place.tabWith);
    DockGroup* group = partner ? const_cast<DockGroup*>(GroupOf(partner->id)) : nullptr;
    if (!group) group = &*m_groups.insert(m_groups.begin(), DockGroup{pane.place.side, pane.place.extent, {}});
    Join(*group, pane);
}

void DockLayout::Add(PaneId id, std::string caption, DockPlace place, bool shown) {
    if (Find(id)) return;
    m_panes.push_back({id, std::move(caption), std::move(place), shown});
    if (!m_panes.back().place.floating) Dock(m_panes.back());
}

void DockLayout::Remove(PaneId id) {
    DockPane* pane = FindPane(id);
    if (!pane) return;
    Leave(*pane);
    std::erase_if(m_panes, [id](const DockPane& other) { return other.id == id; });
}

void DockLayout::SetShown(PaneId id, bool shown) {
    DockPane* pane = FindPane(id);
    if (!pane) return;
    pane->shown = shown;
    auto* group = const_cast<DockGroup*>(GroupOf(id));
    if (!group) return;
    if (shown) group->selected = id;
    SettleSelection(*group);
}

void DockLayout::Move(PaneId id, const DockTarget& target) {
    DockPane* pane = FindPane(id);
    const bool tabs = target.kind == DockTarget::Kind::tabs;
    if (!pane || (tabs && (target.partner == id || !GroupOf(target.partner)))) return;
    Leave(*pane);
    if (target.kind == DockTarget::Kind::floating) {
        pane->place.floating = true;
        return;
    }
    pane->place.tabWith = tabs ? Find(target.partner)->caption : std::string();
    if (!tabs) pane->place.side = target.side;
    Dock(*pane);
}

void DockLayout::ToggleFloating(PaneId id) {
    DockPane* pane = FindPane(id);
    if (!pane) return;
    if (pane->place.floating)
        Dock(*pane);
    else
        Move(id, {DockTarget::Kind::floating});
}

void DockLayout::SetFloatRect(PaneId id, const DockRect& rect) {
    if (DockPane* pane = FindPane(id)) pane->place.floatRect = rect;
}

} // namespace vesk
