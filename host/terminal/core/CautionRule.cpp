#include "host/terminal/core/CautionRule.h"

#include <algorithm>

namespace vesk {

std::optional<CautionAnswer> DecideCaution(const ScripMaster& master, const CautionOrder& order) {
    const Scrip* scrip = master.ByTradingSymbol(order.exchange, order.tradingSymbol);
    if (!scrip) return kCautionUndecided;
    if (!scrip->cautionary) return kNotCautionary;
    return std::nullopt;
}

std::string CautionQuestion(const CautionOrder& order) {
    return order.tradingSymbol + " is under caution by the exchange.\nPlace the order for client "
           + order.client
           + " as a cautionary order?\nYes places it as a cautionary order, No places it without confirmation.";
}

void BasketCaution::Clear() {
    m_rows.clear();
    m_leaveOut = false;
}

void BasketCaution::Add(const ScripMaster& master, const CautionOrder& order, int row) {
    const bool cautionary = !DecideCaution(master, order);
    m_rows.insert_or_assign(row, Row{order.tradingSymbol, order.exchange, cautionary});
}

std::size_t BasketCaution::CautionaryRows() const {
    return static_cast<std::size_t>(
        std::ranges::count_if(m_rows, [](const auto& entry) { return entry.second.cautionary; }));
}

std::string BasketCaution::Question() const {
    const std::size_t count = CautionaryRows();
    if (!count) return {};
    return std::to_string(count) + " of " + std::to_string(m_rows.size())
           + " basket orders are in scrips under caution by the exchange.\nYes places them as cautionary "
             "orders, "
             "No places them without confirmation, Cancel leaves them out.";
}

int BasketCaution::Answer(BasketAnswer answer) {
    m_leaveOut = answer == BasketAnswer::leaveOut;
    return answer == BasketAnswer::confirm ? 1 : 0;
}

int BasketCaution::StateOf(std::string_view tradingSymbol, std::string_view exchange, int row) const {
    const auto found = m_rows.find(row);
    if (found == m_rows.end() || found->second.tradingSymbol != tradingSymbol
        || found->second.exchange != exchange)
        return 0;
    if (!found->second.cautionary) return 2;
    return m_leaveOut ? 0 : 1;
}

} // namespace vesk
