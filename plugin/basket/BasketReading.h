// Reading a file of orders, whatever its format: what it brings goes to a sink, line by line.
#pragma once

#include "plugin/basket/BasketLine.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace planfold {

// A line that did not become a row.
struct RejectedLine {
    int number;         // from 1
    std::string text;   // as it was read, without its end; may hold zeros
    std::string reason; // may be empty
    // What is said about it: the line up to a zero, "failed to load" and why.
    std::string report;
};

// What a load brings, line by line.
class BasketSink {
public:
    // The texts live during the call only.
    virtual void OnRow(const BasketTexts& texts) = 0;
    // `columns` are the line's, as far as it had the file's format.
    virtual void OnRejected(const RejectedLine& line, const BasketTexts& columns) = 0;
    // A text for the user, at once.
    virtual void OnNotice(std::string_view text) = 0;
    // A line for the log.
    virtual void OnLog(std::string_view text) = 0;

protected:
    ~BasketSink() = default;
};

// A file that is read, whatever its format: what it brings goes to a sink.
class BasketReading {
public:
    virtual ~BasketReading() = default;

    // At most so many lines; false when the file is at its end.
    virtual bool Read(std::size_t lines) = 0;

    virtual int LinesRead() const = 0;
    virtual std::size_t RowsLoaded() const = 0;
    // Of the line rejected last; empty without one, or when it had none.
    virtual const std::string& LastReason() const = 0;
    // How far it has come: two numbers.
    virtual std::size_t Done() const = 0;
    virtual std::size_t Total() const = 0;
};

// Begins to read; what it is given outlives the reading.
using BeginReading =
    std::function<std::unique_ptr<BasketReading>(const BasketRules&, ScripSource&, BasketSink&)>;

} // namespace planfold
