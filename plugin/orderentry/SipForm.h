// The controls that every form for one SIP order has: what stands in them first, what follows a change of the
// scrip, and how they are read.
#pragma once

#include "plugin/controls/DialogView.h"
#include "plugin/messaging/Session.h"
#include "plugin/orderentry/SipOrder.h"

#include <string_view>

namespace planfold {

// Which combo the user changed; those behind it are filled anew. The values are the host's.
enum class ScripLevel : int { exchange = 0, series = 1 };

// Where the host is let in, false says that the window has gone meanwhile.
class SipForm {
public:
    // `life` is that of the window.
    SipForm(Session& session, DialogView& view, const Lifetime& life)
        : m_session(session), m_view(view), m_life(life) {}

    bool SearchesClients() const { return m_session.host.pu_get_entered_text_results != nullptr; }
    // The search box, or the combo when the host cannot search.
    [[nodiscard]] bool ShowClientControl();
    int ClientControl() const;
    // The host's active client, else the combo's first entry or an empty box.
    [[nodiscard]] bool ShowActiveClient();
    void AddFirstEntries();
    // `customProducts` is the comma-separated list of the settings file; it counts only for holders of the
    // right.
    [[nodiscard]] bool FillProducts(std::string_view customProducts);
    // The user has chosen in this combo: those that hang on it are filled anew.
    [[nodiscard]] bool OnChosen(int combo);
    [[nodiscard]] bool RefreshScrips(ScripLevel changed);
    // A combo for an order that comes into the form. Without its entry it shows nothing, and false is returned:
    // no other entry may be taken for it.
    bool Choose(int combo, std::string_view text);

    // Empties the combo but for the text, and locks it; the same for the client.
    void Fix(int combo, std::string_view text);
    void FixClient(std::string_view client);

    // `valueControl` is where amount or quantity is typed.
    SipOrderForm Read(int valueControl) const;

private:
    Session& m_session;
    DialogView& m_view;
    const Lifetime& m_life;
};

} // namespace planfold
