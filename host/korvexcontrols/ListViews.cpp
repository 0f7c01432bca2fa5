// What the user sees of the rows: the owner's conditions, the views made by the user, and what of both is kept
// from one session to the next.
#include "framework/Guard.h"
#include "host/korvexcontrols/ListWindow.h"
#include "host/korvexcontrols/RecoveryFiles.h"

#include <algorithm>
#include <utility>

using framework::Guard;
using korvex::RecoveryFile;
using korvex::RowsState;

namespace {

constexpr char kRows[] = "ListRows", kViews[] = "ListViews";
// Of the list's hundred commands.
constexpr std::uint32_t kShowAllRows = 20, kSaveView = 21, kDeleteView = 22, kFirstCondition = 30,
                        kFirstView = 60;
constexpr std::size_t kMostConditions = kFirstView - kFirstCondition, kMostViews = 40;

} // namespace

RowsState CFilterListCtrl::Impl::Seen() const {
    RowsState state;
    for (const korvex::SortColumn& by : m_model.Rows().Sort())
        state.sort.push_back({by.column, by.descending});
    for (const korvex::ColumnFilter& filter : m_model.Rows().Filters().OfColumns())
        state.filters.push_back({filter.Column(), filter.Input()});
    for (const Condition& condition : m_conditions)
        if (condition.holds && condition.isSwitch)
            state.switches.push_back(condition.name);
        else if (condition.holds)
            state.condition = condition.name;
    return state;
}

void CFilterListCtrl::Impl::KeepSeen() {
    const RowsState state = Seen();
    std::string line = korvex::WriteRows(state);
    if (line == m_savedSeen) return;
    WriteRecovered(RecoveryFile::userSettings, kRows, m_name, state == RowsState() ? "" : line);
    m_savedSeen = std::move(line);
    // It is no longer the view that was chosen.
    const auto views = KeptViews();
    const auto view = std::ranges::find(views, m_savedSeen, &View::line);
    m_viewName = view == views.end() ? "" : view->name;
}

// A list that is attached again has its rows, and what is seen of them.
void CFilterListCtrl::Impl::RestoreSeen() {
    if (!m_savedSeen.empty()) return;
    m_savedSeen = korvex::WriteRows({});
    const auto kept =
        korvex::ReadRows(ReadRecovered(RecoveryFile::userSettings, kRows, m_name), m_header.Columns().size());
    if (!kept) return;
    m_wanted = *kept;
    std::vector<korvex::SortColumn> sort;
    for (const RowsState::By& by : kept->sort)
        sort.push_back({by.column, by.descending, TypeOf(by.column)});
    m_model.Arrange(kept->filters, std::move(sort));
    m_savedSeen = korvex::WriteRows(Seen());
}

void CFilterListCtrl::Impl::See(const RowsState& state) {
    std::vector<korvex::SortColumn> sort;
    for (const RowsState::By& by : state.sort)
        sort.push_back({by.column, by.descending, TypeOf(by.column)});
    HoldConditions(state);
    Rearrange([&] {
        m_model.SetCondition(ConditionNow());
        return m_model.Arrange(state.filters, std::move(sort));
    });
}

void CFilterListCtrl::Impl::HoldConditions(const RowsState& state) {
    for (Condition& condition : m_conditions)
        condition.holds =
            condition.isPossible
            && (condition.isSwitch ? std::ranges::find(state.switches, condition.name) != state.switches.end()
                                   : condition.name == state.condition);
}

korvex::RowFilters::Condition CFilterListCtrl::Impl::ConditionNow() {
    std::vector<std::int32_t> holding;
    for (std::size_t i = 0; i < m_conditions.size(); ++i)
        if (m_conditions[i].holds) holding.push_back(static_cast<std::int32_t>(i));
    if (holding.empty()) return {};
    return [this, holding](std::uint32_t record) {
        return !m_watcher || std::ranges::all_of(holding, [&](std::int32_t condition) {
            return m_watcher->Meets(record, condition) != 0;
        });
    };
}

void CFilterListCtrl::Impl::ApplyConditions() {
    Rearrange([&] { return m_model.SetCondition(ConditionNow()); });
}

void CFilterListCtrl::Impl::SetConditions(const KorvexCondition* conditions, std::int32_t count) noexcept {
    Guard([&] {
        const RowsState now = m_conditions.empty() ? m_wanted : Seen();
        m_conditions.clear();
        for (std::int32_t i = 0; i < count && m_conditions.size() < kMostConditions; ++i)
            m_conditions.push_back({conditions[i].name ? conditions[i].name : "", conditions[i].isSwitch != 0,
                                    conditions[i].isPossible != 0, false});
        HoldConditions(now);
        // A new day changes what filters by "today" mean.
        if (std::ranges::any_of(m_conditions, &Condition::holds)
            || std::ranges::any_of(m_model.Rows().Filters().OfColumns(), &korvex::ColumnFilter::IsOfToday))
            See(Seen());
    });
}

const char* CFilterListCtrl::Impl::ViewName() noexcept {
    return Guard("", [&] {
        m_viewNames = m_viewName;
        for (const Condition& condition : m_conditions)
            if (condition.holds && (m_viewName.empty() || condition.isSwitch))
                m_viewNames += (m_viewNames.empty() ? "" : ", ") + condition.name;
        return m_viewNames.c_str();
    });
}

