// The basket, the connection library and the trading server together: files of any shape become rows, rows
// become registrations, and answers come back to their rows.

#include "tests/plugin/BasketDouble.h"
#include "tests/plugin/FlowStage.h"

#include <gtest/gtest.h>

#include <random>
#include <tuple>

namespace planfold::test {
namespace {

using Field = BasketField;

std::string Joined(const Texts& texts) {
    std::string all;
    for (const std::string& text : texts)
        all += text;
    return all;
}

// A line as somebody types it, and what must become of it: the exported line, and the fields of the
// registration in the order of kRegistered.
struct Sample {
    std::string typed, exported;
    Texts registered;
};
constexpr std::uint32_t kRegistered[] = {
    tag::exchange,         tag::token,     tag::tradingSymbol, tag::side,    tag::product, tag::investType,
    tag::amountOrQuantity, tag::frequency, tag::totalPeriod,   tag::loginId, tag::account, tag::startDate,
    tag::validity};

class Samples {
public:
    explicit Samples(unsigned seed) : m_random(seed) {}

    std::size_t Below(std::size_t end) { return m_random() % end; }
    Sample Next() {
        struct Written {
            std::string typed, kept;
        };
        const auto one = [&](const std::vector<Written>& of) { return of[Below(of.size())]; };
        static constexpr const char* scrips[][5] = {{"nse_cm", "EQ", "ARBORTEX", "1013", "ARBORTEX-EQ"},
                                                    {"nse_cm", "BE", "LUMENBANK", "2902", "LUMENBANK-BE"},
                                                    {"bse_cm", "EQ", "INFOCAR", "500100", "INFOCAR"}};
        const auto& [exchange, series, symbol, token, tradingSymbol] = scrips[Below(std::size(scrips))];
        static constexpr std::tuple<const char*, const char*, LocalDateTime, const char*> dates[] = {
            {"05-Mar-27", "05/Mar/2027", {2027, 3, 5}, "05-Mar-2027"},
            {"6/3/2027", "6/3/2027", {2027, 3, 6}, "06-Mar-2027"},
            {"29/Feb/28", "29/Feb/2028", {2028, 2, 29}, "29-Feb-2028"}};
        const auto& [date, shown, day, recorded] = dates[Below(std::size(dates))];
        const bool buys = Below(2), byValue = Below(2);
        const Written amount =
            byValue ? one({{"99999.5", "100000"}, {"00123", "123"}, {"2147483647", "2147483647"}})
                    : Written{"any", "any"};
        const Written quantity = byValue ? Written{"x", "x"} : one({{"7", "7"}, {"2147483647", "2147483647"}});
        const std::string client = one({{"C001", ""}, {"CLIENT WITH BLANKS", ""}, {"\xe9\xff", ""}}).typed;
        const std::string frequency =
            one({{"daily", ""}, {"weekly", ""}, {"monthly", ""}, {"yearly", ""}}).typed;
        const std::string product = Below(2) ? "CNC" : "MIS", period = std::to_string(6 + Below(90)),
                          side = buys ? "B" : "S", type = byValue ? "value" : "qty";
        const std::string start = client + "," + exchange + "," + series + "," + symbol + "," + token + ","
                                  + tradingSymbol + "," + product + ",";
        const std::string order = "," + period + ",MKT," + side + ",";
        return {start + amount.typed + "," + quantity.typed + "," + frequency + ",," + date + order + ",x,,"
                    + type + (Below(2) ? ",\r\n" : ", ,\n"),
                start + amount.kept + "," + quantity.kept + "," + frequency + ","
                    + std::to_string(ToSeconds(day)) + "," + shown + order + (buys ? "BUY" : "SELL") + ",C,DAY,"
                    + type + ", ,\n",
                {exchange, token, tradingSymbol, side, product, type, byValue ? amount.kept : quantity.kept,
                 frequency, period, "DEALER1", client, recorded, "DAY"}};
    }

private:
    std::mt19937 m_random;
};

class BasketFlowTest : public ::testing::Test, public FlowStage {
protected:
    void SetUp() override {
        wire.part = &basket;
        // Each order has an identifier of its own.
        session.host.pu_get_uuid = [](OutString identifier) {
            static int last = 0;
            *identifier = std::to_string(++last);
            return 1;
        };
        host.rights.insert("QV: Planfold: Custom");
        view.now = kNow;
        basket.Initialise("MIS");
        Pump();
    }

