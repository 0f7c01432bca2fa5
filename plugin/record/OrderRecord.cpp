#include "plugin/record/OrderRecord.h"

#include "plugin/base/Numbers.h"
#include "plugin/base/Text.h"

#include <algorithm>
#include <utility>

namespace planfold {

namespace {

// What an earlier day left open concerns today; a long weekend lies between at most.
constexpr int kDaysBack = 10;

std::size_t HashOf(std::string_view line) {
    return std::hash<std::string_view>()(line.substr(0, line.find('\r')));
}

template <class Each>
void EachLine(std::string_view lines, Each each) {
    while (!lines.empty()) {
        const std::size_t end = std::min(lines.find('\n'), lines.size() - 1);
        each(lines.substr(0, end + 1));
        lines.remove_prefix(end + 1);
    }
}

// Counted from noon: a day may have an hour more or less.
LocalDateTime DayBefore(const LocalDateTime& day, int back) {
    return ToLocal(ToSeconds({day.year, day.month, day.day, 12}) - back * kSecondsPerDay).Midnight();
}

} // namespace

std::string TimeText(const LocalDateTime& now) {
    return Format("%04d-%02d-%02d %02d:%02d:%02d", now.year, now.month, now.day, now.hour, now.minute,
                  now.second);
}

std::int64_t SecondsOf(std::string_view time) {
    constexpr std::string_view form = "0000-00-00 00:00:00";
    if (time.size() != form.size()) return -1;
    const auto part = [&](std::size_t at, std::size_t length) {
        return static_cast<int>(LeadingInteger(time.substr(at, length)));
    };
    return ToSeconds({part(0, 4), part(5, 2), part(8, 2), part(11, 2), part(14, 2), part(17, 2)});
}

const OrderLedger& OrderRecord::Ledger() {
    ReadDays();
    return m_ledger;
}

void OrderRecord::ReadDays() {
    if (std::exchange(m_isRead, true)) return;
    const LocalDateTime now = m_now();
    for (int back = kDaysBack; back > 0 && m_files.HasFolder(); --back) {
        const auto text = m_files.Read(DayBefore(now, back));
        if (!text) continue;
        TakeAll(*text);
        m_ledger = m_ledger.Open();
    }
    m_day = now.Midnight();
    if (const auto text = m_files.HasFolder() ? m_files.Read(now) : std::nullopt) {
        TakeAll(*text);
        m_readTo = text->size();
    }
    m_countAtStart = m_ledger.Orders().size();
    AwaitFrom(0);
}

void OrderRecord::AwaitFrom(std::size_t place) {
    for (; place < m_ledger.Orders().size(); ++place)
        if (const RecordedOrder& order = m_ledger.Orders()[place]; order.State() == OrderState::sent)
            m_waiting.push_back({static_cast<OrderPlace>(place), SecondsOf(order.SentAt())});
    m_knowsAbsent = m_knowsAbsent || m_ledger.Count(OrderState::absent) > 0;
}

void OrderRecord::TakeAll(std::string_view lines) {
    RecordReader reader(lines);
    while (const auto event = reader.Next())
        // A line stands there twice when its first writing failed in the middle, or the file was edited.
        if (const OrderPlace place = m_ledger.Knows(*event) ? kNoOrder : m_ledger.Take(*event);
            place != kNoOrder && !m_listeners.empty())
            TellListeners(place);
}

void OrderRecord::Refresh() {
    if (!m_isRead) return ReadDays();
    if (!m_files.HasFolder()) return;
    ReadOn();
    // Others may have sent on the days since.
    const LocalDateTime today = m_now().Midnight();
    for (int back = kDaysBack; m_day != today; --back) {
        const LocalDateTime day = DayBefore(today, back);
        if (back > 0 && day <= m_day) continue;
        m_day = day;
        m_readTo = 0;
        ReadOn();
    }
}

void OrderRecord::ReadOn() {
    const auto text = m_files.Read(m_day);
    if (!text || text->size() <= m_readTo) return;
    // Another terminal may be writing the last line.
    const std::string_view news = std::string_view(*text).substr(m_readTo, text->rfind('\n') + 1 - m_readTo);
    std::string others;
    EachLine(news, [&](std::string_view line) {
        const std::size_t hash = HashOf(line);
        if (m_ownLines.Of(hash) == 0)
            others.append(line);
        else
            m_ownLines.Decrement(hash);
    });
    m_readTo += news.size();
    const std::size_t known = m_ledger.Orders().size();
    TakeAll(others);
    AwaitFrom(known);
}

std::optional<std::vector<OrderPlace>> OrderRecord::Sending(std::span<const RecordedOrder> orders) {
    ReadDays();
    const LocalDateTime now = m_now();
    if (!m_files.HasFolder()) return Enter(orders, now);
    TellStraysNotSent();
    std::string lines;
    AppendSending(orders, now, lines);
    if (WriteLines(now, lines, true)) return Enter(orders, now);
    m_strays.assign(orders.begin(), orders.begin() + static_cast<std::ptrdiff_t>(m_wholeLines));
    return std::nullopt;
}

std::vector<OrderPlace> OrderRecord::SendingUnwritten(std::span<const RecordedOrder> orders) {
    const LocalDateTime now = m_now();
    if (m_files.HasFolder()) AppendSending(orders.subspan(m_strays.size()), now, m_unwritten);
    m_strays.clear();
    return Enter(orders, now);
}

// The dealer did not want them to go out.
void OrderRecord::TellStraysNotSent() {
    const std::string time = TimeText(m_now());
    for (const RecordedOrder& order : std::exchange(m_strays, {})) {
        RecordTexts texts = order.Texts();
        texts[RecordField::time] = time;
        texts[RecordField::event] = NameOf(OrderEvent::notSent);
        AppendRecordLine(texts, m_unwritten);
    }
}

void OrderRecord::AppendSending(std::span<const RecordedOrder> orders, const LocalDateTime& now,
                                std::string& lines) const {
    const std::string time = TimeText(now);
    for (const RecordedOrder& order : orders) {
        RecordTexts texts = order.Texts();
        texts[RecordField::time] = time;
        texts[RecordField::event] = NameOf(OrderEvent::sending);
        AppendRecordLine(texts, lines);
    }
}

std::vector<OrderPlace> OrderRecord::Enter(std::span<const RecordedOrder> orders, const LocalDateTime& now) {
    const std::string time = TimeText(now);
    const std::int64_t since = ToSeconds(now);
    std::vector<OrderPlace> places;
    places.reserve(orders.size());
    for (const RecordedOrder& order : orders) {
        RecordTexts texts = order.Texts();
        texts[RecordField::time] = time;
        texts[RecordField::event] = NameOf(OrderEvent::sending);
        const std::size_t known = m_ledger.Orders().size();
        const OrderPlace place = places.emplace_back(m_ledger.Take(texts));
        // What is sent again waits from now on.
        if (place < known) std::erase_if(m_waiting, [&](const Waiting& one) { return one.place == place; });
        m_waiting.push_back({places.back(), since});
        TellListeners(places.back());
    }
    return places;
}

void OrderRecord::Note(OrderPlace place, OrderEvent event, std::string_view text,
                       std::string_view registration) {
    const RecordedOrder before = m_ledger[place]; // whose texts change below
    RecordTexts texts = before.Texts();
    const std::string time = TimeText(m_now());
    texts[RecordField::time] = time;
    texts[RecordField::event] = NameOf(event);
    if (!registration.empty()) texts[RecordField::registration] = registration;
    // A change is known by its request, with which the text of each of its events begins.
    const std::string_view earlier = before.Text(RecordField::text);
    const std::string said = before.ChangesRegistration()
                                 ? std::string(earlier.substr(0, earlier.find(':'))) + ": " + std::string(text)
                                 : std::string(text);
    texts[RecordField::text] = said;
    m_ledger.Take(place, texts);
    m_knowsAbsent = m_knowsAbsent || event == OrderEvent::absent;
    if (m_files.HasFolder()) AppendRecordLine(texts, m_unwritten);
}

bool OrderRecord::WriteLines(const LocalDateTime& now, std::string_view lines, bool flush) {
    if (!m_files.HasFolder()) return false;
    if (lines.empty() && !flush && now == m_failedAt) return false;
    const std::string joined = m_unwritten.empty() ? std::string() : m_unwritten + std::string(lines);
    const std::string_view all = joined.empty() ? lines : std::string_view(joined);
    if (all.empty()) return true;
    EachLine(all, [&](std::string_view line) { m_ownLines.Increment(HashOf(line)); });
    std::size_t whole = 0;
    if (m_files.Append(now, all, flush, whole)) {
        m_failedAt = {};
        m_unwritten.clear();
        return true;
    }
    m_failedAt = now;
    // What is there is not written once more.
    std::size_t end = 0;
    for (; whole > 0 && end < m_unwritten.size(); --whole)
        end = m_unwritten.find('\n', end) + 1;
    m_unwritten.erase(0, end);
    m_wholeLines = whole;
    return false;
}

void OrderRecord::TellListeners(OrderPlace place) const {
    for (RecordListener* listener : m_listeners)
        listener->OnOrder(place);
}

void OrderRecord::Tell(OrderPlace place, OrderEvent event, std::string_view text,
                       std::string_view registration) {
    if (place == kNoOrder) return;
    Note(place, event, text, registration);
    WriteLines(m_now(), {}, false);
    TellListeners(place);
    if (m_knowsAbsent) LookForTwice(place);
}

void OrderRecord::Tell(const RecordedOrder& named, OrderEvent event, std::string_view text,
                       std::string_view registration) {
    Tell(Ledger().Find(named.Texts()), event, text, registration);
}

bool OrderRecord::AwaitsRows() {
    return !Ledger().Orders().empty();
}

// By its identifier; where the server tells none, by what it is for, as far as no other order is known to be
// this registration.
OrderPlace OrderRecord::OrderOf(const BookRow& row) const {
    if (!row.orderId.empty()) {
        RecordTexts texts = row.asked;
        texts[RecordField::orderId] = row.orderId;
        return m_ledger.Find(texts);
    }
    OrderPlace found = kNoOrder, absent = kNoOrder;
    for (const OrderPlace place : m_ledger.Like(row.asked)) {
        const RecordedOrder& order = m_ledger[place];
        if (order.Text(RecordField::registration) == row.registration) return kNoOrder;
        const bool isLater = row.enteredOn >= order.SentAt().substr(0, row.enteredOn.size());
        if (!isLater || row.enteredOn.empty()) continue;
        if (IsOpen(order.State())) found = place;
        if (order.State() == OrderState::absent) absent = place;
    }
    return found != kNoOrder ? found : absent;
}

void OrderRecord::OnRow(const BookRow& row) {
    if (row.registration.empty()) return;
    const OrderPlace place = OrderOf(row);
    if (place == kNoOrder || m_ledger[place].ChangesRegistration()) return;
    const RecordedOrder& order = m_ledger[place];
    const std::string_view number = order.Text(RecordField::registration);
    if (order.State() != OrderState::done || number.empty()) {
        const bool waited = order.State() == OrderState::sent || order.State() == OrderState::done;
        Tell(place, waited ? OrderEvent::registered : OrderEvent::found,
             row.orderId.empty() ? "Found in the book by what it is for." : "", row.registration);
    } else if (number != row.registration && row.isLive && m_ledger.IsUnmistakable(place)) {
        TellTwice(place, row.registration);
    }
}

// What was sent again since it was proven not to be registered, under another identifier or none.
void OrderRecord::LookForTwice(OrderPlace place) const {
    if (m_ledger[place].State() != OrderState::done || m_ledger[place].ChangesRegistration()) return;
    for (const OrderPlace like : m_ledger.StandingLike(m_ledger[place].Texts())) {
        const RecordedOrder& earlier = m_ledger[std::min(place, like)];
        const RecordedOrder& later = m_ledger[std::max(place, like)];
        if (like != place && m_ledger[like].State() == OrderState::done && !earlier.AbsentAt().empty()
            && later.SentAt() >= earlier.AbsentAt())
            TellTwice(std::max(place, like), earlier.Text(RecordField::registration));
    }
}

void OrderRecord::TellAllTwice() {
    for (std::size_t i = 0; i < Ledger().Orders().size(); ++i)
        if (!m_ledger.Orders()[i].AbsentAt().empty()) LookForTwice(static_cast<OrderPlace>(i));
}

void OrderRecord::TellTwice(OrderPlace place, std::string_view second) const {
    if (second.empty()) return;
    for (RecordListener* listener : m_listeners)
        listener->OnRegisteredTwice(place, second);
}

void OrderRecord::OnTime() {
    const std::int64_t now = ToSeconds(m_now());
    std::vector<OrderPlace> late;
    bool isFresh = false;
    // A clock that was set back makes nobody wait longer.
    for (Waiting& waiting : m_waiting)
        waiting.since = std::min(waiting.since, now);
    for (; !m_waiting.empty() && now - m_waiting.front().since >= kPatience; m_waiting.pop_front()) {
        const OrderPlace place = m_waiting.front().place;
        if (m_ledger[place].State() == OrderState::sent && !std::exchange(isFresh, true)) Refresh();
        if (m_ledger[place].State() == OrderState::sent) late.push_back(place);
    }
    for (const OrderPlace place : late)
        Note(place, OrderEvent::inDoubt, "No answer came within 30 seconds.", {});
    WriteLines(m_now(), {}, false);
    for (const OrderPlace place : late)
        TellListeners(place);
}

void OrderRecord::OnSessionEnd() {
    TellStraysNotSent();
    if (!m_waiting.empty()) Refresh();
    for (const Waiting& waiting : std::exchange(m_waiting, {}))
        if (m_ledger[waiting.place].State() == OrderState::sent)
            Note(waiting.place, OrderEvent::inDoubt, "The session ended before an answer came.", {});
    if (!m_unwritten.empty()) WriteLines(m_now(), {}, true);
}

} // namespace planfold
