// Message boxes, one at a time. A text that comes while a box is open (its message loop lets answers in)
// waits and is shown after it, together with the others that wait for the same window.
#pragma once

#include "framework/PendingTexts.h"

#include <windows.h>

#include <deque>
#include <string>

namespace framework {

class MessageBoxes {
public:
    explicit MessageBoxes(std::string caption) : m_caption(std::move(caption)) {}

    // Returns when the box, and all that waited meanwhile, have been answered; at once when another box
    // is open. `owner` may be null or already gone.
    void Show(HWND owner, std::string_view text);

    // A question with Yes and No, No being the default; true for Yes. While it is open, texts wait. False
    // without asking when a box is open already, or held back.
    bool Ask(HWND owner, const std::string& question) { return AskWith(owner, question, MB_YESNO) == IDYES; }
    // Offers Cancel besides: IDYES, IDNO or IDCANCEL, which is the answer without asking, too.
    int AskOrCancel(HWND owner, const std::string& question) {
        return AskWith(owner, question, MB_YESNOCANCEL);
    }

    // Whether one is open, or all are kept for later: whoever has to ask does so after it.
    bool IsBusy() const { return m_open || m_holds; }
    // Says the same, and the open one comes to the front.
    bool BringToFront() const;

    // Ends the open box if it is this window's, as if it were cancelled. A box belongs to the top-level window,
    // and so outlives a child that it was asked for.
    void Close(HWND owner);

    // Drops every text that waits.
    void Forget();

    // While one lives, texts are kept; after the last each is shown in a box of its own, or all of a window
    // together. For code that a message loop must not enter.
    class Hold {
    public:
        enum class Then { each, together };

        explicit Hold(MessageBoxes& boxes, Then then = Then::each) : m_boxes(boxes), m_then(then) {
            ++m_boxes.m_holds;
        }
        Hold(const Hold&) = delete;
        Hold& operator=(const Hold&) = delete;
        ~Hold();

    private:
        MessageBoxes& m_boxes;
        Then m_then;
    };

private:
    struct Text {
        HWND owner;
        std::string text;
    };

    // The open boxes of the owner's top-level window, one after the other; null behind the last.
    HWND NextBox(HWND box, HWND owner) const;
    int AskWith(HWND owner, const std::string& question, UINT buttons);
    int Open(HWND owner, const std::string& text, UINT kind);
    void ShowPending();

    std::string m_caption;
    PendingTexts<HWND> m_pending;
    std::deque<Text> m_held;
    HWND m_owner = nullptr; // of the open box
    bool m_open = false;
    int m_holds = 0;
};

} // namespace framework
