// The coloured header as a host built with this compiler uses it: through the names that the plug-in exports.
#include "plugin/controls/window/ColorHeaderCtrl.h"
#include "tests/window/PluginTest.h"

#include <commctrl.h>

namespace {

constexpr COLORREF kText = RGB(250, 10, 20), kBack = RGB(20, 30, 240);

bool g_highContrast = false;
BOOL WINAPI SystemParameters(UINT, UINT, void* value, UINT) {
    static_cast<HIGHCONTRASTA*>(value)->dwFlags = g_highContrast ? HCF_HIGHCONTRASTON : 0;
    return TRUE;
}

// Made and ended by the plug-in's own code.
struct Exported {
    explicit Exported(const LoadedPlugin& from) : plugin(from) { Call<void>("C1Ev"); }
    Exported(const Exported&) = delete;
    Exported& operator=(const Exported&) = delete;
    ~Exported() { Call<void>("D1Ev"); }

    template <class Result, class... Arguments>
    Result Call(const std::string& member, Arguments... arguments) {
        return plugin.Entry<Result(void*, Arguments...)>(("_ZN16CColorHeaderCtrl" + member).c_str())(
            memory, arguments...);
    }
    bool Attach(HWND header) { return Call<bool>("6AttachEP6HWND__", header); }
    void Color(int item, COLORREF text, COLORREF back) { Call<void>("13SetItemColorsEimm", item, text, back); }

    const LoadedPlugin& plugin;
    alignas(CColorHeaderCtrl) unsigned char memory[sizeof(CColorHeaderCtrl)]{};
};

HWND MakeList(HWND parent) {
    HWND list = CreateWindowA(WC_LISTVIEWA, "", WS_CHILD | WS_VISIBLE | LVS_REPORT, 0, 0, 300, 100, parent,
                              nullptr, nullptr, nullptr);
    char heading[] = "WWW";
    LVCOLUMNA column{};
    column.mask = LVCF_TEXT | LVCF_WIDTH;
    column.cx = 100;
    column.pszText = heading;
    for (const int i : {0, 1})
        SendMessageA(list, LVM_INSERTCOLUMNA, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(&column));
    return list;
}

// Which of the two colours each cell shows: "T" for the text's, "B" for the background's.
std::string Shown(HWND header) {
    RECT client{};
    GetClientRect(header, &client);
    HDC screen = GetDC(nullptr), dc = CreateCompatibleDC(screen);
    const HGDIOBJ before = SelectObject(dc, CreateCompatibleBitmap(screen, client.right, client.bottom));
    ReleaseDC(nullptr, screen);
    SendMessageA(header, WM_PRINTCLIENT, reinterpret_cast<WPARAM>(dc), PRF_CLIENT);
    std::string shown;
    for (int left = 0; left < 200; left += 100) {
        int text = 0, back = 0;
        for (int pixel = 0; pixel < 100 * client.bottom; ++pixel) {
            const COLORREF colour = GetPixel(dc, left + pixel % 100, pixel / 100);
            text += colour == kText;
            back += colour == kBack;
        }
        shown += std::string(text > 20 ? "T" : "") + (back > 500 ? "B" : "") + "|";
    }
    DeleteObject(SelectObject(dc, before));
    DeleteDC(dc);
    return shown;
}

TEST_F(PluginTest, TheExportedHeaderColoursSingleCellsAndEndsInAnyOrder) {
    ReplaceImport(plugin->Module(), "user32.dll", "SystemParametersInfoA", SystemParameters);
    HWND list = MakeList(host.mainFrame), header = ListView_GetHeader(list);
    Exported colors(*plugin);
    EXPECT_FALSE(colors.Attach(nullptr));
    colors.Color(1, kText, kBack);
    ASSERT_TRUE(colors.Attach(header));
    EXPECT_EQ(Shown(header), "|TB|");
    g_highContrast = true;
    EXPECT_EQ(Shown(header), "||");
    g_highContrast = false;
    {
        Exported another(*plugin); // the two get on with each other
        ASSERT_TRUE(another.Attach(header));
        another.Color(0, CLR_DEFAULT, kBack);
        EXPECT_EQ(Shown(header), "B|TB|");
    }
    EXPECT_EQ(Shown(header), "|TB|");
    DestroyWindow(header);
    DestroyWindow(list);
    list = MakeList(host.mainFrame);
    ASSERT_TRUE(colors.Attach(ListView_GetHeader(list)));
    EXPECT_EQ(Shown(ListView_GetHeader(list)), "|TB|");
    colors.Call<void>("6DetachEv");
    EXPECT_EQ(Shown(ListView_GetHeader(list)), "||");
    DestroyWindow(list);
}

} // namespace
