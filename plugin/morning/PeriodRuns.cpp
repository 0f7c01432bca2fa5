#include "plugin/morning/PeriodRuns.h"

#include "plugin/base/Text.h"
#include "plugin/orderbook/BookConditions.h"
#include "plugin/orderentry/PlannedDates.h"
#include "sdk/Tags.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace planfold {

namespace {

struct PartRow {
    ChartPart part;
    const char* word;
    KorvexRowLook look;
};
constexpr PartRow kParts[] = {
    {ChartPart::filled, "filled", kKorvexPlain},
    {ChartPart::unfilled, "partly filled", kKorvexAttention},
    {ChartPart::waiting, "waiting", kKorvexAttention},
    {ChartPart::lost, "failed", kKorvexBad},
};
static_assert(std::size(kParts) == kChartPartCount);

// What an order tells of itself.
struct ToldRow {
    PastField field;
    HistoryField told;
};
constexpr ToldRow kTold[] = {
    {PastField::account, HistoryField::account},
    {PastField::tradingSymbol, HistoryField::tradingSymbol},
    {PastField::exchange, HistoryField::exchange},
    {PastField::side, HistoryField::side},
    {PastField::registration, HistoryField::registrationNumber},
    {PastField::status, HistoryField::orderStatus},
    {PastField::quantity, HistoryField::quantity},
    {PastField::filled, HistoryField::tradedQuantity},
    {PastField::reason, HistoryField::userText},
    {PastField::orderNumber, HistoryField::orderNumber},
};

} // namespace

// An error field without a value is how an answer ends, so the handler judges it.
const AnswerHandler<PeriodRuns> PeriodRuns::kAnswers[] = {
    {kHistoryOrdersRequest, &PeriodRuns::HandleOrder, OnError::handle},
};

void PeriodRuns::Show(const RunPeriod& period, Day today, bool anew, bool mineOnly) {
    m_life.Renew();
    m_period = {period.from,
                std::clamp(period.to, period.from, period.from + std::chrono::days(kMostDays - 1))};
    m_rows.clear();
    m_all.clear();
    if (anew || m_keptOn != today) m_kept.clear();
    m_keptOn = m_today = today;
    m_plans.clear();
    m_why.clear();
    m_asking = std::make_unique<Asking>(m_session.ClosedDays(), m_records.Filling(),
                                        mineOnly ? m_session.identity.loginId : std::string());
    m_asking->lastAnswer = m_view.Milliseconds();
    LookAndAsk(kFirstReckoningMs);
    if (!IsUnderWay()) return;
    m_view.ShowRows();
    m_view.ShowRun();
}

void PeriodRuns::Forget() {
    m_life.Renew();
    m_asking.reset();
    m_rows.clear();
    m_plans.clear();
    m_all.clear();
    m_missing.clear();
    m_failedOnly = false;
}

void PeriodRuns::Continue() {
    if (!IsUnderWay()) return;
    if (!m_underWay.empty() && m_view.Milliseconds() - m_asking->lastAnswer > kPatienceMs) {
        m_underWay.clear();
        m_coming.clear();
        return End(Format("no answer for %lld seconds", static_cast<long long>(kPatienceMs / 1000)));
    }
    LookAndAsk(kPortionMs);
}

// First which plans are to be asked, then they are.
void PeriodRuns::LookAndAsk(std::int64_t milliseconds) {
    const std::int64_t end = m_view.Milliseconds() + milliseconds;
    while (m_asking->next < m_records.Size()) {
        if (m_records.Filling() != m_asking->filling) return End("the book was filled anew");
        LookAtSome();
        if (m_view.Milliseconds() >= end) return;
    }
    SendNext();
}

void PeriodRuns::LookAtSome() {
    const auto size = static_cast<RecordId>(m_records.Size());
    for (const RecordId end = std::min(size, m_asking->next + kRecordsAStep); m_asking->next < end;) {
        const sOrderinfo& record = m_records[m_asking->next++];
        if (!IsOf(record, m_asking->user) || !CanHaveRun(record, m_period.from, m_period.to, m_asking->closed))
            continue;
        m_plans.emplace_back(record.Number());
        if (!m_kept.contains(m_plans.back())) m_asking->plans.push_back(m_plans.back());
    }
}

