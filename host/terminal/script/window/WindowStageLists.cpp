// The commands on report lists, tabs and status bars.
#include "host/terminal/script/window/StageTexts.h"
#include "host/terminal/script/window/WindowFinder.h"
#include "host/terminal/script/window/WindowStage.h"

#include <algorithm>

namespace vesk {
namespace {

constexpr std::size_t kMostText = 4096;

std::string CellText(HWND list, int row, int column) {
    std::string text(kMostText, '\0');
    LVITEMA item{};
    item.iSubItem = column;
    item.pszText = text.data();
    item.cchTextMax = static_cast<int>(text.size());
    const LRESULT length =
        SendMessageA(list, LVM_GETITEMTEXTA, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
    return std::string(item.pszText, static_cast<std::size_t>(std::max<LRESULT>(length, 0)));
}

// The texts of a control that hands them out by number, in a record that names buffer and size.
template <class Item>
std::vector<std::string> ItemTexts(HWND control, UINT countMessage, UINT getMessage, Item item,
                                   char* Item::*text, int Item::*size) {
    std::vector<std::string> texts;
    const auto count = static_cast<WPARAM>(std::max<LRESULT>(SendMessageA(control, countMessage, 0, 0), 0));
    for (WPARAM i = 0; i < count; ++i) {
        char buffer[kMostText] = "";
        item.*text = buffer;
        item.*size = sizeof buffer;
        SendMessageA(control, getMessage, i, reinterpret_cast<LPARAM>(&item));
        texts.emplace_back(item.*text);
    }
    return texts;
}

std::vector<std::string> TabTexts(HWND tabs) {
    TCITEMA item{};
    item.mask = TCIF_TEXT;
    return ItemTexts(tabs, TCM_GETITEMCOUNT, TCM_GETITEMA, item, &TCITEMA::pszText, &TCITEMA::cchTextMax);
}

std::vector<std::string> HeadingTexts(HWND list) {
    HDITEMA item{};
    item.mask = HDI_TEXT;
    return ItemTexts(ListView_GetHeader(list), HDM_GETITEMCOUNT, HDM_GETITEMA, item, &HDITEMA::pszText,
                     &HDITEMA::cchTextMax);
}

StepResult SelectRange(HWND list, int first, int last) {
    if (first < 0 || last < first || last >= ListView_GetItemCount(list))
        return StepResult::Again("the list has no row " + std::to_string(last));
    ListView_SetItemState(list, -1, 0, LVIS_SELECTED);
    for (int row = first; row <= last; ++row)
        ListView_SetItemState(list, row, LVIS_SELECTED, LVIS_SELECTED);
    ListView_SetItemState(list, last, LVIS_FOCUSED, LVIS_FOCUSED);
    ListView_EnsureVisible(list, last, FALSE);
    return StepResult::Done();
}

} // namespace

StepResult WindowStage::SelectRow(const ScriptCommand& command, std::size_t) {
    const HWND list = Control(command);
    if (!list) return NoControl(command);
    return SelectRange(list, command.Number(1), command.Number(1));
}

StepResult WindowStage::SelectRows(const ScriptCommand& command, std::size_t) {
    const HWND list = Control(command);
    if (!list) return NoControl(command);
    return SelectRange(list, command.Number(1), command.Number(2));
}

StepResult WindowStage::ClickHeader(const ScriptCommand& command, std::size_t) {
    const HWND list = Control(command);
    if (!list) return NoControl(command);
    const HWND header = ListView_GetHeader(list);
    RECT cell{};
    if (!Header_GetItemRect(header, command.Number(1), &cell))
        return StepResult::Again("the list has no column " + command.words[1]);
    const LPARAM point = MAKELPARAM((cell.left + cell.right) / 2, (cell.top + cell.bottom) / 2);
    PostMessageA(header, WM_LBUTTONDOWN, MK_LBUTTON, point);
    PostMessageA(header, WM_LBUTTONUP, 0, point);
    return StepResult::Done();
}

StepResult WindowStage::SelectTab(const ScriptCommand& command, std::size_t) {
    const HWND tabs = Control(command);
    if (!tabs) return NoControl(command);
    const std::vector<std::string> texts = TabTexts(tabs);
    const auto found = std::ranges::find(texts, command.words[1]);
    if (found == texts.end()) return StepResult::Again("there is no tab \"" + command.words[1] + '"');
    // Unlike a selection, this tells the parent.
    PostMessageA(tabs, TCM_SETCURFOCUS, static_cast<WPARAM>(found - texts.begin()), 0);
    return StepResult::Done();
}

StepResult WindowStage::ExpectRows(const ScriptCommand& command, std::size_t) {
    const HWND list = Control(command);
    if (!list) return NoControl(command);
    return Compare("row count of " + command.words[0], std::to_string(ListView_GetItemCount(list)),
                   command.words[1]);
}

StepResult WindowStage::ExpectCell(const ScriptCommand& command, std::size_t) {
    const HWND list = Control(command);
    if (!list) return NoControl(command);
    const std::string found = CellText(list, command.Number(1), command.Number(2));
    if (IsCaption(found, command.words[3])) return StepResult::Done();
    return Compare("cell " + command.words[1] + ", " + command.words[2], found, command.words[3]);
}

StepResult WindowStage::ExpectHeadings(const ScriptCommand& command, std::size_t) {
    const HWND list = Control(command);
    if (!list) return NoControl(command);
    return Compare("headings of " + command.words[0], Joined(HeadingTexts(list)), Joined(command, 1));
}

StepResult WindowStage::ExpectFocusRow(const ScriptCommand& command, std::size_t) {
    const HWND list = Control(command);
    if (!list) return NoControl(command);
    return Compare("focused row of " + command.words[0],
                   std::to_string(ListView_GetNextItem(list, -1, LVNI_FOCUSED)), command.words[1]);
}

StepResult WindowStage::ExpectSelectedRows(const ScriptCommand& command, std::size_t) {
    const HWND list = Control(command);
    if (!list) return NoControl(command);
    return Compare("selected rows of " + command.words[0], std::to_string(ListView_GetSelectedCount(list)),
                   command.words[1]);
}

StepResult WindowStage::ExpectTabs(const ScriptCommand& command, std::size_t) {
    const HWND tabs = Control(command);
    if (!tabs) return NoControl(command);
    return Compare("tabs of " + command.words[0], Joined(TabTexts(tabs)), Joined(command, 1));
}

StepResult WindowStage::ExpectSelected(const ScriptCommand& command, std::size_t) {
    const HWND tabs = Control(command);
    if (!tabs) return NoControl(command);
    const std::vector<std::string> texts = TabTexts(tabs);
    const auto selected = static_cast<std::size_t>(SendMessageA(tabs, TCM_GETCURSEL, 0, 0));
    return Compare("selected tab of " + command.words[0], selected < texts.size() ? texts[selected] : "",
                   command.words[1]);
}

StepResult WindowStage::ExpectStatus(const ScriptCommand& command, std::size_t) {
    const HWND bar = Control(command);
    if (!bar) return NoControl(command);
    char text[kMostText] = "";
    const auto part = static_cast<WPARAM>(command.Number(1));
    if (LOWORD(SendMessageA(bar, SB_GETTEXTLENGTHA, part, 0)) < sizeof text)
        SendMessageA(bar, SB_GETTEXTA, part, reinterpret_cast<LPARAM>(text));
    return Compare("status " + command.words[1], text, command.words[2]);
}

} // namespace vesk
