// One load of a basket file into the rows and the list of rejected lines. Goes on some lines at a time, so that
// it can be painted and stopped in between.
#pragma once

#include "plugin/base/Notices.h"
#include "plugin/basket/BasketFile.h"
#include "plugin/basket/BasketRows.h"
#include "plugin/basket/BasketView.h"
#include "plugin/messaging/Session.h"
#include "plugin/orderentry/RecordedOrders.h"

#include <string>
#include <unordered_map>
#include <vector>

namespace planfold {

// The host's scrip master.
class HostScrips final : public ScripSource {
public:
    explicit HostScrips(const Session& session) : m_session(session) {}
    // Lets the questions that follow go to the host.
    void Admit(Pass pass) { m_pass = pass; }
    std::optional<ScripDetails> Details(std::string_view exchange, std::string_view tradingSymbol) override;
    ScripNames Names(std::string_view exchange, std::string_view series, std::string_view symbol) override;

private:
    const Session& m_session;
    std::optional<Pass> m_pass;
};

class BasketLoading final : private BasketSink {
public:
    // Where rows and rejected lines go to; both are empty at first.
    struct Target {
        BasketRows& rows;
        BasketList& list;
        std::vector<RejectedLine>& rejected;
    };

    BasketLoading(const Session& session, const BeginReading& reading, BasketRules rules, const Target& target);
    BasketLoading(const BasketLoading&) = delete;
    BasketLoading& operator=(const BasketLoading&) = delete;

    // Against which the next lines are checked; seconds since 1 January 1970.
    void SetNow(std::int64_t now) { m_rules.now = now; }
    // Some lines; false at the end of the file.
    bool Step(Pass pass);

    void Stop() { m_stopped = true; }
    bool Stopped() const { return m_stopped; }

    const BasketReading& Reading() const { return *m_load; }
    // What the checks had to say beside the reasons.
    std::string Notices() const { return m_notices.Text(); }

private:
    void OnRow(const BasketTexts& texts) override;
    void OnRejected(const RejectedLine& line, const BasketTexts& columns) override;
    void OnNotice(std::string_view text) override;
    void OnLog(std::string_view text) override { m_session.LogLast(text); }
    // The row is an order of the record that asks for the same, if one is not a row already.
    void KnowAgain(RecordId row, const BasketTexts& texts);

    const Session& m_session;
    BasketRules m_rules;
    HostScrips m_scrips;
    Target m_target;
    StartDates m_startDates;
    // By what they ask for, the orders of the record that are not rows yet, the likeliest last: while it has so
    // many of each state.
    std::unordered_map<std::uint64_t, std::vector<OrderPlace>> m_recorded;
    OrderLedger::Counts m_recordCounts{};
    KeptTexts m_notices;
    std::string m_notice; // the last
    std::unique_ptr<BasketReading> m_load;
    bool m_stopped = false;
};

} // namespace planfold
