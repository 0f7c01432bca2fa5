// The basket's form and rows over the test host, without a window.
#pragma once

#include "tests/plugin/BasketDouble.h"

#include <gtest/gtest.h>

namespace planfold::test {

inline Texts Taken(Texts& texts) {
    return std::exchange(texts, {});
}

class BasketStage : public ::testing::Test, protected Stage {
protected:
    BasketStage() {
        session.host.pu_is_valid_account = [](InString client) { return client->View() != "NOBODY" ? 1 : 0; };
    }
    void Open(std::string_view customProducts = {}) {
        basket.Initialise(customProducts);
        Answer("echoedRequest=get_sip_operation_mode errorCode=5");
        host.requests.clear();
        host.calls.clear();
    }
    void Answer(const Fields& fields) { basket.OnResponse(Received(fields).Message()); }
    void Fill(const std::string& client = "C001", const std::string& amount = "1500") {
        view.SetText(IDC_CLIENT_SEARCH, client);
        view.SetText(IDC_VALUE, amount);
        view.SetText(IDC_PERIOD, "12");
        view.SetDate(IDC_START_DATE, {2027, 3, 5});
    }
    void Add(const std::string& client, const std::string& amount = "1500") {
        Fill(client, amount);
        basket.Entry().AddOrModify();
    }
    void Load(const std::string& text) {
        view.files["basket.csv"] = text;
        basket.Runs().Load();
    }
    void Run() {
        while (basket.Runs().IsUnderWay())
            basket.Runs().Continue();
    }
    // The rows from the top by one field, "C002 C001".
    std::string Rows(BasketField field) const {
        std::string text;
        for (const RecordId record : view.list.rows)
            text.append(record == view.list.rows[0] ? "" : " ").append(basket.Rows()[record].Text(field));
        return text;
    }
    // The clients of the orders that went out since the last look, "C2 C1".
    std::string Sent() {
        std::string text;
        for (const std::string& request : host.requests) {
            const std::size_t at = request.find(" account=") + 9;
            text.append(text.empty() ? "" : " ").append(request, at, request.find(' ', at) - at);
        }
        host.requests.clear();
        return text;
    }
    std::string Serials() const {
        std::string text;
        for (const RecordId record : view.list.rows)
            text += std::to_string(basket.Rows()[record].SerialNumber()) + " ";
        return text;
    }

    BasketDouble view;
    Basket basket{session, view, &control};
};

inline std::string Line(const std::string& client, const std::string& token = "1013",
                        const std::string& by = "value") {
    return client + ",nse_cm,EQ,ARBORTEX," + token
           + ",ARBORTEX-EQ,CNC,150000,7,monthly,,05/Mar/2027,12,MKT,B,,,," + by + ",\n";
}
inline std::string Lines(int count, const std::string& client = "C") {
    std::string text;
    for (int i = 1; i <= count; ++i)
        text += Line(client + std::to_string(i));
    return text;
}

} // namespace planfold::test
