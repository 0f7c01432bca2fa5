// The orders that were not sent, from one session to the next.
#include "plugin/basket/BasketRuns.h"

#include "plugin/base/Text.h"
#include "plugin/basket/BasketFile.h"
#include "plugin/record/OrderRecord.h"

#include <unordered_map>
#include <utility>

namespace planfold {

namespace {

struct UnsentCounts {
    std::size_t orders = 0;
    std::size_t sent = 0; // of these, those that the order record knows
};

// The file may be older than the last order that was sent.
UnsentCounts Count(std::string_view text, const OrderLedger& ledger) {
    UnsentCounts counts;
    StartDates dates;
    std::unordered_map<std::uint64_t, std::size_t> standing; // of those that ask for the same
    BasketLines lines(text);
    while (const auto line = lines.Next()) {
        ++counts.orders;
        BasketTexts columns;
        if (!SplitBasketLine(line->text, columns)) continue;
        const RecordTexts order = AskedForBy(columns, dates);
        const auto [left, isNew] = standing.try_emplace(AskedForKey(order));
        if (isNew) left->second = ledger.StandingLike(order).size();
        if (left->second == 0) continue;
        --left->second;
        ++counts.sent;
    }
    return counts;
}

std::string OfferOf(const UnsentCounts& found) {
    std::string question = Format("Orders of the basket that were not sent when the terminal ended: %zu.\n",
                                  found.orders - found.sent);
    if (found.sent)
        question += Format("Besides these, %zu were sent: they come back marked with what is known of them.\n",
                           found.sent);
    return question
           + "\nYes: take them into the basket again.\nNo: save them to a file of their own.\n"
             "Cancel: ask again next time.";
}

} // namespace

// What the file held before and nobody has looked at is saved first. A failure is told once, until all is kept
// again.
bool BasketRuns::KeepUnsent() {
    std::string aside, failure;
    if (!m_unsentSettled)
        if (const auto found = m_view.Unsent().Read(); found && !found->empty()) {
            aside = m_view.Unsent().SaveAside(*found, m_view.Now());
            if (aside.empty()) failure = "Those kept before cannot be saved to a file of their own.";
        }
    if (failure.empty()) {
        m_unsentSettled = true;
        failure = m_view.Unsent().Replace(UnsentText(m_rows, m_view.List()));
    }
    std::string told;
    if (!aside.empty())
        told = "The orders that were not sent before are in\n" + aside + "\nLoad reads them from there.";
    if (const bool knewBefore = std::exchange(m_notKept, !failure.empty()); m_notKept && !knewBefore)
        told += (told.empty() ? "" : "\n\n")
                + Format("The orders of the basket are not kept for the next start: Export saves them.\n%s",
                         failure.c_str());
    if (told.empty() || m_session.Ended()) return !m_session.Ended();
    return m_life.Across([&](Pass pass) { m_view.ShowMessage(pass, told); });
}

void BasketRuns::OfferUnsent() {
    if (m_unsentSettled || IsBusy()) return;
    auto text = m_view.Unsent().Read();
    const UnsentCounts found = text ? Count(*text, m_session.record.Ledger()) : UnsentCounts();
    m_unsentSettled = found.orders == found.sent;
    if (m_unsentSettled) return;
    const Choice choice = m_questions.Choose(OfferOf(found), m_offerAgain);
    if (choice == Choice::cancel) return;
    if (choice == Choice::no) return KeepUnsentLast();
    m_bringsBack = true;
    m_path = "PlanfoldBasket.csv";
    BeginLoading(ReadingOf(std::move(*text)), m_form.RulesOfUnsent(m_view.Now()));
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
    // Nothing stood there before that an undo could bring, and what is kept would go.
    m_history.Clear();
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
    m_history.Clear();
    m_view.ShowStatus();
    m_view.ShowPanel();
}

} // namespace planfold
