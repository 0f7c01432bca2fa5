// The registration book without its window.
#pragma once

#include "plugin/orderbook/OrderBook.h"
#include "tests/plugin/Doubles.h"

#include <algorithm>
#include <utility>

namespace planfold::test {

class ListDouble final : public BookList {
public:
    bool Contains(RecordId record) const override { return std::ranges::count(rows, record) > 0; }
    void InsertFront(RecordId record, Arrival) override { rows.insert(rows.begin(), record); }
    void Repaint(RecordId) override {}
    void Remove(RecordId record) override {
        std::erase(rows, record);
        std::erase(selected, record);
    }
    void RemoveAll() override { rows.clear(); }
    void FilterBy(int column, std::string_view text) override {
        filter = std::to_string(column) + "=" + std::string(text);
    }
    std::vector<RecordId> Selected() const override { return selected; }
    RecordId FirstSelected() const override { return selected.empty() ? kNoRecord : selected.front(); }
    std::vector<RecordId> RemoveSelected(std::span<const RecordId> records) override {
        std::vector<RecordId> removed;
        for (const RecordId record : records)
            if (std::ranges::count(selected, record) > 0) {
                Remove(record);
                removed.push_back(record);
            }
        ++removals;
        return removed;
    }

    std::vector<RecordId> rows; // the newest first
    std::vector<RecordId> selected;
    int removals = 0; // steps
    std::string filter;
};

template <class List>
class BookDoubleOf final : public BookView {
public:
    void ShowMessage(Pass, std::string_view text) override { boxes.emplace_back(text); }
    bool IsOpen() const override { return open; }
    bool Ask(Pass, std::string_view question) override {
        questions.emplace_back(question);
        if (const auto action = std::exchange(duringQuestion, nullptr)) action();
        return yes;
    }
    bool MayAsk() override { return !otherBox; }
    std::string AskReason(Pass, std::size_t count) override {
        ++reasonsAsked;
        reasonFor = count;
        if (const auto action = std::exchange(duringReason, nullptr)) action();
        return reason;
    }
    void OpenForModify(Pass, const sOrderinfo& record) override { modified.emplace_back(record.Number()); }
    void TellChanged(Pass, const sOrderinfo& record) override { changed.emplace_back(record.Number()); }
    void ShowRun() override {}
    BookList& Registered() override { return registered; }
    BookList& Cancelled() override { return cancelled; }

    List registered, cancelled;
    Texts boxes, questions, modified, changed;
    bool yes = true;
    std::string reason;
    int reasonsAsked = 0;
    std::size_t reasonFor = 0;
    bool otherBox = false;
    std::function<void()> duringQuestion, duringReason; // run once
    bool open = true;
};

using BookDouble = BookDoubleOf<ListDouble>;

// The numbers of a list from the top, "SIP2 SIP1".
inline std::string Numbers(const OrderBook& book, const ListDouble& list) {
    std::string text;
    for (const RecordId record : list.rows)
        text.append(text.empty() ? "" : " ").append(book.Records()[record].Number());
    return text;
}

} // namespace planfold::test
