// What the list says besides its rows: sums, why it is empty, and how wide its columns have to be.
#include "framework/Guard.h"
#include "host/korvexcontrols/ListWindow.h"
#include "host/korvexcontrols/WindowPlace.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <utility>

using framework::Guard;
using korvex::kNone;

struct KorvexExtrasAccess {
    static KorvexListExtras* Of(const CFilterListCtrl& list) { return list.m_impl; }
};

extern "C" __declspec(dllexport) KorvexListExtras* KorvexExtrasOf(CFilterListCtrl* list) noexcept;

KorvexListExtras* KorvexExtrasOf(CFilterListCtrl* list) noexcept {
    return list ? KorvexExtrasAccess::Of(*list) : nullptr;
}

namespace {

constexpr UINT kWorkPause = 10; // milliseconds
constexpr std::uint32_t kWorkPortion = 2048;
constexpr std::chrono::milliseconds kWorkTime{8};

} // namespace

void CFilterListCtrl::Impl::SetEmptyText(const char* text) noexcept {
    Guard([&] {
        m_emptyText = text ? text : "";
        if (!m_model.ShownCount() && Handle()) InvalidateRect(Handle(), nullptr, TRUE);
    });
}

void CFilterListCtrl::Impl::SumBy(std::int32_t side, std::int32_t amount, std::int32_t quantity) noexcept {
    Guard([&] {
        m_sums.Begin({side, amount, quantity});
        WorkLater();
    });
}

std::int32_t CFilterListCtrl::Impl::Sums(std::int32_t selected, KorvexSide* sides,
                                         std::int32_t capacity) noexcept {
    return Guard(-1, [&] {
        if (!m_sums.IsComplete()) return -1;
        std::int32_t count = 0;
        for (const korvex::ListSums::Side& side : selected ? m_sums.Selected() : m_sums.Shown()) {
            if (!side.rows || count == capacity) continue;
            sides[count++] = {{side.name.data(), static_cast<std::uint32_t>(side.name.size())},
                              side.rows,
                              0,
                              static_cast<std::int64_t>(side.paise),
                              static_cast<std::int64_t>(side.quantity)};
        }
        return count;
    });
}

void CFilterListCtrl::Impl::StretchLastText(std::int32_t on) noexcept {
    Guard([&] { m_header.StretchLastText(on != 0); });
}

void CFilterListCtrl::Impl::KeepWindow() noexcept {
    Guard([&] {
        const HWND window = GetAncestor(Handle(), GA_ROOT);
        if (!window) return;
        m_laidDownSize = korvex::Rescaled(korvex::NormalSize(window), framework::Window(window).Dpi(),
                                          USER_DEFAULT_SCREEN_DPI);
        korvex::RestorePlace(window, m_name);
    });
}

void CFilterListCtrl::Impl::RememberWindow() const {
    if (m_laidDownSize && Handle()) korvex::RememberPlace(GetAncestor(Handle(), GA_ROOT), m_name);
}

void CFilterListCtrl::Impl::ResetWindow() const {
    const HWND window = GetAncestor(Handle(), GA_ROOT);
    if (!m_laidDownSize || IsIconic(window) || IsZoomed(window)) return;
    framework::ResizeOnScreen(
        window, korvex::Rescaled(*m_laidDownSize, USER_DEFAULT_SCREEN_DPI, framework::Window(window).Dpi()));
}

void CFilterListCtrl::Impl::WorkLater() {
    if (m_works || !Handle() || m_sums.IsComplete()) return;
    m_works = SetTimer(Handle(), kWorkTimer, kWorkPause, nullptr) != 0;
}

void CFilterListCtrl::Impl::Work() {
    const auto start = std::chrono::steady_clock::now();
    bool more = true;
    while (more && std::chrono::steady_clock::now() - start < kWorkTime)
        more = m_sums.Work(kWorkPortion);
    if (more) return;
    KillTimer(Handle(), kWorkTimer);
    m_works = false;
    TellWatcher();
}

// One selected row and none are alike: there is nothing to sum up.
void CFilterListCtrl::Impl::NoteSelection() {
    if (m_sync.Busy()) return;
    m_sums.SelectionChanged();
    WorkLater();
    if (!m_works) TellWatcher();
}

void CFilterListCtrl::Impl::TellWatcher() {
    if (m_watcher && m_face) m_watcher->ListSaysMore(m_face);
}

std::string CFilterListCtrl::Impl::EmptyText() const {
    if (m_model.ShownCount()) return {};
    return m_model.RowCount() ? "No row passes the filters" : m_emptyText;
}

void CFilterListCtrl::Impl::PaintEmptyText() {
    const std::string text = EmptyText();
    m_shownEmptyText = text;
    if (text.empty()) return;
    const framework::Window list(Handle());
    RECT area = list.ClientRect(), header{};
    if (GetWindowRect(m_header.Handle(), &header)) area.top += header.bottom - header.top;
    HDC device = GetDC(Handle());
    const HGDIOBJ font = SelectObject(device, reinterpret_cast<HFONT>(list.Send(WM_GETFONT)));
    SetTextColor(device, GetSysColor(COLOR_GRAYTEXT));
    SetBkMode(device, TRANSPARENT);
    DrawTextA(device, text.c_str(), static_cast<int>(text.size()), &area,
              DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX | DT_END_ELLIPSIS);
    SelectObject(device, font);
    ReleaseDC(Handle(), device);
}

void CFilterListCtrl::Impl::OpenColumns() {
    if (!m_columnsDialog)
        m_columnsDialog.emplace(
            m_self, korvex::ColumnsDialog::Calls{[this](const korvex::ColumnsState& state) {
                                                     SetFocus(Handle());
                                                     m_header.Set(state);
                                                 },
                                                 [this](std::int32_t column) { return FittingWidth(column); }});
    std::vector<korvex::ColumnsDialog::Column> columns;
    for (const korvex::ListHeader::Column& column : m_header.Columns())
        columns.push_back({column.heading, column.width});
    m_columnsDialog->Show(Handle(), std::move(columns), m_header.State());
}

// Of very many rows the first ones are looked at, and of these the longest are measured.
int CFilterListCtrl::Impl::FittingWidth(std::int32_t column) {
    constexpr std::uint32_t mostRows = 50'000;
    constexpr std::size_t mostMeasured = 32;
    std::vector<std::uint32_t> records;
    for (std::uint32_t row = 0; row < std::min(m_model.ShownCount(), mostRows); ++row)
        records.push_back(m_model.ShownAt(row));
    std::vector<std::string_view> cells(records.size());
    Cells(records, column, cells.data());
    const auto measured = cells.begin() + static_cast<std::ptrdiff_t>(std::min(cells.size(), mostMeasured));
    std::ranges::partial_sort(cells, measured, std::ranges::greater(), &std::string_view::size);
    int widest = 0;
    for (auto cell = cells.begin(); cell != measured; ++cell)
        widest = std::max(widest, m_header.WidthOf(std::string(*cell)));
    return m_header.WidthFor(column, widest);
}
