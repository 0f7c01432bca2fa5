// What became of the runs of a period: asks the order history of each plan that can have run in it, a few at a
// time, and keeps the answers for the day.
#pragma once

#include "plugin/base/LongRun.h"
#include "plugin/controls/Lists.h"
#include "plugin/history/HistoryChart.h"
#include "plugin/history/OrderHistory.h"
#include "plugin/messaging/Answer.h"
#include "plugin/morning/RunReckoning.h"
#include "sdk/korvex/FilterListCtrl.h"

#include <array>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace planfold {

enum class PastField {
    account,
    name,
    tradingSymbol,
    exchange,
    side,
    registration,
    date,
    time,
    status,
    quantity,
    filled,
    reason,
    orderNumber,
    count
};

using PastColumn = ListColumn<PastField>;
inline constexpr PastColumn kPastColumns[] = {
    {"Client ID", 75, PastField::account},
    {"Client Name", 120, PastField::name},
    {"Trading Symbol", 110, PastField::tradingSymbol},
    {"Exchange", 70, PastField::exchange},
    {"Action", 50, PastField::side},
    {"SIP Registration No", 120, PastField::registration, ValueType::identifier},
    {"Date", 80, PastField::date},
    {"Time", 60, PastField::time},
    {"Order Status", 90, PastField::status},
    {"Quantity", 65, PastField::quantity, ValueType::number, Align::right},
    {"Filled", 60, PastField::filled, ValueType::number, Align::right},
    {"Reason", 270, PastField::reason},
    {"Order No", 120, PastField::orderNumber, ValueType::identifier},
};
using PastTexts = ByField<PastField, std::string>;

inline constexpr PeriodChoice kPastChoices[] = {
    {"Today", 0, 1}, {"Yesterday", -1, 1}, {"Last 7 Days", -6, 7}, {"Range", 0, 0}};
inline constexpr int kFirstPastChoice = 0;

// A run of which nothing was filled, or that the server has not made although its day has passed.
struct FailedRun {
    std::string registration;
    Day day;
    std::string reason;
};

// The window as the code that decides sees it.
class PeriodRunsView {
public:
    virtual void ShowRows() = 0;
    // The asking takes long, goes on or has ended.
    virtual void ShowRun() = 0;
    virtual std::int64_t Milliseconds() const = 0;

protected:
    ~PeriodRunsView() = default;
};

class PeriodRuns final : public LongRun {
public:
    // `control` gives the control by which is asked, or null.
    PeriodRuns(Session& session, const OrderCache& records, PeriodRunsView& view,
               std::function<RxControl*()> control)
        : m_session(session), m_records(records), m_view(view), m_control(std::move(control)) {}

    static constexpr int kMostDays = RunPeriod::kMostDays;
    static constexpr std::size_t kMostUnderWay = 4;
    static constexpr std::int64_t kPatienceMs = 30'000;

    // Plans that have answered today are not asked again, unless it is `anew`.
    void Show(const RunPeriod& period, Day today, bool anew, bool mineOnly = false);
    void ShowFailedOnly(bool on);
    void OnResponse(void* message);
    // The window is gone. What was answered is kept.
    void Forget();

    std::size_t RowCount() const { return m_rows.size(); }
    // Valid until the rows are shown anew.
    std::string_view Text(std::size_t row, PastField field) const;
    KorvexRowLook Look(std::size_t row) const;
    // All of the period, also while more is shown.
    std::vector<FailedRun> Failed() const;
    std::string Notice() const;
    // What the runs have come to, how many plans were asked, and why it is not all.
    std::array<std::string, 3> Status() const;

    bool IsUnderWay() const override { return m_asking != nullptr; }
    void Continue() override;
    void Stop() override { End("stopped"); }
    std::string Progress() const override;
    std::size_t Done() const override;
    std::size_t Total() const override;

private:
    struct PastRun {
        PastTexts texts;
        Day day;
        ChartPart part;
    };
    struct Asking {
        Asking(ClosedDays days, std::uint32_t bookFilling, std::string_view whose)
            : closed(std::move(days)), filling(bookFilling), user(whose) {}

        ClosedDays closed;
        std::uint32_t filling; // of the book
        std::string user;      // whose plans; empty: everybody's
        RecordId next = 0;     // of it, to be looked at
        std::vector<std::string> plans;
        std::size_t asked = 0;
        std::size_t refused = 0;
        std::int64_t lastAnswer = 0;
    };

    void LookAndAsk(std::int64_t milliseconds);
    void LookAtSome();
    void SendNext();
    void End(std::string why);
    void Collect();
    std::optional<PastRun> MissingRun(const std::string& plan) const;
    void HandleOrder(const Answer& answer);
    void TakeRow(void* message, std::string_view number);
    void Answered(const std::string& plan, bool refused);

    static const AnswerHandler<PeriodRuns> kAnswers[];

    Session& m_session;
    const OrderCache& m_records;
    PeriodRunsView& m_view;
    std::function<RxControl*()> m_control;
    Lifetime m_life{[this] { return !m_session.Ended(); }}; // of an asking
    RunPeriod m_period{};
    Day m_today{};
    Day m_keptOn{};
    bool m_failedOnly = false;
    bool m_sending = false;
    std::unique_ptr<Asking> m_asking;
    std::deque<std::string> m_underWay; // plans; the server answers them in their order
    std::unordered_map<std::string, std::vector<PastRun>> m_coming;
    std::unordered_map<std::string, std::vector<PastRun>> m_kept; // what was answered in full
    std::vector<std::string> m_plans;                             // of the period
    std::deque<PastRun> m_missing;
    std::vector<const PastRun*> m_all;
    std::vector<const PastRun*> m_rows; // of them
    std::string m_why;                  // it is not all
};

} // namespace planfold
