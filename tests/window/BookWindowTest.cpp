#include "tests/window/BookWindowTest.h"

#include <algorithm>

void BookWindowTest::SetUp() {
    PluginTest::SetUp();
    SetWindowSubclass(Frame(), FrameProcedure, 77, reinterpret_cast<DWORD_PTR>(this));
    ShowWindow(Frame(), SW_SHOW);
    SetForegroundWindow(Frame());
}

void BookWindowTest::TearDown() {
    onFrame = nullptr;
    PluginTest::TearDown();
    EXPECT_TRUE(probe::Children(Frame()).empty());
    EXPECT_TRUE(IsWindowEnabled(Frame()));
    RemoveWindowSubclass(Frame(), FrameProcedure, 77);
}

void BookWindowTest::Key(WPARAM key, BYTE control) {
    BYTE keys[256] = {}, usual[256] = {};
    GetKeyboardState(usual);
    keys[VK_CONTROL] = control;
    SetKeyboardState(keys);
    probe::PostKey(key);
    probe::Pump();
    SetKeyboardState(usual);
}

LRESULT CALLBACK BookWindowTest::FrameProcedure(HWND frame, UINT message, WPARAM wParam, LPARAM lParam,
                                                UINT_PTR, DWORD_PTR context) {
    auto* self = reinterpret_cast<BookWindowTest*>(context);
    const LRESULT result = DefSubclassProc(frame, message, wParam, lParam);
    if (message == book::kRegisterPane) self->announced.push_back(reinterpret_cast<HWND>(wParam));
    if (self->onFrame && !self->announced.empty()) self->onFrame(message, self->announced.back());
    return result;
}

void BookWindowTest::Open() {
    Pick(book::kName);
    pane = GetDlgItem(Frame(), IDD_ORDER_BOOK);
    dialog = pane ? GetWindow(pane, GW_CHILD) : nullptr;
    registered = GetDlgItem(dialog, IDC_REGISTERED_LIST);
    cancelled = GetDlgItem(dialog, IDC_CANCELLED_LIST);
}

void BookWindowTest::Queried(const std::string& number, const char* status, const char* client) {
    host.AnswerBook("echoedRequest=om_get_sip_orders queriedRow=1 registrationNumber=" + number + " sipStatus="
                    + status + " account=" + client + " investType=value amountOrQuantity=123450");
}

void BookWindowTest::Streamed(const std::string& number, const char* status) {
    host.Stream(kRxAccountStream, {{tag::registrationNumber, {number}}, {tag::sipStatus, {status}}});
}

void BookWindowTest::QueriedUpTo(int count) {
    for (int i = 1; i <= count; ++i)
        Queried(Number(i));
}

std::string BookWindowTest::Counts() const {
    std::string counts;
    for (const WPARAM part : {0, 1}) {
        char text[32] = "";
        SendMessageA(GetDlgItem(dialog, IDC_BOOK_STATUS), SB_GETTEXTA, part, reinterpret_cast<LPARAM>(text));
        counts += (part ? " " : "") + std::string(text);
    }
    return counts;
}

void BookWindowTest::Select(HWND list, const std::vector<std::string>& numbers) {
    const auto set = [&](int row, UINT state) {
        ListView_SetItemState(list, row, state, LVIS_SELECTED | (state & LVIS_FOCUSED));
    };
    set(-1, 0);
    for (int row = 0; row < Rows(list); ++row)
        if (std::ranges::find(numbers, NumberAt(list, row)) != numbers.end())
            set(row, LVIS_SELECTED | LVIS_FOCUSED);
}
