// Records every message box of the thread and answers it from inside its own message loop.
#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <vector>

class BoxRecorder {
public:
    BoxRecorder();
    BoxRecorder(const BoxRecorder&) = delete;
    BoxRecorder& operator=(const BoxRecorder&) = delete;
    ~BoxRecorder();

    // The texts, each closed by "|", since this was last asked.
    std::string Texts();

    int toQuestions = IDYES; // all others get OK
    bool anyNested = false;  // another one was still open
    HWND lastOwner = nullptr;
    // Runs once, in the message loop of the next box, before that is answered.
    std::function<void()> during;

private:
    static LRESULT CALLBACK OnCbt(int code, WPARAM wParam, LPARAM lParam);
    static void CALLBACK OnTimer(HWND, UINT, UINT_PTR timer, DWORD);
    void Opened(HWND box);
    void Answer();

    HHOOK m_hook;
    std::vector<HWND> m_open, m_unanswered;
    std::string m_texts;
};
