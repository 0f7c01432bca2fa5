// The running terminal: what it knows, its window, the plug-ins, the server, and the script that is played.
#pragma once

#include "host/terminal/core/Logs.h"
#include "host/terminal/core/Settings.h"
#include "host/terminal/core/TerminalState.h"
#include "host/terminal/script/window/Stage.h"
#include "host/terminal/window/HotKeyHook.h"
#include "host/terminal/window/PluginHost.h"
#include "host/terminal/window/ServerLink.h"
#include "host/terminal/window/frame/MainFrame.h"
#include "host/terminal/window/frame/ServerQuestions.h"
#include "sdk/HeapStringManager.h"
#include "sdk/HostRecords.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>

namespace vesk {

// Where the terminal itself stands, in UTF-8.
std::string ProgramFolder();

class Application {
public:
    explicit Application(StartOptions options);
    Application(const Application&) = delete;
    Application& operator=(const Application&) = delete;
    ~Application();

    // The whole life of the program; the result is its exit status.
    int Run();

    TerminalState& State() { return m_state; }
    const StartOptions& Options() const { return m_options; }
    HeapStringManager& Strings() { return m_strings; }
    PluginHost& Plugins() { return m_plugins; }
    MainFrame& Frame() { return m_frame; }
    ServerLink& Server() { return *m_server; }
    VeskApp* Record();

    void LogFromPlugin(std::string_view text);
    void LogFromSystem(std::string_view text);
    // Asks the user inside a plug-in's call. No other window takes input and the server stays silent
    // meanwhile, because the caller is half way through a request.
    int Ask(const std::string& text, UINT style);

    void ActivateClient(const std::string& client);
    void SetFont(int variation, int size);
    void SetRight(const std::string& right, bool granted);
    void SetLoginMode(int mode);
    // A line as ServerCommands takes. The log tells what became of it; `also` is told as well.
    void TellServer(const std::string& line, std::function<void(const Told&)> also = {});
    // Reads the non-trading days anew, and adds those that the server restricts.
    bool ReloadCalendar();
    // The hook that comes last is asked first: the plug-ins' own would take the keys away.
    void WatchHotKeys() { m_hotKeyHook.emplace(m_state.hotKeys); }

    // Work that is done once no call and no message box is on the stack, and refused, with a word to the user,
    // while one is.
    void Request(std::function<void()> work);
    void RequestCommand(ServerQuestion* question);
    void RequestClose();
    void ShowWaitingRequests();
    // At log-off: not while requests wait, and the system is told so. When it ends all the same, what can be
    // sent is sent.
    bool MayEndSession();
    void EndSession();
    void OnDeferred(std::uint64_t number);
    void OnTimer(UINT_PTR timer);

private:
    bool Start();
    bool StartFailed(const std::string& why);
    void ShutDown();
    // Asks when requests wait, and waits for the answers.
    bool MayLeave();
    void PumpServer();
    void TickScript();

    StartOptions m_options;
    SessionLog m_sessionLog;
    HeapStringManager m_strings;
    TerminalState m_state;
    PluginHost m_plugins;
    MainFrame m_frame;
    std::unique_ptr<ServerLink> m_server;
    std::optional<HotKeyHook> m_hotKeyHook;
    std::optional<ScriptPlay> m_play;
    VeskApp m_record{};
    MSG m_current{}; // the message that the outermost loop dispatches
    std::map<std::uint64_t, std::function<void()>> m_deferred;
    std::uint64_t m_lastDeferred = 0;
    std::string m_shownDate; // the server's
    LinkStatus m_shownStatus;
    int m_questions = 0; // open ones of Ask
    bool m_isLeaving = false;
    bool m_blocksEnd = false; // of the session
    int m_exitStatus = 0;
};

// What the exports answer from; null while there is none.
Application* RunningApplication();

} // namespace vesk
