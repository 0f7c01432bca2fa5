#include "host/terminal/window/Application.h"

#include "framework/DialogLayout.h"
#include "host/files/Files.h"
#include "host/terminal/window/Encoding.h"
#include "host/terminal/window/frame/MenuBar.h"
#include "host/terminal/window/frame/WaitingBoxes.h"

#include <algorithm>
#include <cstdlib>
#include <ctime>

namespace vesk {
namespace {

constexpr UINT kPumpMs = 20;
constexpr UINT kScriptMs = 15;
constexpr const char* kBusyText = "Finish the open box or dialog first.";

// The exports have no argument that could carry it.
Application* g_application = nullptr;

StartOptions WithDefaults(StartOptions options) {
    const auto settle = [](std::string& path, const std::string& usual) {
        if (path.empty()) path = usual;
    };
    settle(options.dataFolder, ProgramFolder() + "\\data");
    settle(options.userFolder, options.dataFolder + "\\user");
    settle(options.journal, options.dataFolder + "\\journal");
    settle(options.secretsFile, SecretsBeside(options.journal));
    settle(options.outFolder, ".");
    std::error_code ignored; // a folder that cannot be made shows when the first file is written
    // Plug-ins build paths upon it and may change the current folder.
    const std::filesystem::path user = std::filesystem::absolute(PathOf(options.userFolder), ignored);
    options.userFolder = TextOfPath(std::filesystem::path(user).make_preferred());
    std::filesystem::create_directories(user, ignored);
    std::filesystem::create_directories(PathOf(options.outFolder), ignored);
    return options;
}

std::string TimeOfDay() {
    SYSTEMTIME now{};
    GetLocalTime(&now);
    char text[16];
    std::snprintf(text, sizeof text, "%02u:%02u:%02u", now.wHour % 100u, now.wMinute % 100u,
                  now.wSecond % 100u);
    return text;
}

std::unique_ptr<ServerLink> LinkToServer(Application& application, std::vector<std::string>& notes) {
    LinkEvents events{[&](const std::string& line) { application.LogFromSystem(line); },
                      [&] { application.ReloadCalendar(); }};
    const StartOptions& options = application.Options();
    const TerminalConfig& config = application.State().config;
    if (options.serverHost.empty())
        return std::make_unique<ServerLink>(application.State(), options.journal, std::move(events), notes);
    return std::make_unique<ServerLink>(
        ServerAddress{options.serverHost, options.serverPort}, options.secretsFile,
        UserIdentity{config.loginId, config.peerIdA, config.peerIdB}, std::move(events));
}

// While it lasts, no other window of the program takes input.
class OthersDisabled {
public:
    explicit OthersDisabled(HWND owner) : m_owner(owner) {
        EnumThreadWindows(
            GetCurrentThreadId(),
            [](HWND window, LPARAM self) -> BOOL {
                auto& others = *reinterpret_cast<OthersDisabled*>(self);
                if (window == others.m_owner || !IsWindowVisible(window) || !IsWindowEnabled(window))
                    return TRUE;
                EnableWindow(window, FALSE);
                others.m_disabled.push_back(window);
                return TRUE;
            },
            reinterpret_cast<LPARAM>(this));
    }
    OthersDisabled(const OthersDisabled&) = delete;
    OthersDisabled& operator=(const OthersDisabled&) = delete;
    ~OthersDisabled() {
        for (const HWND window : m_disabled)
            EnableWindow(window, TRUE);
    }

private:
    HWND m_owner;
    std::vector<HWND> m_disabled;
};

// The system's, which older ones lack. Null takes the reason back.
void SetBlockReason(HWND window, const wchar_t* reason) {
    const HMODULE user = GetModuleHandleA("user32.dll");
    const auto find = [&](const char* name) { return reinterpret_cast<void*>(GetProcAddress(user, name)); };
    if (void* create = find("ShutdownBlockReasonCreate"); create && reason)
        reinterpret_cast<BOOL(WINAPI*)(HWND, LPCWSTR)>(create)(window, reason);
    if (void* destroy = find("ShutdownBlockReasonDestroy"); destroy && !reason)
        reinterpret_cast<BOOL(WINAPI*)(HWND)>(destroy)(window);
}

} // namespace

std::string ProgramFolder() {
    std::wstring path(MAX_PATH, L'\0');
    DWORD length = 0;
    while ((length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()))) == path.size())
        path.resize(path.size() * 2);
    path.resize(length);
    return TextOfPath(std::filesystem::path(path).parent_path());
}

Application* RunningApplication() {
    return g_application;
}

Application::Application(StartOptions options)
    : m_options(WithDefaults(std::move(options))), m_sessionLog(m_options.logFile), m_plugins(m_strings),
      m_frame(*this) {
    g_application = this;
}

