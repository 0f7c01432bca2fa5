// The coloured header as a host built with this compiler uses it: through the names that the plug-in exports.
#include "plugin/controls/window/ColorHeaderCtrl.h"
#include "tests/window/PluginTest.h"

#include <commctrl.h>

namespace {

constexpr COLORREF kText = RGB(250, 10, 20), kBack = RGB(20, 30, 240);

bool g_highContrast = false;
BOOL WINAPI SystemParameters(UINT action, UINT parameter, void* value, UINT change) {
    if (action != SPI_GETHIGHCONTRAST) return SystemParametersInfoA(action, parameter, value, change);
    static_cast<HIGHCONTRASTA*>(value)->dwFlags = g_highContrast ? HCF_HIGHCONTRASTON : 0;
    return TRUE;
}

class ColorHeader : public PluginTest {
protected:
    // Made and ended by the plug-in's own code.
    struct Exported {
        explicit Exported(const LoadedPlugin& from) : plugin(from) { Call<void>("C1Ev"); }
        Exported(const Exported&) = delete;
        Exported& operator=(const Exported&) = delete;
        ~Exported() { Call<void>("D1Ev"); }

        template <class Result, class... Arguments>
        Result Call(const char* member, Arguments... arguments) {
            const std::string name = std::string("_ZN16CColorHeaderCtrl") + member;
            return plugin.Entry<Result(void*, Arguments...)>(name.c_str())(memory, arguments...);
        }
        bool Attach(HWND header) { return Call<bool>("6AttachEP6HWND__", header); }
        void Color(int item, COLORREF text, COLORREF back) {
            Call<void>("13SetItemColorsEimm", item, text, back);
        }
        HWND Handle() { return plugin.Entry<HWND(const void*)>("_ZNK16CColorHeaderCtrl6HandleEv")(memory); }

        const LoadedPlugin& plugin;
        alignas(CColorHeaderCtrl) unsigned char memory[sizeof(CColorHeaderCtrl)]{};
    };

    void SetUp() override {
        PluginTest::SetUp();
        ReplaceImport(plugin->Module(), "user32.dll", "SystemParametersInfoA", SystemParameters);
    }
    HWND MakeList() {
        HWND list = CreateWindowA(WC_LISTVIEWA, "", WS_CHILD | WS_VISIBLE | LVS_REPORT, 0, 0, 300, 100,
                                  host.mainFrame, nullptr, nullptr, nullptr);
        for (const char* heading : {"WWW", "MMM"}) {
            LVCOLUMNA column{};
            column.mask = LVCF_TEXT | LVCF_WIDTH;
            column.cx = 100;
            column.pszText = const_cast<char*>(heading);
            SendMessageA(list, LVM_INSERTCOLUMNA, 9, reinterpret_cast<LPARAM>(&column));
        }
        return list;
    }
    // Which of the two colours each cell shows: "text back|".
    static std::string Shown(HWND header) {
        RECT client{};
        GetClientRect(header, &client);
        HDC screen = GetDC(nullptr), dc = CreateCompatibleDC(screen);
        const HGDIOBJ before = SelectObject(dc, CreateCompatibleBitmap(screen, client.right, client.bottom));
        ReleaseDC(nullptr, screen);
        SendMessageA(header, WM_PRINTCLIENT, reinterpret_cast<WPARAM>(dc), PRF_CLIENT);
        std::string shown;
        for (int left = 0; left < 200; left += 100) {
            int text = 0, back = 0;
            for (int x = left; x < left + 100; ++x)
                for (int y = 0; y < client.bottom; ++y) {
                    const COLORREF pixel = GetPixel(dc, x, y);
                    text += pixel == kText;
                    back += pixel == kBack;
                }
            shown += std::string(text > 20 ? "text" : "") + (back > 500 ? " back" : "") + "|";
        }
        DeleteObject(SelectObject(dc, before));
        DeleteDC(dc);
        return shown;
    }
};

TEST_F(ColorHeader, ColoursSingleCellsAndLeavesTheRestToTheSystem) {
    HWND list = MakeList(), header = ListView_GetHeader(list);
    const std::string usual = Shown(header);
    EXPECT_EQ(usual, "||");
    {
        Exported colors(*plugin), another(*plugin);
        EXPECT_FALSE(colors.Attach(nullptr));
        colors.Color(1, kText, kBack);
        ASSERT_TRUE(colors.Attach(header));
        EXPECT_EQ(Shown(header), "|text back|");
        g_highContrast = true;
        EXPECT_EQ(Shown(header), usual);
        g_highContrast = false;
        ASSERT_TRUE(another.Attach(header)) << "two of them get on with each other";
        another.Color(0, CLR_DEFAULT, kBack);
        EXPECT_EQ(Shown(header), " back|text back|");
        colors.Call<void>("11ResetColorsEv");
        EXPECT_EQ(Shown(header), " back||");
    }
    EXPECT_EQ(Shown(header), usual) << "taken away";
    DestroyWindow(list);
}

TEST_F(ColorHeader, OutlivesItsHeader) {
    Exported colors(*plugin);
    colors.Color(0, kText, kBack);
    for (int life = 0; life < 2; ++life) {
        HWND list = MakeList(), header = ListView_GetHeader(list);
        ASSERT_TRUE(colors.Attach(header));
        EXPECT_EQ(Shown(header), "text back||");
        if (life == 0)
            DestroyWindow(list);
        else
            DestroyWindow(header);
        EXPECT_EQ(colors.Handle(), nullptr);
        if (life == 1) DestroyWindow(list);
    }
    colors.Call<void>("6DetachEv");
}

} // namespace
