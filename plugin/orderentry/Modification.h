// Changing a registered order: the registration that the form is open for, the request, and those that are sent
// and not yet answered.
#pragma once

#include "plugin/messaging/Session.h"
#include "plugin/orderentry/SipOrder.h"
#include "sdk/RxControl.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace planfold {

// A registration as the book shows it.
struct SipRegistration {
    std::string number;
    std::string exchange;
    std::string frequency;
    std::string orderType;
    std::string product;
    std::string totalPeriod; // months
    std::string installments;
    std::string tradingSymbol;
    std::string action;
    std::string investType; // "value" or "qty"
    std::string amount;     // rupees
    std::string quantity;
    std::string startDate; // "05-Mar-2027"
    std::string account;
    std::string nextExecutionDate;
    std::string endDate;
    std::string status;
    std::string changedBy; // the last one
};

// Symbol and series of a trading symbol, divided at its last "-"; without one the series is empty.
struct SymbolAndSeries {
    std::string symbol;
    std::string series;
};
SymbolAndSeries SplitTradingSymbol(std::string_view tradingSymbol);

// A date as the server writes it, "05-Mar-2027". None when its month is no month's name.
std::optional<LocalDateTime> ReadServerDate(std::string_view text);

// The request modify_sip_order with the record's value and period. Sent is logged; the reason of a failure is
// shown.
bool SendModifySipOrder(Pass pass, Session& session, RxControl* control, Notices& notices,
                        std::string_view number, const sSipOrderData& order);

// The registration that the form is open to modify: as the form took it over, as it is now, and what was sent.
class Modification {
public:
    // The form was filled only half-way: there is no registration that could be changed.
    Modification() = default;
    // `serverPeriods`: periods are counted as the server sets them, else in months.
    Modification(const SipRegistration& registration, bool serverPeriods)
        : m_taken(registration), m_now(registration), m_serverPeriods(serverPeriods) {}

    const std::string& Number() const { return m_now.number; }
    const SipRegistration& Now() const { return m_now; }
    std::int64_t Periods() const;
    // The value in the server's words: paise or shares.
    std::string Value() const;

    // The registration as it is now. What this form sent changes it as meant, and is no news.
    void Update(const SipRegistration& registration);
    // The form has asked for this value and period, knowing how the registration was.
    void Sent(const sSipOrderData& order);

    // What others changed since, "Amount Rs 2,000.00 instead of 1,500.00", by `separator`; empty when nothing.
    std::string News(std::string_view separator) const;
    // What has happened that the dealer must know before anything else: a refusal, and what others changed.
    std::string Notice() const;
    // The user who did; may be empty.
    const std::string& ChangedBy() const { return m_now.changedBy; }

    // What the server said to the last one, when it refused it.
    std::string refusal;

private:
    struct Asked {
        std::string value;
        std::int64_t periods;
    };
    bool IsOwnWork() const;

    SipRegistration m_taken;
    SipRegistration m_now;
    bool m_serverPeriods = false;
    std::vector<Asked> m_asked;
};

// How long an answer is waited for before a younger one is taken to be another's.
inline constexpr std::int64_t kAnswerPatienceMs = 10'000;

// Modifications that are sent and not yet answered: whose answer has come, although others may never come.
class SentModifications {
public:
    // It was sent in the window's life of that number.
    void Add(std::string registration, int life, std::int64_t now);

    // Takes the modification off that is answered: one of the registration that the answer names, or when it
    // names none, of the oldest that can still be waited for. True when this life has sent one of that
    // registration.
    bool Answered(std::string_view registration, int life, bool refused, std::int64_t now);

private:
    struct Sent {
        std::string registration;
        int life;
        std::int64_t at;
    };
    void ForgetLost(std::int64_t now);

    std::vector<Sent> m_sent; // the oldest first
};

} // namespace planfold
