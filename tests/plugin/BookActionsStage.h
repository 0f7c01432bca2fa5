// A book whose rows are cancelled, paused and resumed, with answers made by hand.
#pragma once

#include "tests/plugin/BookDouble.h"

#include <gtest/gtest.h>

namespace planfold::test {

class BookActionsTest : public ::testing::Test, protected Stage {
protected:
    void Row(const std::string& number, const char* status = "active") {
        const Received received("registrationNumber=" + number + " sipStatus=" + status + " account=C" + number
                                + " investType=value amountOrQuantity=12345");
        book.OnBroadcast(received.Message());
    }
    void Select(const Texts& numbers) {
        view.registered.selected.clear();
        for (const std::string& number : numbers)
            view.registered.selected.push_back(book.Records().Find(number));
    }
    void Answer(const char* request, Fields fields) {
        fields.push_back({tag::echoedRequest, {request}});
        const Received received(fields);
        book.OnResponse(received.Message());
    }
    Texts Taken(Texts& texts) { return std::exchange(texts, {}); }

    BookDouble view;
    OrderBook book{session, view, {&control, &control, &control}};
    BookActions& actions = book.Actions();
    BookRuns& runs = book.Runs();
};

} // namespace planfold::test
