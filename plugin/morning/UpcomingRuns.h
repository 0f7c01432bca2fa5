// What runs in a period and what the clients need for it: the rows of the window, a client's plans below it.
#pragma once

#include "plugin/base/LongRun.h"
#include "plugin/controls/Lists.h"
#include "plugin/messaging/Session.h"
#include "plugin/morning/DaysChart.h"
#include "plugin/morning/RunReckoning.h"

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace planfold {

enum class RunField {
    account,
    name,
    plan, // the registration; of a client how many, behind a "+" or "-"
    tradingSymbol,
    frequency,
    due,
    expected,
    runs,
    toPay,
    toReceive,
    toBuy,
    toDeliver,
    note,
    count
};

using RunColumn = ListColumn<RunField>;
inline constexpr RunColumn kRunColumns[] = {
    {"Client ID", 75, RunField::account},
    {"Client Name", 120, RunField::name},
    {"Plans", 120, RunField::plan, ValueType::identifier},
    {"Runs", 45, RunField::runs, ValueType::number, Align::right},
    {"Rupees to Pay", 95, RunField::toPay, ValueType::amount, Align::right},
    {"Rupees to Receive", 115, RunField::toReceive, ValueType::amount, Align::right},
    {"Shares to Buy", 85, RunField::toBuy, ValueType::number, Align::right},
    {"Shares to Deliver", 105, RunField::toDeliver, ValueType::number, Align::right},
    {"First Due", 80, RunField::due},
    {"Expected", 80, RunField::expected},
    {"Trading Symbol", 110, RunField::tradingSymbol},
    {"Frequency", 70, RunField::frequency},
    {"Note", 260, RunField::note},
};

inline constexpr PeriodChoice kPeriodChoices[] = {
    {"Today", 0, 1}, {"Tomorrow", 1, 1}, {"7 Days", 0, 7}, {"30 Days", 0, 30}, {"Range", 0, 0},
};
inline constexpr int kFirstPeriodChoice = 2;

// The window as the code that decides sees it.
class UpcomingView {
public:
    // The rows, or what is said of them, have changed.
    virtual void ShowRows() = 0;
    // The reckoning takes long, goes on or has ended.
    virtual void ShowRun() = 0;
    virtual std::int64_t Milliseconds() const = 0;

protected:
    ~UpcomingView() = default;
};

class UpcomingRuns final : public LongRun {
public:
    UpcomingRuns(const Session& session, const OrderCache& records, UpcomingView& view)
        : m_session(session), m_records(records), m_view(view) {}

    // Reckons up the book as it is now, at once or in a run.
    void Show(const RunPeriod& period, Day today, bool mineOnly = false);
    // True when the book has grown since and grows no more: as it does while it fills.
    bool IsOutdated();
    // The window is gone.
    void Forget();

    // From the top. A row keeps its number while it stands: clients first, then plans.
    std::vector<std::uint32_t> Rows() const;
    // False when nothing has changed. Of a plan it is its client that is closed.
    bool SetOpen(std::uint32_t row, bool open);
    void SetAllOpen(bool open);
    bool IsOpen(std::uint32_t row) const;
    bool IsPlan(std::uint32_t row) const { return row >= m_shown.clients.size(); }
    // A client's own row, and that of a plan's client.
    std::uint32_t ClientRow(std::uint32_t row) const;
    // Empty for a client's row.
    std::string_view Registration(std::uint32_t row) const {
        return Recorded(row, OrderField::registrationNumber);
    }

    // Valid until the rows are shown anew.
    std::string_view Text(std::uint32_t row, RunField field) const;
    // What is said where there are no rows; empty where there are.
    std::string Notice() const;
    // How many there are, what they need, and what has moved or is left out.
    std::array<std::string, 3> Status() const;
    const DaysChart& Chart() const { return m_chart; }
    const RunPeriod& Period() const { return m_shown.period; }

    bool IsUnderWay() const override { return m_reckoning != nullptr; }
    void Continue() override;
    void Stop() override;
    std::string Progress() const override;
    std::size_t Done() const override;
    std::size_t Total() const override;

private:
    void RunFor(std::int64_t milliseconds);
    void End(bool stopped);
    const UpcomingRows::Plan* PlanOf(std::uint32_t row) const;
    std::string_view Recorded(std::uint32_t row, OrderField field) const;
    std::string_view Kept(std::string text) const { return *m_texts.insert(std::move(text)).first; }
    std::string ClientText(const UpcomingRows::Client& client, RunField field) const;
    std::string PlanText(const UpcomingRows::Plan& plan, RunField field) const;

    const Session& m_session;
    const OrderCache& m_records;
    UpcomingView& m_view;
    UpcomingRows m_shown;
    DaysChart m_chart;
    std::unique_ptr<RunReckoning> m_reckoning;
    std::size_t m_reckoned = 0; // records of the book
    std::size_t m_lastSize = 0;
    mutable std::unordered_set<std::string> m_texts; // of cells that no record holds
};

} // namespace planfold
