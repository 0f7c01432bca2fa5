// The shared splitter between two panes of a plain window.
#include "sdk/HeapStringManager.h"
#include "sdk/korvex/FlatSplitterWnd.h"
#include "tests/support/WindowProbe.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <memory>

namespace {

constexpr int kBar = 6, kRoom = 400, kUsual = 240; // pixels at 96 DPI

class Splitter : public testing::Test {
protected:
    void SetUp() override {
        Remember(file.string());
        Open();
    }
    void TearDown() override {
        DestroyWindow(parent);
        Remember("");
        std::filesystem::remove(file);
    }
    void Remember(const std::string& path) {
        PassedString none("", strings), dialogs(path, strings);
        CCommonListCtrl::SetRecoveryFiles(none.Hand(), dialogs.Hand());
    }
    void Open() {
        if (parent) DestroyWindow(parent);
        parent = CreateWindowA("STATIC", "", WS_POPUP | WS_VISIBLE, 100, 100, 300, kRoom + kBar, nullptr,
                               nullptr, nullptr, nullptr);
        SetWindowLongPtrA(parent, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(&moved));
        SetWindowLongPtrA(parent, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&Procedure));
        edit =
            CreateWindowA("EDIT", "", WS_CHILD | WS_VISIBLE, 0, 0, 10, 10, parent, nullptr, nullptr, nullptr);
        ASSERT_TRUE(splitter->Create({parent, edit, 77, "Panes", 60, 100, 50}));
        bar = splitter->Handle();
        splitter->Place({0, 0, 300, kRoom + kBar});
        SetFocus(edit);
    }
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
        if (message == WM_NOTIFY && reinterpret_cast<const NMHDR*>(lParam)->code == kKorvexSplitterMoved)
            (*reinterpret_cast<std::function<void()>*>(GetWindowLongPtrA(window, GWLP_USERDATA)))();
        return DefWindowProcA(window, message, wParam, lParam);
    }
    void Mouse(UINT message, int y) const { SendMessageA(bar, message, MK_LBUTTON, MAKELPARAM(10, y)); }
    void Key(WPARAM key) const { SendMessageA(bar, WM_KEYDOWN, key, 1); }

    HeapStringManager strings;
    const std::filesystem::path file =
        std::filesystem::temp_directory_path() / ("splitter" + std::to_string(GetCurrentProcessId()) + ".ini");
    std::unique_ptr<CFlatSplitterWnd> splitter = std::make_unique<CFlatSplitterWnd>();
    HWND parent = nullptr, edit = nullptr, bar = nullptr;
    int moves = 0;
    std::function<void()> moved = [this] { ++moves; };
};

TEST_F(Splitter, MovesByMouseAndKeysAndStandsWhereItWasLeft) {
    struct Step {
        const char* what;
        std::function<void()> happens;
        int height, moves;
        bool typing = true; // the edit has the focus
    };
    const Step steps[] = {
        {"opens", [] {}, kUsual, 0},
        {"dragged", [&] { Mouse(WM_LBUTTONDOWN, 3), Mouse(WM_MOUSEMOVE, -37); }, kUsual - 40, 1, false},
        {"dropped", [&] { Mouse(WM_LBUTTONUP, 3); }, kUsual - 40, 1},
        {"dragged too far", [&] { Mouse(WM_LBUTTONDOWN, 0), Mouse(WM_MOUSEMOVE, 900); }, kRoom - 50, 2, false},
        {"Escape", [&] { Key(VK_ESCAPE); }, kUsual - 40, 3},
        {"Home", [&] { Key(VK_HOME); }, 100, 4},
        {"Down", [&] { Key(VK_DOWN); }, 108, 5},
        {"opened anew", [&] { Open(); }, 108, 5},
        {"a double click", [&] { Mouse(WM_LBUTTONDBLCLK, 1); }, kUsual, 6},
        {"opened anew", [&] { Open(); }, kUsual, 6},
        {"a smaller area",
         [&] {
             splitter->Place({0, 0, 300, 200 + kBar});
         },
         120, 6},
    };
    for (const Step& step : steps) {
        SCOPED_TRACE(step.what);
        step.happens();
        const RECT place = probe::PlaceOf(bar);
        EXPECT_EQ(splitter->First().bottom, step.height);
        EXPECT_EQ(splitter->Second().top, step.height + kBar);
        EXPECT_EQ(place.top, 100 + step.height);
        EXPECT_EQ(moves, step.moves);
        EXPECT_EQ(GetFocus(), step.typing ? edit : bar);
    }
    moved = [&] { splitter.reset(); };
    Key(VK_UP);
    EXPECT_FALSE(IsWindow(bar)) << "may be let go when it tells";
}

} // namespace
