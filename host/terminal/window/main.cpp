#include "framework/Guard.h"
#include "host/terminal/window/Application.h"

#include <windows.h>

#include <commctrl.h>

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int) {
    return framework::Guard(1, [] {
        INITCOMMONCONTROLSEX controls{sizeof controls, ICC_LISTVIEW_CLASSES | ICC_TAB_CLASSES | ICC_BAR_CLASSES
                                                           | ICC_DATE_CLASSES | ICC_STANDARD_CLASSES};
        InitCommonControlsEx(&controls);
        const std::span<const char* const> words(__argv, static_cast<std::size_t>(__argc));
        vesk::Application application(vesk::ParseCommandLine(words.subspan(1)));
        return application.Run();
    });
}
