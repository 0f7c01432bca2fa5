// What the system's own list takes for as many rows as a dealer's scripts have, with nothing else around it: no
// server, no rules, no colours, no columns' totals. It stands beside the times of the terminal.
//
// planfold_bare FILE   FILE is the basket of the scripts. Prints a line a step, in milliseconds.
#include "framework/CustomWindow.h"

#include <commctrl.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <functional>
#include <iterator>
#include <numeric>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr std::size_t kColumns = 20;
constexpr std::size_t kBookRows = 104'856, kCopiedRows = 10'000;
constexpr int kSortedBy = 12;

using Row = std::array<std::string, kColumns>;

class BareWindow final : public framework::CustomWindow {
public:
    explicit BareWindow(HINSTANCE module) {
        Args args;
        args.module = module;
        args.className = "PlanfoldBare";
        args.rect = {0, 0, 1200, 700};
        args.style |= WS_VISIBLE;
        Create(args);
        constexpr DWORD style = WS_CHILD | WS_VISIBLE | LVS_REPORT | LVS_OWNERDATA | LVS_SHOWSELALWAYS;
        m_list = framework::Window(
            CreateWindowExA(0, WC_LISTVIEWA, "", style, 0, 0, 1180, 660, Handle(), nullptr, module, nullptr));
        for (int i = 0; i < static_cast<int>(kColumns); ++i) {
            char heading[] = "Column A";
            heading[std::size(heading) - 2] = static_cast<char>('A' + i);
            LVCOLUMNA column{};
            column.mask = LVCF_TEXT | LVCF_WIDTH;
            column.cx = 80;
            column.pszText = heading;
            m_list.Send(LVM_INSERTCOLUMNA, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(&column));
        }
    }

    // A line a row, a comma between two cells.
    void Show(std::string_view text) {
        m_rows.clear();
        while (!text.empty()) {
            const std::size_t end = std::min(text.find('\n'), text.size() - 1);
            std::string_view line = text.substr(0, end);
            Row& row = m_rows.emplace_back();
            for (std::string& cell : row) {
                const std::size_t comma = std::min(line.find(','), line.size());
                cell = line.substr(0, comma);
                line.remove_prefix(std::min(comma + 1, line.size()));
            }
            text.remove_prefix(end + 1);
        }
        m_order.resize(m_rows.size());
        std::iota(m_order.begin(), m_order.end(), 0u);
        m_list.Send(LVM_SETITEMCOUNT, m_rows.size());
        Paint();
    }
    void SortTwice() {
        const auto cell = [&](std::uint32_t row) -> const std::string& { return m_rows[row][kSortedBy]; };
        std::ranges::stable_sort(m_order, std::ranges::less(), cell);
        Paint();
        std::ranges::stable_sort(m_order, std::ranges::greater(), cell);
        Paint();
    }
    void SelectAll() {
        LVITEMA item{};
        item.state = item.stateMask = LVIS_SELECTED;
        m_list.Send(LVM_SETITEMSTATE, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(&item));
        Paint();
    }
    void Copy() {
        std::string text;
        LRESULT row = -1;
        for (std::size_t i = 0; i < kCopiedRows; ++i) {
            row = m_list.Send(LVM_GETNEXTITEM, static_cast<WPARAM>(row), LVNI_SELECTED);
            if (row < 0) break;
            for (const std::string& cell : m_rows[m_order[static_cast<std::size_t>(row)]])
                text.append(cell).append(1, '\t');
            text.append("\r\n");
        }
        HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, text.size() + 1);
        std::ranges::copy(text, static_cast<char*>(GlobalLock(block)));
        GlobalUnlock(block);
        if (!OpenClipboard(Handle())) return;
        EmptyClipboard();
        SetClipboardData(CF_TEXT, block);
        CloseClipboard();
    }

private:
    std::optional<LRESULT> OnMessage(UINT message, WPARAM, LPARAM lParam) override {
        if (message != WM_NOTIFY || reinterpret_cast<NMHDR*>(lParam)->code != LVN_GETDISPINFOA)
            return std::nullopt;
        LVITEMA& item = reinterpret_cast<NMLVDISPINFOA*>(lParam)->item;
        if (item.mask & LVIF_TEXT)
            item.pszText =
                m_rows[m_order[static_cast<std::size_t>(item.iItem)]][static_cast<std::size_t>(item.iSubItem)]
                    .data();
        return 0;
    }
    void Paint() {
        InvalidateRect(m_list.Handle(), nullptr, TRUE);
        UpdateWindow(m_list.Handle());
        MSG message;
        while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE))
            DispatchMessageA(&message);
    }

    framework::Window m_list;
    std::vector<Row> m_rows;
    std::vector<std::uint32_t> m_order;
};

// As long as the book's, of which a third differs from row to row.
std::string BookText() {
    std::string text;
    for (std::size_t i = 0; i < kBookRows; ++i) {
        const std::string number = std::to_string(i * 7919 % kBookRows);
        text += "NSE,DEALER01,CL" + number + ",ARBORTEX-EQ,MARKET,CNC,SIP,weekly," + number
                + ",24-Dec-2026,12,SIP27011" + number + ",1" + number
                + ".00,active,14-Dec-2026,TWS,C,,,24-Dec-2027\n";
    }
    return text;
}

} // namespace

int main(int count, char** arguments) {
    if (count != 2) return 2;
    InitCommonControls();
    std::ifstream file(arguments[1], std::ios::binary);
    const std::string basket{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    const std::string book = BookText();
    BareWindow window(GetModuleHandleA(nullptr));
    const struct {
        const char* name;
        std::function<void()> run;
    } steps[] = {
        {"book shown", [&] { window.Show(book); }},
        {"sorted twice", [&] { window.SortTwice(); }},
        {"all of them selected", [&] { window.SelectAll(); }},
        {"10,000 rows copied", [&] { window.Copy(); }},
        {"basket loaded", [&] { window.Show(basket); }},
    };
    for (const auto& step : steps) {
        const auto start = std::chrono::steady_clock::now();
        step.run();
        const std::chrono::duration<double, std::milli> taken = std::chrono::steady_clock::now() - start;
        std::printf("%s: %.0f ms\n", step.name, taken.count());
    }
    return basket.empty();
}
