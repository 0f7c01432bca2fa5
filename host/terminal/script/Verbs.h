// The verbs of the script language, a row each. A new one is a row here, its function in `window/`, and its
// line in docs/scripts.md.
//
// STAGE(result, function, spelling, words): the function is `result verbs::function(ScriptStep&)` of
//   window/Stage.h. One that gives nothing is done at once; a StepResult may ask to be tried again, or fail.
// RUNNER(name, spelling, words): the runner plays it itself, since it is about boxes, time or the script's end.
//
// `words` has one letter a word: c control of the current window, t text, n whole number, k key, b "on" or
// "off", a answer to a message box, d place of a pane; behind the last, "*": any number of such words, or none;
// "?": it may be missing.
#pragma once

#define VESK_SCRIPT_VERBS(STAGE, RUNNER)                                                                       \
    STAGE(StepResult, PickMenu, "menu", "ttt*")                                                                \
    STAGE(StepResult, UseWindow, "window", "t")                                                                \
    STAGE(void, UseMain, "main", "")                                                                           \
    STAGE(StepResult, SelectEntry, "select", "ct")                                                             \
    STAGE(void, SetEdit, "edit", "ct")                                                                         \
    STAGE(void, SetDate, "date", "cn")                                                                         \
    STAGE(StepResult, TypeText, "type", "t")                                                                   \
    STAGE(StepResult, PressKey, "key", "k")                                                                    \
    STAGE(void, FocusControl, "focus", "c")                                                                    \
    STAGE(StepResult, PressButton, "press", "c")                                                               \
    STAGE(void, PostCommand, "command", "n")                                                                   \
    STAGE(StepResult, SelectRow, "row", "cn")                                                                  \
    STAGE(StepResult, SelectRows, "select-rows", "cnn")                                                        \
    STAGE(StepResult, ClickHeader, "header", "cn")                                                             \
    STAGE(StepResult, SelectTab, "tab", "ct")                                                                  \
    STAGE(StepResult, PickInContextMenu, "context", "ct")                                                      \
    STAGE(StepResult, GiveFile, "file", "t")                                                                   \
    RUNNER(box, "box", "ta")                                                                                   \
    RUNNER(boxStarting, "box starting", "ta")                                                                  \
    RUNNER(answer, "answer", "a")                                                                              \
    RUNNER(expectBox, "expect box", "t")                                                                       \
    RUNNER(expectBoxStarting, "expect box-starting", "t")                                                      \
    STAGE(StepResult, ExpectText, "expect text", "ct")                                                         \
    STAGE(StepResult, ExpectWindow, "expect window", "t")                                                      \
    STAGE(StepResult, ExpectNoWindow, "expect no-window", "t")                                                 \
    STAGE(StepResult, ExpectMenu, "expect menu", "tt*")                                                        \
    STAGE(StepResult, ExpectLog, "expect log", "t")                                                            \
    STAGE(StepResult, ExpectNoLog, "expect no-log", "t")                                                       \
    STAGE(StepResult, ExpectCombo, "expect combo", "ct*")                                                      \
    STAGE(StepResult, ExpectEnabled, "expect enabled", "cb")                                                   \
    STAGE(StepResult, ExpectVisible, "expect visible", "cb")                                                   \
    STAGE(StepResult, ExpectFocus, "expect focus", "c")                                                        \
    STAGE(StepResult, ExpectRows, "expect rows", "cn")                                                         \
    STAGE(StepResult, ExpectCell, "expect cell", "cnnt")                                                       \
    STAGE(StepResult, ExpectHeadings, "expect headings", "ct*")                                                \
    STAGE(StepResult, ExpectFocusRow, "expect focus-row", "cn")                                                \
    STAGE(StepResult, ExpectSelectedRows, "expect selected-rows", "cn")                                        \
    STAGE(StepResult, ExpectContextMenu, "expect context", "ct*")                                              \
    STAGE(StepResult, ExpectTabs, "expect tabs", "ct*")                                                        \
    STAGE(StepResult, ExpectSelectedTab, "expect selected", "ct")                                              \
    STAGE(StepResult, ExpectStatus, "expect status", "cnt")                                                    \
    STAGE(StepResult, ExpectJournal, "expect journal", "t")                                                    \
    STAGE(StepResult, ExpectExecuted, "expect executed", "")                                                   \
    STAGE(StepResult, ExpectLogOff, "expect log-off", "b")                                                     \
    STAGE(void, LogOff, "log-off", "")                                                                         \
    STAGE(StepResult, TakeScreenshot, "screenshot", "t")                                                       \
    STAGE(void, ActivateClient, "client", "t")                                                                 \
    STAGE(void, SetFont, "font", "nn")                                                                         \
    STAGE(void, SetRight, "right", "tb")                                                                       \
    STAGE(void, SetLoginMode, "mode", "n")                                                                     \
    STAGE(StepResult, TellServer, "clock", "t")                                                                \
    STAGE(StepResult, TellServer, "fill", "n")                                                                 \
    STAGE(StepResult, TellServer, "other", "n")                                                                \
    STAGE(StepResult, TellServer, "execute", "nt?")                                                            \
    STAGE(StepResult, TellServer, "fault", "ttt?")                                                             \
    STAGE(StepResult, ChangeDpi, "dpi", "n")                                                                   \
    STAGE(StepResult, SetLocale, "locale", "t")                                                                \
    STAGE(void, Measure, "measure", "t?")                                                                      \
    STAGE(StepResult, MovePane, "dock", "td")                                                                  \
    STAGE(StepResult, HidePane, "hide-pane", "t")                                                              \
    STAGE(StepResult, ShowPane, "show-pane", "t")                                                              \
    STAGE(StepResult, ExpectDocked, "expect docked", "td")                                                     \
    STAGE(void, CloseWindow, "close", "")                                                                      \
    RUNNER(timeout, "timeout", "n")                                                                            \
    RUNNER(stopwatch, "stopwatch", "t")                                                                        \
    RUNNER(exit, "exit", "")
