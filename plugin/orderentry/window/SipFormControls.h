// The windows behind a form's controls (see SipForm): value edit, client box, the host's drop-down lists.
#pragma once

#include "framework/Dialog.h"
#include "plugin/controls/window/AutoComboBox.h"
#include "plugin/controls/window/ClientSearchBox.h"
#include "plugin/controls/window/ExtEditOntry.h"
#include "plugin/controls/window/FormKeys.h"

#include <string>
#include <string_view>

namespace planfold {

class SipFormControls {
public:
    // `life` is the dialog's.
    SipFormControls(framework::Dialog& dialog, Session& session, const Lifetime& life)
        : m_dialog(dialog), m_session(session), m_life(life), m_client(session), m_clientCombo(session),
          m_lists(session) {}

    // In front of the dialog's controls, which have just been made. `searchName` is the search box's settings
    // key.
    void SetUp(Pass pass, const std::string& searchName);
    // Lets the host fit the edits to a new layout.
    void OnLaidOut() const;
    // The dialog has moved.
    void OnMoved() { m_client.CloseList(); }
    // What a notification of the form's controls means to them; the dialog sees to the rest.
    void OnCommand(const framework::Command& command);
    void OnNotify(const NMHDR& notification);
    // The user has not typed this, so that it is not searched for.
    void SetClient(std::string_view text) { m_client.SetText(text); }
    // Whether the value edit takes decimals and refuses all else; off while its digits-only style rules.
    void FilterValue(bool on) { m_value.SetFilter(on); }

    // The comma-separated list of the settings file.
    static std::string CustomProducts();

private:
    void OnDropDownClosed(int combo);

    framework::Dialog& m_dialog;
    Session& m_session;
    const Lifetime& m_life;
    CExtEditOntry m_value;
    CExtEditOntry m_quantity; // where it has an edit of its own; never filtered
    CClientSearchBox m_client;
    CAutoComboBox m_clientCombo; // where the host offers no search
    CCalendarKeys m_calendar;
    TypeAheadCombos m_lists;
    bool m_picked = false; // in the list that is dropped down
};

} // namespace planfold
