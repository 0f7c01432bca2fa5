// A combo with an edit whose typed text is completed from its list.
#pragma once

#include "framework/Subclass.h"
#include "plugin/controls/TypedText.h"
#include "plugin/messaging/Session.h"

namespace planfold {

class CAutoComboBox final : public framework::Subclass, private AutoCompleteView {
public:
    explicit CAutoComboBox(Session& session) : m_session(session) {}

    // For a combo of the drop-down kind that has just been made.
    void SetUp(Pass pass, HWND combo);
    // The combo told its parent that the text of its edit changed.
    void OnTextChanged();

private:
    // The edit inside the combo, where the keys arrive.
    class TypedEdit final : public framework::Subclass {
    public:
        explicit TypedEdit(CAutoComboBox& combo) : m_combo(combo) {}

    private:
        std::shared_ptr<void> Hold() override { return m_combo.Hold(); }
        std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

        CAutoComboBox& m_combo;
    };

    std::shared_ptr<void> Hold() override { return m_session.owner.lock(); }
    void OnGone() override { m_search.Forget(); }
    std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    framework::ComboBox Combo() const { return framework::ComboBox(Handle()); }

    std::string TypedText() const override { return Combo().Text(); }
    std::vector<std::string> Entries() const override { return Combo().Items(); }
    void ShowCompletion(const std::string& entry, std::size_t typed) override;
    void PickEntry(int entry) override;
    void StartTimer() override;
    void StopTimer() override;

    Session& m_session;
    unsigned m_periodMs = 0;
    bool m_ownChange = false;
    AutoComplete m_search{*this};
    TypedEdit m_edit{*this};
};

} // namespace planfold