Application::~Application() {
    g_application = nullptr;
}

VeskApp* Application::Record() {
    m_record = {sizeof m_record, 0, m_frame.Handle(), GetModuleHandleA(nullptr)};
    return &m_record;
}

int Application::Run() {
    if (!Start()) return EXIT_FAILURE;
    while (GetMessageA(&m_current, nullptr, 0, 0) > 0) {
        TranslateMessage(&m_current);
        DispatchMessageA(&m_current);
    }
    m_sessionLog.Write("string buffers still live: " + std::to_string(m_strings.LiveBuffers()));
    if (m_play) m_sessionLog.Write(m_play->Runner().Verdict());
    return m_exitStatus;
}

bool Application::StartFailed(const std::string& why) {
    const bool scripted = !m_options.scriptFile.empty();
    m_sessionLog.Write(scripted ? "script failed: " + why : why);
    if (!scripted) MessageBoxA(nullptr, ForScreen(why).c_str(), "Vesk Trader", MB_OK | MB_ICONERROR);
    return false;
}

bool Application::Start() {
    if (!m_options.fault.empty()) return StartFailed(m_options.fault);
    if (const auto fault = m_state.Load(m_options.dataFolder, m_options.userFolder))
        return StartFailed(fault->Text() + "; the terminal cannot start without it");
    if (!m_options.scriptFile.empty()) {
        Loaded<Script> script = Script::Load(m_options.scriptFile);
        if (!script) return StartFailed(script.Fault().Text());
        m_play.emplace(std::move(script.Value()), *this, m_sessionLog);
    }
    std::vector<std::string> notes;
    for (const FileFault& fault : m_state.faults)
        notes.push_back(fault.Text());
    m_server = LinkToServer(*this, notes);
    m_state.ReloadCalendar(m_server->RestrictedDates()); // a fault of the file is known already
    if (!m_frame.Open()) return StartFailed("the main window cannot be made");
    for (const std::string& note : notes)
        LogFromSystem(note);
    for (const std::string& line : m_plugins.LoadFolder(ProgramFolder() + "\\Vesk Plugins"))
        LogFromSystem(line);
    m_frame.RebuildMenu();
    m_frame.SetStatus(MainFrame::StatusPart::note, "Ready");
    m_frame.ShowClient({});
    for (const Plugin& plugin : m_plugins.Plugins())
        m_frame.SetStatus(MainFrame::StatusPart::plugin, plugin.name + ' ' + plugin.version);
    m_frame.ShowLogin();
    SetTimer(m_frame.Handle(), kPumpTimer, kPumpMs, nullptr);
    if (m_play) SetTimer(m_frame.Handle(), kScriptTimer, kScriptMs, nullptr);
    return true;
}

void Application::ShutDown() {
    KillTimer(m_frame.Handle(), kPumpTimer);
    KillTimer(m_frame.Handle(), kScriptTimer);
    if (m_play && !m_play->Runner().End()) m_exitStatus = EXIT_FAILURE;
    m_plugins.UnloadAll();
    m_server->Leave();
    m_sessionLog.Write("server controls still live: " + std::to_string(m_server->LiveControls()));
    m_hotKeyHook.reset();
    m_frame.Destroy();
    PostQuitMessage(m_exitStatus);
}

void Application::LogFromPlugin(std::string_view text) {
    m_sessionLog.Write("log: " + m_state.log.AddFromPlugin(TimeOfDay(), text).text);
    m_frame.LogChanged();
}

void Application::LogFromSystem(std::string_view text) {
    m_sessionLog.Write("system: " + m_state.log.AddFromSystem(TimeOfDay(), text).text);
    m_frame.LogChanged();
}

int Application::Ask(const std::string& text, UINT style) {
    const HWND owner = GetActiveWindow(); // the box itself looks after it
    const OthersDisabled others(owner);
    ++m_questions;
    const int answer = MessageBoxA(owner, text.c_str(), "Vesk Trader", style);
    --m_questions;
    return answer;
}

void Application::ActivateClient(const std::string& client) {
    m_state.activeClient = client;
    m_frame.ShowClient(client);
    m_plugins.ActivateClient(client);
}

void Application::SetFont(int variation, int size) {
    m_state.config.fontVariation = variation;
    m_state.config.fontSize = size;
    m_frame.ApplyFont();
    m_plugins.ApplyFont();
}

void Application::SetRight(const std::string& right, bool granted) {
    m_state.config.rights[right] = granted;
    m_plugins.RefreshInfo();
    m_frame.RebuildMenu();
    LogFromSystem((granted ? "Granted: " : "Revoked: ") + right);
}

void Application::SetLoginMode(int mode) {
    m_state.config.loginMode = mode;
    m_frame.RebuildMenu();
    m_frame.ShowLogin();
}

