// The verbs of report lists, tabs and status bars.
#include "host/terminal/script/window/Stage.h"

#include "host/terminal/script/window/Screen.h"

#include <algorithm>

namespace vesk::verbs {
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

StepResult SelectRow(ScriptStep& step) {
    return SelectRange(step.control, step.Number(1), step.Number(1));
}

StepResult SelectRows(ScriptStep& step) {
    return SelectRange(step.control, step.Number(1), step.Number(2));
}

StepResult ClickHeader(ScriptStep& step) {
    const HWND header = ListView_GetHeader(step.control);
    RECT cell{};
    if (!Header_GetItemRect(header, step.Number(1), &cell))
        return StepResult::Again("the list has no column " + step.Word(1));
    const LPARAM point = MAKELPARAM((cell.left + cell.right) / 2, (cell.top + cell.bottom) / 2);
    PostMessageA(header, WM_LBUTTONDOWN, MK_LBUTTON, point);
    PostMessageA(header, WM_LBUTTONUP, 0, point);
    return StepResult::Done();
}

StepResult ExpectRows(ScriptStep& step) {
    return Compare("row count of " + step.Word(0), std::to_string(ListView_GetItemCount(step.control)),
                   step.Word(1));
}

StepResult ExpectCell(ScriptStep& step) {
    const std::string found = CellText(step.control, step.Number(1), step.Number(2));
    if (IsCaption(found, step.Word(3))) return StepResult::Done();
    return Compare("cell " + step.Word(1) + ", " + step.Word(2), found, step.Word(3));
}

StepResult ExpectHeadings(ScriptStep& step) {
    return Compare("headings of " + step.Word(0), Joined(HeadingTexts(step.control)), step.WordsFrom(1));
}

StepResult ExpectFocusRow(ScriptStep& step) {
    return Compare("focused row of " + step.Word(0),
                   std::to_string(ListView_GetNextItem(step.control, -1, LVNI_FOCUSED)), step.Word(1));
}

StepResult ExpectSelectedRows(ScriptStep& step) {
    return Compare("selected rows of " + step.Word(0), std::to_string(ListView_GetSelectedCount(step.control)),
                   step.Word(1));
}

StepResult SelectTab(ScriptStep& step) {
    const std::vector<std::string> texts = TabTexts(step.control);
    const auto found = std::ranges::find(texts, step.Word(1));
    if (found == texts.end()) return StepResult::Again("there is no tab \"" + step.Word(1) + '"');
    // Unlike a selection, this tells the parent.
    PostMessageA(step.control, TCM_SETCURFOCUS, static_cast<WPARAM>(found - texts.begin()), 0);
    return StepResult::Done();
}

StepResult ExpectTabs(ScriptStep& step) {
    return Compare("tabs of " + step.Word(0), Joined(TabTexts(step.control)), step.WordsFrom(1));
}

StepResult ExpectSelectedTab(ScriptStep& step) {
    const std::vector<std::string> texts = TabTexts(step.control);
    const auto selected = static_cast<std::size_t>(SendMessageA(step.control, TCM_GETCURSEL, 0, 0));
    return Compare("selected tab of " + step.Word(0), selected < texts.size() ? texts[selected] : "",
                   step.Word(1));
}

StepResult ExpectStatus(ScriptStep& step) {
    char text[kMostText] = "";
    const auto part = static_cast<WPARAM>(step.Number(1));
    if (LOWORD(SendMessageA(step.control, SB_GETTEXTLENGTHA, part, 0)) < sizeof text)
        SendMessageA(step.control, SB_GETTEXTA, part, reinterpret_cast<LPARAM>(text));
    if (IsCaption(text, step.Word(2))) return StepResult::Done();
    return Compare("status " + step.Word(1), text, step.Word(2));
}

} // namespace vesk::verbs
