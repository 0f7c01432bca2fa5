#include "plugin/controls/window/DialogWindow.h"

#include "framework/Guard.h"

#include <ctime>

namespace planfold {

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

LocalDateTime FromSystemTime(const SYSTEMTIME& time) {
    return {time.wYear, time.wMonth, time.wDay, time.wHour, time.wMinute, time.wSecond};
}

LocalDateTime LocalNow() {
    return ToLocal(std::time(nullptr));
}

bool SelectEntry(framework::ComboBox combo, std::string_view text) {
    const int index = combo.Find(std::string(text));
    if (index >= 0) combo.Select(index);
    return index >= 0;
}

bool BringUp(framework::Dialog& dialog, const Session& session) {
    if (!dialog.HasWindow() && !dialog.Create() && !session.Ended())
        framework::ReportFault("a window cannot be made", std::source_location::current());
    if (!dialog.HasWindow()) return false;
    if (IsIconic(dialog.Handle()))
        ShowWindow(dialog.Handle(), SW_RESTORE);
    else
        dialog.Self().Show(true);
    // It may go as it is activated.
    return dialog.Self().BringToFront() && dialog.HasWindow();
}

} // namespace planfold
