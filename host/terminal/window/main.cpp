#include "framework/Guard.h"
#include "host/files/Files.h"
#include "host/terminal/window/Application.h"

#include <windows.h>

#include <commctrl.h>

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int) {
    // Libraries come from this program's folder and the system's, never from where it happens to be started.
    SetDefaultDllDirectories(LOAD_LIBRARY_SEARCH_DEFAULT_DIRS);
    return framework::Guard(1, [] {
        INITCOMMONCONTROLSEX controls{sizeof controls, ICC_LISTVIEW_CLASSES | ICC_TAB_CLASSES | ICC_BAR_CLASSES
                                                           | ICC_DATE_CLASSES | ICC_STANDARD_CLASSES};
        InitCommonControlsEx(&controls);
        vesk::Application application(vesk::ParseCommandLine(vesk::CommandWords(__argc, __argv)));
        return application.Run();
    });
}
