#include "plugin/orderentry/DuplicateGuard.h"

#include "plugin/base/Text.h"

namespace planfold {

namespace {

constexpr std::size_t kMostNamed = 5;

} // namespace

DuplicateGuard::DuplicateGuard(Session& session)
    : m_record(session.record.IsKept() ? &session.record.Ledger() : nullptr) {
    session.record.Refresh();
    if (session.book)
        session.book->EachLive(
            [&](const BookRow& row) { m_registered.try_emplace(AskedForKey(row.asked), row.registration); });
}

bool DuplicateGuard::IsLike(const RecordTexts& order) {
    const std::uint64_t key = AskedForKey(order);
    const bool isFirst = m_seen.insert(key).second;
    if (const auto found = m_registered.find(key); found != m_registered.end())
        return Note(registration, order, found->second);
    if (const OrderPlace sent = m_record ? m_record->LatestStandingLike(order) : kNoOrder; sent != kNoOrder) {
        const RecordedOrder& latest = (*m_record)[sent];
        const std::string_view number = latest.Text(RecordField::registration);
        const std::string sentAt = "sent at " + std::string(latest.SentAt().substr(11, 5))
                                   + (latest.State() == OrderState::done ? "" : ", no answer");
        return Note(recorded, order, number.empty() ? sentAt : number);
    }
    return !isFirst && Note(each, order, {});
}

bool DuplicateGuard::Note(Kind kind, const RecordTexts& order, std::string_view detail) {
    Found& found = m_found[kind];
    if (++found.count > kMostNamed) return true;
    if (found.count > 1) found.names += "; ";
    found.names.append(order[RecordField::account]).append(" ");
    found.names.append(order[RecordField::tradingSymbol]).append(" ").append(order[RecordField::frequency]);
    if (!detail.empty()) found.names.append(", ").append(detail);
    return true;
}

std::string DuplicateGuard::Text() const {
    constexpr std::array<const char*, kinds> like = {"a registration in the book", "an order of today",
                                                     "another of these orders"};
    std::string text;
    for (std::size_t kind = 0; kind < kinds; ++kind) {
        const Found& found = m_found[kind];
        if (found.count == 0) continue;
        // Of a single order it needs no count.
        text += m_seen.size() == 1 && found.count == 1 ? "Like " : Format("%zu like ", found.count);
        text += Format("%s: %s", like[kind], found.names.c_str());
        if (found.count > kMostNamed) text += Format(" and %zu more", found.count - kMostNamed);
        text += '\n';
    }
    return text;
}

} // namespace planfold
