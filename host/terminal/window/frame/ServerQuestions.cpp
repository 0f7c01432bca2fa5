#include "host/terminal/window/frame/ServerQuestions.h"

#include "framework/Guard.h"
#include "host/terminal/window/ServerLink.h"

#include <optional>

namespace vesk {
namespace {

constexpr std::size_t kLongestText = 255;
constexpr int kMostClockDays = 4000;

struct CountQuestion {
    const char* caption;
    const char* label;
    int usual;
    int most; // from 1
    // A text that is asked for besides; null when there is none.
    const char* textLabel = nullptr;
    std::string* text = nullptr; // what it begins with, and becomes
};

void Begin(HWND dialog, const CountQuestion& question) {
    SetWindowLongPtrA(dialog, DWLP_USER, reinterpret_cast<LONG_PTR>(&question));
    SetWindowTextA(dialog, question.caption);
    SetDlgItemTextA(dialog, IDC_COUNT_LABEL, question.label);
    SetDlgItemInt(dialog, IDC_COUNT, static_cast<UINT>(question.usual), FALSE);
    const std::size_t digits = std::to_string(question.most).size();
    SendDlgItemMessageA(dialog, IDC_COUNT, EM_SETLIMITTEXT, digits, 0);
    if (!question.text) return;
    SetDlgItemTextA(dialog, IDC_TEXT_LABEL, question.textLabel);
    SetDlgItemTextA(dialog, IDC_TEXT, question.text->c_str());
    SendDlgItemMessageA(dialog, IDC_TEXT, EM_SETLIMITTEXT, kLongestText, 0);
}

std::string TextOf(HWND dialog) {
    char text[kLongestText + 1] = "";
    return {text, GetDlgItemTextA(dialog, IDC_TEXT, text, sizeof text)};
}

void Accept(HWND dialog) {
    const auto& question = *reinterpret_cast<const CountQuestion*>(GetWindowLongPtrA(dialog, DWLP_USER));
    const auto count = static_cast<int>(GetDlgItemInt(dialog, IDC_COUNT, nullptr, FALSE));
    if (count >= 1 && count <= question.most) {
        if (question.text) *question.text = TextOf(dialog);
        EndDialog(dialog, count);
        return;
    }
    MessageBeep(MB_ICONWARNING);
    SetDlgItemInt(dialog, IDC_COUNT, static_cast<UINT>(count < 1 ? 1 : question.most), FALSE);
    SendDlgItemMessageA(dialog, IDC_COUNT, EM_SETSEL, 0, -1);
    SetFocus(GetDlgItem(dialog, IDC_COUNT));
}

INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
    return framework::Guard(INT_PTR{FALSE}, [&]() -> INT_PTR {
        if (message == WM_INITDIALOG) Begin(dialog, *reinterpret_cast<const CountQuestion*>(lParam));
        if (message == WM_COMMAND && LOWORD(wParam) == IDOK) Accept(dialog);
        if (message == WM_COMMAND && LOWORD(wParam) == IDCANCEL) EndDialog(dialog, 0);
        return message == WM_INITDIALOG || message == WM_COMMAND;
    });
}

std::optional<int> AskCount(HWND owner, const CountQuestion& question) {
    const int dialog = question.text ? IDD_COUNT_OF : IDD_COUNT;
    const INT_PTR count = DialogBoxParamA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(dialog), owner, Procedure,
                                          reinterpret_cast<LPARAM>(&question));
    if (count < 1) return std::nullopt;
    return static_cast<int>(count);
}

} // namespace

std::string AskForRegistrations(HWND owner, const ServerLink&) {
    const auto count = AskCount(owner, {"Fill Registrations", "Made-up &registrations:", 1000, 1'000'000});
    return count ? "fill " + std::to_string(*count) : std::string();
}

std::string AskForOtherOrders(HWND owner, const ServerLink&) {
    const auto count = AskCount(owner, {"Orders from Another Session", "&Orders:", 10, 1000});
    return count ? "other " + std::to_string(*count) : std::string();
}

std::string AskForExecution(HWND owner, const ServerLink& server) {
    std::string number = server.LatestRegistration();
    const auto count = AskCount(
        owner, {"Execute Instalments", "Past &instalments:", 5, 1000, "Registration &number:", &number});
    return count ? "execute " + std::to_string(*count) + ' ' + number : std::string();
}

std::string AskForClock(HWND owner, const ServerLink&) {
    std::string date;
    const auto days = AskCount(
        owner, {"Advance Clock", "or so many &days:", 30, kMostClockDays, "&To (as 2027-03-05):", &date});
    if (!days) return {};
    return "clock " + (date.empty() ? std::to_string(*days) : date);
}

} // namespace vesk
