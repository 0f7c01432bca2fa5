// Records every message box of the thread and answers it from inside its own message loop.
#pragma once

#include <windows.h>

#include <deque>
#include <functional>
#include <string>
#include <vector>

class BoxRecorder {
public:
    struct Box {
        std::string caption;
        std::string text;
        HWND owner;
        bool nested; // another one was still open
    };

    BoxRecorder();
    BoxRecorder(const BoxRecorder&) = delete;
    BoxRecorder& operator=(const BoxRecorder&) = delete;
    ~BoxRecorder();

    const std::vector<Box>& Boxes() const { return m_boxes; }
    // The texts, each closed by "|", from the given box on.
    std::string Texts(std::size_t from = 0) const;
    bool AnyNested() const;
    void Clear() { m_boxes.clear(); }

    // Button identifiers for the next boxes; IDOK when there is none.
    std::deque<int> answers;
    // Runs once, in the message loop of the next box, before that is answered.
    std::function<void()> during;

private:
    static LRESULT CALLBACK OnCbt(int code, WPARAM wParam, LPARAM lParam);
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    void Opened(HWND box);
    void Handle(HWND box);

    static BoxRecorder* s_current;
    HHOOK m_hook;
    HWND m_helper;
    std::vector<HWND> m_open;
    std::vector<Box> m_boxes;
};
