// A test with the registration book in the host's main frame, which can be told how to treat the pane.
#pragma once

#include "tests/window/PluginTest.h"

namespace book {
inline constexpr int kRefresh = 25001, kCancel = 25002, kModify = 25003, kPauseSelected = 25101;
inline constexpr UINT kRegisterPane = 1933, kCommandText = 1214;
inline constexpr const char kName[] = "SIP Registration Book";
} // namespace book

// "SIP7"
inline std::string Number(int number) {
    return "SIP" + std::to_string(number);
}

class BookWindowTest : public PluginTest {
protected:
    void SetUp() override;
    void TearDown() override;

    HWND Frame() const { return static_cast<HWND>(host.mainFrame); }
    // Picks the menu entry and finds the windows, null where there are none.
    void Open();
    // What the server answers to the query of all registrations, and what it streams.
    void Queried(const std::string& number, const char* status = "active", const char* client = "C001");
    void Streamed(const std::string& number, const char* status);
    void QueriedUpTo(int count);
    // How many rows the two panes of the status bar say, "3 0".
    std::string Counts() const;

    static std::string NumberAt(HWND list, int row) { return row < 0 ? "" : probe::Cell(list, row, 14); }
    // Exactly these rows, by their numbers, and the focus on the last of them.
    static void Select(HWND list, const std::vector<std::string>& numbers);
    static HWND ReasonDialog() { return probe::FindDialog("Reject Reason"); }
    // To whatever has the focus; `control` is 0x80 while that key is down.
    static void Key(WPARAM key, BYTE control = 0);
    void Command(int command) const { SendMessageA(dialog, WM_COMMAND, static_cast<WPARAM>(command), 0); }

    std::vector<HWND> announced;             // panes told to the frame
    std::function<void(UINT, HWND)> onFrame; // after the frame's own handling of a message: 1933's pane
    HWND pane = nullptr, dialog = nullptr, registered = nullptr, cancelled = nullptr;

private:
    static LRESULT CALLBACK FrameProcedure(HWND, UINT, WPARAM, LPARAM, UINT_PTR, DWORD_PTR);
};
