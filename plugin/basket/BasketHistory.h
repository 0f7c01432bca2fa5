// Undo and redo of the basket. Every change of its rows and rejected lines goes through here, as a step: what
// it took out, and where what it put in stands. A step that is taken back swaps the two, and so can be made
// again.
//
// What a row says of its order is no change of the basket: rows keep it wherever they are, and a step that
// would take away a row which was sent since is refused.
#pragma once

#include "plugin/basket/BasketFile.h"
#include "plugin/basket/BasketRows.h"
#include "plugin/basket/BasketView.h"
#include "plugin/record/OrderRecord.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace planfold {

class BasketHistory {
public:
    BasketHistory(OrderRecord& record, BasketView& view, BasketRows& rows, RejectedLines& rejected)
        : m_record(record), m_view(view), m_rows(rows), m_rejected(rejected) {}

    // What is changed while one lives is one step.
    class Change {
    public:
        explicit Change(BasketHistory& history) : m_history(history) { history.Begin(); }
        Change(const Change&) = delete;
        Change& operator=(const Change&) = delete;
        ~Change() { m_history.End(); }

    private:
        BasketHistory& m_history;
    };

    // On top of the rows.
    RecordId Add(const BasketTexts& texts);
    void Replace(RecordId record, const BasketTexts& texts);
    // `takeFromList` does so with all of them.
    void Remove(const std::vector<RecordId>& records, const std::function<void()>& takeFromList);
    void Reject(RejectedLine line);
    void RemoveRejected(std::size_t index);
    // Everything gives way to what a load brings, out of this file; it has come when EndLoad is called.
    void BeginLoad(const std::string& file);
    void EndLoad();
    // The file whose lines the rows know.
    const std::string& File() const { return m_file; }

    // Why it cannot be; none when it is done.
    std::optional<std::string> Undo() { return Go(m_undo, m_redo, "undo"); }
    std::optional<std::string> Redo() { return Go(m_redo, m_undo, "redo"); }
    void Clear();

private:
    using Place = std::uint32_t; // among all rows, or all rejected lines
    struct Out {
        Place place;
        TakenRow row;
    };
    struct OutLine {
        Place place;
        RejectedLine line;
    };
    struct In {
        Place place;
        OrderPlace order; // that it had when the step was made
    };
    struct Step {
        std::vector<Out> out; // each by place
        std::vector<In> in;
        std::vector<OutLine> outLines;
        std::vector<Place> inLines;
        std::optional<std::string> file; // when a load changed it

        std::size_t Size() const;
    };
    // By which a change that did not go through here is seen.
    struct Seen {
        std::size_t rows, lines;
        std::int32_t nextSerial;

        bool operator==(const Seen&) const = default;
    };

    void Begin();
    void End();
    Seen Now() const;
    void NoteOrders(Step& step) const;
    void Push(Step step);
    std::optional<std::string> Go(std::deque<Step>& from, std::deque<Step>& to, const char* what);
    RecordId SentSince(const Step& step) const;
    RowState StateOf(const TakenRow& row) const;
    void Swap(Step& step);
    bool SwapInPlace(Step& step);
    void SwapRows(Step& step);
    void SwapLines(Step& step);

    OrderRecord& m_record; // which reads its files at the first look
    BasketView& m_view;
    BasketRows& m_rows;
    RejectedLines& m_rejected;
    std::deque<Step> m_undo, m_redo;
    std::optional<Step> m_step; // under way
    int m_depth = 0;
    bool m_loads = false;
    bool m_forgot = false; // steps, for want of memory
    Seen m_seen{};
    std::size_t m_size = 0; // of m_undo
    std::string m_file;
};

} // namespace planfold
