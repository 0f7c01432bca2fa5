// The verbs of panes and where they stand.
#include "host/terminal/script/window/Stage.h"

#include "host/terminal/window/Application.h"

#include <algorithm>

namespace vesk::verbs {
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

StepResult RunOnPane(ScriptStep& step, DockCommand run, std::size_t tab = 0) {
    DockSite& docking = step.stage.application.Frame().Docking();
    const DockPane* pane = docking.Layout().FindCaption(step.Word(0));
    if (!pane) return StepResult::Again("there is no pane \"" + step.Word(0) + '"');
    docking.Run(pane->id, run, tab);
    return StepResult::Done();
}

} // namespace

StepResult MovePane(ScriptStep& step) {
    const DockLayout& layout = step.stage.application.Frame().Docking().Layout();
    const auto place = *std::ranges::find(kPlaces, step.Word(1), &PlaceRow::name);
    const auto partner = std::ranges::find_if(layout.Panes(), [&](const DockPane& pane) {
        return pane.caption != step.Word(0) && !pane.place.floating;
    });
    if (place.command == DockCommand::firstTab && partner == layout.Panes().end())
        return StepResult::Again("there is no other docked pane");
    return RunOnPane(step, place.command, static_cast<std::size_t>(partner - layout.Panes().begin()));
}

StepResult HidePane(ScriptStep& step) {
    return RunOnPane(step, DockCommand::hide);
}

StepResult ShowPane(ScriptStep& step) {
    return RunOnPane(step, DockCommand::show);
}

StepResult ExpectDocked(ScriptStep& step) {
    const DockLayout& layout = step.stage.application.Frame().Docking().Layout();
    const DockPane* pane = layout.FindCaption(step.Word(0));
    if (!pane) return StepResult::Again("there is no pane \"" + step.Word(0) + '"');
    const std::string place(PlaceName(layout, *pane));
    if (place == step.Word(1)) return StepResult::Done();
    return StepResult::Again("the pane stands at " + place);
}

} // namespace vesk::verbs
