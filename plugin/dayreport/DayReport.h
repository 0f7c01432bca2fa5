// What was asked of the server on a day and what became of it, as the order record's files say: a row for each
// order and each change of a registration, and what they come to.
#pragma once

#include "plugin/base/LongRun.h"
#include "plugin/controls/Lists.h"
#include "plugin/messaging/Session.h"
#include "plugin/record/OrderRecord.h"
#include "sdk/korvex/FilterListCtrl.h"

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace planfold {

enum class DayField {
    sentAt,
    state,
    registration,
    request,
    account,
    exchange,
    tradingSymbol,
    side,
    amount,
    quantity,
    frequency,
    startDate,
    periods,
    source,
    line,
    loginId,
    answeredAt,
    answer,
    orderId,
    count
};

using DayColumn = ListColumn<DayField>;
inline constexpr DayColumn kDayColumns[] = {
    {"Sent At", 125, DayField::sentAt},
    {"State", 90, DayField::state},
    {"SIP Registration No", 115, DayField::registration, ValueType::identifier},
    {"Request", 70, DayField::request},
    {"Client ID", 75, DayField::account},
    {"Exchange", 70, DayField::exchange},
    {"Trading Symbol", 110, DayField::tradingSymbol},
    {"Action", 50, DayField::side},
    {"Amount", 80, DayField::amount, ValueType::amount, Align::right},
    {"Quantity", 65, DayField::quantity, ValueType::number, Align::right},
    {"Frequency", 70, DayField::frequency},
    {"Start Date", 85, DayField::startDate},
    {"Total Period", 75, DayField::periods, ValueType::number, Align::right},
    {"Source", 100, DayField::source},
    {"Line", 45, DayField::line, ValueType::number, Align::right},
    {"User ID", 75, DayField::loginId},
    {"Answered At", 125, DayField::answeredAt},
    {"Answer", 250, DayField::answer},
    {"Order Identifier", 150, DayField::orderId},
};

// "Pause": what was asked for, in a dealer's words.
std::string_view RequestOf(const RecordedOrder& order);

// The entries of other lists' menus that have to do with the order record: its report, greyed where the host
// has no folder for records, and the comparison of what is in doubt.
inline constexpr int kDayReportCommand = 25103;
inline constexpr int kCompareCommand = 25104;
std::array<MenuEntry, 2> RecordEntries(const Session& session);
constexpr bool IsRecordCommand(int command) {
    return command == kDayReportCommand || command == kCompareCommand;
}

// The window as the code that decides sees it.
class DayReportView {
public:
    // The rows, or what is said of them, have changed. With `anew` no row stands for what it stood for before;
    // without it there may be further ones behind those.
    virtual void ShowRows(bool anew) = 0;
    // The reading of a day takes long, goes on or has ended.
    virtual void ShowRun() = 0;
    virtual std::int64_t Milliseconds() const = 0;

protected:
    ~DayReportView() = default;
};

class DayReport final : public LongRun {
public:
    DayReport(RecordFiles& files, DayReportView& view) : m_files(files), m_view(view) {}

    // Shows the day as its file is now, at once or after a run.
    void Show(const LocalDateTime& day);
    // The day that many days after the one that is shown.
    LocalDateTime Day(int after = 0) const;
    // The window is gone.
    void Forget();

    // Row 0 is what was sent first.
    std::size_t RowCount() const { return m_shown.sentAt.size(); }
    // Valid until the rows are shown again.
    std::string_view Text(std::size_t row, DayField field) const;
    KorvexRowLook Look(std::size_t row) const;
    // What is said where there are no rows; empty where there are.
    std::string Notice() const;
    // What was sent, what of it is registered, and whatever else there is.
    std::array<std::string, 3> Status() const;

    bool IsUnderWay() const override { return m_reading != nullptr; }
    void Continue() override;
    void Stop() override;
    std::string Progress() const override;
    std::size_t Done() const override;
    std::size_t Total() const override;

private:
    // What a day's file tells.
    struct Orders {
        OrderLedger ledger;              // its orders first
        std::vector<std::string> sentAt; // of each of them, when it was sent first
        std::size_t unread = 0;          // lines
        bool isReadable = true;
        bool isStopped = false; // before its end
    };
    struct Reading {
        explicit Reading(std::optional<std::string>&& file) : text(file ? std::move(*file) : std::string()) {
            orders.isReadable = file.has_value();
        }
        void Take(const RecordTexts& event);

        std::string text;
        RecordReader reader{text};
        Orders orders;
        bool isOfNextDay = false; // the text, which may tell more of what was sent on the day
        std::size_t lines = 0;
    };

    void RunFor(std::int64_t milliseconds);
    bool Step();
    bool GoOnWithNextDay();
    void End();

    RecordFiles& m_files;
    DayReportView& m_view;
    LocalDateTime m_day;
    bool m_isAnew = true; // the rows of the list are another day's
    Orders m_shown;
    std::unique_ptr<Reading> m_reading;
    // Amounts in rupees, by paise as they are recorded.
    mutable std::unordered_map<std::string, std::string> m_rupees;
};

} // namespace planfold
