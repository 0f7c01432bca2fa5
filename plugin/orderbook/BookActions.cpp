#include "plugin/orderbook/BookActions.h"

#include "plugin/base/Text.h"
#include "plugin/orderbook/BookChoice.h"
#include "plugin/record/OrderRecord.h"

#include <algorithm>

namespace planfold {

namespace {

RunKind KindOf(PauseOrResume which) {
    return which == PauseOrResume::pause ? RunKind::pause : RunKind::resume;
}

const char* DoneTo(RunKind kind) {
    constexpr const char* words[] = {"cancelled", "paused", "resumed"};
    return words[static_cast<std::size_t>(kind)];
}

} // namespace

const sOrderinfo* BookActions::FirstSelected() const {
    const RecordId record = m_view.Registered().FirstSelected();
    return record == kNoRecord ? nullptr : &m_cache[record];
}

BookActions::Wish BookActions::WishFor(RunKind kind) const {
    Wish wish{kind};
    for (const RecordId record : m_view.Registered().Selected())
        wish.numbers.emplace_back(m_cache[record].Number());
    return wish;
}

void BookActions::Cancel() {
    Ask(WishFor(RunKind::cancel));
}

void BookActions::ChangeSelected(PauseOrResume which) {
    Ask(WishFor(KindOf(which)));
}

void BookActions::Ask(const Wish& wish) {
    if (wish.numbers.empty() || TellsBusy() || !MayAsk(wish)) return;
    m_asked = wish;
    const bool isThere = m_life.Across([&](Pass) {
        if (wish.isOfOne)
            ChangeOne(ChangeOf(wish.kind), wish.numbers[0]);
        else if (wish.kind == RunKind::cancel)
            AskToCancel(wish);
        else
            AskToChange(wish);
    });
    if (!isThere) return;
    m_asked = {};
    static_cast<void>(OnBoxGone());
}

// The same that is being asked already, or waits, is asked once.
bool BookActions::MayAsk(const Wish& wish) {
    if (m_view.MayAsk() && !m_asking && !m_runs.IsWithinPortion()) return true;
    const auto covers = [&](const Wish& other) {
        return other.kind == wish.kind && std::ranges::all_of(wish.numbers, [&](const std::string& number) {
                   return std::ranges::find(other.numbers, number) != other.numbers.end();
               });
    };
    if (!covers(m_asked) && std::ranges::none_of(m_later, covers)) m_later.push_back(wish);
    return false;
}

bool BookActions::OnBoxGone() {
    if (m_asking || m_runs.IsWithinPortion()) return m_later.empty();
    m_runs.OnBoxGone();
    if (m_later.empty() || m_runs.IsSending()) return m_later.empty();
    const Wish wish = m_later.front();
    m_later.erase(m_later.begin());
    Ask(wish);
    return m_later.empty();
}

bool BookActions::TellsBusy() {
    if (!m_runs.IsSending()) return false;
    m_view.ShowLast(m_runs.Progress() + ".\nPlease wait until all are sent, or stop it.");
    return true;
}

std::vector<RecordId> BookActions::Standing(const Wish& wish) {
    std::vector<RecordId> records;
    for (const std::string& number : wish.numbers)
        if (const RecordId record = m_cache.Find(number);
            record != kNoRecord && m_view.Registered().Contains(record))
            records.push_back(record);
    if (records.empty())
        m_view.ShowLast(
            Format("None of the %zu selected registrations is in the book any more.", wish.numbers.size()));
    return records;
}

void BookActions::AskToCancel(const Wish& wish) {
    const std::vector<RecordId> records = Standing(wish);
    if (records.empty()) return;
    const std::string question =
        records.size() == 1
            ? Format("Do you want to cancel Order No: %s ", std::string(m_cache[records[0]].Number()).c_str())
            : Format("You have selected %d Orders to Cancel. Proceed?", static_cast<int>(records.size()));
    std::optional<std::string> reason;
    m_asking = true;
    // Whichever way the reason is closed, the cancellation goes on.
    if (m_life.Across([&](Pass pass) { return m_view.Ask(pass, question); }) == Reply::yes)
        reason = m_life.Across([&](Pass pass) { return m_view.AskReason(pass, records.size()); });
    m_asking = false;
    if (reason) m_runs.Begin(RunKind::cancel, records, std::move(*reason));
}

bool BookActions::AskNow(std::string_view question) {
    m_asking = true;
    const Reply reply = m_life.Across([&](Pass pass) { return m_view.Ask(pass, question); });
    m_asking = false;
    return reply == Reply::yes;
}

void BookActions::AskToChange(const Wish& wish) {
    const std::vector<RecordId> records = Standing(wish);
    if (records.empty()) return;
    const std::size_t selected = wish.numbers.size();
    const BookChoice choice = ChooseToChange(ChangeOf(wish.kind), m_cache, records, selected - records.size(),
                                             m_session.identity.loginId);
    if (choice.records.empty())
        return m_view.ShowLast(
            Format("None of the %zu selected registrations can be %s.", selected, DoneTo(wish.kind))
            + choice.leftOut);
    const std::string question = Format("%zu of %zu selected registrations will be %s: ", choice.records.size(),
                                        selected, DoneTo(wish.kind))
                                 + choice.totals + choice.leftOut + "\nProceed?";
    if (AskNow(question)) m_runs.Begin(wish.kind, choice.records, {});
}

void BookActions::Modify() {
    const sOrderinfo* record = FirstSelected();
    if (!record) return;
    const std::string_view status = record->Text(OrderField::sipStatus);
    if (HasEnded(status))
        m_view.ShowLast("Cannot modify SIP. Order status: " + std::string(status));
    else
        Lifetime::Last([&](Pass pass) { m_view.OpenForModify(pass, *record); });
}

void BookActions::Change(PauseOrResume which) {
    const sOrderinfo* record = FirstSelected();
    if (!record || TellsBusy()) return;
    if (const StatusRefusal* refusal = RefusalTo(which, record->Text(OrderField::sipStatus)))
        m_view.ShowLast(refusal->text);
    else
        ChangeOne(which, std::string(record->Number()));
}

void BookActions::ChangeOne(PauseOrResume which, const std::string& number) {
    const RecordId record = m_cache.Find(number);
    const std::string client(record == kNoRecord ? "" : m_cache[record].Text(OrderField::account));
    const RecordedOrder recorded =
        RecordedChange(m_session, RequestNameOf(which), number, {}, {}, {}, {}, client);
    const auto places = BeforeSending(m_session.record).Places({&recorded, 1}, [&](std::string_view question) {
        return MayAsk({KindOf(which), {number}, true}) && AskNow(question);
    });
    if (!places) return;
    Lifetime::Last([&](Pass pass) {
        if (!SendPauseSipOrder(pass, m_session, m_control, m_view, which, number))
            m_session.record.Tell(places->front(), OrderEvent::notSent, {});
    });
}

void BookActions::Reset() {
    m_life.Renew();
    m_later.clear();
    m_asked = {};
    m_runs.Reset();
}

} // namespace planfold
