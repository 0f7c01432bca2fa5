#include "plugin/basket/Basket.h"

#include "plugin/orderentry/RecordedOrders.h"
#include "sdk/Tags.h"

namespace planfold {

const AnswerHandler<Basket> Basket::kAnswers[] = {
    {"get_sip_operation_mode", &Basket::HandleOperationMode, OnError::handle},
    {"add_sip_orders", &Basket::HandlePlaced, OnError::logAndHandle},
};

void Basket::Initialise(std::string_view customProducts) {
    if (m_questions.Alone([&](Pass) { return m_form.Fill(m_view.Now(), customProducts); }) != Reply::yes)
        return;
    m_entry.Begin();
    m_runs.ShowPlaceable();
    m_view.ShowStatus();
    m_view.ShowPanel();
    if (m_life.Across([&](Pass pass) { RegisterDeleteKey(pass); }))
        Lifetime::Last([&](Pass pass) { m_form.AskFrequencies(pass); });
}

void Basket::RegisterDeleteKey(Pass pass) {
    const auto add = Find<sdk::fn::register_hotkey>(m_session.lookup, "register_hotkey");
    m_hostOwnsDeleteKey = add && Find<sdk::fn::pu_InvokeDialog>(m_session.lookup, "pu_InvokeDialog");
    if (!m_hostOwnsDeleteKey) return;
    const CString group = m_session.String(kName);
    const CString text = m_session.String("Delete");
    const CString description = m_session.String("Basket Delete");
    const CString key = m_session.String("del");
    add(pass, m_view.Handle(), &group, kDeleteHotKey, &text, &description, &key);
}

void Basket::OnClosed() {
    m_life.Renew();
    m_questions.Forget();
    m_runs.OnClosed();
}

void Basket::Delete() {
    if (m_runs.IsBusy()) return;
    const std::vector<RecordId> selected = m_view.List().Selected();
    if (selected.empty()) return;
    m_history.Remove(selected, [&] { m_view.List().RemoveSelected(); });
    m_view.ShowStatus();
    m_runs.KeepUnsentLast();
}

void Basket::GoBack(std::optional<std::string> (BasketHistory::*go)()) {
    if (m_runs.IsBusy()) return;
    if (const auto refusal = (m_history.*go)()) return m_view.ShowLast(*refusal);
    m_runs.LetPlace(m_view.List().RowCount() > m_rows.SentCount());
    m_view.ShowStatus();
    m_view.ShowPanel();
    m_runs.KeepUnsentLast();
}

std::optional<std::vector<ReviewLine>> Basket::Check() {
    if (m_runs.IsBusy()) return std::nullopt;
    std::vector<RecordId> unsent;
    const BasketList& list = m_view.List();
    for (std::size_t row = 0; row < list.RowCount(); ++row)
        if (!m_rows.IsSent(list.RecordAt(row))) unsent.push_back(list.RecordAt(row));
    return m_questions.Alone([&](Pass pass) {
        return ReviewBasket(m_rows, unsent, m_rejected, m_runs.Limits(), FactsOf(pass, m_session));
    });
}

void Basket::OnResponse(void* message) {
    if (m_session.Ended()) return;
    Dispatch<Basket>(*this, m_session, kAnswers, Answer(message));
}

void Basket::HandlePlaced(const Answer& answer) {
    const OrderPlace place = m_runs.TakeAnswered(answer);
    RecordOutcome(m_session, place, OrderEvent::registered, answer);
    std::int64_t number = 0;
    int status = kFieldRead;
    if (answer.hasError || !GetFieldNumber(answer.message, tag::echoedNumber, 0, number, status)) return;
    // A row that was deleted and taken back has another number.
    const RecordId numbered = m_rows.BySerialNumber(number);
    const RecordId record = numbered == kNoRecord ? m_rows.ByOrder(place) : numbered;
    if (record == kNoRecord) return;
    m_rows.SetUserText(record, FieldText(answer.message, tag::userText));
    m_view.List().Repaint(record);
}

void Basket::OnOrder(OrderPlace place) {
    const RecordId record = m_rows.ByOrder(place);
    if (record == kNoRecord) return;
    m_rows.SetOrder(record, place, RowStateOf(m_session.record.Ledger()[place].State()));
    m_view.List().Repaint(record);
    m_view.ShowStatusSoon();
}

} // namespace planfold
