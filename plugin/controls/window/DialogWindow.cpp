#include "plugin/controls/window/DialogWindow.h"

namespace planfold {

namespace {

SYSTEMTIME ToSystemTime(const LocalDateTime& local) {
    SYSTEMTIME time{};
    time.wYear = static_cast<WORD>(local.year);
    time.wMonth = static_cast<WORD>(local.month);
    time.wDay = static_cast<WORD>(local.day);
    time.wHour = static_cast<WORD>(local.hour);
    time.wMinute = static_cast<WORD>(local.minute);
    time.wSecond = static_cast<WORD>(local.second);
    return time;
}

} // namespace

LocalDateTime FromSystemTime(const SYSTEMTIME& time) {
    return {time.wYear, time.wMonth, time.wDay, time.wHour, time.wMinute, time.wSecond};
}

LocalDateTime LocalNow() {
    SYSTEMTIME now{};
    GetLocalTime(&now);
    return FromSystemTime(now);
}

bool DialogWindow::SelectText(int combo, std::string_view text) {
    const auto control = Item<framework::ComboBox>(combo);
    const int index = control.Find(std::string(text));
    if (index >= 0) control.Select(index);
    return index >= 0;
}

LocalDateTime DialogWindow::Date(int picker) const {
    return FromSystemTime(Item<framework::DatePicker>(picker).Time());
}

void DialogWindow::SetDate(int picker, const LocalDateTime& date) {
    Item<framework::DatePicker>(picker).SetTime(ToSystemTime(date));
}

} // namespace planfold
