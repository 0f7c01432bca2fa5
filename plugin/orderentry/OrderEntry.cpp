#include "plugin/orderentry/OrderEntry.h"

#include "plugin/base/Text.h"
#include "plugin/messaging/HostQuestions.h"
#include "plugin/orderentry/DuplicateGuard.h"
#include "plugin/orderentry/PlaceOrder.h"
#include "plugin/orderentry/RecordedOrders.h"
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
    {kModifySipOrder, &OrderEntry::HandleModified, OnError::logAndHandle},
};

void OrderEntry::Initialise(const LocalDateTime& now, std::string_view customProducts) {
    m_life.Renew();
    m_modifying.reset();
    m_asksLater.reset();
    // A control that is filled tells the form, which asks the host what it shows.
    if (m_life.Across([&](Pass) { return m_form.Fill(now, customProducts); }) == Reply::yes)
        Lifetime::Last([&](Pass pass) { m_form.AskFrequencies(pass); });
}

void OrderEntry::FillForModify(const SipRegistration& registration) {
    m_life.Renew();
    // Also when the filling stops half-way: no new order comes out of this form, and no change of the
    // registration that it showed before.
    const bool showedOne = m_modifying && !m_modifying->Number().empty();
    m_modifying.emplace();
    m_asksLater.reset();
    if (showedOne) {
        m_view.SetTitle(OrderEntryForm::kName);
        m_view.SetText(IDC_SUBMIT, "Submit");
    }
    const bool serverPeriods = m_session.m_nSipOperationMode != 0;
    // A control that is filled tells the form, which asks the host what it shows.
    if (m_life.Across([&](Pass) { return m_form.FillFrom(registration, serverPeriods); }) != Reply::yes) return;
    m_modifying.emplace(registration, serverPeriods);
    m_view.SetTitle(Format("Planfold Modify Order: %s", registration.number.c_str()));
    m_view.SetText(IDC_SUBMIT, "Modify");
    if (m_form.ShowPlan()) m_view.Focus(IDC_VALUE);
}

void OrderEntry::OnRegistrationChanged(const SipRegistration& registration) {
    if (!Modifies(registration.number) || registration.number.empty()) return;
    m_modifying->Update(registration);
    ShowPlanLast();
}

void OrderEntry::Submit(const LocalDateTime& now) {
    if (m_submitting) return;
    Outcome outcome;
    const bool isThere = m_life.Across([&](Pass pass) {
        if (CheckAndSend(now, outcome) && outcome.focus) m_view.Focus(outcome.focus);
        // Told also when the window has gone.
        if (!m_session.Ended() && !outcome.text.empty()) m_view.ShowMessage(pass, outcome.text);
    });
    if (!isThere || !outcome.form) return;
    // A new order's value and period go whatever came of it; those of a modification when it was sent.
    if (outcome.sent || !FilledForModify()) m_form.ClearSubmitted(*outcome.form);
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
    if (!m_life.Across([&](Pass) { isAgreed = Confirm(form, record, outcome.focus); })) return false;
    if (!isAgreed) return true;
    const auto orderId = m_life.Across(
        [&](Pass pass) { return form.modifyMode ? std::nullopt : m_session.FreshIdentifier(pass); });
    if (!orderId) return false;
    const RecordedOrder recorded =
        form.modifyMode
            ? RecordedChange(m_session, kModifySipOrder, m_modifying->Number(), record.amountOrQuantity,
                             record.totalPeriod, {}, record.investType, m_modifying->Now().account)
            : RecordedNewOrder(m_session, record, orderId->value_or(""), StartDates().Text(record.startDate));
    std::optional<OrderPlace> place;
    if (!m_life.Across([&](Pass) { place = RecordSending(form, recorded); })) return false;
    return !place || m_life.Across([&](Pass pass) { Send(pass, {form, record, *orderId, *place}, outcome); });
}

bool OrderEntry::Confirm(const SipOrderForm& form, const sSipOrderData& order, int& focus) {
    if (form.modifyMode) return ConfirmChanged(form);
    return ConfirmClient(form, focus) && ConfirmLike(form, order);
}

bool OrderEntry::ConfirmClient(const SipOrderForm& form, int& focus) {
    const Reply unknown =
        m_life.Across([&](Pass pass) { return IsUnknownClient(pass, m_session, form.account); });
    if (unknown != Reply::yes) return unknown == Reply::no;
    if (!MayAsk(form)) return false;
    const Reply reply =
        m_life.Across([&](Pass pass) { return m_view.Ask(pass, UnknownClientQuestion(form.account)); });
    if (reply == Reply::no) focus = m_form.ClientControl();
    return reply == Reply::yes;
}

