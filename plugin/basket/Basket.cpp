#include "plugin/basket/Basket.h"

#include "plugin/base/Numbers.h"
#include "plugin/base/Text.h"
#include "plugin/basket/BasketColumns.h"
#include "plugin/basket/BasketFile.h"
#include "plugin/messaging/HostQuestions.h"
#include "plugin/orderentry/RecordedOrders.h"
#include "plugin/resources/resource.h"
#include "sdk/Tags.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace planfold {

namespace {

constexpr std::string_view kAdd = "Add";
constexpr std::string_view kModify = "&Modify";

std::string SideText(const char* side, const BasketTotals& totals) {
    return Format("%s: amount %s, quantity %lld", side, InRupees(totals.amountPaise).c_str(),
                  static_cast<long long>(totals.quantity));
}

} // namespace

const AnswerHandler<Basket> Basket::kAnswers[] = {
    {"get_sip_operation_mode", &Basket::HandleOperationMode, OnError::handle},
    {"add_sip_orders", &Basket::HandlePlaced, OnError::logAndHandle},
};

void Basket::Initialise(std::string_view customProducts) {
    if (m_questions.Alone([&](Pass) { return m_form.Fill(m_view.Now(), customProducts); }) != Reply::yes)
        return;
    LeaveModifyMode();
    m_rejected.corrected = 0;
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

bool Basket::IsModifying() const {
    return m_view.Text(IDC_SUBMIT) == kModify;
}

void Basket::LeaveModifyMode() {
    m_view.SetText(IDC_SUBMIT, kAdd);
}

// The selected row; of several, that which the form was filled from. When that one is gone, no other takes its
// place.
RecordId Basket::RowToModify() const {
    const RecordId shown = m_rows.BySerialNumber(m_shownRow);
    if (shown == kNoRecord) return kNoRecord;
    const std::vector<RecordId> selected = m_view.List().Selected();
    return std::ranges::find(selected, shown) != selected.end() ? shown : m_view.List().FirstSelected();
}

std::string Basket::OtherRowQuestion(RecordId selected) const {
    const auto named = [&](RecordId record) {
        const sBasketOrderData& row = m_rows[record];
        return std::string(row.Text(BasketField::account)) + ' ' + std::string(row.Text(BasketField::symbol));
    };
    return "The form was filled from the order for " + named(m_rows.BySerialNumber(m_shownRow))
           + ", but the row for " + named(selected)
           + " is selected.\n\nYes: replace the selected order by what the form shows.\nNo: change nothing.";
}

void Basket::AddOrModify() {
    if (m_runs.IsBusy()) return;
    m_runs.LetPlace(true);
    FormOrder order;
    const auto read = m_questions.Alone([&](Pass pass) { return m_form.Read(pass, m_view.Now(), order); });
    if (!read) return;
    if (const auto& refusal = *read) {
        if (refusal->focus) m_view.Focus(refusal->focus);
        return m_view.ShowLast(refusal->text);
    }
    if (!m_questions.AskAboutUnknown({order.data.account}, "Take the order into the basket all the same?",
                                     m_addAgain))
        return;
    if (!IsModifying()) {
        TakeIn(order.Texts());
        m_view.ShowStatus();
        return m_runs.KeepUnsentLast();
    }
    RecordId selected = RowToModify();
    if (selected != kNoRecord && m_rows[selected].SerialNumber() != m_shownRow) {
        const std::int32_t serial = m_rows[selected].SerialNumber();
        if (!m_questions.Ask(OtherRowQuestion(selected), m_addAgain)) return;
        selected = m_rows.BySerialNumber(serial);
    }
    LeaveModifyMode();
    m_form.ClearAfterModify();
    if (selected == kNoRecord) return m_view.ShowLast("Order Not Found");
    m_history.Replace(selected, order.Texts());
    m_view.ShowStatus();
    m_runs.KeepUnsentLast();
}

void Basket::Activate(RecordId record) {
    if (m_runs.IsBusy() || record == kNoRecord) return;
    // A copy: while the form fills the host may let an answer in, which changes the row.
    const sBasketOrderData row(m_rows[record].Texts(), 0);
    const auto notShown =
        m_questions.Alone([&](Pass pass) { return m_form.ShowRow(pass, row.Texts(), m_view.Now()); });
    if (!notShown) return;
    m_shownRow = m_rows[record].SerialNumber();
    m_rejected.corrected = 0;
    // What the form does not show as it is must not be taken for the row, whichever it showed before.
    m_view.SetText(IDC_SUBMIT, *notShown == 0 ? kModify : kAdd);
    TellNotShown(*notShown);
}

void Basket::TellNotShown(int fields) {
    for (; fields > 0; --fields)
        if (!m_life.Across([&](Pass pass) { m_view.ShowMessage(pass, "Failed to Load"); })) return;
}

void Basket::ActivateRejected(std::size_t index) {
    if (m_runs.IsBusy() || index >= m_rejected.lines.size()) return;
    const int number = m_rejected.lines[index].number;
    const std::string line = m_rejected.lines[index].text;
    BasketTexts columns;
    if (!SplitBasketLine(line, columns))
        return m_view.ShowLast("The line does not have the columns of a basket file.");
    const auto notShown =
        m_questions.Alone([&](Pass pass) { return m_form.Show(pass, columns, m_view.Now()); });
    if (!notShown) return;
    LeaveModifyMode();
    m_rejected.corrected = number;
    TellNotShown(*notShown);
}

// What the form was filled from is in the list then.
void Basket::TakeIn(const BasketTexts& texts) {
    const BasketHistory::Change change(m_history);
    m_history.Add(texts);
    const auto corrected =
        std::ranges::find(m_rejected.lines, std::exchange(m_rejected.corrected, 0), &RejectedLine::number);
    if (corrected == m_rejected.lines.end()) return;
    m_history.RemoveRejected(static_cast<std::size_t>(corrected - m_rejected.lines.begin()));
    m_view.ShowPanel();
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

std::optional<FormOrder> Basket::Complete(Pass pass, sSipOrderData order) const {
    const auto scrip = AskScripDetails(pass, m_session, order.exchange, order.tradingSymbol);
    if (!scrip) return std::nullopt;
    FormOrder whole;
    whole.data = std::move(order);
    whole.data.token = TextOf(scrip->token);
    const std::string& symbol = whole.data.tradingSymbol;
    const std::size_t dash = symbol.rfind('-');
    whole.symbol = symbol.substr(0, dash);
    if (dash != symbol.npos) whole.series = symbol.substr(dash + 1);
    whole.startDateText = FormatPickerDate(ToLocal(LeadingInteger(whole.data.startDate)));
    return whole;
}

std::size_t Basket::Add(Pass pass, std::vector<sSipOrderData> orders) {
    if (m_runs.IsBusy()) return 0;
    std::vector<ComingOrder> coming;
    for (sSipOrderData& order : orders) {
        auto whole = Complete(pass, std::move(order));
        if (m_session.Ended()) return 0;
        if (whole) coming.push_back({std::move(*whole), kNoOrder});
    }
    return TakeIn(coming);
}

std::size_t Basket::TakeBack(Pass pass, std::span<const OrderPlace> orders) {
    if (m_runs.IsBusy()) return 0;
    std::vector<ComingOrder> coming;
    std::size_t standing = 0;
    for (const OrderPlace place : orders) {
        if (m_rows.ByOrder(place) != kNoRecord) {
            ++standing;
            continue;
        }
        auto sent = OrderOf(m_session.record.Ledger()[place]);
        auto whole = sent ? Complete(pass, std::move(*sent)) : std::nullopt;
        if (m_session.Ended()) return 0;
        if (whole) coming.push_back({std::move(*whole), place});
    }
    return standing + TakeIn(coming);
}

// The host was let in before, and with it perhaps a load.
std::size_t Basket::TakeIn(const std::vector<ComingOrder>& orders) {
    if (m_runs.IsBusy()) return 0;
    {
        const BasketHistory::Change change(m_history);
        for (const auto& [order, place] : orders) {
            if (place != kNoOrder && m_rows.ByOrder(place) != kNoRecord) continue;
            const RecordId row = m_history.Add(order.Texts());
            if (place == kNoOrder) continue;
            m_rows.SetOrder(row, place, RowStateOf(m_session.record.Ledger()[place].State()));
            m_view.List().Repaint(row);
        }
    }
    m_runs.LetPlace(m_view.List().RowCount() > 0);
    m_view.ShowStatusSoon();
    m_runs.KeepUnsentLast();
    return orders.size();
}

// Only what was submitted: under the box the user may have typed the next order.
void Basket::AddAgain() {
    if (m_pressed == Press()) AddOrModify();
}

Basket::Pressed Basket::Press() const {
    const RecordId row = IsModifying() ? RowToModify() : kNoRecord;
    return {m_form.Shown(), row == kNoRecord ? 0 : m_rows[row].SerialNumber()};
}

void Basket::Export() {
    if (m_runs.IsBusy()) return;
    if (m_view.List().RowCount() == 0) return m_view.ShowLast("No items in the list");
    const auto path =
        m_questions.Alone([&](Pass pass) { return m_view.AskExportPath(pass); }).value_or(std::nullopt);
    if (!path) return;
    std::string text;
    const BasketList& list = m_view.List();
    for (std::size_t row = 0; row < list.RowCount(); ++row)
        AppendBasketLine(m_rows[list.RecordAt(row)], text);
    if (m_view.WriteFileWhole(*path, BasketFileText(std::move(text))))
        m_view.ShowLast("Exported to File Successfully");
    else
        m_view.ShowLast(" Basket File Write Error: File Open Error");
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

void Basket::SaveRejected() {
    if (!m_rejected.lines.empty()) Save([&] { return m_rejected.Text(); });
}

void Basket::SaveResults() {
    Save([&] {
        std::string text;
        for (const BasketResult& result : Results())
            AppendBasketLine(m_rows[result.record], text);
        return BasketFileText(std::move(text));
    });
}

void Basket::SaveReasons() {
    if (!m_rejected.lines.empty()) Save([&] { return RejectedTable(m_rejected.lines); });
}

void Basket::SaveTable(bool resultsOnly) {
    if (m_view.List().RowCount() == 0) return m_view.ShowLast("No items in the list");
    Save([&] {
        std::vector<RecordId> records;
        const BasketList& list = m_view.List();
        if (resultsOnly)
            std::ranges::transform(Results(), std::back_inserter(records), &BasketResult::record);
        else
            for (std::size_t row = 0; row < list.RowCount(); ++row)
                records.push_back(list.RecordAt(row));
        BasketCells cells;
        std::string csv;
        for (const BasketColumn& column : kBasketListColumns)
            AppendCsvField(column.heading, column.field == kStateOfRow, csv);
        for (const RecordId record : records)
            for (const auto& [heading, width, field, type, align] : kBasketListColumns)
                AppendCsvField(field == kStateOfRow ? StateText(record) : cells.Text(m_rows[record], field),
                               field == kStateOfRow, csv);
        return csv;
    });
}

void Basket::Save(const std::function<std::string()>& text) {
    if (m_runs.IsBusy()) return;
    const auto path =
        m_questions.Alone([&](Pass pass) { return m_view.AskRejectsPath(pass); }).value_or(std::nullopt);
    if (path && !m_view.WriteFileWhole(*path, text()))
        m_view.ShowLast(" Basket File Write Error: File Open Error");
}

std::string Basket::StateText(RecordId record) const {
    const RowState state = m_rows.State(record);
    const OrderPlace place = m_rows.OrderOf(record);
    if (state == RowState::notSent || place == kNoOrder)
        return state == RowState::notSent ? "Not sent"
                                          : "Not placed: " + std::string(m_rows.WhyNotPlaced(record));
    const RecordedOrder& order = m_session.record.Ledger()[place];
    const std::string said(order.Text(RecordField::text));
    switch (state) {
    case RowState::sent:
        return "Sent";
    case RowState::registered:
        return "Registered " + std::string(order.Text(RecordField::registration));
    case RowState::refused:
        return said;
    case RowState::inDoubt:
        return "In doubt: sent at " + std::string(order.SentAt().substr(11, 5)) + ", no answer";
    case RowState::absent:
        return "Not in the book";
    default:
        return "Not placed: "
               + (m_rows.WhyNotPlaced(record).empty() ? said : std::string(m_rows.WhyNotPlaced(record)));
    }
}

std::string Basket::Describe(RecordId record) const {
    const sBasketOrderData& row = m_rows[record];
    std::string text;
    for (const BasketField field : {BasketField::account, BasketField::symbol, BasketField::frequency})
        text.append(row.Text(field)).push_back(' ');
    const std::string_view investType = row.Text(BasketField::investType);
    const std::string_view value = row.Text(ValueField(investType));
    return text + (investType == "value" ? InRupees(LeadingInteger(value)) : std::string(value));
}

std::vector<BasketResult> Basket::Results() const {
    std::vector<BasketResult> results;
    const BasketList& list = m_view.List();
    const auto isTold = [](RowState state) {
        return state != RowState::notSent && state != RowState::sent && state != RowState::registered;
    };
    bool any = false;
    for (std::size_t state = 0; state < static_cast<std::size_t>(RowState::count); ++state)
        any = any || (isTold(static_cast<RowState>(state)) && m_rows.Count(static_cast<RowState>(state)) > 0);
    for (std::size_t row = 0; any && row < list.RowCount(); ++row)
        if (const RecordId record = list.RecordAt(row); isTold(m_rows.State(record)))
            results.push_back({record, StateText(record)});
    return results;
}

std::vector<std::string> Basket::Status() const {
    const BasketList& list = m_view.List();
    const std::size_t rows = list.RowCount();
    const std::size_t hidden = rows - list.ShownCount();
    std::string counts = Format("Rows: %zu", rows);
    if (hidden) counts += Format(" (%zu hidden)", hidden);
    std::string marks;
    const auto tell = [&](const std::string& text) { marks.append(marks.empty() ? "" : "  ").append(text); };
    if (m_rows.StandingTwice()) tell(Format("Duplicates: %zu", m_rows.StandingTwice()));
    if (const std::size_t sent = m_rows.SentCount(); sent > 0)
        tell(Format("Sent %zu: %zu registered, %zu refused, %zu in doubt", sent,
                    m_rows.Count(RowState::registered), m_rows.Count(RowState::refused),
                    m_rows.Count(RowState::inDoubt)));
    constexpr std::pair<RowState, const char*> others[] = {{RowState::sent, "Waiting: "},
                                                           {RowState::notPlaced, "Not placed: "},
                                                           {RowState::absent, "Not in the book: "}};
    for (const auto& [state, text] : others)
        if (const std::size_t count = m_rows.Count(state); count > 0) tell(text + std::to_string(count));
    return {std::move(counts), SideText("SIP", m_rows.Buy()), SideText("SWP", m_rows.Sell()), std::move(marks)};
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
