#include "plugin/orderentry/KeptOrders.h"

#include "plugin/base/Text.h"
#include "plugin/orderentry/Modification.h"
#include "plugin/orderentry/RecordedOrders.h"

#include <algorithm>
#include <utility>

namespace planfold {

namespace {

std::string Naming(const SipOrderForm& order) {
    std::string text;
    for (const std::string* part : {&order.account, &order.symbol, &order.value})
        if (!part->empty()) text.append(text.empty() ? "" : " ").append(*part);
    return text;
}

} // namespace

// Of a refusal that belonged to no known order nothing can come back.
void KeptOrders::ForgetUnknown() {
    std::erase_if(m_kept, [](const Kept& kept) { return !kept.order; });
}

void KeptOrders::Sent(SentOrder order) {
    ForgetUnknown();
    m_waiting.push_back(std::move(order));
}

std::optional<KeptOrders::SentOrder> KeptOrders::TakeAnswered(OrderPlace named, std::string_view client,
                                                              std::int64_t now) {
    while (named == kNoOrder && m_waiting.size() > 1 && now - m_waiting.front().at > kAnswerPatienceMs)
        m_waiting.erase(m_waiting.begin());
    const auto answered = std::ranges::find_if(m_waiting, [&](const SentOrder& waiting) {
        if (named != kNoOrder) return waiting.place == named;
        return client.empty() || waiting.form.account == client;
    });
    if (answered == m_waiting.end()) return std::nullopt;
    SentOrder order = std::move(*answered);
    m_waiting.erase(answered);
    return order;
}

std::optional<KeptOrders::SentOrder> KeptOrders::Refused(OrderPlace named, std::string_view client,
                                                         std::string_view text, std::string_view code,
                                                         std::int64_t now) {
    auto order = TakeAnswered(named, client, now);
    std::string why = DescribeRefusal(text, code);
    if (order && !m_waiting.empty()) why += Format(" %zu more wait for an answer.", m_waiting.size());
    ForgetUnknown(); // the latest is enough, however many come
    m_kept.push_back({order ? std::optional(order->form) : std::nullopt, std::move(why)});
    return order;
}

void KeptOrders::NotSent(const SipOrderForm& order, std::string_view text) {
    m_kept.push_back({order, "Not sent: " + InShort(text) + "."});
}

void KeptOrders::SetAside(const SipOrderForm& order) {
    m_kept.push_front({order, "An order is set aside.", false});
}

std::optional<SipOrderForm> KeptOrders::TakeNext() {
    while (!m_kept.empty()) {
        const Kept next = std::move(m_kept.back());
        m_kept.pop_back();
        if (next.order) return next.order;
    }
    return std::nullopt;
}

std::string KeptOrders::Notice() const {
    if (m_kept.empty()) return {};
    std::string text = m_kept.back().why;
    const auto brings = [](const Kept& kept) { return kept.order.has_value(); };
    const auto orders = std::ranges::count_if(m_kept, brings);
    if (orders == 0) return text;
    const auto next = std::ranges::find_if(m_kept.rbegin(), m_kept.rend(), brings);
    text += next == m_kept.rbegin() ? " F3 brings the order back (" : " F3 brings an earlier order back (";
    text += Naming(*next->order) + ").";
    if (orders > 1) text += Format(" %zu more are kept.", static_cast<std::size_t>(orders - 1));
    return text;
}

} // namespace planfold
