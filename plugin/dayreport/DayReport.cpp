#include "plugin/dayreport/DayReport.h"

#include "plugin/base/Codes.h"
#include "plugin/base/Numbers.h"
#include "plugin/base/Text.h"
#include "plugin/basket/BasketColumns.h"
#include "plugin/orderentry/PlannedDates.h"
#include "plugin/orderentry/RecordedOrders.h"

#include <algorithm>
#include <chrono>
#include <limits>
#include <utility>

namespace planfold {

namespace {

constexpr int kLinesAStep = 1000;

struct EventRow {
    OrderEvent event;
    std::string_view state;
    KorvexRowLook look;
};
constexpr EventRow kEvents[] = {
    {OrderEvent::sending, "Sent", kKorvexAttention},     {OrderEvent::notSent, "Not sent", kKorvexMuted},
    {OrderEvent::registered, "Registered", kKorvexGood}, {OrderEvent::modified, "Modified", kKorvexGood},
    {OrderEvent::cancelled, "Cancelled", kKorvexGood},   {OrderEvent::paused, "Paused", kKorvexGood},
    {OrderEvent::resumed, "Resumed", kKorvexGood},       {OrderEvent::refused, "Refused", kKorvexBad},
    {OrderEvent::inDoubt, "In doubt", kKorvexAttention}, {OrderEvent::found, "Found in book", kKorvexGood},
    {OrderEvent::absent, "Not in book", kKorvexBad},
};

constexpr CodeRow kRequests[] = {{"add_sip_orders", "New order"},
                                 {kModifySipOrder, "Modify"},
                                 {kCancelSipOrder, "Cancel"},
                                 {kPauseSipOrder, "Pause"},
                                 {kResumeSipOrder, "Resume"}};

// Events whose name is not known belong to no order.
const EventRow& EventOf(const RecordedOrder& order) {
    const auto event = EventNamed(order.Text(RecordField::event)).value_or(OrderEvent::sending);
    return *std::ranges::find(kEvents, event, &EventRow::event);
}

std::string_view Shown(CodeTable table, std::string_view text) {
    const auto row = std::ranges::find(table, text, &CodeRow::from);
    return row == table.end() ? text : row->to;
}

bool IsAnswered(const RecordedOrder& order) {
    return EventOf(order).event != OrderEvent::sending;
}

std::string_view AnswerOf(const RecordedOrder& order) {
    if (!IsAnswered(order)) return {};
    const std::string_view text = order.Text(RecordField::text);
    if (!order.ChangesRegistration()) return text;
    const std::size_t start = text.find(": ");
    return start == text.npos ? std::string_view() : text.substr(start + 2);
}

// Of orders or of changes, by their state.
struct Counts {
    std::array<std::size_t, static_cast<std::size_t>(OrderState::count)> of{};

    std::size_t& operator[](OrderState state) { return of[static_cast<std::size_t>(state)]; }
    // "Sent 280: 261 registered, 19 refused": what is not `usual` only where there is any.
    std::string Text(const char* what, const char* done, bool usual) {
        const struct {
            OrderState state;
            const char* word;
            bool always;
        } rows[] = {
            {OrderState::done, done, usual},
            {OrderState::refused, "refused", usual},
            {OrderState::inDoubt, "in doubt", usual},
            {OrderState::sent, "waiting", false},
            {OrderState::absent, "not in the book", false},
        };
        std::size_t sent = 0;
        std::string text;
        for (const auto& row : rows) {
            const std::size_t count = (*this)[row.state];
            sent += count;
            if (count || row.always) text += Format("%s %zu %s", text.empty() ? ":" : ",", count, row.word);
        }
        return Format("%s %zu", what, sent) + text;
    }
};

bool IsByQuantity(const RecordedOrder& order) {
    return order.Text(RecordField::investType) == "qty";
}

// What is registered of one side, a run of each.
struct SideOfDay {
    std::int64_t paise = 0;
    std::int64_t shares = 0;

