#include "plugin/orderentry/Modification.h"

#include "plugin/base/Codes.h"
#include "plugin/base/Numbers.h"
#include "plugin/base/Text.h"
#include "plugin/messaging/Request.h"
#include "plugin/orderentry/PlannedDates.h"
#include "plugin/orderentry/RecordedOrders.h"
#include "sdk/Tags.h"

#include <algorithm>
#include <utility>

namespace planfold {

namespace {

using Value = std::optional<std::string_view>;

struct ModifySipOrder {
    std::string number;
    const sSipOrderData& order;
};
constexpr RequestField<ModifySipOrder> kModifyFields[] = {
    {tag::registrationNumber, [](ModifySipOrder& modify) -> Value { return modify.number; },
     "Failed to add the SIP ID"},
    {tag::amountOrQuantity, [](ModifySipOrder& modify) -> Value { return modify.order.amountOrQuantity; },
     "Failed to add Amount or Quantity"},
    {tag::totalPeriod, [](ModifySipOrder& modify) -> Value { return modify.order.totalPeriod; },
     "Failed to add the Total Period"},
};
constexpr Request<ModifySipOrder> kModifyRequest{kModifySipOrder, "Failed to add the request modify_sip_order",
                                                 kModifyFields, "Sending Request modify_sip_order Failed"};

} // namespace

SymbolAndSeries SplitTradingSymbol(std::string_view tradingSymbol) {
    const std::size_t dash = tradingSymbol.rfind('-');
    if (dash == tradingSymbol.npos) return {std::string(tradingSymbol), {}};
    return {std::string(tradingSymbol.substr(0, dash)), std::string(tradingSymbol.substr(dash + 1))};
}

std::optional<LocalDateTime> ReadServerDate(std::string_view text) {
    const std::size_t month = text.find('-');
    const std::size_t year = text.find('-', month == text.npos ? month : month + 1);
    if (year == text.npos) return std::nullopt;
    const int number = MonthNumber(text.substr(month + 1, year - month - 1));
    if (number == 0) return std::nullopt;
    return LocalDateTime{static_cast<int>(LeadingInteger(text.substr(year + 1))), number,
                         static_cast<int>(LeadingInteger(text))};
}

bool SendModifySipOrder(Pass pass, Session& session, RxControl* control, Notices& notices,
                        std::string_view number, const sSipOrderData& order) {
    ModifySipOrder modify{std::string(number), order};
    if (!SendRequest(pass, session, control, notices, kModifyRequest, modify)) return false;
    session.Log(pass, Format("Request sent Modify SIP Order: %s", modify.number.c_str()));
    return true;
}

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
    return amount.empty() ? amount : FormatRupees(LeadingInteger(Paise(amount)));
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

std::string Modification::Notice() const {
    std::string notice = refusal;
    const std::string news = News(", ");
    if (news.empty()) return notice;
    notice.append(notice.empty() ? "" : "\n").append("Changed meanwhile");
    return notice + (ChangedBy().empty() ? "" : " by " + ChangedBy()) + ": " + news;
}

void SentModifications::Add(std::string registration, int life, std::int64_t now) {
    m_sent.push_back({std::move(registration), life, now});
    ForgetLost(now);
}

void SentModifications::ForgetLost(std::int64_t now) {
    while (m_sent.size() > 1 && now - m_sent.front().at > kAnswerPatienceMs)
        m_sent.erase(m_sent.begin());
}

bool SentModifications::Answered(std::string_view registration, int life, bool refused, std::int64_t now) {
    ForgetLost(now);
    if (m_sent.empty()) return false;
    const std::string named(registration.empty() ? m_sent.front().registration : registration);
    const auto oldest = std::ranges::find(m_sent, named, &Sent::registration);
    if (oldest == m_sent.end()) return false;
    // Of one registration the answers of earlier lives may be lost.
    const bool own = std::ranges::any_of(
        m_sent, [&](const Sent& sent) { return sent.registration == named && sent.life == life; });
    if (own && !refused)
        std::erase_if(m_sent, [&](const Sent& sent) { return sent.life == life; });
    else
        m_sent.erase(oldest);
    return own;
}

} // namespace planfold
