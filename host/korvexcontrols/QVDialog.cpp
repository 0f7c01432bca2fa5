#include "host/korvexcontrols/QVDialog.h"

#include "host/korvexcontrols/RecoveryFiles.h"

#include <charconv>

namespace korvex {
namespace {

constexpr char kSection[] = "Dialogs";

} // namespace

CQVDialog::CQVDialog(std::weak_ptr<void> owner, int resource, std::string name)
    : Dialog(framework::ModuleHolding(&kSection), resource), m_owner(std::move(owner)),
      m_name(std::move(name)) {}

void CQVDialog::Open(HWND list) {
    if (HasWindow()) Destroy();
    if (Create(GetAncestor(list, GA_ROOT))) ShowWindow(Handle(), SW_SHOW);
}

void CQVDialog::OnInit() {
    m_keys.emplace();
    Place();
}

void CQVDialog::OnDestroyed() {
    m_keys.reset();
}

std::optional<LRESULT> CQVDialog::OnMessage(UINT message, WPARAM, LPARAM) {
    if (message == WM_DESTROY) RememberPlace();
    return std::nullopt;
}

// A place on a monitor that is no longer there is not taken.
void CQVDialog::Place() const {
    int left = 0, top = 0;
    const std::string kept = ReadRecovered(RecoveryFile::dialogPositions, kSection, m_name);
    const char* const end = kept.data() + kept.size();
    const auto read = std::from_chars(kept.data(), end, left);
    if (read.ec != std::errc() || read.ptr == end || *read.ptr != ',') return;
    if (std::from_chars(read.ptr + 1, end, top).ec != std::errc()) return;
    RECT rect{};
    GetWindowRect(Handle(), &rect);
    OffsetRect(&rect, left - rect.left, top - rect.top);
    if (MonitorFromRect(&rect, MONITOR_DEFAULTTONULL))
        SetWindowPos(Handle(), nullptr, left, top, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void CQVDialog::RememberPlace() const {
    RECT rect{};
    if (!GetWindowRect(Handle(), &rect)) return;
    const std::string place = std::to_string(rect.left) + "," + std::to_string(rect.top);
    if (place != ReadRecovered(RecoveryFile::dialogPositions, kSection, m_name))
        WriteRecovered(RecoveryFile::dialogPositions, kSection, m_name, place);
}

} // namespace korvex