std::vector<CFilterListCtrl::Impl::View> CFilterListCtrl::Impl::KeptViews() const {
    std::vector<View> views;
    for (std::size_t i = 0; i < kMostViews; ++i) {
        const std::string kept =
            ReadRecovered(RecoveryFile::userSettings, kViews, m_name + "." + std::to_string(i));
        const std::size_t name = kept.find('=');
        if (name == kept.npos) break;
        views.push_back({kept.substr(0, name), kept.substr(name + 1)});
    }
    return views;
}

void CFilterListCtrl::Impl::KeepView(std::size_t place, const View& view) const {
    WriteRecovered(RecoveryFile::userSettings, kViews, m_name + "." + std::to_string(place),
                   view.name.empty() ? "" : view.name + "=" + view.line);
}

void CFilterListCtrl::Impl::SaveView(const std::string& name) {
    SetFocus(Handle());
    View view{name, korvex::WriteRows(Seen())};
    std::ranges::replace(view.name, '=', '-');
    const auto views = KeptViews();
    const auto same = std::ranges::find(views, view.name, &View::name);
    if (same == views.end() && views.size() == kMostViews) return;
    KeepView(static_cast<std::size_t>(same - views.begin()), view);
    m_viewName = view.name;
    TellWatcher();
}

void CFilterListCtrl::Impl::AskForView() {
    if (!m_viewDialog) m_viewDialog.emplace(m_self, [this](const std::string& name) { SaveView(name); });
    m_viewDialog->Show(Handle(), m_viewName);
}

void CFilterListCtrl::Impl::DeleteView() {
    auto views = KeptViews();
    std::erase_if(views, [&](const View& view) { return view.name == m_viewName; });
    for (std::size_t i = 0; i <= views.size(); ++i)
        KeepView(i, i < views.size() ? views[i] : View());
    m_viewName.clear();
    TellWatcher();
}

void CFilterListCtrl::Impl::ShowAllRows() {
    RowsState state = Seen();
    state.filters.clear();
    state.condition.clear();
    state.switches.clear();
    See(state);
}

void CFilterListCtrl::Impl::ResetColumns() {
    m_header.Reset();
    ResetWindow();
    See({});
}

void CFilterListCtrl::Impl::AppendViews(HMENU menu) {
    HMENU views = CreatePopupMenu();
    const auto append = [&](std::uint32_t command, const std::string& text, bool possible, bool checked) {
        AppendMenuA(views, MF_STRING | (possible ? MF_ENABLED : MF_GRAYED) | (checked ? MF_CHECKED : 0u),
                    m_firstCommand + command, text.c_str());
    };
    const auto separate = [&] {
        if (GetMenuItemCount(views) > 0) AppendMenuA(views, MF_SEPARATOR, 0, nullptr);
    };
    append(kShowAllRows, "All Rows", true,
           !m_model.Rows().Filters().OfAnyColumn() && std::ranges::none_of(m_conditions, &Condition::holds));
    for (const bool switches : {false, true}) {
        if (std::ranges::find(m_conditions, switches, &Condition::isSwitch) != m_conditions.end()) separate();
        for (std::size_t i = 0; i < m_conditions.size(); ++i)
            if (const Condition& condition = m_conditions[i]; condition.isSwitch == switches)
                append(kFirstCondition + static_cast<std::uint32_t>(i), condition.name, condition.isPossible,
                       condition.holds);
    }
    const auto kept = KeptViews();
    if (!kept.empty()) separate();
    for (std::size_t i = 0; i < kept.size(); ++i)
        append(kFirstView + static_cast<std::uint32_t>(i), kept[i].name, true, kept[i].name == m_viewName);
    separate();
    append(kSaveView, "Save View...", true, false);
    append(kDeleteView, m_viewName.empty() ? "Delete View" : "Delete \"" + m_viewName + "\"",
           !m_viewName.empty(), false);
    AppendMenuA(menu, MF_POPUP | MF_STRING, reinterpret_cast<UINT_PTR>(views), "Views");
}

bool CFilterListCtrl::Impl::HandleViewCommand(std::uint32_t command) {
    if (command == kShowAllRows) return ShowAllRows(), true;
    if (command == kSaveView) return AskForView(), true;
    if (command == kDeleteView) return DeleteView(), true;
    if (command >= kFirstCondition && command - kFirstCondition < m_conditions.size()) {
        Condition& chosen = m_conditions[command - kFirstCondition];
        if (!chosen.isPossible) return true;
        const bool holds = !chosen.holds;
        for (Condition& condition : m_conditions)
            if (!chosen.isSwitch && !condition.isSwitch) condition.holds = false;
        chosen.holds = holds;
        ApplyConditions();
        return true;
    }
    const auto views = KeptViews();
    if (command < kFirstView || command - kFirstView >= views.size()) return false;
    const View& view = views[command - kFirstView];
    if (const auto state = korvex::ReadRows(view.line, m_header.Columns().size())) {
        See(*state);
        m_viewName = view.name;
        TellWatcher();
    }
    return true;
}