void Application::TellServer(const std::string& line, std::function<void(const Told&)> also) {
    m_server->Command(line, [this, also = std::move(also)](const Told& told) {
        LogFromSystem(told.text);
        if (also) also(told);
    });
}

void Application::PumpServer() {
    m_server->Pump();
    if (std::string date = m_server->Date(); date != m_shownDate) {
        m_shownDate = std::move(date);
        m_frame.SetStatus(MainFrame::StatusPart::date, m_shownDate);
    }
    if (LinkStatus status = m_server->Status(); status != m_shownStatus) {
        m_shownStatus = std::move(status);
        m_frame.SetStatus(MainFrame::StatusPart::server, m_shownStatus.text, m_shownStatus.isTrouble);
    }
    if (m_blocksEnd && m_server->RequestCount() == 0) {
        m_blocksEnd = false;
        SetBlockReason(m_frame.Handle(), nullptr);
    }
}

bool Application::ReloadCalendar() {
    const auto fault = m_state.ReloadCalendar(m_server->RestrictedDates());
    if (fault) LogFromSystem(fault->Text());
    return !fault;
}

void Application::Request(std::function<void()> work) {
    m_deferred[++m_lastDeferred] = std::move(work);
    PostMessageA(m_frame.Handle(), kDeferredMessage, m_lastDeferred, 0);
}

void Application::OnDeferred(std::uint64_t number) {
    auto entry = m_deferred.extract(number);
    if (entry.empty()) return;
    // A loop of a message box or dialog leaves the outermost loop's message as it was.
    const bool outermost = m_current.message == kDeferredMessage && m_current.wParam == number;
    if (!outermost || m_plugins.Busy() || m_questions) {
        MessageBeep(MB_ICONWARNING);
        m_frame.SetStatus(MainFrame::StatusPart::note, kBusyText);
        m_sessionLog.Write(std::string("refused: ") + kBusyText);
        if (m_play && m_play->Runner().Current() == ScriptRunner::State::passed)
            m_play->Abandon("script failed: a box or dialog is open at the end");
        return;
    }
    m_frame.SetStatus(MainFrame::StatusPart::note, "Ready");
    entry.mapped()();
}

void Application::RequestCommand(ServerQuestion* question) {
    Request([this, question] {
        if (const std::string line = question(m_frame.Handle(), *m_server); !line.empty()) TellServer(line);
    });
}

void Application::RequestClose() {
    Request([this] {
        if (MayLeave()) ShutDown();
    });
}

bool Application::MayLeave() {
    const WaitingCounts counts = m_server->CountRequests();
    const LinkStatus status = m_server->Status();
    const OthersDisabled others(m_frame.Handle()); // nothing more is placed meanwhile
    const std::string question = LeaveQuestion(counts, status.isTrouble ? status.text : "");
    if (counts.all != 0
        && MessageBoxA(m_frame.Handle(), question.c_str(), "Vesk Trader",
                       MB_YESNO | MB_ICONWARNING | MB_DEFBUTTON2)
               != IDYES)
        return false;
    if (m_server->AnswersDue() == 0) return true;
    m_isLeaving = true;
    LeavingBox(*m_server).RunModal(m_frame.Handle());
    if (const std::size_t left = m_server->RequestCount(); left != 0)
        LogFromSystem(WaitingText(left) + " as the terminal is left");
    return true;
}

void Application::ShowWaitingRequests() {
    WaitingWindow(*m_server, [this](std::size_t count) {
        LogFromSystem("Withdrawn: " + std::to_string(count) + (count == 1 ? " request" : " requests"));
    }).RunModal(m_frame.Handle());
}

bool Application::MayEndSession() {
    const std::size_t waiting = m_server->RequestCount();
    if (waiting == 0) return true;
    SetBlockReason(m_frame.Handle(), PathOf(WaitingText(waiting)).c_str());
    m_blocksEnd = true;
    return false;
}

void Application::EndSession() {
    constexpr std::chrono::milliseconds longest{3000}; // the system gives 5 s
    m_server->Flush(longest);
    m_server->Leave();
}

void Application::OnTimer(UINT_PTR timer) {
    if (timer == kPumpTimer && !m_questions) PumpServer();
    if (timer == kScriptTimer) TickScript();
}

void Application::TickScript() {
    ScriptRunner& runner = m_play->Runner();
    if (runner.Tick(static_cast<std::int64_t>(GetTickCount64())) == ScriptRunner::State::running) return;
    KillTimer(m_frame.Handle(), kScriptTimer);
    if (runner.Current() != ScriptRunner::State::passed) m_play->Abandon(runner.Verdict());
    if (!m_isLeaving) Request([this] { ShutDown(); });
}

} // namespace vesk