// Sending lets the host in, which may bring answers, or end all of this.
void PeriodRuns::SendNext() {
    if (m_sending) return;
    m_sending = true;
    while (IsUnderWay() && m_underWay.size() < kMostUnderWay && m_asking->asked < m_asking->plans.size()) {
        const std::string plan = m_asking->plans[m_asking->asked++];
        // It was asked for before a stop.
        if (m_kept.contains(plan) || std::ranges::find(m_underWay, plan) != m_underWay.end()) continue;
        if (m_underWay.empty()) m_asking->lastAnswer = m_view.Milliseconds();
        m_underWay.push_back(plan);
        KeptTexts fault;
        const Reply sent = m_life.Across([&](Pass pass) {
            return SendHistoryQuery(pass, m_session, m_control(), fault, kHistoryOrdersRequest, plan);
        });
        if (sent == Reply::over) break;
        if (sent == Reply::yes) continue;
        std::erase(m_underWay, plan);
        End("the server could not be asked" + (fault.Text().empty() ? "" : ": " + fault.Text()));
    }
    m_sending = false;
    const bool isOver = IsUnderWay() && m_asking->next >= m_records.Size() && m_underWay.empty()
                        && m_asking->asked == m_asking->plans.size();
    if (isOver) End({});
}

void PeriodRuns::OnResponse(void* message) {
    if (!m_session.Ended()) Dispatch<PeriodRuns>(*this, m_session, kAnswers, Answer(message));
}

void PeriodRuns::HandleOrder(const Answer& answer) {
    if (m_asking) m_asking->lastAnswer = m_view.Milliseconds();
    const auto number = FieldView(answer.message, tag::registrationNumber);
    if (!answer.hasError) {
        if (number) TakeRow(answer.message, *number);
        return;
    }
    const bool refused = !answer.errorCode.empty();
    const std::string plan(number.value_or(m_underWay.empty() ? std::string_view() : m_underWay.front()));
    if (refused && !m_session.life.Across([&](Pass pass) { LogErrorAnswer(pass, m_session, answer); })) return;
    Answered(plan, refused);
}

// A row shows that the plans that were asked before its own are over, answered or not.
void PeriodRuns::TakeRow(void* message, std::string_view number) {
    const auto plan = std::ranges::find(m_underWay, number);
    if (plan == m_underWay.end()) return;
    m_underWay.erase(m_underWay.begin(), plan);
    const sOrderHistory order = ReadHistoryOrder(message, 1);
    const std::string& stamp = order[HistoryField::placementTime];
    PastRun run;
    for (const auto& [field, told] : kTold)
        run.texts[field] = order[told];
    run.texts[PastField::date] = stamp.substr(0, stamp.find(' '));
    if (const std::size_t time = stamp.find(' '); time != stamp.npos)
        run.texts[PastField::time] = stamp.substr(time + 1);
    const auto day = ReadServerDay(stamp);
    if (!day) return;
    run.day = *day;
    run.part = PartOf(order);
    m_coming[std::string(number)].push_back(std::move(run));
}

void PeriodRuns::Answered(const std::string& plan, bool refused) {
    const auto asked = std::ranges::find(m_underWay, plan);
    if (asked == m_underWay.end()) return;
    m_underWay.erase(asked);
    auto orders = m_coming.extract(plan);
    if (!refused) m_kept.try_emplace(plan, orders ? std::move(orders.mapped()) : std::vector<PastRun>());
    if (refused && m_asking) ++m_asking->refused;
    if (IsUnderWay()) SendNext();
}

// What is still coming is kept when it comes, but no longer waited for.
void PeriodRuns::End(std::string why) {
    if (!IsUnderWay()) return;
    const auto asking = std::exchange(m_asking, nullptr);
    const auto missing = static_cast<std::size_t>(
        std::ranges::count_if(m_plans, [&](const std::string& plan) { return !m_kept.contains(plan); }));
    if (asking->next < m_records.Size() && why.empty()) why = "stopped";
    if (asking->refused) why += Format("%s%zu refused", why.empty() ? "" : "; ", asking->refused);
    if (missing && why.empty()) why = "not all have answered";
    m_why = std::move(why);
    if (missing) m_why += Format(": %zu of %zu plans without an answer", missing, m_plans.size());
    Collect();
    m_view.ShowRun();
    m_view.ShowRows();
}

void PeriodRuns::ShowFailedOnly(bool on) {
    m_failedOnly = on;
    if (IsUnderWay()) return;
    Collect();
    m_view.ShowRows();
}

