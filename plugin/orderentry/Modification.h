// The registration that the form is open to modify: as the form took it over, as it is now, and what was sent.
#pragma once

#include "plugin/orderentry/ModifyOrder.h"
#include "plugin/orderentry/SipOrder.h"

#include <cstdint>
#include <string>
#include <vector>

namespace planfold {

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
    // In the server's words: paise or shares.
    std::string Value() const;

    // The registration as it is now. What this form sent changes it as meant, and is no news.
    void Update(const SipRegistration& registration);
    // The form has asked for this value and period, knowing how the registration was.
    void Sent(const sSipOrderData& order);

    // What others changed since, "Amount Rs 2,000.00 instead of 1,500.00", by `separator`; empty when nothing.
    std::string News(std::string_view separator) const;
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

} // namespace planfold
