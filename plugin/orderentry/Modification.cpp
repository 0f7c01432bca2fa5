#include "plugin/orderentry/Modification.h"

#include "plugin/base/Numbers.h"
#include "plugin/orderentry/PlannedDates.h"

#include <algorithm>

namespace planfold {

namespace {

// The field in which the server's number landed hangs on what was known of its periods at that time.
const std::string& PeriodsText(const SipRegistration& registration, bool serverPeriods) {
    const std::string& meant = serverPeriods ? registration.installments : registration.totalPeriod;
    const std::string& other = serverPeriods ? registration.totalPeriod : registration.installments;
    return meant.empty() ? other : meant;
}

// The book's amounts have two decimals.
std::string Paise(std::string amount) {
    std::erase(amount, '.');
    return amount;
}

std::string Rupees(const std::string& amount) {
    return amount.empty() ? amount : "Rs " + FormatRupees(LeadingInteger(Paise(amount)));
}

struct NewsRow {
    const char* name;
    std::string SipRegistration::*member;
};
// What the form shows, and does not change itself.
constexpr NewsRow kNews[] = {
    {"Status", &SipRegistration::status},        {"Frequency", &SipRegistration::frequency},
    {"Start Date", &SipRegistration::startDate}, {"Client", &SipRegistration::account},
    {"Symbol", &SipRegistration::tradingSymbol}, {"Exchange", &SipRegistration::exchange},
    {"Action", &SipRegistration::action},        {"Product Type", &SipRegistration::product},
    {"Order Type", &SipRegistration::orderType}, {"Invest By", &SipRegistration::investType},
};

class NewsText {
public:
    explicit NewsText(std::string_view separator) : m_separator(separator) {}
    void Add(std::string_view name, const std::string& before, const std::string& now) {
        // What a message leaves out is not gone.
        if (before == now || now.empty()) return;
        if (!m_text.empty()) m_text += m_separator;
        m_text.append(name).append(" ").append(now);
        m_text.append(" instead of ").append(before.empty() ? "none" : before);
    }
    const std::string& Text() const { return m_text; }

private:
    std::string_view m_separator;
    std::string m_text;
};

} // namespace

std::int64_t Modification::Periods() const {
    return LeadingInteger(PeriodsText(m_now, m_serverPeriods));
}

std::string Modification::Value() const {
    return m_now.investType == "qty" ? m_now.quantity : Paise(m_now.amount);
}

void Modification::Update(const SipRegistration& registration) {
    m_now = registration;
    if (IsOwnWork()) m_taken = m_now;
}

bool Modification::IsOwnWork() const {
    NewsText others({});
    for (const auto& [name, member] : kNews)
        others.Add(name, m_taken.*member, m_now.*member);
    return others.Text().empty() && std::ranges::any_of(m_asked, [&](const Asked& asked) {
               return asked.value == Value() && asked.periods == Periods();
           });
}

void Modification::Sent(const sSipOrderData& order) {
    m_asked.push_back({order.amountOrQuantity, LeadingInteger(order.totalPeriod)});
    m_taken = m_now;
    refusal.clear();
}

std::string Modification::News(std::string_view separator) const {
    NewsText news(separator);
    news.Add("Amount", Rupees(m_taken.amount), Rupees(m_now.amount));
    news.Add("Quantity", m_taken.quantity, m_now.quantity);
    news.Add(m_serverPeriods ? "SIP Periods" : "Total Period", PeriodsText(m_taken, m_serverPeriods),
             PeriodsText(m_now, m_serverPeriods));
    for (const auto& [name, member] : kNews)
        news.Add(name, m_taken.*member, m_now.*member);
    return news.Text();
}

} // namespace planfold
