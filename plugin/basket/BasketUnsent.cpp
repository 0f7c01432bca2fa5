// The orders that were not sent, from one session to the next.
#include "plugin/basket/BasketRuns.h"

#include "plugin/base/Text.h"
#include "plugin/basket/BasketFile.h"

#include <utility>

namespace planfold {

namespace {

std::string OfferOf(const UnsentCounts& found) {
    std::string question =
        Format("Orders of the basket that were not sent when the terminal ended: %zu.\n", found.orders);
    if (found.doubtful)
        question +=
            Format("Of these, %zu were just being placed and may have been sent: they come back marked as "
                   "sent. Look for them in the registration book.\n",
                   found.doubtful);
    return question
           + "\nYes: take them into the basket again.\nNo: save them to a file of their own.\n"
             "Cancel: ask again next time.";
}

} // namespace

// What the file held before and nobody has looked at is saved first.
bool BasketRuns::KeepUnsent() {
    std::string aside;
    if (!m_unsentSettled)
        if (const auto found = m_view.Unsent().Read(); found && !found->empty()) {
            aside = m_view.Unsent().SaveAside(*found, m_view.Now());
            if (aside.empty()) return true;
        }
    m_unsentSettled = true;
    m_view.Unsent().Replace(UnsentText(m_rows, m_view.List(), m_placing != nullptr));
    if (aside.empty() || m_session.Ended()) return !m_session.Ended();
    return m_life.Across([&](Pass pass) {
        m_view.ShowMessage(pass, "The orders that were not sent before are in\n" + aside
                                     + "\nLoad reads them from there.");
    });
}

void BasketRuns::OfferUnsent() {
    if (m_unsentSettled || IsBusy()) return;
    auto text = m_view.Unsent().Read();
    const UnsentCounts found = CountUnsent(text ? *text : std::string());
    m_unsentSettled = found.orders == 0;
    if (m_unsentSettled) return;
    const Choice choice = m_questions.Choose(OfferOf(found), m_offerAgain);
    if (choice == Choice::cancel) return;
    if (choice == Choice::no) return KeepUnsentLast();
    RememberDoubtful(*text, m_rows);
    m_bringsBack = true;
    m_path = "PlanfoldBasket.csv";
    BeginLoading(std::move(*text), m_form.RulesOfUnsent(m_view.Now()));
}

// What there is to tell.
std::string BasketRuns::EndBringingBack(bool stopped) {
    if (stopped) {
        BringNothingBack();
        return "Loading was stopped: the orders are kept, and offered again.";
    }
    std::string aside;
    if (!m_rejected.lines.empty()) aside = m_view.Unsent().SaveAside(m_rejected.Text(), m_view.Now());
    m_bringsBack = false;
    m_unsentSettled = m_rejected.lines.empty() || !aside.empty();
    KeepUnsentLast();
    return aside.empty() ? aside : "The orders that cannot be taken back are in\n" + aside;
}

// They stay in the file, and are offered again.
void BasketRuns::BringNothingBack() {
    m_bringsBack = false;
    m_view.List().RemoveAll();
    m_rows.Clear();
    m_rejected = {};
    m_view.ShowStatus();
    m_view.ShowRejected();
}

} // namespace planfold
