#include "plugin/orderentry/OrderEntry.h"

#include "plugin/base/Text.h"
#include "plugin/messaging/HostQuestions.h"
#include "plugin/orderentry/PlaceOrder.h"
#include "plugin/orderentry/RecordedOrders.h"
#include "plugin/record/OrderRecord.h"
#include "plugin/resources/resource.h"
#include "sdk/Tags.h"

#include <utility>

namespace planfold {

namespace {

// Shown when the sending is over, so that a box does not hold up the next press.
struct KeptNotice final : Notices {
    void ShowMessage(Pass, std::string_view shown) override { text = shown; }
    std::string text;
};

} // namespace

const AnswerHandler<OrderEntry> OrderEntry::kAnswers[] = {
    {"get_sip_operation_mode", &OrderEntry::HandleOperationMode, OnError::handle},
    {"add_sip_orders", &OrderEntry::HandlePlaced, OnError::logAndHandle},
    {"modify_sip_order", &OrderEntry::HandleModified, OnError::logAndHandle},
};

void OrderEntry::Initialise(const LocalDateTime& now, std::string_view customProducts) {
    m_life.Renew();
    m_modifying.reset();
    m_asksLater.reset();
    m_frequencyToShow.clear();
    m_names.Forget();
    // A control that is filled tells the form, which asks the host what it shows.
    if (m_life.Across([&](Pass) { return Fill(now, customProducts); }) == Reply::yes)
        Lifetime::Last([&](Pass pass) { m_frequencies.Ask(pass); });
}

bool OrderEntry::Fill(const LocalDateTime& now, std::string_view customProducts) {
    if (!m_life.Across([&](Pass pass) { PrepareClient(pass); })) return false;
    m_view.SetDate(IDC_START_DATE, ToLocal(ToSeconds(now) + kSecondsPerDay));
    m_form.AddFirstEntries();
    m_view.Select(IDC_ACTION, 0);
    if (!m_form.FillProducts(customProducts)) return false;
    m_view.SetText(IDC_PERIOD, "1");
    m_session.m_nSipOperationMode = 0;
    m_view.Select(IDC_EXCHANGE, 0);
    if (!m_form.RefreshScrips(ScripLevel::exchange)) return false;
    m_view.Select(IDC_INVEST_BY, 0);
    OnInvestTypeChanged();
    m_view.Select(IDC_ORDER_TYPE, 0);
    m_view.Select(IDC_PRODUCT, 0);
    m_view.Select(IDC_CLIENT_COMBO, 0);
    m_untouched = ReadForm();
    m_broughtBack = false;
    return ShowPlan();
}

void OrderEntry::PrepareClient(Pass pass) {
    if (!m_form.ShowClientControl()) return;
    const auto write = m_session.host.pu_write_settings_to_json;
    if (!m_form.SearchesClients() || !write) return;
    const CString section = m_session.String("Client_Search");
    const CString key = m_session.String(kName);
    const CString on = m_session.String("1");
    write(pass, &section, &key, &on, 1);
}

bool OrderEntry::OnChosen(int combo) {
    if (combo == IDC_INVEST_BY) OnInvestTypeChanged();
    return m_form.OnChosen(combo);
}

void OrderEntry::OnInvestTypeChanged() {
    const std::string type = m_view.Text(IDC_INVEST_BY);
    m_view.SetText(IDC_VALUE, "");
    m_view.SetText(IDC_VALUE_LABEL, type);
    m_view.SetDigitsOnly(IDC_VALUE, type == "Quantity");
}

SipOrderForm OrderEntry::ReadForm() const {
    SipOrderForm form = m_form.Read(IDC_VALUE);
    form.modifyMode = FilledForModify();
    return form;
}

void OrderEntry::Submit(const LocalDateTime& now) {
    if (m_submitting) return;
    Outcome outcome;
    const bool isThere = m_life.Across([&](Pass pass) {
        if (CheckAndSend(now, outcome) && outcome.focus) m_view.Focus(outcome.focus);
        // Told also when the window has gone.
        if (!m_session.Ended() && !outcome.text.empty()) m_view.ShowMessage(pass, outcome.text);
    });
    if (isThere && outcome.form) ClearSent(outcome);
}

// A new order's value and period go whatever came of it; those of a modification when it was sent.
void OrderEntry::ClearSent(const Outcome& outcome) {
    if (outcome.sent || !FilledForModify()) {
        m_untouched = *outcome.form;
        m_untouched.value = m_untouched.totalPeriod = "";
        m_broughtBack = false;
        // Only what was submitted: under a box of another window the user may have typed the next order.
        if (m_view.Text(IDC_VALUE) == outcome.form->value) m_view.SetText(IDC_VALUE, "");
        if (m_view.Text(IDC_PERIOD) == outcome.form->totalPeriod) m_view.SetText(IDC_PERIOD, "");
    }
    ShowPlanLast();
}

bool OrderEntry::CheckAndSend(const LocalDateTime& now, Outcome& outcome) {
    m_submitting = true;
    struct Done {
        bool& flag;
        ~Done() { flag = false; }
    } done{m_submitting};

    const SipOrderForm form = ReadForm();
    sSipOrderData record;
    const auto checked = m_life.Across(
        [&](Pass pass) { return ValidateSipOrder(pass, m_session, m_view.Handle(), form, now, record); });
    if (!checked) return false;
    if (const auto& refusal = *checked) {
        outcome = {.text = refusal->text, .focus = refusal->focus};
        return true;
    }
    bool isAgreed = false;
    if (!m_life.Across([&](Pass) { isAgreed = Confirm(form, outcome.focus); })) return false;
    if (!isAgreed) return true;
    const auto orderId = m_life.Across(
        [&](Pass pass) { return form.modifyMode ? std::nullopt : m_session.FreshIdentifier(pass); });
    if (!orderId) return false;
    const RecordedOrder recorded = form.modifyMode
                                       ? RecordedChange(m_session, kModifySipOrder, m_modifying->Number(),
                                                        record.amountOrQuantity, record.totalPeriod)
                                       : RecordedNewOrder(m_session, record, orderId->value_or(""));
    if (!m_life.Across([&](Pass) { isAgreed = RecordSending(form, recorded); })) return false;
    return !isAgreed || m_life.Across([&](Pass pass) {
        Send(pass, {form, record, *orderId, recorded}, outcome);
    });
}

bool OrderEntry::Confirm(const SipOrderForm& form, int& focus) {
    if (form.modifyMode) return ConfirmChanged(form);
    const Reply unknown =
        m_life.Across([&](Pass pass) { return IsUnknownClient(pass, m_session, form.account); });
    if (unknown != Reply::yes) return unknown == Reply::no;
    if (!MayAsk(form)) return false;
    const Reply reply =
        m_life.Across([&](Pass pass) { return m_view.Ask(pass, UnknownClientQuestion(form.account)); });
    if (reply == Reply::no) focus = m_form.ClientControl();
    return reply == Reply::yes;
}

// Again when it changes once more while the question stands.
bool OrderEntry::ConfirmChanged(const SipOrderForm& form) {
    std::string told;
    for (std::string news = m_modifying->News("\n"); news != told; news = m_modifying->News("\n")) {
        if (!MayAsk(form)) return false;
        told = news;
        const std::string& user = m_modifying->ChangedBy();
        const std::string by = user.empty() ? user : " by " + user;
        const std::string question = m_modifying->Number() + " was changed" + by
                                     + " while this form was open:\n" + news + "\n\nModify it all the same?";
        if (m_life.Across([&](Pass pass) { return m_view.Ask(pass, question); }) != Reply::yes) return false;
    }
    return true;
}

// On the disk before it goes out, or the dealer agrees that it is not.
bool OrderEntry::RecordSending(const SipOrderForm& form, const RecordedOrder& recorded) {
    if (m_session.record.Sending({&recorded, 1})) return true;
    if (!MayAsk(form)) return false;
    return m_life.Across([&](Pass pass) { return m_view.Ask(pass, kNoRecordQuestion); }) == Reply::yes;
}

bool OrderEntry::MayAsk(const SipOrderForm& form) {
    if (m_view.MayAsk()) return true;
    m_asksLater = form;
    return false;
}

void OrderEntry::OnBoxGone(const LocalDateTime& now) {
    const auto form = std::exchange(m_asksLater, std::nullopt);
    if (form && m_view.IsOpen() && *form == ReadForm()) Submit(now);
}

void OrderEntry::Send(Pass pass, const Agreed& agreed, Outcome& outcome) {
    const auto& [form, record, orderId, recorded] = agreed;
    const int life = m_life.Number();
    const std::int64_t now = m_view.Milliseconds();
    KeptNotice notice;
    if (form.modifyMode) {
        const std::string number = m_modifying->Number();
        const bool isThere = m_life.Across([&](Pass) {
            outcome.sent = SendModifySipOrder(pass, m_session, m_control, notice, number, record);
        });
        if (outcome.sent) m_sentModifications.Add(number, life, now);
        // The log is the host's, and may let another registration into the form.
        if (outcome.sent && isThere) m_modifying->Sent(record);
    } else {
        // What was sent is kept whatever has become of the window.
        outcome.sent = SendAddSipOrders(pass, m_session, m_control, notice, record, orderId, form.exchange);
        if (outcome.sent) m_kept.Sent({form, recorded, now});
        if (!notice.text.empty()) m_kept.NotSent(form, notice.text);
    }
    if (!outcome.sent) m_session.record.Tell(recorded, OrderEvent::notSent, notice.text);
    outcome.text = notice.text;
    outcome.form = form;
}

void OrderEntry::OnResponse(void* message) {
    if (m_session.Ended()) return;
    Dispatch<OrderEntry>(*this, m_session, kAnswers, Answer(message));
}

void OrderEntry::HandleOperationMode(const Answer& answer) {
    if (!m_frequencies.OnAnswer(answer, !FilledForModify())) return;
    // A list that comes late must not choose what the order in the form does not say.
    if (!m_frequencyToShow.empty()) m_form.Choose(IDC_FREQUENCY, m_frequencyToShow);
    m_untouched.frequency = m_view.Text(IDC_FREQUENCY);
    ShowPlanLast();
}

void OrderEntry::ShowUserText(Pass pass, const Answer& answer) {
    const std::string text = FieldText(answer.message, tag::userText);
    if (!text.empty()) m_view.ShowMessage(pass, text);
}

void OrderEntry::HandlePlaced(const Answer& answer) {
    const std::string client = FieldText(answer.message, tag::account);
    const std::int64_t now = m_view.Milliseconds();
    const std::string text = FieldText(answer.message, tag::userText);
    if (!answer.hasError) {
        if (const auto order = m_kept.Accepted(client, now)) RecordPlaced(m_session, order->recorded, answer);
        return Lifetime::Last([&](Pass pass) { ShowUserText(pass, answer); });
    }
    if (const auto order = m_kept.Refused(client, text, answer.errorCode, now))
        RecordPlaced(m_session, order->recorded, answer);
    if (m_view.IsOpen()) ShowPlanLast();
}

void OrderEntry::HandleModified(const Answer& answer) {
    const std::string number = FieldText(answer.message, tag::registrationNumber);
    const std::string text = FieldText(answer.message, tag::userText);
    m_session.record.Tell(RecordedChange(m_session, kModifySipOrder, number),
                          answer.hasError ? OrderEvent::refused : OrderEvent::modified,
                          answer.hasError ? DescribeRefusal(text, answer.errorCode) : text);
    const bool own =
        m_sentModifications.Answered(number, m_life.Number(), answer.hasError, m_view.Milliseconds());
    if (answer.hasError) {
        if (!own || !m_view.IsOpen()) return;
        m_modifying->refusal = DescribeRefusal(text, answer.errorCode);
        return ShowPlanLast();
    }
    // Under the box another registration may have been opened in the window.
    if (m_life.Across([&](Pass pass) { ShowUserText(pass, answer); }) && own) m_view.Close();
}

} // namespace planfold
