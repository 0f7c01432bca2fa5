// Drop-down lists in which typed letters are collected.
#pragma once

#include "framework/Subclass.h"
#include "plugin/controls/TypeAhead.h"
#include "plugin/messaging/Session.h"

#include <deque>

namespace planfold {

class CTypeAheadCombo final : public framework::Subclass {
public:
    explicit CTypeAheadCombo(const Session& session) : m_session(session) {}

private:
    std::shared_ptr<void> Hold() override { return m_session.owner.lock(); }
    std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    void OnCharacter(char character);
    void Notify(WORD notification) const;

    const Session& m_session;
    TypeAhead m_typed;
};

// All those of a dialog.
class TypeAheadCombos {
public:
    // The session ends what a choice in the lists may end.
    explicit TypeAheadCombos(const Session& session) : m_session(session) {}

    // To the dialog's controls, which have just been made.
    void Attach(HWND dialog);

private:
    const Session& m_session;
    // They stay where they are for another window of the dialog: one may still be telling of a choice.
    std::deque<CTypeAheadCombo> m_combos;
};

} // namespace planfold
