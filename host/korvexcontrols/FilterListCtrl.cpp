#include "sdk/korvex/FilterListCtrl.h"

#include "framework/Guard.h"
#include "host/korvexcontrols/ListWindow.h"

#include <algorithm>

using framework::Guard;

CFilterListCtrl::CFilterListCtrl() noexcept : m_impl(Impl::Make(*this)) {}

CFilterListCtrl::~CFilterListCtrl() {
    Guard([&] { m_impl->Release(); });
}

bool CFilterListCtrl::Attach(const Args& args) noexcept {
    return Guard(false, [&] { return m_impl->Attach(args); });
}

HWND CFilterListCtrl::Handle() const noexcept {
    return m_impl->Handle();
}

void CFilterListCtrl::InsertFront(std::uint32_t record, KorvexArrival arrival) noexcept {
    Guard([&] { m_impl->InsertFront(record, arrival); });
}

void CFilterListCtrl::Remove(std::uint32_t record) noexcept {
    Guard([&] { m_impl->Remove(record); });
}

void CFilterListCtrl::RemoveAll() noexcept {
    Guard([&] { m_impl->RemoveAll(); });
}

void CFilterListCtrl::Repaint(std::uint32_t record) noexcept {
    Guard([&] { m_impl->Repaint(record); });
}

bool CFilterListCtrl::Contains(std::uint32_t record) const noexcept {
    return m_impl->Model().Contains(record);
}

void CFilterListCtrl::BeginChanges() noexcept {
    Guard([&] { m_impl->BeginChanges(); });
}

void CFilterListCtrl::EndChanges() noexcept {
    Guard([&] { m_impl->EndChanges(); });
}

std::uint32_t CFilterListCtrl::RowCount() const noexcept {
    return m_impl->Model().RowCount();
}

std::uint32_t CFilterListCtrl::RecordAt(std::uint32_t row) const noexcept {
    return m_impl->Model().RecordAt(row);
}

std::uint32_t CFilterListCtrl::IndexOf(std::uint32_t record) const noexcept {
    return m_impl->Model().IndexOf(record);
}

std::uint32_t CFilterListCtrl::ShownCount() const noexcept {
    return m_impl->Model().ShownCount();
}

std::uint32_t CFilterListCtrl::SelectedCount() const noexcept {
    return Guard(0u, [&] {
        m_impl->AdoptSelection();
        return m_impl->Model().Selection().Count();
    });
}

bool CFilterListCtrl::IsSelected(std::uint32_t record) const noexcept {
    const std::uint32_t row = m_impl->Model().ShownRowOf(record);
    return row != korvex::kNone && SendMessageA(Handle(), LVM_GETITEMSTATE, row, LVIS_SELECTED) != 0;
}

std::uint32_t CFilterListCtrl::Selected(std::uint32_t* records, std::uint32_t capacity) const noexcept {
    return Guard(0u, [&] {
        m_impl->AdoptSelection();
        const auto selected = m_impl->Model().SelectedRecords(capacity);
        std::ranges::copy(selected, records);
        return static_cast<std::uint32_t>(selected.size());
    });
}

std::uint32_t CFilterListCtrl::Focused() const noexcept {
    return m_impl->Model().Focused();
}

void CFilterListCtrl::SelectOnly(std::uint32_t record) noexcept {
    Guard([&] { m_impl->SelectOnly(record); });
}

void CFilterListCtrl::Deselect(std::uint32_t record) noexcept {
    Guard([&] { m_impl->Deselect(record); });
}

void CFilterListCtrl::SetOwnerFilter(std::int32_t column, const char* text) noexcept {
    Guard([&] { m_impl->SetOwnerFilter(column, text); });
}

void CFilterListCtrl::AppendMenuEntries(HMENU menu) noexcept {
    Guard([&] { m_impl->AppendMenuEntries(menu); });
}

bool CFilterListCtrl::HandleCommand(std::uint32_t command) noexcept {
    return Guard(false, [&] { return m_impl->HandleCommand(command); });
}

bool CFilterListCtrl::HandleNotify(const NMHDR* notification, LRESULT* result) noexcept {
    return Guard(false, [&] {
        const auto held = m_impl->Hold();
        const auto answer = m_impl->HandleNotify(*notification);
        if (answer) *result = *answer;
        return answer.has_value();
    });
}
