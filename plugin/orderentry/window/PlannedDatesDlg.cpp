#include "plugin/orderentry/window/PlannedDatesDlg.h"

#include "plugin/resources/resource.h"

#include <algorithm>

namespace planfold {

namespace {

constexpr framework::ReportList::Column kDateColumns[] = {{"No", 50}, {"Date", 90}, {"Day", 50}, {"Note", 260}};
constexpr int kDateRowHeight = 18;

} // namespace

CPlannedDatesDlg::CPlannedDatesDlg(HINSTANCE module, const Session& session)
    : Dialog(module, IDD_PLANNED_DATES), m_session(session) {}

void CPlannedDatesDlg::Open(HWND owner, const Plan& plan, int points) {
    m_plan = plan;
    if (!HasWindow()) {
        SetFontSize(points);
        Create(owner);
    }
    SetPlan(plan);
    Self().Show(true);
}

void CPlannedDatesDlg::SetPlan(const Plan& plan) {
    m_plan = plan;
    if (HasWindow())
        List().SetCount(static_cast<int>(std::clamp<std::int64_t>(plan.Rows(), 0, Plan::kMostInstalments)));
}

void CPlannedDatesDlg::OnInit() {
    for (const auto& column : kDateColumns)
        List().AddColumn(column);
    OnLaidOut();
}

void CPlannedDatesDlg::OnLaidOut() {
    SetCaptionIcon(IDI_CALENDAR);
    List().SetLook(kDateRowHeight);
    for (int i = 0; i < static_cast<int>(std::size(kDateColumns)); ++i)
        List().SetColumnWidth(i, kDateColumns[i].width);
}

framework::ReportList CPlannedDatesDlg::List() const {
    return Item<framework::ReportList>(IDC_PLANNED_LIST);
}

std::optional<LRESULT> CPlannedDatesDlg::OnNotify(const NMHDR& notification) {
    if (notification.code != LVN_GETDISPINFOA) return std::nullopt;
    const LVITEMA& item = reinterpret_cast<const NMLVDISPINFOA&>(notification).item;
    if (item.mask & LVIF_TEXT)
        lstrcpynA(item.pszText, Cell(item.iItem, item.iSubItem).c_str(), item.cchTextMax);
    return 0;
}

std::string CPlannedDatesDlg::Cell(int row, int column) const {
    const auto date = PlannedDate(m_plan, row);
    if (!date) return {};
    switch (column) {
    case 0:
        return std::to_string(m_plan.done + row + 1);
    case 1:
        return FormatPlannedDate(*date);
    case 2:
        return std::string(WeekdayName(*date));
    default:
        return PlannedNote(m_plan, row, m_session.ClosedDays());
    }
}

} // namespace planfold
