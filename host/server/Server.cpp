#include "host/server/Server.h"

#include "host/server/schedule/Schedule.h"

#include <algorithm>

namespace vesk {
namespace {

// Fields that a record takes from its request as they are.
constexpr std::uint32_t kTakenOver[] = {
    tag::loginId,     tag::peerIdA, tag::peerIdB,   tag::exchange,   tag::token,       tag::tradingSymbol,
    tag::side,        tag::product, tag::orderType, tag::investType, tag::frequency,   tag::amountOrQuantity,
    tag::totalPeriod, tag::account, tag::validity,  tag::orderId,    tag::orderSource, tag::cautionaryFlag,
};

constexpr std::string_view kAddOrder = "add_sip_orders";

// In which an order that is sent again must be as it was, beside its start.
constexpr std::uint32_t kSameOrder[] = {
    tag::orderId,   tag::account,          tag::exchange,    tag::token,    tag::tradingSymbol,
    tag::side,      tag::product,          tag::orderType,   tag::validity, tag::investType,
    tag::frequency, tag::amountOrQuantity, tag::totalPeriod,
};

// Comes back as it was sent.
void Echo(qmx::MessageWriter& writer, void* request, std::uint32_t tag) {
    if (qmx::Has(request, tag)) writer.Add(tag, qmx::Text(request, tag).substr(0, kLongestText));
}

// By which a basket finds its row, and the record its order, again.
void EchoOrder(qmx::MessageWriter& writer, void* request, bool hasSerial) {
    if (hasSerial) Echo(writer, request, tag::echoedNumber);
    Echo(writer, request, tag::orderId);
}

std::vector<QmxDatum> Data(const std::vector<std::string>& texts) {
    std::vector<QmxDatum> data;
    data.reserve(texts.size());
    for (const std::string& text : texts)
        data.push_back(qmx::Datum(text));
    return data;
}

void AddTexts(qmx::MessageWriter& writer, std::uint32_t tag, const std::vector<std::string>& texts) {
    if (texts.empty()) return;
    const std::vector<QmxDatum> data = Data(texts);
    writer.AddValues(tag, data.data(), static_cast<std::uint32_t>(data.size()));
}

std::chrono::year_month_day StartOf(void* request, const Clockwork& clock) {
    return clock.DateAt(WholeNumber(qmx::Text(request, tag::startDate)).value_or(0));
}

// Under this sequence number.
Registration MakeRegistration(void* request, const Clockwork& clock, std::size_t sequence,
                              std::string_view sentAs) {
    Registration registration;
    if (!sentAs.empty()) registration.ordered.Set(tag::requestName, sentAs);
    for (const std::uint32_t tag : kTakenOver)
        if (qmx::Has(request, tag)) registration.Set(tag, qmx::Text(request, tag));
    const auto today = clock.Today();
    const auto start = StartOf(request, clock);
    const auto periods = static_cast<int>(WholeNumber(qmx::Text(request, tag::totalPeriod)).value_or(1));
    const InstalmentPlan plan{start, qmx::Text(request, tag::frequency), periods};
    registration.progress = BeginPlan(plan, today);
    registration.Set(tag::startDate, RecordDate(start));
    registration.Set(tag::endDate, RecordDate(LastDueDate(plan, registration.progress)));
    registration.Set(tag::registrationDate, RecordDate(today));
    registration.Set(tag::registrationNumber, DatedNumber(kNumberPrefix, today, sequence));
    registration.Set(tag::sipStatus, kStatusActive);
    registration.Set(tag::streamName, kStreamName);
    return registration;
}

// Whether the order asks for what the registration's has.
bool IsSameOrder(void* request, const Registration& registration, const Clockwork& clock) {
    return std::ranges::all_of(
               kSameOrder,
               [&](std::uint32_t tag) { return registration.Ordered(tag) == qmx::Text(request, tag); })
           && registration.Text(tag::startDate) == RecordDate(StartOf(request, clock));
}

} // namespace

struct Server::Handler {
    std::string_view request;
    Reply (Server::*handle)(void* request, const UserIdentity& user);
};
const Server::Handler Server::kHandlers[] = {
    {"get_sip_operation_mode", &Server::AnswerOperationMode},
    {"calendar_add_restricted_dates", &Server::SetRestrictedDays},
    {"calendar_get_restricted_dates", &Server::AnswerRestrictedDays},
};

Server::Server(ServerConfig config, vesk::Journal& journal, const std::vector<std::string_view>& records,
               ServerClock clock)
    : m_config(std::move(config)), m_journal(journal),
      m_clock(m_config, m_registrations, m_journal, std::move(clock)) {
    Replay(records);
}

void Server::Replay(const std::vector<std::string_view>& records) {
    m_registrations.MakeRoom(records.size());
    for (std::size_t i = 0; i < records.size(); ++i) {
        if (m_registrations.Replay(records[i]) || m_clock.Replay(records[i])) continue;
        m_journal.FailReplay(i + 1);
        return;
    }
    for (std::size_t place = 0; place < m_registrations.Size(); ++place)
        m_clock.Schedule(place);
    m_journal.EndReplay(records.size());
}

void Server::Hold() {
    m_journal.Hold();
    m_registrations.HoldTold();
}

std::string Server::Release() {
    std::string fault = m_journal.Release();
    if (!fault.empty()) Undo();
    m_registrations.TellHeld();
    return fault;
}

void Server::Undo() {
    m_upkeep.Forget();
    m_registrations.Clear();
    m_clock.Clear();
    std::string text, error;
    std::vector<std::string_view> records;
    if (m_journal.File().ReadBack(text, records, error))
        Replay(records);
    else
        m_journal.FailReplay("The server's journal can be used no more: it " + error);
}

Reply Server::HandleUndone(void* request, const UserIdentity& user, std::string_view sentAs,
                           const std::string& fault) {
    m_journal.Refuse(fault);
    Reply reply = Dispatch(qmx::Text(request, tag::requestName).substr(0, kLongestText), request, user, sentAs);
    m_journal.Refuse({});
    return reply;
}

Reply Server::Handle(void* request, const UserIdentity& user, std::string_view sentAs) {
    const std::string name(qmx::Text(request, tag::requestName).substr(0, kLongestText));
    const RequestFault& fault = m_config.FaultFor(name);
    if (m_config.TakeDisconnect(name, &RequestFault::disconnectsBefore)) return {.isCut = true, .isLost = true};
    if (fault.ignored) return {};
    Reply reply = fault.errorCode ? Refuse(request, {*fault.errorCode, "Refused by the server's configuration"})
                                  : Dispatch(name, request, user, sentAs);
    if (m_config.TakeDisconnect(name, &RequestFault::disconnects)) return {.isCut = true};
    if (fault.silent) return {};
    if (fault.garbage) return {{m_writer.Start().Add(1, "\xFF\x01").Add(2, {}).Finish()}};
    if (fault.twice && !reply.answers.empty()) reply.answers.push_back(reply.answers.back());
    return reply;
}

Reply Server::Dispatch(std::string_view name, void* request, const UserIdentity& user,
                       std::string_view sentAs) {
    if (!m_journal.ReplayError().empty()) return Refuse(request, {kCodeJournal, m_journal.ReplayError()});
    if (name == kAddOrder) return AddRegistration(request, user, sentAs);
    const auto found = std::find_if(std::begin(kHandlers), std::end(kHandlers),
                                    [&](const Handler& row) { return row.request == name; });
    if (found != std::end(kHandlers)) return (this->*found->handle)(request, user);
    if (const ChangeKind* kind = FindChange(name)) return ChangeRegistration(*kind, request, user, sentAs);
    if (Queries::Has(name)) return StartQuery(name, request, user);
    return Refuse(request, {kCodeUnknownRequest, "The server does not know this request"});
}

Reply Server::AnswerOperationMode(void* request, const UserIdentity&) {
    std::vector<std::string> names;
    std::vector<std::string> minimums;
    for (const Frequency& frequency : m_config.frequencies) {
        names.push_back(frequency.name);
        if (frequency.minimumPeriods) minimums.push_back(std::to_string(*frequency.minimumPeriods));
    }
    if (names.empty() || m_config.operationModeShape == OperationModeShape::listThenZero)
        names.emplace_back("0");
    m_writer.Start().Add(tag::echoedRequest, qmx::Text(request, tag::requestName));
    if (m_config.operationModeShape != OperationModeShape::bare) {
        AddTexts(m_writer, tag::frequency, names);
        AddTexts(m_writer, tag::minimumPeriods, minimums);
    }
    return {{m_writer.Finish()}};
}

Reply Server::AddRegistration(void* request, const UserIdentity& user, std::string_view sentAs) {
    // A request that was sent twice is one order; its judgement was made the first time.
    const Registration* before = m_registrations.FindOrdered(tag::requestName, sentAs, user.loginId);
    if (!before)
        before = m_registrations.FindOrdered(tag::orderId, qmx::Text(request, tag::orderId), user.loginId);
    if (m_registrations.Changes().Find(user.loginId, sentAs)) return Refuse(request, OtherChange());
    if (before && !IsSameOrder(request, *before, m_clock)) return Refuse(request, OtherOrder(before->Number()));
    if (before) return AnswerRegistered(request, *before);
    if (const auto refusal = JudgeOrder(request, user, m_config)) return Refuse(request, *refusal);
    if (const std::string_view account = qmx::Text(request, tag::account); m_knows && !m_knows(account))
        return Refuse(request, UnknownClient(account));

    const Registration registration =
        MakeRegistration(request, m_clock, m_registrations.NextSequence(), sentAs);
    if (const auto refusal = Keep(registration)) return Refuse(request, *refusal);
    return AnswerRegistered(request, registration);
}

Reply Server::StartQuery(std::string_view name, void* request, const UserIdentity& user) {
    RowQuery query;
    if (const auto refusal = m_queries.Start(name, request, user, query)) return Refuse(request, *refusal);
    return {{}, std::move(query)};
}

Reply Server::SetRestrictedDays(void* request, const UserIdentity&) {
    const std::string_view name = qmx::Text(request, tag::requestName);
    RestrictedRange range;
    if (const auto refusal = RestrictedRange::Read(request, m_clock.Today(), range))
        return Refuse(request, *refusal);
    if (const std::string fault = m_clock.Restrict(range); !fault.empty())
        return Refuse(request, {kCodeJournal, fault});
    return {{m_writer.Start().Add(tag::echoedRequest, name).Finish()}};
}

Reply Server::AnswerRestrictedDays(void* request, const UserIdentity&) {
    m_writer.Start().Add(tag::echoedRequest, qmx::Text(request, tag::requestName));
    if (const RestrictedRange* range = m_clock.Restricted().Last()) range->Fields().AddTo(m_writer);
    return {{m_writer.Finish()}};
}

Reply Server::ChangeRegistration(const ChangeKind& kind, void* request, const UserIdentity& user,
                                 std::string_view sentAs) {
    const Registration* before = nullptr;
    if (const auto refusal = FindNamed(m_registrations, request, before)) return Refuse(request, *refusal);
    if (before->Text(tag::loginId) != user.loginId) return Refuse(request, OtherUser());
    const std::string number(before->Number());
    if (const Registration* ordered = m_registrations.FindOrdered(tag::requestName, sentAs, user.loginId))
        return Refuse(request, OtherOrder(ordered->Number()));
    const ChangeOrigin origin{user.loginId, sentAs, ChangeOrigin::ContentsOf(request), m_clock.MachineTime()};
    const auto made = m_registrations.Changes().Find(user.loginId, sentAs);
    if (made && made->HasOther(*origin.contents)) return Refuse(request, OtherChange());

    if (!made && !before->WasChangedBy(sentAs)) {
        if (const std::string fault = m_clock.ExecuteDueOf(m_registrations.PlaceOf(*before)); !fault.empty())
            return Refuse(request, {kCodeJournal, fault});
        Registration after = *before;
        const ChangeRequest change{request, user.loginId, m_config, m_clock.Market(), m_clock.Today()};
        if (const auto refusal = kind.apply(change, after)) return Refuse(request, *refusal);
        if (after != *before) {
            after.RememberChange(origin);
            if (const auto refusal = Keep(std::move(after))) return Refuse(request, *refusal);
        } else if (!sentAs.empty()) {
            // It comes again perhaps when there is something to change.
            if (const std::string fault = m_journal.Write(origin.Json()); !fault.empty())
                return Refuse(request, {kCodeJournal, fault});
            m_registrations.Changes().Remember(origin);
        }
    }
    m_writer.Start().Add(tag::echoedRequest, kind.request);
    if (kind.request == "cancel_sip_order") m_writer.Add(tag::echoedNumber, number);
    m_writer.Add(tag::userText, "SIP " + std::string(kind.done) + ". Registration No : " + number);
    m_writer.Add(tag::registrationNumber, number);
    return {{m_writer.Finish()}};
}

std::optional<ServerRefusal> Server::Keep(Registration registration) {
    m_clock.SetNextExecution(registration);
    if (const Registration* before = m_registrations.Find(registration.Number()))
        registration.KeepOrdered(*before);
    if (std::string fault = m_journal.Write(registration.Json()); !fault.empty())
        return ServerRefusal{kCodeJournal, fault};
    m_registrations.Tell(registration);
    m_clock.Schedule(m_registrations.Enter(std::move(registration)));
    return std::nullopt;
}

std::string Server::EnterMadeUp(std::vector<Registration> batch) {
    JournalBatch records;
    for (const Registration& registration : batch)
        records.Add(registration.Json());
    if (std::string fault = m_journal.Write(records); !fault.empty()) return fault;
    for (Registration& registration : batch)
        m_clock.Schedule(m_registrations.Enter(std::move(registration)));
    return {};
}

Reply Server::Refuse(void* request, const ServerRefusal& refusal) {
    return {{Refusal(m_writer, request, refusal, !m_config.FaultFor(kAddOrder).noSerial)}};
}

std::string Server::Refusal(qmx::MessageWriter& writer, void* request, const ServerRefusal& refusal,
                            bool hasSerial) {
    const std::string_view name = qmx::Text(request, tag::requestName).substr(0, kLongestText);
    writer.Start()
        .Add(tag::echoedRequest, name)
        .Add(tag::errorCode, refusal.code)
        .Add(tag::userText, refusal.text);
    // By which a terminal with several changes under way knows which is refused.
    if (FindChange(name)) Echo(writer, request, tag::registrationNumber);
    if (name == kAddOrder) EchoOrder(writer, request, hasSerial);
    return writer.Finish();
}

Reply Server::AnswerRegistered(void* request, const Registration& registration) {
    const std::string text = "SIP registered. Registration No : " + std::string(registration.Number());
    m_writer.Start()
        .Add(tag::echoedRequest, kAddOrder)
        .Add(tag::userText, text)
        .Add(tag::account, registration.Text(tag::account))
        .Add(tag::registrationNumber, registration.Number());
    EchoOrder(m_writer, request, !m_config.FaultFor(kAddOrder).noSerial);
    return {{m_writer.Finish()}};
}

} // namespace vesk
