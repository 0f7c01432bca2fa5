// A plug-in for whoever makes a terminal: put beside Planfold.zup, it tries in the running terminal what the
// plug-in will call there, at the pick of its one menu entry.
#include "framework/Files.h"
#include "planfold_version.h"
#include "sdk/HeapStringManager.h"
#include "sdk/PluginExports.h"
#include "tools/planfold-hostcheck/Trials.h"

#include <commctrl.h>
#include <shlwapi.h>

namespace {

constexpr const char* kEntry = "Try the Host's Exports";
constexpr ULONGLONG kPatienceMs = 10'000;

// Its texts are in the host's hands until the library is unloaded, and at the end of a process none of it may
// go.
HeapStringManager& Strings() {
    static auto* const strings = new HeapStringManager;
    return *strings;
}

std::string Folder() {
    char folder[MAX_PATH + 1] = "";
    GetTempPathA(sizeof folder, folder);
    return framework::Utf8(folder);
}

std::string HostFile() {
    char path[MAX_PATH] = "";
    GetModuleFileNameA(nullptr, path, sizeof path);
    return framework::Utf8(PathFindFileNameA(path));
}

// The controls of the order form, which nobody sees.
class HiddenForm final : public hostcheck::Workplace {
public:
    explicit HiddenForm(std::string report)
        : m_report(std::move(report)), m_window(Make(WC_STATICA, WS_POPUP, nullptr, 0)) {
        for (const int combo : hostcheck::id::combos)
            Make(WC_COMBOBOXA, WS_CHILD | CBS_DROPDOWNLIST, m_window, combo);
        Make(WC_EDITA, WS_CHILD, m_window, hostcheck::id::amount);
    }
    HiddenForm(const HiddenForm&) = delete;
    HiddenForm& operator=(const HiddenForm&) = delete;
    ~HiddenForm() { DestroyWindow(m_window); }

    HostWindow Form() const override { return m_window; }
    HostWindow Control(int id) const override { return GetDlgItem(m_window, id); }
    std::vector<std::string> Items(int combo) const override {
        std::vector<std::string> items(static_cast<std::size_t>(Ask(combo, CB_GETCOUNT, 0, 0)));
        for (std::size_t i = 0; i < items.size(); ++i) {
            items[i].resize(static_cast<std::size_t>(Ask(combo, CB_GETLBTEXTLEN, i, 0)));
            Ask(combo, CB_GETLBTEXT, i, reinterpret_cast<LPARAM>(items[i].data()));
        }
        return items;
    }
    void Choose(int combo, std::string_view item) override {
        const std::string text(item);
        const auto wanted = reinterpret_cast<LPARAM>(text.c_str());
        LRESULT index = Ask(combo, CB_FINDSTRINGEXACT, static_cast<WPARAM>(-1), wanted);
        if (index == CB_ERR) index = Ask(combo, CB_ADDSTRING, 0, wanted);
        Ask(combo, CB_SETCURSEL, static_cast<WPARAM>(index), 0);
    }
    bool IsWindow(HostWindow window) const override { return ::IsWindow(window); }
    bool IsFolder(std::string_view path) const override {
        const DWORD attributes = GetFileAttributesA(std::string(path).c_str());
        return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY);
    }
    void WaitUntil(const std::function<bool()>& isSo) override {
        constexpr DWORD step = 50;
        // As a box would have it: nobody ends the host meanwhile.
        const HWND active = GetActiveWindow();
        EnableWindow(active, FALSE);
        for (const ULONGLONG end = GetTickCount64() + kPatienceMs; !isSo() && GetTickCount64() < end;) {
            MsgWaitForMultipleObjects(0, nullptr, FALSE, step, QS_ALLINPUT);
            for (MSG message; !isSo() && PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE);) {
                TranslateMessage(&message);
                DispatchMessageA(&message);
            }
        }
        EnableWindow(active, TRUE);
    }
    void Begin(std::string_view name) override {
        framework::WriteWhole(m_report, "The host was calling " + std::string(name) + " when it ended.\r\n");
    }

private:
    static HWND Make(const char* kind, DWORD style, HWND parent, int id) {
        return CreateWindowExA(0, kind, "", style, 0, 0, 200, 200, parent,
                               reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), nullptr, nullptr);
    }
    LRESULT Ask(int combo, UINT message, WPARAM wParam, LPARAM lParam) const {
        return SendDlgItemMessageA(m_window, combo, message, wParam, lParam);
    }

    std::string m_report;
    HWND m_window;
};

hostcheck::AnyFunction FindInHost(const char* name) {
    return reinterpret_cast<hostcheck::AnyFunction>(GetProcAddress(GetModuleHandleA(nullptr), name));
}

void TryAndTell() {
    const std::string report = Folder() + "planfold-hostcheck";
    HiddenForm form(report + ".txt");
    const hostcheck::Findings findings = hostcheck::TryExports(FindInHost, form, Strings());
    const std::string host = HostFile();
    const std::string text = framework::WithLineEnds(AsText(findings, host));
    std::string told = framework::WriteWhole(report + ".txt", text);
    if (told.empty()) told = framework::WriteWhole(report + ".json", AsJson(findings, host));
    if (told.empty()) told = Summary(findings) + "\n\nEach export: " + report + ".txt and .json";
    MessageBoxA(GetActiveWindow(), told.c_str(), "Host Check", MB_OK);
}

} // namespace

extern "C" {

__declspec(dllexport) int GetVeskPluginInfo(CString* name, CString* version, CStringArray* menu, std::uint32_t*,
                                            std::uint32_t*) {
    *name = "Host Check";
    *version = PLANFOLD_VERSION;
    menu->Append(kEntry, Strings());
    return 1;
}

__declspec(dllexport) void InitVeskPlugin(void*, const char*, std::int32_t, CString* menuEntry) {
    const TakenString picked(menuEntry);
    try {
        if (picked.View() == kEntry) TryAndTell();
    } catch (const std::exception& fault) {
        MessageBoxA(GetActiveWindow(), fault.what(), "Host Check", MB_OK);
    }
}

__declspec(dllexport) std::intptr_t ExitVeskPlugin() {
    return 0;
}
}
