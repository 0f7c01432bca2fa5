// The order record of a session: writes each event to the day's file and knows what became of each order, those
// of other sessions of the user included.
#pragma once

#include "plugin/base/Dates.h"
#include "plugin/base/KeyCounts.h"
#include "plugin/record/OrderLedger.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace planfold {

// The days' files of the user. Several terminals may append to one at the same time.
class RecordFiles {
public:
    // False where the host names no folder of the user.
    virtual bool HasFolder() const = 0;
    // Empty when the day has no file; none when it cannot be read.
    virtual std::optional<std::string> Read(const LocalDateTime& day) = 0;
    // Puts the lines at the end of the day's file, behind the heading when it is new, and behind kTornEnd when
    // a crash cut its last line short. What is flushed is on the disk when it returns; the rest outlives
    // the process, but not the machine. False after a failure: so many of the lines are there whole then.
    virtual bool Append(const LocalDateTime& day, std::string_view lines, bool flush, std::size_t& whole) = 0;

protected:
    ~RecordFiles() = default;
};

class RecordListener {
public:
    // More is known of the order. The host is not to be let in.
    virtual void OnOrder(OrderPlace) {}
    // The book has the order under a second number as well. May be told again.
    virtual void OnRegisteredTwice(OrderPlace, std::string_view) {}

protected:
    ~RecordListener() = default;
};

// A row of the book, as far as it tells of an order.
struct BookRow {
    std::string_view orderId{};      // empty where the server does not tell it
    std::string_view registration{}; // its number
    RecordTexts asked{};             // what it is for, where it is known
    std::string_view enteredOn{};    // "2027-03-05"; empty when that is not known
    std::string_view status{};       // in the server's word
    bool isLive = true;              // neither cancelled nor over
};

// "2027-03-05 14:02:03", and back; -1 for a text of another form.
std::string TimeText(const LocalDateTime& time);
std::int64_t SecondsOf(std::string_view timeText);

// The registrations of the book that may still be executed.
class LiveRegistrations {
public:
    virtual void EachLive(const std::function<void(const BookRow&)>& each) const = 0;

protected:
    ~LiveRegistrations() = default;
};

class OrderRecord {
public:
    using Clock = std::function<LocalDateTime()>;
    // After so many seconds without an answer an order is in doubt.
    static constexpr std::int64_t kPatience = 30;

    OrderRecord(RecordFiles& files, Clock now) : m_files(files), m_now(std::move(now)) {}
    OrderRecord(const OrderRecord&) = delete;
    OrderRecord& operator=(const OrderRecord&) = delete;

    // False where the host has no folder for it: what happens is then known to this session only.
    bool IsKept() const { return m_files.HasFolder(); }
    // A listener hears of everything until it is removed.
    void AddListener(RecordListener& listener) { m_listeners.push_back(&listener); }
    void RemoveListener(RecordListener& listener) { std::erase(m_listeners, &listener); }

    LocalDateTime LocalTime() const { return m_now(); }
    std::int64_t Now() const { return ToSeconds(m_now()); } // since 1970
    // How many of the ledger's orders were sent before this session; they are its first.
    std::size_t CountAtStart() const { return m_countAtStart; }
    // What is known of the orders of today, and of earlier ones that may still be open.
    const OrderLedger& Ledger();
    // Takes in what other terminals of the user have written meanwhile.
    void Refresh();

    // Before requests go out: what they ask for. Their places once it is on the disk, and where the host has no
    // folder for records; none when it cannot be written.
    std::optional<std::vector<OrderPlace>> Sending(std::span<const RecordedOrder> orders);
    // The same when the dealer agrees that those which could not be written just now go out without being on
    // the disk; they follow once they can.
    std::vector<OrderPlace> SendingUnwritten(std::span<const RecordedOrder> orders);
    // What became of it. What cannot be written now is written with the next event.
    void Tell(OrderPlace place, OrderEvent event, std::string_view text, std::string_view registration = {});
    // The same of what was sent last of this kind; of what was not sent nothing is kept.
    void Tell(const RecordedOrder& named, OrderEvent event, std::string_view text,
              std::string_view registration = {});

    // Whether a row of the book may tell something of an order.
    bool AwaitsRows();
    // A row of the book, by the server's answer or its stream.
    void OnRow(const BookRow& row);
    // Tells the listeners of all orders that were sent again and stand twice.
    void TellAllTwice();
    // Some seconds have passed: what has waited too long for its answer is in doubt.
    void OnTime();
    // No answer comes any more.
    void OnSessionEnd();

private:
    struct Waiting {
        OrderPlace place;
        std::int64_t since; // seconds since 1970
    };

    void ReadDays();
    // What has been read from this place on waits for its answer.
    void AwaitFrom(std::size_t place);
    // Takes in what has come to the file since it was read.
    void ReadOn();
    void TakeAll(std::string_view lines);
    void AppendSending(std::span<const RecordedOrder> orders, const LocalDateTime& now,
                       std::string& lines) const;
    std::vector<OrderPlace> Enter(std::span<const RecordedOrder> orders, const LocalDateTime& now);
    // Takes the event in, and leaves its line for WriteLines.
    void Note(OrderPlace place, OrderEvent event, std::string_view text, std::string_view registration);
    // True when all that has happened, and these lines, are in the file. After a failure events wait a second.
    bool WriteLines(const LocalDateTime& now, std::string_view lines, bool flush);
    void TellStraysNotSent();
    void TellListeners(OrderPlace place) const;
    OrderPlace OrderOf(const BookRow& row) const;
    void LookForTwice(OrderPlace place) const;
    void TellTwice(OrderPlace place, std::string_view second) const;

    RecordFiles& m_files;
    Clock m_now;
    OrderLedger m_ledger;
    std::vector<RecordListener*> m_listeners;
    std::string m_unwritten;             // lines of events that have happened
    std::vector<RecordedOrder> m_strays; // on the disk, of a portion that could not be written as a whole
    std::size_t m_wholeLines = 0;        // of the lines handed to WriteLines that failed last
    std::deque<Waiting> m_waiting;       // the earliest first
    KeyCounts m_ownLines;                // hashes of those that ReadOn may meet
    LocalDateTime m_failedAt{};          // when lines could not be written
    LocalDateTime m_day{};               // whose file is read
    std::size_t m_readTo = 0;            // of it, in characters
    std::size_t m_countAtStart = 0;
    bool m_isRead = false;
    bool m_knowsAbsent = false; // of an order, at any time
};

} // namespace planfold
