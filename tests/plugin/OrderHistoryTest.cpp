// The order history: how messages become records, when they are listed, which order a trade belongs to, and
// what the chart makes of them.

#include "plugin/history/HistoryChart.h"
#include "tests/plugin/Doubles.h"

#include <gtest/gtest.h>

#include <sstream>

namespace planfold::test {
namespace {

using Word = std::string;

// The order history without its window, played by words:
//   ?A asks for A's orders    A1 is an order of A, A1* one whose trades are to come, A1=200 a trade at 2.00
//   . ends the orders, ! refuses them, - says something else; .t !t -t the same of the trades    @1 moves the
//   focus
class Play final : public HistoryDouble {
public:
    Play(Stage& stage, const std::string& script) : m_history(stage.session, *this, &stage.control) {
        history = &m_history;
        std::istringstream words(script);
        for (Word word; words >> word;)
            Do(word);
    }

    // Records with the traded price, whether they are shown, and the focused one's last four details.
    std::string Text() const {
        std::string text;
        for (const sOrderHistory& record : m_history.Records())
            text += record[HistoryField::registrationNumber] + record[HistoryField::orderNumber] + "="
                    + record[HistoryField::tradedPrice] + " ";
        text += (shown ? "shown " : "hidden ") + m_details;
        for (const std::string& box : boxes)
            text += box;
        return text;
    }

    void ShowDetails(const HistoryDetails& details, const std::string& remarks) override {
        m_details = remarks;
        for (std::size_t i = 5; i < details.size(); ++i)
            m_details += details[i] + "|";
    }

    void Do(const Word& word) {
        if (word[0] == '?') return m_history.Open(kPass, word.substr(1));
        if (word[0] == '@') {
            focused = word == "@" ? std::nullopt : std::optional<std::size_t>(std::stoul(word.substr(1)));
            return m_history.OnFocusChanged();
        }
        const bool trade = word.back() == 't' || word.find('=') != word.npos;
        const Word row = "registrationNumber=" + word.substr(0, 1) + " orderNumber=" + word.substr(1, 1);
        Fields fields = (word[0] == '.'   ? "errorCode="
                         : word[0] == '!' ? "errorCode=7%s"
                         : word[0] == '-' ? "noRowText=50%s"
                         : trade ? row + " fillDetailA=9:15 fillDetailB=May tradedPrice=" + word.substr(3)
                         : word.back() == '*' ? row + " tradedQuantity=5"
                                              : row);
        fields.push_back({tag::echoedRequest, {trade ? "qry_eq_sip_trades" : "qry_eq_sip_orders"}});
        const Received received(fields);
        if (const auto action = std::exchange(before, nullptr)) action();
        m_history.OnResponse(received.Message());
    }