bool OrderEntry::ConfirmLike(const SipOrderForm& form, const sSipOrderData& order) {
    StartDates dates;
    DuplicateGuard guard(m_session);
    if (!guard.IsLike(RecordedNewOrder(m_session, order, {}, dates.Text(order.startDate)).Texts())) return true;
    if (!MayAsk(form)) return false;
    const std::string question =
        "This order has been placed before:\n" + guard.Text() + "\nPlace it once more?";
    return m_life.Across([&](Pass pass) { return m_view.Ask(pass, question); }) == Reply::yes;
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
std::optional<OrderPlace> OrderEntry::RecordSending(const SipOrderForm& form, const RecordedOrder& recorded) {
    const auto places = BeforeSending(m_session.record).Places({&recorded, 1}, [&](std::string_view question) {
        return MayAsk(form)
               && m_life.Across([&](Pass pass) { return m_view.Ask(pass, question); }) == Reply::yes;
    });
    return places ? std::optional(places->front()) : std::nullopt;
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
    const auto& [form, record, orderId, place] = agreed;
    const int life = m_life.Number();
    const std::int64_t now = m_view.Milliseconds();
    KeptNotice notice;
    if (form.modifyMode) {
        const std::string number = m_modifying->Number();
        const bool isThere = m_life.Across([&](Pass) {
            outcome.sent = SendModifySipOrder(pass, m_session, m_control, notice, number, agreed.order);
        });
        if (outcome.sent) m_sentModifications.Add(number, life, now);
        // The log is the host's, and may let another registration into the form.
        if (outcome.sent && isThere) m_modifying->Sent(record);
    } else {
        // What was sent is kept whatever has become of the window; the host's log may let its answer in.
        m_kept.Sent({form, place, now});
        outcome.sent = SendAddSipOrders(pass, m_session, m_control, notice, record, orderId, form.exchange);
        if (!outcome.sent) m_kept.Withdraw(place);
        if (!notice.text.empty()) m_kept.NotSent(form, notice.text);
    }
    if (!outcome.sent) m_session.record.Tell(place, OrderEvent::notSent, notice.text);
    outcome.text = notice.text;
    outcome.form = form;
}

bool OrderEntry::BringBack() {
    if (FilledForModify() || m_submitting) return false;
    const auto order = m_kept.TakeNext();
    if (!order) return false;
    if (m_form.IsTouched()) m_kept.SetAside(ReadForm());
    if (!m_form.BringBack(*order)) m_kept.SetAside(*order);
    return true;
}

void OrderEntry::OnResponse(void* message) {
    if (m_session.Ended()) return;
    Dispatch<OrderEntry>(*this, m_session, kAnswers, Answer(message));
}

void OrderEntry::OnOrder(OrderPlace place) {
    if (m_kept.OnState(place, m_session.record.Ledger()[place].State()) && m_view.IsOpen())
        m_view.ShowPlanSoon();
}

void OrderEntry::ShowUserText(Pass pass, const Answer& answer) {
    const std::string text = FieldText(answer.message, tag::userText);
    if (!text.empty()) m_view.ShowMessage(pass, text);
}

void OrderEntry::HandlePlaced(const Answer& answer) {
    const std::string client = FieldText(answer.message, tag::account);
    const std::int64_t now = m_view.Milliseconds();
    const std::string text = FieldText(answer.message, tag::userText);
    const OrderPlace named = PlaceOf(m_session, answer);
    if (!answer.hasError) {
        const auto order = m_kept.Accepted(named, client, now);
        // Also what the form no longer waits for: a late answer still is one.
        RecordOutcome(m_session, order ? order->place : named, OrderEvent::registered, answer);
        return Lifetime::Last([&](Pass pass) { ShowUserText(pass, answer); });
    }
    if (const auto order = m_kept.Refused(named, client, text, answer.errorCode, now))
        RecordOutcome(m_session, order->place, OrderEvent::registered, answer);
    if (m_view.IsOpen()) ShowPlanLast();
}

void OrderEntry::HandleModified(const Answer& answer) {
    const std::string number = FieldText(answer.message, tag::registrationNumber);
    RecordChanged(m_session, kModifySipOrder, number, OrderEvent::modified, answer);
    const bool own =
        m_sentModifications.Answered(number, m_life.Number(), answer.hasError, m_view.Milliseconds());
    if (answer.hasError) {
        if (!own || !m_view.IsOpen()) return;
        m_modifying->refusal = DescribeRefusal(FieldText(answer.message, tag::userText), answer.errorCode);
        return ShowPlanLast();
    }
    // Under the box another registration may have been opened in the window.
    if (m_life.Across([&](Pass pass) { ShowUserText(pass, answer); }) && own) m_view.Close();
}

} // namespace planfold
