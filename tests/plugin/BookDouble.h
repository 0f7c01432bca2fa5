// The registration book without its window.
#pragma once

#include "plugin/orderbook/OrderBook.h"
#include "tests/plugin/Doubles.h"

#include <algorithm>

namespace planfold::test {

class ListDouble final : public BookList {
public:
    bool Contains(RecordId record) const override { return std::ranges::count(rows, record) > 0; }
    void InsertFront(RecordId record) override { rows.insert(rows.begin(), record); }
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
    void Deselect(RecordId record) override { std::erase(selected, record); }

    std::vector<RecordId> rows; // the newest first
    std::vector<RecordId> selected;
    std::string filter;
};

class BookDouble final : public BookView {
public:
    void ShowMessage(std::string_view text) override { boxes.emplace_back(text); }
    bool IsOpen() const override { return open; }
    BookList& Registered() override { return registered; }
    BookList& Cancelled() override { return cancelled; }

    ListDouble registered, cancelled;
    Texts boxes;
    bool open = true;
};

// The numbers of a list from the top, "SIP2 SIP1".
inline std::string Numbers(const OrderBook& book, const ListDouble& list) {
    std::string text;
    for (const RecordId record : list.rows)
        text.append(text.empty() ? "" : " ").append(book.Records()[record].Number());
    return text;
}

} // namespace planfold::test
