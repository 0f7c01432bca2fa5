// The box in which a client is looked for, with its pop-up list, tool tip and mode menu.
#pragma once

#include "framework/Subclass.h"
#include "plugin/controls/ClientSearch.h"
#include "plugin/controls/window/ClientResultsPopup.h"

#include <string>

namespace planfold {

// Sent to the parent: the box, and the picked ClientResult, valid during the message only.
constexpr UINT kClientPickedMessage = 1224;

class CClientSearchBox final : public framework::Subclass, private ClientSearchView {
public:
    explicit CClientSearchBox(Session& session)
        : m_session(session), m_search(session, *this), m_popup(session, m_search, m_box) {}

    // `name` is the settings key; `delayMs` from the user's last change to the search.
    void SetUp(Pass pass, HWND edit, const std::string& name, UINT delayMs);
    // Not typed by the user: it starts no search, and ends one that was waiting.
    void SetText(std::string_view text);
    // The edit told its parent that its text changed.
    void OnTextChanged();
    // It hangs under a box that moves, say.
    void CloseList() { m_search.HideList(); }
    // The search mode menu, under the button.
    void OpenModeMenu(HWND button);

private:
    std::shared_ptr<void> Hold() override { return m_session.owner.lock(); }
    void OnGone() override { m_box = m_tip = nullptr; }
    std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    bool OnCommand(const framework::Command& command) override;
    bool WantsKey(WPARAM virtualKey) const;

    bool HasBox() const override { return Handle() != nullptr; }
    std::string SearchText() const override;
    void SetSearchText(std::string_view text) override;
    void SelectSearchText() override;
    void SetTip(std::string_view text) override;
    void ShowResults(int count, int selected) override { m_popup.ShowUnder(Handle(), count, selected); }
    void SelectResult(int row) override { m_popup.SelectRow(row); }
    void HideResults() override { m_popup.Hide(); }
    void StartDelay() override;
    void StopDelay() override;
    void TellPicked(const ClientResult& result) override;

    Session& m_session;
    HWND m_box = nullptr;
    UINT m_delayMs = 0;
    bool m_ownChange = false;
    ClientSearch m_search;
    CPopup m_popup;
    HWND m_tip = nullptr; // owned by the box
};

} // namespace planfold
