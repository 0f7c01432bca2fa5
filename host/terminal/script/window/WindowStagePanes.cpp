// The commands about panes and where they stand.
#include "host/terminal/script/window/WindowStage.h"
#include "host/terminal/window/Application.h"

#include <algorithm>

namespace vesk {
namespace {

struct PlaceRow {
    std::string_view name;
    DockCommand command;
};
constexpr PlaceRow kPlaces[] = {
    {"left", DockCommand::left},     {"right", DockCommand::right},    {"top", DockCommand::top},
    {"bottom", DockCommand::bottom}, {"float", DockCommand::floating}, {"tab", DockCommand::firstTab},
};

std::string_view PlaceName(const DockLayout& layout, const DockPane& pane) {
    if (pane.place.floating) return "float";
    const DockGroup* group = layout.GroupOf(pane.id);
    if (group->panes.size() > 1) return "tab";
    const auto command =
        static_cast<DockCommand>(static_cast<int>(DockCommand::left) + static_cast<int>(group->side));
    return std::ranges::find(kPlaces, command, &PlaceRow::command)->name;
}

} // namespace

StepResult WindowStage::RunOnPane(const ScriptCommand& command, DockCommand run, std::size_t tab) {
    DockSite& docking = m_application.Frame().Docking();
    const DockPane* pane = docking.Layout().FindCaption(command.words[0]);
    if (!pane) return StepResult::Again("there is no pane \"" + command.words[0] + '"');
    docking.Run(pane->id, run, tab);
    return StepResult::Done();
}

StepResult WindowStage::Dock(const ScriptCommand& command, std::size_t) {
    const DockLayout& layout = m_application.Frame().Docking().Layout();
    const auto place = *std::ranges::find(kPlaces, command.words[1], &PlaceRow::name);
    const auto partner = std::ranges::find_if(layout.Panes(), [&](const DockPane& pane) {
        return pane.caption != command.words[0] && !pane.place.floating;
    });
    if (place.command == DockCommand::firstTab && partner == layout.Panes().end())
        return StepResult::Again("there is no other docked pane");
    return RunOnPane(command, place.command, static_cast<std::size_t>(partner - layout.Panes().begin()));
}

StepResult WindowStage::HidePane(const ScriptCommand& command, std::size_t) {
    return RunOnPane(command, DockCommand::hide);
}

StepResult WindowStage::ShowPane(const ScriptCommand& command, std::size_t) {
    return RunOnPane(command, DockCommand::show);
}

StepResult WindowStage::ExpectDocked(const ScriptCommand& command, std::size_t) {
    const DockLayout& layout = m_application.Frame().Docking().Layout();
    const DockPane* pane = layout.FindCaption(command.words[0]);
    if (!pane) return StepResult::Again("there is no pane \"" + command.words[0] + '"');
    const std::string place(PlaceName(layout, *pane));
    if (place == command.words[1]) return StepResult::Done();
    return StepResult::Again("the pane stands at " + place);
}

} // namespace vesk