    void Load(const std::string& text) {
        view.files["basket.csv"] = text;
        basket.Runs().Load();
        while (basket.Runs().IsUnderWay())
            basket.Runs().Continue();
        EXPECT_EQ(std::exchange(view.boxes, {}), Texts{});
    }
    std::string Exported() {
        basket.Saving().Export();
        EXPECT_EQ(std::exchange(view.boxes, {}), Texts{"Exported to File Successfully"});
        return view.files["basket.csv"];
    }
    // The records that were sent, in the list's order.
    std::vector<RecordId> Place() {
        std::vector<RecordId> sent;
        basket.Runs().Place();
        while (basket.Runs().IsUnderWay())
            basket.Runs().Continue();
        EXPECT_EQ(std::exchange(view.boxes, {}), Texts{"Order Placed..!!"});
        for (const RecordId record : view.list.rows)
            if (basket.Rows().IsSent(record)) sent.push_back(record);
        return sent;
    }
    std::string Remarks(RecordId record) const {
        return std::string(basket.Rows()[record].Text(Field::userText));
    }
    std::string RegisteredAs(std::size_t index) const {
        return "SIP registered. Registration No : " + std::string(server.Held().All()[index].Number());
    }

    BasketDouble view;
    Line<Basket> wire;
    Basket basket{session, view, rxClient.Get(kRxRequests, &wire)};
};

TEST_F(BasketFlowTest, AnyFileIsExportedLoadedPlacedRegisteredAnsweredAndStreamed) {
    for (unsigned seed = 1; seed <= 6; ++seed) {
        SCOPED_TRACE(seed);
        Samples samples(seed);
        std::vector<Sample> rows(1 + samples.Below(70)); // one portion of lines and more
        Texts typed, forth, back;
        host.cautionOfRow.clear();
        for (std::size_t i = 0; i < rows.size(); ++i) {
            rows[i] = samples.Next();
            typed.push_back(rows[i].typed);
            forth.push_back(rows[i].exported);
            back.insert(back.begin(), rows[i].exported);
            host.cautionOfRow[static_cast<int>(i)] = static_cast<int>(samples.Below(3));
        }
        Load(Joined(typed));
        EXPECT_EQ(Exported(), Joined(back)) << "the last line stands on top";
        basket.Runs().Load();
        EXPECT_EQ(Exported(), Joined(forth));

        const std::size_t before = server.Held().All().size();
        const std::vector<RecordId> sent = Place();
        EXPECT_EQ(server.Held().All().size(), before) << "nothing is answered from inside the sending";
        Pump();
        ASSERT_EQ(server.Held().All().size(), before + sent.size());
        std::size_t next = before;
        for (std::size_t i = 0; i < rows.size(); ++i) {
            const RecordId record = view.list.rows[i];
            if (host.cautionOfRow[static_cast<int>(i)] == 0) {
                EXPECT_EQ(Remarks(record), "NA");
                continue;
            }
            ASSERT_LT(next, server.Held().All().size());
            EXPECT_EQ(Remarks(record), RegisteredAs(next));
            Texts registered;
            for (const std::uint32_t tag : kRegistered)
                registered.emplace_back(server.Held().All()[next].Text(tag));
            EXPECT_EQ(registered, rows[i].registered);
            ++next;
        }
    }
}

TEST_F(BasketFlowTest, WhatTheServerRefusesIsLoggedAndTheOthersAreRegistered) {
    const auto faulty = [&](const vesk::RequestFault& fault) {
        return [this, fault] { server.Config().faults["add_sip_orders"] = fault; };
    };
    const std::string refused = "Error in response : add_sip_orders . Error Code : ";
    const struct {
        std::function<void()> after; // the load
        std::size_t registered;
        Texts log;
        bool answered;
    } cases[] = {
        {faulty({.errorCode = "99"}), 0, {refused + "99", refused + "99", refused + "99"}, false},
        {faulty({.errorCode = {}, .delayMs = 5000}), 3, {}, true},
        {faulty({.errorCode = {}, .garbage = true}), 3, {}, false},
        {faulty({.errorCode = {}, .silent = true}), 3, {}, false},
        {[&] { server.Config().frequencies[2].minimumPeriods = 13; }, 2, {refused + "104"}, true},
    };
    const std::string start = "C001,nse_cm,EQ,BYTEFIN,2901,BYTEFIN-EQ,CNC,5000,,",
                      end = ",,05/Mar/2027,12,MKT,B,,,,value,\n";
    for (const auto& each : cases) {
        Load(start + "daily" + end + start + "monthly" + end + start + "yearly" + end);
        server.Config().faults.clear();
        each.after();
        const std::size_t before = server.Held().All().size();
        const auto sent = Place();
        ASSERT_EQ(sent.size(), 3u);
        host.log.clear();
        Pump();
        EXPECT_EQ(server.Held().All().size() - before, each.registered);
        EXPECT_EQ(host.log, each.log);
        EXPECT_EQ(Remarks(sent[0]) != "NA", each.answered);
        const Texts events = host.recordFiles.Events();
        EXPECT_EQ(std::ranges::count_if(events, [](auto& text) { return text.starts_with("refused"); }),
                  static_cast<std::ptrdiff_t>(each.log.size()));
        host.recordFiles.text.clear();
        EXPECT_EQ(view.boxes, Texts{});
    }
    EXPECT_EQ(Remarks(view.list.rows[1]), "NA") << "the one that was refused";
}

TEST_F(BasketFlowTest, LateAnswersReachOnlyTheRowsThatAreStillTheSameOrder) {
    const auto line = [](const char* client) {
        return std::string(client)
               + ",nse_cm,EQ,BYTEFIN,2901,BYTEFIN-EQ,CNC,5000,,monthly,,05/Mar/2027,12,MKT,B,,,,value,\n";
    };
    Load(line("C001") + line("C002") + line("C003"));
    const auto sent = Place();
    view.list.selected = {sent[0]};
    basket.Delete();
    view.list.selected = {sent[1]};
    basket.Entry().Activate(sent[1]);
    view.SetText(IDC_VALUE, "60");
    basket.Entry().AddOrModify();
    view.SetText(IDC_VALUE, "70");
    view.SetText(IDC_PERIOD, "12");
    basket.Entry().AddOrModify();
    ASSERT_EQ(view.boxes, Texts{});
    const RecordId added = view.list.rows[0];
    EXPECT_EQ(added, sent[0]) << "in the place of the one that was deleted";
    Pump();
    EXPECT_EQ(server.Held().All().size(), 3u);
    EXPECT_EQ(Remarks(added) + Remarks(sent[1]), "NANA");
    EXPECT_EQ(Remarks(sent[2]), RegisteredAs(2));

    // Placed again, each row has an answer of its own; those of a basket that another one replaced have no row.
    const auto again = Place();
    EXPECT_EQ(again, (std::vector{added, sent[1], sent[2]}));
    Pump();
    for (std::size_t i = 0; i < again.size(); ++i)
        EXPECT_EQ(Remarks(again[i]), RegisteredAs(3 + i));
    Load(line("C001") + line("C002"));
    Place();
    Load(line("C003"));
    Pump();
    EXPECT_EQ(server.Held().All().size(), 8u);
    EXPECT_EQ(Remarks(view.list.rows[0]), "NA");
}

} // namespace
} // namespace planfold::test
