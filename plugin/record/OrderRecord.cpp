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
    if (std::exchange(m_isRead, true)) return;
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

bool OrderRecord::Sending(std::span<const RecordTexts> orders) {
    ReadDay();
    const LocalDateTime now = m_now();
    const std::string time = TimeText(now);
    std::string lines = m_unwritten;
    const auto told = [&](RecordTexts texts) {
        texts[RecordField::time] = time;
        texts[RecordField::event] = NameOf(OrderEvent::sending);
        return texts;
    };
    for (const RecordTexts& order : orders)
        AppendRecordLine(told(order), lines);
    if (!m_files.Append(now, lines)) return false;
    m_unwritten.clear();
    for (const RecordTexts& order : orders)
        m_ledger.Take(told(order));
    return true;
}

void OrderRecord::Tell(const RecordTexts& order, OrderEvent event, std::string_view registration,
                       std::string_view text) {
    ReadDay();
    const LocalDateTime now = m_now();
    const std::string time = TimeText(now);
    RecordTexts texts = order;
    texts[RecordField::time] = time;
    texts[RecordField::event] = NameOf(event);
    if (!registration.empty()) texts[RecordField::registration] = registration;
    texts[RecordField::text] = text;
    AppendRecordLine(texts, m_unwritten);
    if (m_files.Append(now, m_unwritten)) m_unwritten.clear();
    m_ledger.Take(texts);
}

} // namespace planfold
