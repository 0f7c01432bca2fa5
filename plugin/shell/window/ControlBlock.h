// The plug-in's one global object: the session with the server, the windows, and the host's preferences.
#pragma once

#include "framework/KeyboardHook.h"
#include "framework/MessageBoxes.h"
#include "plugin/messaging/Session.h"
#include "plugin/orderentry/window/OrderEntryDlg.h"

namespace planfold {

// Finds an export of the host executable.
AnyFunction FindInHost(const char* name);

class CPlanfoldControlBlock {
public:
    CPlanfoldControlBlock(HINSTANCE module, Identity identity, StringManager& strings,
                          framework::MessageBoxes& boxes);
    CPlanfoldControlBlock(const CPlanfoldControlBlock&) = delete;
    CPlanfoldControlBlock& operator=(const CPlanfoldControlBlock&) = delete;

    // Calls into the plug-in hold their block, so that it ends after the last of them.
    void SetOwner(std::weak_ptr<void> owner) { m_session.owner = std::move(owner); }
    void DestroyWindows() { m_orderEntry.Destroy(); }

    // What every menu pick does before its window is shown.
    void PrepareForPick(Notices& notices);
    void SetLoginMode(std::int32_t mode) { m_session.m_nLoginMode = mode; }
    // Asks the host for its font preference and lays the windows out anew.
    void ApplyFontPreference(void* third, void* fourth);

    COrderEntryDlg& OrderEntryDialog() { return m_orderEntry; }

private:
    void FindSettingsPaths();

    Session m_session;
    framework::KeyboardHook m_keyboard;
    COrderEntryDlg m_orderEntry;
    std::string m_strUserDirectory;
    std::intptr_t m_nFontVariation = 0;                  // points
    std::intptr_t m_nFontSize = 0;                       // points; 0 is the template's
};

} // namespace planfold
