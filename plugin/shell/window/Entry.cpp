// The exported entry points. Each runs inside the guard: a host compiled by anyone must never see an
// exception.

#include "framework/Guard.h"
#include "plugin/base/Codes.h"
#include "plugin/shell/Globals.h"
#include "plugin/shell/HostCheck.h"
#include "plugin/shell/window/ControlBlock.h"
#include "sdk/HeapStringManager.h"
#include "sdk/PluginExports.h"

#include <memory>
#include <utility>

#define PLANFOLD_EXPORT extern "C" __declspec(dllexport)

namespace planfold {

namespace {

// What must outlive the control block: our strings in the host's hands, and the boxes shown before it.
struct Module {
    HeapStringManager strings;
    framework::MessageBoxes boxes{"Planfold"};
    FontArguments font;
    std::shared_ptr<CPlanfoldControlBlock> block;
    Lifetime life; // until the host tells to exit
};

// Until the library is unloaded. At the end of the process it stays: the host, whose controls and strings it
// would give back, has ended by then.
Module& ThisModule() {
    static Module* const module = new Module;
    return *module;
}

// The library's own instance, for its resources.
HINSTANCE OwnInstance() {
    return framework::ModuleHolding(reinterpret_cast<const void*>(&ThisModule));
}

Identity IdentityStrings() {
    return {g_strLoginId, g_strPeerIdA, g_strPeerIdB, g_strActiveClient};
}

// Boxes of the shell belong to the host's main frame.
class ShellNotices final : public Notices {
public:
    explicit ShellNotices(HostWindow owner) : m_owner(owner) {}
    void ShowMessage(Pass, std::string_view text) override { ThisModule().boxes.Show(m_owner, text); }

private:
    HostWindow m_owner;
};

// Null when the host or the user is refused; the reason has been shown.
std::shared_ptr<CPlanfoldControlBlock> CheckHostAndCreateControlBlock(Pass pass, HostWindow& mainFrame) {
    if (!GetModuleHandleA(nullptr)) {
        ShellNotices(nullptr).ShowMessage(pass, "exe Module not found");
        return nullptr;
    }
    Module& module = ThisModule();
    const auto check = module.life.Across(
        [&](Pass inner) { return CheckHost(inner, FindInHost, IdentityStrings(), module.strings); });
    if (!check) return nullptr;
    mainFrame = MainFrame(check->app);
    if (check->refusal) {
        ShellNotices(mainFrame).ShowMessage(pass, check->refusal);
        return nullptr;
    }
    if (!module.block) {
        // Boxes of the construction wait until the block stands: their message loop may bring the next pick,
        // or the end.
        const framework::MessageBoxes::Hold hold(module.boxes);
        const auto made = module.life.Across([&](Pass) {
            return std::make_shared<CPlanfoldControlBlock>(OwnInstance(), IdentityStrings(), module.strings,
                                                           module.boxes, module.font);
        });
        if (!made) return nullptr;
        (*made)->SetOwner(*made);
        // The host may have picked again on the way.
        if (!module.block) module.block = *made;
        g_pControlBlock = module.block.get();
    }
    return module.block;
}

} // namespace

} // namespace planfold

using namespace planfold;

PLANFOLD_EXPORT int GetVeskPluginInfo(CString* name, CString* version, CStringArray* menu,
                                      std::uint32_t* buildStamp, std::uint32_t* interfaceNumber) {
    framework::Guard([&] {
        Lifetime::Last([&](Pass pass) {
            FillPluginInfo(pass, FindInHost, name, version, menu, buildStamp, interfaceNumber,
                           ThisModule().strings);
        });
    });
    return 1;
}

PLANFOLD_EXPORT void GetOptionalVeskPluginInfo(CString* rightsRoot, CStringArray* rightNames, void*, void*) {
    framework::Guard([&] { FillRights(rightsRoot, rightNames, ThisModule().strings); });
}

PLANFOLD_EXPORT void InitVeskPlugin(void*, const char* loginId, std::int32_t loginMode, CString* menuEntry) {
    framework::Guard([&] {
        const TakenString entry(menuEntry);
        HostWindow mainFrame = nullptr;
        const Lifetime& life = ThisModule().life;
        const auto block =
            life.Across([&](Pass pass) { return CheckHostAndCreateControlBlock(pass, mainFrame); })
                .value_or(nullptr);
        if (!block) return;
        block->SetLoginMode(loginMode);
        g_strLoginId = loginId ? loginId : "";
        if (!mainFrame) return;
        ShellNotices notices(mainFrame);
        if (!GetModuleHandleA(nullptr)) {
            notices.ShowLast("Cant rename VeskTrader.exe,Module not found");
            return;
        }
        if (life.Across([&](Pass pass) { block->PrepareForPick(pass, notices); }))
            block->Pick(entry.View(), static_cast<HWND>(mainFrame));
    });
}

PLANFOLD_EXPORT int ProcessVeskPluginMsg(void*) {
    return 0;
}

PLANFOLD_EXPORT std::intptr_t ExitVeskPlugin() {
    framework::Guard([] {
        ThisModule().life.Renew();
        const auto block = std::exchange(ThisModule().block, nullptr);
        // No box comes after the end.
        ThisModule().boxes.Forget();
        if (!block) return;
        g_pControlBlock = nullptr;
        block->ShutDown();
    });
    return 0;
}

PLANFOLD_EXPORT int AlertOn_ClientActivation(CString* client) {
    return framework::Guard(0, [&] {
        const auto held = ThisModule().block;
        if (!held) return 0;
        g_strActiveClient = client ? client->View() : std::string_view();
        held->FilterByClient(g_strActiveClient);
        return 1;
    });
}

PLANFOLD_EXPORT void ApplyFontVarPreference(void*, void*, void* third, void* fourth) {
    framework::Guard([&] {
        Module& module = ThisModule();
        module.font = {third, fourth};
        if (const auto held = module.block) Lifetime::Last([&](Pass pass) { held->ApplyFontPreference(pass); });
    });
}

// The version of the GUI library that hosts ask for: 36.20 as 0x36020.
PLANFOLD_EXPORT int GetBCGCBProVersion() {
    return 0x36020;
}

PLANFOLD_EXPORT int vesku_get_formatted_month_in_number(const char* month) {
    return month ? MonthNumber(month) : 0;
}

BOOL WINAPI DllMain(HINSTANCE library, DWORD reason, LPVOID isProcessEnding) {
    if (reason == DLL_PROCESS_ATTACH) {
        g_hHostModule = GetModuleHandleA(nullptr);
        DisableThreadLibraryCalls(library);
    }
    if (reason == DLL_PROCESS_DETACH && !isProcessEnding) delete &ThisModule();
    return TRUE;
}
