// The order record of a session: writes each event to the day's file and knows what became of each order, those
// of earlier sessions of the day included.
#pragma once

#include "plugin/base/Dates.h"
#include "plugin/record/OrderLedger.h"

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace planfold {

// The days' files of the user. Several terminals may append to one at the same time.
class RecordFiles {
public:
    // False where the host names no folder of the user.
    virtual bool HasFolder() const = 0;
    // Empty when the day has no file; none when it cannot be read.
    virtual std::optional<std::string> Read(const LocalDateTime& day) = 0;
    // Puts the lines at the end of the day's file, behind the heading when it is new, and behind a line end
    // when a crash cut its last line short. What is flushed is on the disk when it returns; the rest outlives
    // the process, but not the machine. False after a failure: a part of it may be there.
    virtual bool Append(const LocalDateTime& day, std::string_view lines, bool flush) = 0;

protected:
    ~RecordFiles() = default;
};

class OrderRecord {
public:
    using Clock = std::function<LocalDateTime()>;

    OrderRecord(RecordFiles& files, Clock now) : m_files(files), m_now(std::move(now)) {}

    // False where the host has no folder for it: all calls are then without effect.
    bool IsKept() const { return m_files.HasFolder(); }
    // Before requests go out: what they ask for. True once it is on the disk, and where the host has no folder
    // for records; otherwise nothing is known of them, and whoever sends them does so without a record.
    bool Sending(std::span<const RecordedOrder> orders);
    // What became of an order that was told as being sent, which `named` names; of any other nothing is kept.
    // What cannot be written now is written with the next event.
    void Tell(const RecordedOrder& named, OrderEvent event, std::string_view text,
              std::string_view registration = {});
    // Whether a row of the book may tell what became of an order.
    bool AwaitsRows() const { return m_isRead ? m_ledger.HasOpen() : IsKept(); }
    // A row of the book, by the server's answer or its stream: it settles the order that is known by its
    // identifier.
    void OnRow(std::string_view orderId, std::string_view registration);

    const OrderLedger& Ledger();

private:
    void ReadDay();

    RecordFiles& m_files;
    Clock m_now;
    OrderLedger m_ledger;
    bool m_isRead = false;
    std::string m_unwritten; // lines of events that have happened
};

} // namespace planfold
