// The shared splitter between two panes of a plain window.
#include "host/korvexcontrols/FlatSplitterWnd.h"
#include "sdk/HeapStringManager.h"
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
        std::filesystem::remove(file);
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
        WNDCLASSA type{};
        type.lpfnWndProc = Procedure;
        type.lpszClassName = "SplitterParent";
        RegisterClassA(&type);
        parent = CreateWindowA("SplitterParent", "", WS_POPUP | WS_VISIBLE, 100, 100, 300, kRoom + kBar,
                               nullptr, nullptr, nullptr, nullptr);
        SetWindowLongPtrA(parent, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(&moved));
        edit =
            CreateWindowA("EDIT", "", WS_CHILD | WS_VISIBLE, 0, 0, 10, 10, parent, nullptr, nullptr, nullptr);
        if (!splitter) splitter = std::make_unique<CFlatSplitterWnd>();
        ASSERT_TRUE(splitter->Create({parent, edit, 77, "Panes", 60, 100, 50}));
        bar = splitter->Handle();
        splitter->Place({0, 0, 300, kRoom + kBar});
        SetFocus(edit);
    }
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
        const auto* told = reinterpret_cast<std::function<void()>*>(GetWindowLongPtrA(window, GWLP_USERDATA));
        if (message == WM_NOTIFY && reinterpret_cast<const NMHDR*>(lParam)->code == kKorvexSplitterMoved)
            (*told)();
        return DefWindowProcA(window, message, wParam, lParam);
    }
    void Mouse(UINT message, int y) const { SendMessageA(bar, message, MK_LBUTTON, MAKELPARAM(10, y)); }
    void Key(WPARAM key) const { SendMessageA(bar, WM_KEYDOWN, key, 1); }
    int Height() const { return splitter->First().bottom; }

    HeapStringManager strings;
    const std::filesystem::path file =
        std::filesystem::temp_directory_path() / ("splitter" + std::to_string(GetCurrentProcessId()) + ".ini");
    std::unique_ptr<CFlatSplitterWnd> splitter;
    HWND parent = nullptr, edit = nullptr, bar = nullptr;
    int moves = 0;
    std::function<void()> moved = [this] { ++moves; };
};

TEST_F(Splitter, MovesByMouseAndKeysWithinTheLeastHeights) {
    struct Step {
        const char* what;
        std::function<void()> happens;
        int height, moves;
        HWND focus;
    };
    const Step steps[] = {
        {"opens", [] {}, kUsual, 0, edit},
        {"dragged", [&] { Mouse(WM_LBUTTONDOWN, 3), Mouse(WM_MOUSEMOVE, -37); }, kUsual - 40, 1, bar},
        {"dropped", [&] { Mouse(WM_LBUTTONUP, 3); }, kUsual - 40, 1, edit},
        {"only passed over", [&] { Mouse(WM_MOUSEMOVE, 90); }, kUsual - 40, 1, edit},
        {"dragged too far", [&] { Mouse(WM_LBUTTONDOWN, 0), Mouse(WM_MOUSEMOVE, 900); }, kRoom - 50, 2, bar},
        {"Escape", [&] { Key(VK_ESCAPE); }, kUsual - 40, 3, edit},
        {"Home", [&] { Key(VK_HOME); }, 100, 4, edit},
        {"Up at the top", [&] { Key(VK_UP); }, 100, 4, edit},
        {"Down", [&] { Key(VK_DOWN); }, 108, 5, edit},
        {"End", [&] { Key(VK_END); }, kRoom - 50, 6, edit},
        {"a double click", [&] { Mouse(WM_LBUTTONDBLCLK, 1); }, kUsual, 7, edit},
        {"a smaller area",
         [&] {
             splitter->Place({0, 0, 300, 200 + kBar});
         },
         120, 7, edit},
    };
    for (const Step& step : steps) {
        SCOPED_TRACE(step.what);
        step.happens();
        EXPECT_EQ(Height(), step.height);
        EXPECT_EQ(splitter->Second().top, step.height + kBar);
        RECT place{};
        GetWindowRect(bar, &place);
        EXPECT_EQ(place.top, 100 + step.height);
        EXPECT_EQ(moves, step.moves);
        EXPECT_EQ(GetFocus(), step.focus);
    }
    MSG key{bar, WM_KEYDOWN, VK_ESCAPE, 1, 0, {}};
    EXPECT_EQ(SendMessageA(bar, WM_GETDLGCODE, VK_ESCAPE, reinterpret_cast<LPARAM>(&key)), 0)
        << "the dialog's, unless it is dragged";
}

TEST_F(Splitter, StandsWhereItWasLeft) {
    for (const auto& [key, height] : {std::pair{WPARAM{VK_HOME}, 100}, {WPARAM{VK_END}, kRoom - 50}}) {
        Key(key);
        DestroyWindow(parent);
        EXPECT_EQ(splitter->Handle(), nullptr);
        Open();
        EXPECT_EQ(Height(), height);
    }
    Mouse(WM_LBUTTONDBLCLK, 1);
    DestroyWindow(parent);
    Open();
    EXPECT_EQ(Height(), kUsual);
}

TEST_F(Splitter, MayBeLetGoWhenItTells) {
    moved = [&] { splitter.reset(); };
    Mouse(WM_LBUTTONDOWN, 3);
    Mouse(WM_MOUSEMOVE, 50);
    EXPECT_FALSE(IsWindow(bar));
}

} // namespace