    std::function<void()> before; // the next answer

private:
    OrderHistory m_history;
    std::string m_details;
};

class OrderHistoryTest : public ::testing::Test, protected Stage {};

TEST_F(OrderHistoryTest, MessagesBecomeRecords) {
    using Details = sdk::fn::pu_get_scrip_details_from_TradSymbol*;
    constexpr Details thousandths = [](InString exchange, InString symbol, ScripDetails* out) -> ScripDetails* {
        *out = {3, 0, 1000.0, 5, {}, {}};
        return exchange->View() == "nse_cm" && symbol->View() == "SYM" ? out : nullptr;
    };
    constexpr Details nonsense = [](InString, InString, ScripDetails* out) {
        *out = {2, 0, 0.0, 5, {}, {}};
        return out;
    };
    const std::string always = "loginId=U account=C registrationNumber=S orderNumber=O sipStatus=done "
                               "orderSource=TWS placementTime=now quantity=10 userText=fine ";
    const std::string coded = "exchange=nse_cm tradingSymbol=SYM side=B orderType=MKT price=12345 ";
    const std::string traded = "tradedPrice=1234600 fillDetailA=A fillDetailB=B ";
    struct Row {
        std::string fields;
        Details details;
        const char* record; // where "always" leaves it open
    };
    const Row rows[] = {
        {coded + traded + "tradedQuantity=9", nullptr, "NSE SYM SIP MARKET 123.45 12346.00 9 A B"},
        {coded + traded + "tradedQuantity=9", thousandths, "NSE SYM SIP MARKET 12.35 1234.60 9 A B"},
        {coded + traded + "tradedQuantity=9", nonsense, "NSE SYM SIP MARKET 123.45 12346.00 9 A B"},
        {"exchange=bse_cm tradingSymbol=SYM side=S orderType=L price=5 tradedQuantity=0 " + traded, thousandths,
         "BSE SYM SWP LIMIT 0.05 - 0 - -"},
        {"exchange=mcx side=X orderType=SL price=-7x " + traded, nullptr, "- - - - -0.07 - - - -"},
        {traded + "tradedQuantity=", nullptr, "- - - - - 12346.00 - A B"},
        {"tradedQuantity=4 tradedPrice=5 fillDetailB=B", nullptr, "- - - - - 0.05 4 - B pending"},
        {"tradedQuantity=4 tradedPrice= fillDetailA=A fillDetailB=B", nullptr, "- - - - - - 4 A B pending"},
    };
    constexpr HistoryField open[] = {
        HistoryField::exchange,       HistoryField::tradingSymbol, HistoryField::side,
        HistoryField::orderType,      HistoryField::price,         HistoryField::tradedPrice,
        HistoryField::tradedQuantity, HistoryField::fillDetailA,   HistoryField::fillDetailB};
    for (const Row& row : rows) {
        session.host.pu_get_scrip_details_from_TradSymbol = row.details;
        const Received received(always + row.fields);
        sOrderHistory record =
            ReadHistoryOrder(received.Message(), AskPriceDivisor(kPass, session, received.Message()));
        sOrderHistory whole = record;
        std::string text, others;
        for (const HistoryField field : open) {
            text += (text.empty() ? "" : " ") + (record[field].empty() ? "-" : record[field]);
            record[field].clear();
        }
        for (const std::string& field : record.texts)
            others += field + "|";
        if (&row == rows) {
            std::string labels;
            for (const std::string& label : TakeDetails(whole))
                labels += label + "|";
            EXPECT_EQ(labels, "C|NSE|SYM|MARKET|SIP|S|12346.00|9|A B|");
            EXPECT_EQ(ReadHistoryTrade(received.Message(), 1000)[HistoryField::tradedPrice], "1234.60");
        }
        EXPECT_EQ(text + (record.fillPending ? " pending" : ""), row.record);
        EXPECT_EQ(others, "U|C|||S|O|done|TWS|now||||10|||||||fine|");
    }
}

TEST_F(OrderHistoryTest, AnswersAreListedWhenTheyEndAndTradesFindTheirOrders) {
    struct Row {
        const char* script;
        const char* text;
        std::size_t requests;
        std::size_t logged = 0; // lines
    };
    const Row rows[] = {
        {"?A A1 A2*", "hidden ", 1},
        {"?A .", "hidden ||||No orders yet: A", 1},
        {"?A - ! A1 .", "A1=NA shown A|NA|NA| |", 1, 2},
        {"?A A1* A2 .", "A1=NA A2= shown A|NA|5| |", 2},
        {"?A A1* A1=200 .", "A1=NA shown A|NA|5| |", 2}, // not yet listed
        {"?A A1* A2 . A2=200 B1=200 A3=200 .t -t !t", "A1=NA A2= shown A|NA|5| |", 2, 1},
        {"?A A1* A2 . A1=200", "A1=2.00 A2= shown A|2.00|5|9:15 May|", 2},
        {"?A A1* A2 . A1=200 A1=300 @1", "A1=3.00 A2=NA shown A|NA|NA| |", 2},
        {"?A A1* A2* . @1 A1=200", "A1=2.00 A2=NA shown A|NA|5| |", 2},
        {"?A A1 . A2 .", "A2=NA shown A|NA|NA| |", 1},
        // Of several queries only the newest counts.
        {"?A A1 ?B A2 . B1 .", "B1=NA shown B|NA|NA| |", 2},
        {"?A A1 ?B A2 .", "hidden ", 2},
        {"?A ?B ! B1 .", "B1=NA shown B|NA|NA| |", 2, 1},
        {"?A ?B ?C A1 . B1 . C1 .", "C1=NA shown C|NA|NA| |", 3},
        {"?A ?A A1 . A1 .", "A1=NA shown A|NA|NA| |", 2},
        {"?A A1 ! ?B B1 .", "B1=NA shown B|NA|NA| |", 2, 1},
        {"?A A1* . ?B A1=200 !", "A1=2.00 shown A|2.00|5|9:15 May|", 3, 1},
    };
    for (const Row& row : rows) {
        host.requests.clear();
        host.log.clear();
        EXPECT_EQ(Play(*this, row.script).Text(), row.text) << row.script;
        EXPECT_EQ(host.requests.size(), row.requests) << row.script;
        EXPECT_EQ(host.log.size(), row.logged) << row.script;
    }
    host.requests.clear();
    host.log.clear();
    Play(*this, "?A A1* . - !t");
    EXPECT_EQ(host.requests,
              (Texts{"qry_eq_sip_orders registrationNumber=A", "qry_eq_sip_trades registrationNumber=A"}));
    EXPECT_EQ(host.log, (Texts{"50%s", "Error in response : qry_eq_sip_trades . Error Code : 7%s"}));
}

TEST_F(OrderHistoryTest, QueriesTellWhatFailsAndLeaveTheListAlone) {
    struct Row {
        FailQmxCall::Function function;
        int call;
        bool refuses;
        Texts boxes;
    };
    const Row rows[] = {{FailQmxCall::startMsg, 1, false, {"zup_add_parameter: Error while building message"}},
                        {FailQmxCall::addData, 1, false, {}},
                        {FailQmxCall::addData, 2, false, {}},
                        {FailQmxCall::addData, 3, true, {"Request Failure"}}};
    for (const char* word : {"?B", "."})
        for (const Row& row : rows) {
            Play play(*this, "?A A1*");
            host.requests.clear();
            host.refuses = row.refuses;
            std::optional<FailQmxCall> failing;
            play.before = [&] { failing.emplace(row.function, row.call); };
            if (*word == '?') std::exchange(play.before, nullptr)();
            play.Do(word);
            failing.reset();
            host.refuses = false;
            EXPECT_EQ(std::exchange(play.boxes, {}), row.boxes) << word << row.function << row.call;
            EXPECT_EQ(host.requests, Texts{});
            if (*word == '?') play.Do(".");
            EXPECT_EQ(play.Text(), "A1=NA shown A|NA|5| |") << "what was asked before still comes";
        }
}

TEST_F(OrderHistoryTest, AHostCallMayAskAnewOrEnd) {
    static std::function<void()> inside;
    session.host.pu_get_scrip_details_from_TradSymbol = [](InString, InString, ScripDetails*) -> ScripDetails* {
        if (const auto action = std::exchange(inside, nullptr)) action();
        return nullptr;
    };
    Play play(*this, "?A A1");
    inside = [&] { play.Do("?B"); };
    for (const char* word : {"A2", ".", "B1", "."})
        play.Do(word);
    EXPECT_EQ(play.Text(), "B1=NA shown B|NA|NA| |");
    inside = [&] { session.End(); };
    for (const char* word : {"B2", "."})
        play.Do(word);
    EXPECT_EQ(play.Text(), "B1=NA shown B|NA|NA| |");
}

TEST_F(OrderHistoryTest, TheChartTellsWhatBecameOfEachOrder) {
    // Time, quantity, traded quantity, status and price.
    const std::string good = "07-Apr-2027,10,4,open 05-Mar-2027,10,10,complete 04-Mar-2027,20,0,REJECTED "
                             "05-May-2027,10,,open 05-Jun-2027,10,4,cancelled";
    struct Row {
        std::string orders;
        std::size_t most;
        const char* bars; // heading: filled+unfilled+waiting+lost below the scale's top
    };
    const Row rows[] = {
        {good, 5, "Quantity by order: 0+0+0+20 10+0+0+0 4+6+0+0 0+0+10+0 4+6+0+0 < 20"},
        {good, 4, "Quantity, 2 orders a bar: 10+0+0+20 4+6+10+0 4+6+0+0 < 30"},
        {good, 1, "Quantity, 5 orders a bar: 18+12+10+20 < 60"},
        {"later,-5,NA, 05-Mar-2027,1e999,,Cancelled", 9, "Quantity by order: 0+0+0+0 0+0+0+1e+15 < 1e+15"},
        {"04-Mar-2027,10,4,open,2.50 05-Mar-2027,3,0,rejected,100.10", 9,
         "Rupees by order: 10+15+0+0 0+0+0+300.3 < 400"},
        {"", 9, "Quantity by order: < 1"},
    };
    const auto chartOf = [](const std::string& text) {
        std::vector<sOrderHistory> orders;
        std::istringstream words(text);
        for (Word word; words >> word;) {
            std::istringstream parts(word);
            sOrderHistory& order = orders.emplace_back();
            for (const HistoryField field :
                 {HistoryField::placementTime, HistoryField::quantity, HistoryField::tradedQuantity,
                  HistoryField::orderStatus, HistoryField::price})
                std::getline(parts, order[field], ',');
        }
        return HistoryChart(orders);
    };
    for (const Row& row : rows) {
        const HistoryChart chart = chartOf(row.orders);
        const auto bars = chart.Bars(row.most);
        std::string text = chart.Heading(bars) + ":";
        for (const ChartBar& bar : bars)
            for (std::size_t i = 0; i < kChartPartCount; ++i)
                text += (i ? "+" : " ") + ValueText(bar.values[i]);
        EXPECT_EQ(text + " < " + ValueText(ScaleTop(bars)), row.bars);
    }
    EXPECT_EQ(chartOf(good).Summary(),
              "Orders: 5, from 04-Mar-2027 to 05-Jun-2027. Quantity: 60. Quantity filled: 18. Filled: 1. "
              "Partly filled: 2. Waiting: 1. Rejected or cancelled: 1.");
}

} // namespace
} // namespace planfold::test
