// What the list's own boxes have in common: they belong to the list, stand where they stood last, and take
// their keys inside a message loop that knows nothing of dialogs.
#pragma once

#include "framework/Dialog.h"
#include "framework/KeyboardHook.h"

#include <optional>
#include <string>

namespace korvex {

class CQVDialog : public framework::Dialog {
public:
    // `owner` is kept alive while a message is handled; `name` is the one that the place is remembered under.
    CQVDialog(std::weak_ptr<void> owner, int resource, std::string name);

protected:
    std::shared_ptr<void> Hold() override { return m_owner.lock(); }
    void OnInit() override;
    void OnDestroyed() override;
    std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

    // Above the window that the list lies in; one that is open already comes to the front.
    void Open(HWND list);

private:
    void Place() const;
    void RememberPlace() const;

    std::weak_ptr<void> m_owner;
    std::string m_name;
    std::optional<framework::KeyboardHook> m_keys;
};

} // namespace korvex
