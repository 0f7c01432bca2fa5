#include "host/terminal/window/frame/WaitingBoxes.h"

#include <algorithm>

namespace vesk {
namespace {

constexpr UINT_PTR kTickTimer = 1;
constexpr UINT kTickMs = 100;
constexpr int kRowHeight = 15; // pixels at 96 DPI

int SecondOfDay() {
    SYSTEMTIME now{};
    GetLocalTime(&now);
    return (now.wHour * 60 + now.wMinute) * 60 + now.wSecond;
}

} // namespace

void WaitingWindow::OnInit() {
    for (const WaitingHeading& heading : kWaitingHeadings)
        List().AddColumn({heading.text, heading.width});
    OnLaidOut();
    Refresh();
    SetTimer(Handle(), kTickTimer, kTickMs, nullptr);
}

void WaitingWindow::OnLaidOut() {
    List().SetLook(kRowHeight);
    for (std::size_t i = 0; i < std::size(kWaitingHeadings); ++i)
        List().SetColumnWidth(static_cast<int>(i), kWaitingHeadings[i].width);
}

std::string WaitingWindow::Cell(int row, int column) const {
    const auto place = static_cast<std::size_t>(row);
    const auto request = place < m_numbers.size() ? m_server.FindRequest(m_numbers[place]) : std::nullopt;
    if (!request) return {};
    return WaitingCell(*request, static_cast<WaitingColumn>(column), ServerLink::NowMs() - request->sinceMs,
                       SecondOfDay());
}

std::vector<std::uint64_t> WaitingWindow::Selected() const {
    std::vector<std::uint64_t> numbers;
    for (int row = -1; (row = ListView_GetNextItem(List().Handle(), row, LVNI_SELECTED)) >= 0;)
        if (static_cast<std::size_t>(row) < m_numbers.size())
            numbers.push_back(m_numbers[static_cast<std::size_t>(row)]);
    return numbers;
}

bool WaitingWindow::MayWithdraw(std::uint64_t number) const {
    const auto request = m_server.FindRequest(number);
    return request && !request->hasLeft;
}

void WaitingWindow::Refresh() {
    std::vector<std::uint64_t> numbers = m_server.Requests();
    if (numbers != m_numbers) {
        const std::vector<std::uint64_t> selected = Selected();
        m_numbers = std::move(numbers);
        const HWND list = List().Handle();
        ListView_SetItemState(list, -1, 0, LVIS_SELECTED);
        List().SetCount(static_cast<int>(m_numbers.size()));
        for (const std::uint64_t number : selected) {
            const auto found = std::ranges::lower_bound(m_numbers, number);
            if (found == m_numbers.end() || *found != number) continue;
            ListView_SetItemState(list, static_cast<int>(found - m_numbers.begin()), LVIS_SELECTED,
                                  LVIS_SELECTED);
        }
    }
    InvalidateRect(List().Handle(), nullptr, FALSE);
    if (const std::string note = m_server.Status().text + ". " + WaitingText(m_numbers.size()) + '.';
        Item(IDC_WAITING_NOTE).Text() != note)
        Item(IDC_WAITING_NOTE).SetText(note);
    EnableButtons();
}

// They are sent in their order, so the last one tells whether any has not left.
void WaitingWindow::EnableButtons() {
    const std::vector<std::uint64_t> selected = Selected();
    Item(IDC_WITHDRAW).Enable(!selected.empty() && MayWithdraw(selected.back()));
    Item(IDC_WITHDRAW_ALL).Enable(!m_numbers.empty() && MayWithdraw(m_numbers.back()));
}

void WaitingWindow::Withdraw(const std::vector<std::uint64_t>& numbers) {
    const auto done = std::ranges::count_if(numbers, [&](auto number) { return m_server.Withdraw(number); });
    m_withdrawn(static_cast<std::size_t>(done));
    Refresh();
}

bool WaitingWindow::OnCommand(const framework::Command& command) {
    if (command.id == IDC_WITHDRAW)
        Withdraw(Selected());
    else if (command.id == IDC_WITHDRAW_ALL)
        Withdraw(m_numbers);
    else
        return false;
    return true;
}

std::optional<LRESULT> WaitingWindow::OnNotify(const NMHDR& header) {
    if (header.code == LVN_ITEMCHANGED || header.code == LVN_ODSTATECHANGED) EnableButtons();
    if (header.code != LVN_GETDISPINFOA) return std::nullopt;
    const LVITEMA& item = reinterpret_cast<const NMLVDISPINFOA&>(header).item;
    if (item.mask & LVIF_TEXT)
        lstrcpynA(item.pszText, Cell(item.iItem, item.iSubItem).c_str(), item.cchTextMax);
    return 0;
}

std::optional<LRESULT> WaitingWindow::OnMessage(UINT message, WPARAM, LPARAM) {
    if (message != WM_TIMER) return std::nullopt;
    Refresh();
    return 0;
}

LeavingBox::LeavingBox(ServerLink& server)
    : Dialog(GetModuleHandleA(nullptr), IDD_LEAVING), m_server(server),
      m_limit(server.AnswersDue(), ServerLink::NowMs()) {}

void LeavingBox::OnInit() {
    SetTimer(Handle(), kTickTimer, kTickMs, nullptr);
    Tick();
}

bool LeavingBox::OnCommand(const framework::Command& command) {
    if (command.id != IDC_LEAVE_NOW) return false;
    Destroy();
    return true;
}

std::optional<LRESULT> LeavingBox::OnMessage(UINT message, WPARAM, LPARAM) {
    if (message != WM_TIMER) return std::nullopt;
    Tick();
    return 0;
}

void LeavingBox::Tick() {
    const std::size_t waiting = m_server.AnswersDue();
    if (m_limit.IsOver(waiting, ServerLink::NowMs())) return Destroy();
    Item(IDC_WAITING_NOTE)
        .SetText("Waiting for " + std::to_string(waiting) + (waiting == 1 ? " answer" : " answers") + " ("
                 + m_server.Status().text + ")...");
}

} // namespace vesk