// The day of its next run has passed, but no run has come of it.
std::optional<PeriodRuns::PastRun> PeriodRuns::MissingRun(const std::string& plan) const {
    const RecordId id = m_records.Find(plan);
    if (id == kNoRecord) return std::nullopt;
    const sOrderinfo& record = m_records[id];
    const std::string_view status = record.Text(OrderField::sipStatus);
    const auto next = ReadServerDay(record.Text(OrderField::nextExecutionDate));
    if (HasEnded(status) || IsCancelled(status) || status == kPausedStatus) return std::nullopt;
    if (!next || *next >= m_today || !m_period.Has(*next)) return std::nullopt;
    PastRun run;
    static constexpr std::pair<PastField, OrderField> fields[] = {
        {PastField::account, OrderField::account},   {PastField::tradingSymbol, OrderField::tradingSymbol},
        {PastField::exchange, OrderField::exchange}, {PastField::side, OrderField::side},
        {PastField::quantity, OrderField::quantity},
    };
    for (const auto& [field, told] : fields)
        run.texts[field] = record.Text(told);
    run.texts[PastField::registration] = plan;
    run.texts[PastField::date] = FormatPlannedDate(*next);
    run.texts[PastField::status] = "not run";
    run.texts[PastField::reason] = "No order of the server is known for this day";
    run.day = *next;
    run.part = ChartPart::lost;
    return run;
}

// By day, client and plan.
void PeriodRuns::Collect() {
    m_rows.clear();
    m_missing.clear();
    m_all.clear();
    for (const std::string& plan : m_plans) {
        const auto kept = m_kept.find(plan);
        if (kept == m_kept.end()) continue;
        const RecordId id = m_records.Find(plan);
        for (PastRun& run : kept->second) {
            if (!m_period.Has(run.day)) continue;
            if (id != kNoRecord) run.texts[PastField::name] = m_records[id].Text(OrderField::accountName);
            m_all.push_back(&run);
        }
        if (auto run = MissingRun(plan)) {
            run->texts[PastField::name] = m_records[id].Text(OrderField::accountName);
            m_all.push_back(&m_missing.emplace_back(std::move(*run)));
        }
    }
    const auto key = [](const PastRun* run) {
        return std::tuple(run->day, std::string_view(run->texts[PastField::account]),
                          std::string_view(run->texts[PastField::registration]));
    };
    std::ranges::stable_sort(m_all,
                             [&](const PastRun* one, const PastRun* other) { return key(one) < key(other); });
    std::ranges::copy_if(m_all, std::back_inserter(m_rows),
                         [&](const PastRun* run) { return !m_failedOnly || run->part == ChartPart::lost; });
}

std::vector<FailedRun> PeriodRuns::Failed() const {
    std::vector<FailedRun> failed;
    for (const PastRun* run : m_all)
        if (run->part == ChartPart::lost)
            failed.push_back({run->texts[PastField::registration], run->day, run->texts[PastField::reason]});
    return failed;
}

std::string PeriodRuns::Progress() const {
    if (m_asking->next < m_records.Size())
        return Format("Looking for the plans of the period: %u of %zu", m_asking->next, m_records.Size());
    return Format("Asking for the runs of %zu plans: %zu", m_asking->plans.size(), Done());
}

std::size_t PeriodRuns::Done() const {
    if (m_asking->next < m_records.Size()) return m_asking->next;
    return m_asking->asked - std::min(m_asking->asked, m_underWay.size());
}

std::size_t PeriodRuns::Total() const {
    return m_asking->next < m_records.Size() ? m_records.Size() : m_asking->plans.size();
}

std::string_view PeriodRuns::Text(std::size_t row, PastField field) const {
    return row < m_rows.size() ? std::string_view(m_rows[row]->texts[field]) : std::string_view();
}

KorvexRowLook PeriodRuns::Look(std::size_t row) const {
    return row < m_rows.size() ? kParts[static_cast<std::size_t>(m_rows[row]->part)].look : kKorvexPlain;
}

std::string PeriodRuns::Notice() const {
    if (IsUnderWay() || !m_rows.empty()) return {};
    const std::string period =
        " from " + FormatPlannedDate(m_period.from) + " to " + FormatPlannedDate(m_period.to) + ".";
    return (m_failedOnly && !m_all.empty() ? "No run failed" : "No runs are known") + period;
}

std::array<std::string, 3> PeriodRuns::Status() const {
    std::array<std::string, 3> parts;
    if (IsUnderWay()) return parts;
    std::array<std::size_t, kChartPartCount> counts{};
    for (const PastRun* run : m_all)
        ++counts[static_cast<std::size_t>(run->part)];
    parts[0] = Format("%zu run%s", m_all.size(), m_all.size() == 1 ? "" : "s");
    for (const PartRow& row : kParts)
        if (const std::size_t count = counts[static_cast<std::size_t>(row.part)])
            parts[0] += Format("%s %zu %s", &row == kParts || parts[0].find(':') == parts[0].npos ? ":" : ",",
                               count, row.word);
    parts[1] = Format("of %zu plan%s", m_plans.size(), m_plans.size() == 1 ? "" : "s");
    parts[2] = m_why;
    return parts;
}

} // namespace planfold
