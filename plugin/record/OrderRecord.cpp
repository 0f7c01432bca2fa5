#include "plugin/record/OrderRecord.h"

#include "plugin/base/Text.h"

#include <utility>

namespace planfold {

namespace {

std::string TimeText(const LocalDateTime& now) {
    return Format("%04d-%02d-%02d %02d:%02d:%02d", now.year, now.month, now.day, now.hour, now.minute,
                  now.second);
}

} // namespace

// Once: a session that goes on after midnight keeps what it knows, since an answer may come on the day after
// its order.
void OrderRecord::ReadDay() {
    if (m_isRead || !IsKept()) return;
    m_isRead = true;
    const auto text = m_files.Read(m_now());
    if (!text) return;
    RecordReader reader(*text);
    while (const auto event = reader.Next())
        m_ledger.Take(*event);
}

const OrderLedger& OrderRecord::Ledger() {
    ReadDay();
    return m_ledger;
}

bool OrderRecord::Sending(std::span<const RecordedOrder> orders) {
    if (!IsKept()) return true;
    ReadDay();
    const LocalDateTime now = m_now();
    const std::string time = TimeText(now);
    std::string lines = m_unwritten;
    const auto told = [&](RecordTexts texts) {
        texts[RecordField::time] = time;
        texts[RecordField::event] = NameOf(OrderEvent::sending);
        return texts;
    };
    for (const RecordedOrder& order : orders)
        AppendRecordLine(told(order.Texts()), lines);
    if (!m_files.Append(now, lines, true)) return false;
    m_unwritten.clear();
    for (const RecordedOrder& order : orders)
        m_ledger.Take(told(order.Texts()));
    return true;
}

void OrderRecord::Tell(const RecordedOrder& named, OrderEvent event, std::string_view text,
                       std::string_view registration) {
    const RecordedOrder* known = Ledger().Find(named.Texts());
    if (!known) return;
    const RecordedOrder before = *known; // whose texts change below
    RecordTexts texts = before.Texts();
    const LocalDateTime now = m_now();
    const std::string time = TimeText(now);
    texts[RecordField::time] = time;
    texts[RecordField::event] = NameOf(event);
    if (!registration.empty()) texts[RecordField::registration] = registration;
    const std::string request(named.Text(RecordField::text));
    const std::string said =
        before.ChangesRegistration() ? request + ": " + std::string(text) : std::string(text);
    texts[RecordField::text] = said;
    AppendRecordLine(texts, m_unwritten);
    if (m_files.Append(now, m_unwritten, false)) m_unwritten.clear();
    m_ledger.Take(texts);
}

void OrderRecord::OnRow(std::string_view orderId, std::string_view registration) {
    if (orderId.empty() || !Ledger().HasOpen()) return;
    RecordTexts texts;
    texts[RecordField::orderId] = orderId;
    const RecordedOrder* known = Ledger().Find(texts);
    if (!known || known->ChangesRegistration() || known->State() == OrderState::done) return;
    const OrderEvent event = known->State() == OrderState::sent ? OrderEvent::registered : OrderEvent::found;
    Tell(*known, event, {}, registration);
}

} // namespace planfold