    void Add(const RecordedOrder& order) {
        std::int64_t& sum = IsByQuantity(order) ? shares : paise;
        if (__builtin_add_overflow(sum, LeadingInteger(order.Text(RecordField::value)), &sum))
            sum = std::numeric_limits<std::int64_t>::max();
    }
    std::string Text(const char* side) const {
        std::string text = std::string(side) + " " + FormatRupees(paise);
        if (shares) text += Format(" and %lld shares", static_cast<long long>(shares));
        return text;
    }
};

template <RecordField field>
std::string_view Recorded(const RecordedOrder& order) {
    return order.Text(field);
}

// The texts in the order of DayField; when an order was sent first is not the order's.
using TextOf = std::string_view (*)(const RecordedOrder& order);
constexpr TextOf kDayTexts[] = {
    nullptr,
    [](const RecordedOrder& order) { return EventOf(order).state; },
    Recorded<RecordField::registration>,
    RequestOf,
    Recorded<RecordField::account>,
    [](const RecordedOrder& order) { return Shown(kExchangeToDisplay, order.Text(RecordField::exchange)); },
    Recorded<RecordField::tradingSymbol>,
    [](const RecordedOrder& order) { return Shown(kPlanToDisplay, order.Text(RecordField::side)); },
    [](const RecordedOrder& order) {
        return order.Text(RecordField::investType) == "value" ? order.Text(RecordField::value) : "";
    },
    [](const RecordedOrder& order) { return IsByQuantity(order) ? order.Text(RecordField::value) : ""; },
    Recorded<RecordField::frequency>,
    Recorded<RecordField::startDate>,
    Recorded<RecordField::periods>,
    Recorded<RecordField::source>,
    Recorded<RecordField::line>,
    Recorded<RecordField::loginId>,
    [](const RecordedOrder& order) { return IsAnswered(order) ? order.Text(RecordField::time) : ""; },
    AnswerOf,
    Recorded<RecordField::orderId>,
};
static_assert(std::size(kDayTexts) == static_cast<std::size_t>(DayField::count));

} // namespace

// A change's answer stands behind the name of its request.
std::string_view RequestOf(const RecordedOrder& order) {
    if (!order.ChangesRegistration()) return kRequests[0].to;
    const std::string_view text = order.Text(RecordField::text);
    return Shown(kRequests, text.substr(0, text.find(':')));
}

std::array<MenuEntry, 2> RecordEntries(const Session& session) {
    const OrderLedger& ledger = session.record.Ledger();
    const bool isInDoubt = ledger.Count(OrderState::inDoubt) + ledger.Count(OrderState::absent) > 0;
    return {{{"Orders of a Day...", kDayReportCommand, session.userDirectory.empty()},
             {"Compare Orders in Doubt", kCompareCommand, !isInDoubt}}};
}

// Of the next day only what it tells of this one's orders is shown.
void DayReport::Reading::Take(const RecordTexts& event) {
    orders.ledger.Take(event);
    if (!isOfNextDay && orders.sentAt.size() < orders.ledger.Orders().size())
        orders.sentAt.emplace_back(event[RecordField::time]);
}

LocalDateTime DayReport::Day(int after) const {
    using namespace std::chrono;
    const year_month_day date(sys_days(year(m_day.year) / m_day.month / m_day.day) + days(after));
    return {static_cast<int>(date.year()), static_cast<int>(static_cast<unsigned>(date.month())),
            static_cast<int>(static_cast<unsigned>(date.day()))};
}

void DayReport::Show(const LocalDateTime& day) {
    if (day.Midnight() != m_day) {
        m_day = day.Midnight();
        m_isAnew = true;
        m_shown = {};
    }
    m_reading = std::make_unique<Reading>(m_files.Read(m_day));
    RunFor(kFirstPortionMs);
    if (!IsUnderWay()) return;
    if (m_isAnew) m_view.ShowRows(true);
    m_view.ShowRun();
}

void DayReport::Forget() {
    m_reading.reset();
    m_shown = {};
    m_rupees.clear();
    m_isAnew = true;
}

void DayReport::Continue() {
    if (IsUnderWay()) RunFor(kPortionMs);
}

void DayReport::RunFor(std::int64_t milliseconds) {
    const std::int64_t end = m_view.Milliseconds() + milliseconds;
    while (Step())
        if (m_view.Milliseconds() >= end) return;
    End();
}

// False at the end.
bool DayReport::Step() {
    for (int line = 0; line < kLinesAStep; ++line, ++m_reading->lines)
        if (const auto event = m_reading->reader.Next())
            m_reading->Take(*event);
        else
            return GoOnWithNextDay();
    return true;
}

// What was not answered by midnight may have been since.
bool DayReport::GoOnWithNextDay() {
    Reading& reading = *m_reading;
    if (std::exchange(reading.isOfNextDay, true)) return false;
    reading.orders.unread = reading.reader.UnreadLines();
    const OrderLedger& ledger = reading.orders.ledger;
    if (ledger.Count(OrderState::done) + ledger.Count(OrderState::refused) == ledger.Orders().size())
        return false;
    reading.text = m_files.Read(Day(1)).value_or("");
    reading.reader = RecordReader(reading.text);
    return true;
}

void DayReport::Stop() {
    if (!IsUnderWay()) return;
    m_reading->orders.isStopped = true;
    End();
}

// A file is only appended to: read again, it has the same rows first.
void DayReport::End() {
    const auto read = std::exchange(m_reading, nullptr);
    if (read->orders.sentAt.size() < RowCount()) m_isAnew = true;
    m_shown = std::move(read->orders);
    m_view.ShowRun();
    m_view.ShowRows(std::exchange(m_isAnew, false));
}

std::string DayReport::Progress() const {
    return Format("Reading the orders of %s: %zu lines", FormatPlannedDate(m_day).c_str(), m_reading->lines);
}

std::size_t DayReport::Done() const {
    return Total() - m_reading->reader.CharactersLeft();
}

std::size_t DayReport::Total() const {
    return m_reading->text.size();
}

std::string_view DayReport::Text(std::size_t row, DayField field) const {
    if (row >= RowCount()) return {};
    const RecordedOrder& order = m_shown.ledger.Orders()[row];
    if (field == DayField::sentAt) return m_shown.sentAt[row];
    const std::string_view text = kDayTexts[static_cast<std::size_t>(field)](order);
    if (field != DayField::amount || text.empty()) return text;
    const auto [shown, isNew] = m_rupees.try_emplace(std::string(text));
    if (isNew) shown->second = AllDigits(text) ? InRupees(LeadingInteger(text)) : text;
    return shown->second;
}

KorvexRowLook DayReport::Look(std::size_t row) const {
    return row < RowCount() ? EventOf(m_shown.ledger.Orders()[row]).look : kKorvexPlain;
}

std::string DayReport::Notice() const {
    if (IsUnderWay() || RowCount() > 0) return {};
    const std::string day = FormatPlannedDate(m_day);
    return m_shown.isReadable ? "No orders were sent on " + day + "."
                              : "The order record of " + day + " cannot be read.";
}

std::array<std::string, 3> DayReport::Status() const {
    Counts orders, changes;
    SideOfDay buy, sell;
    for (std::size_t row = 0; row < RowCount(); ++row) {
        const RecordedOrder& order = m_shown.ledger.Orders()[row];
        ++(order.ChangesRegistration() ? changes : orders)[order.State()];
        if (!order.ChangesRegistration() && order.State() == OrderState::done)
            (order.Text(RecordField::side) == "S" ? sell : buy).Add(order);
    }
    std::array<std::string, 3> parts;
    const auto add = [&](const std::string& text) { parts[2] += (parts[2].empty() ? "" : "; ") + text; };
    if (m_shown.isStopped) add("reading was stopped");
    if (m_shown.unread)
        add(Format("%zu line%s could not be read", m_shown.unread, m_shown.unread == 1 ? "" : "s"));
    if (RowCount() == 0) return parts;
    parts[0] = orders.Text("Sent", "registered", true);
    parts[1] = "Registered: " + buy.Text("SIP") + ", " + sell.Text("SWP");
    const std::size_t notSent = orders[OrderState::notSent] + changes[OrderState::notSent];
    if (notSent) add(Format("Not sent %zu", notSent));
    if (const std::string text = changes.Text("Changes", "done", false); text != "Changes 0") add(text);
    return parts;
}

} // namespace planfold
