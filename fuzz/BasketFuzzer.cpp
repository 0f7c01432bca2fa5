// Basket files of any content: every line is a row or is refused with a text, and rows load again as they are.
//
// Behind a line of "--" follows what is done with the rows, a line each: "d3" deletes the third or so, "m3"
// makes it the order of its neighbour, "s3" marks it as sent, "a3" gives it an answer, "x" exports all and
// loads them again, and "k" keeps those that were not sent for another session. Numbers, totals and marks are
// those that the rows have when they are looked at one by one. The text itself is also taken for a kept file.

#include "fuzz/Fuzz.h"
#include "plugin/base/Dates.h"
#include "tests/plugin/BasketDouble.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <map>

using fuzz::Demand;
using namespace planfold;

namespace {

// Two scrips in different units, and one that is known by its symbol alone.
class Scrips final : public ScripSource {
public:
    std::optional<ScripDetails> Details(std::string_view, std::string_view tradingSymbol) override {
        if (tradingSymbol == "A") return ScripDetails{2, 0, 100.0, 5, "1", "A"};
        if (tradingSymbol == "B") return ScripDetails{4, 0, 10000.0, 25, "2", "B"};
        return std::nullopt;
    }
    ScripNames Names(std::string_view, std::string_view, std::string_view) override { return {"C", "3", ""}; }
};

class Findings final : public BasketSink {
public:
    void OnRow(const BasketTexts& texts) override {
        AppendBasketLine(sBasketOrderData(texts, 0), exported);
        // Less than half a paisa is rounded away after it was found to be something.
        hasRoundedAway |= texts[BasketField::investType] == "value" && texts[BasketField::amount] == "0";
    }
    void OnRejected(const RejectedLine& line, const BasketTexts&) override {
        ++refused;
        rejected.append(line.text).append("\r\n");
        Demand(line.report.starts_with(line.text.substr(0, line.text.find('\0'))));
        Demand(line.report.find("failed to load") != line.report.npos);
        Demand(line.report.find(line.reason) != line.report.npos && !(line.reason + notice).empty());
        notice.clear();
    }
    void OnNotice(std::string_view text) override { notice = text; }
    void OnLog(std::string_view text) override { Demand(!text.empty()); }

    std::string exported, rejected, notice;
    std::size_t refused = 0;
    bool hasRoundedAway = false;
};

void Load(std::string_view text, const BasketRules& rules, Findings& findings) {
    Scrips scrips;
    BasketReader load(text, rules, scrips, findings);
    while (load.Read(3)) {
    }
    text = base::WithoutMark(text);
    const auto ends = static_cast<std::size_t>(std::ranges::count(text, '\n'));
    Demand(static_cast<std::size_t>(load.LinesRead()) == ends + (!text.empty() && text.back() != '\n'));
    Demand(load.RowsLoaded() + findings.refused == static_cast<std::size_t>(load.LinesRead()));
}

// The basket's rows, and beside each what is known of it.
class Store final : public BasketSink {
public:
    void OnRow(const BasketTexts& texts) override {
        const RecordId record = m_store.AddLoaded(texts, 1);
        m_rows.insert(m_rows.begin(), {record, ++m_serial});
    }
    void OnRejected(const RejectedLine&, const BasketTexts&) override {}
    void OnNotice(std::string_view) override {}
    void OnLog(std::string_view) override {}

    void Load(std::string_view text, const BasketRules& rules) {
        m_store.Clear();
        m_rows.clear();
        BasketReader(text, rules, m_scrips, *this).Read(text.size());
    }
    void Do(std::string_view step, const BasketRules& rules) {
        if (m_rows.empty() || step.empty()) return;
        std::size_t place = 0;
        std::from_chars(step.data() + 1, step.data() + step.size(), place);
        place %= m_rows.size();
        Row& row = m_rows[place];
        if (step[0] == 'x') {
            Load(BasketFileText(Exported()), rules);
        } else if (step[0] == 'k') {
            CheckKept(rules);
        } else if (step[0] == 's') {
            m_store.SetOrder(row.record, m_nextOrder++, RowState::sent);
            row.isSent = true;
        } else if (step[0] == 'a') {
            m_store.SetUserText(row.record, step);
            Demand(m_store[row.record].Text(BasketField::userText) == step);
        } else if (step[0] == 'm') {
            TakenRow other{sBasketOrderData(m_store[m_rows[(place + 1) % m_rows.size()].record].Texts(), 0)};
            m_store.Take(row.record);
            m_store.PutBack(row.record, std::move(other), RowState::notSent);
            Demand(m_store.BySerialNumber(row.serial) == kNoRecord);
            row = {row.record, ++m_serial};
        } else if (step[0] == 'u') {
            // Taken out and put back, it is the order that it was.
            TakenRow taken = m_store.Take(row.record);
            const RowState state = taken.state;
            m_store.PutBack(row.record, std::move(taken), state);
            row.serial = ++m_serial;
        } else if (step[0] == 'd') {
            m_store.Remove(row.record);
            Demand(m_store.BySerialNumber(row.serial) == kNoRecord);
            m_rows.erase(m_rows.begin() + static_cast<std::ptrdiff_t>(place));
        }
    }
    void Check() const {
        BasketTotals sides[2];
        std::map<std::string, std::size_t> alike;
        for (const Row& row : m_rows) {
            const sBasketOrderData& order = m_store[row.record];
            const auto number = [&](BasketField field) {
                return std::atoll(std::string(order.Text(field)).c_str());
            };
            BasketTotals& side = sides[order.Text(BasketField::sideWord) == "BUY"];
            const bool byValue = order.Text(BasketField::investType) == "value";
            (byValue ? side.amountPaise : side.quantity) +=
                number(byValue ? BasketField::amount : BasketField::quantity);
            ++alike[Alike(order)];
            Demand(m_store.BySerialNumber(row.serial) == row.record && order.SerialNumber() == row.serial);
            Demand(m_store.IsSent(row.record) == row.isSent);
        }
        std::size_t twice = 0;
        for (const Row& row : m_rows) {
            const bool isTwice = alike[Alike(m_store[row.record])] > 1;
            Demand(m_store.StandsTwice(row.record) == isTwice);
            twice += isTwice;
        }
        Demand(m_store.StandingTwice() == twice);
        Demand(m_store.SentCount() == static_cast<std::size_t>(std::ranges::count(m_rows, true, &Row::isSent)));
        for (const auto& [side, its] : {std::pair(sides[1], m_store.Buy()), {sides[0], m_store.Sell()}})
            Demand(side.amountPaise == its.amountPaise && side.quantity == its.quantity);
    }

private:
    struct Row {
        RecordId record;
        std::int32_t serial;
        bool isSent = false;
    };

    // Keeps all that is sent.
    static std::string Ordered(const sBasketOrderData& order) {
        std::string text;
        for (const BasketField field : kBasketColumns) {
            const bool isName = field == BasketField::series || field == BasketField::symbol;
            const bool isUnused = field
                                  == (order.Text(BasketField::investType) == "value" ? BasketField::quantity
                                                                                     : BasketField::amount);
            if (!isName && !isUnused && field != BasketField::startDateText)
                text.append(order.Text(field)).push_back(',');
        }
        return text;
    }
    // Another session has the rows that were not sent, in their order.
    void CheckKept(const BasketRules& rules) const {
        test::BasketListDouble list;
        std::vector<std::string> unsent;
        for (const Row& row : m_rows) {
            list.rows.push_back(row.record);
            if (!row.isSent) unsent.push_back(Ordered(m_store[row.record]));
            // What is rounded away is no order that loads.
            if (m_store[row.record].Text(BasketField::amount) == "0") return;
        }
        const std::string text = UnsentText(m_store, list);
        Store next;
        BasketReader(text, rules, next.m_scrips, next).Read(text.size());
        std::vector<std::string> back;
        for (const Row& row : next.m_rows)
            back.push_back(Ordered(next.m_store[row.record]));
        Demand(back == unsent);
    }

    static std::string Alike(const sBasketOrderData& order) {
        std::string text;
        for (const auto field : {BasketField::account, BasketField::exchange, BasketField::tradingSymbol,
                                 BasketField::sideWord, BasketField::frequency, BasketField::startDate})
            text.append(order.Text(field)).push_back(',');
        return text;
    }
    std::string Exported() const {
        std::string text;
        for (const Row& row : m_rows)
            AppendBasketLine(m_store[row.record], text);
        return text;
    }

    BasketRows m_store;
    std::vector<Row> m_rows; // the newest first
    OrderPlace m_nextOrder = 0;
    std::int32_t m_serial = 0;
    Scrips m_scrips;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::Input input(data, size);
    BasketRules rules;
    rules.products = {"CNC", ""};
    rules.now = ToSeconds({2027, 1, 31, 15, 30, 0});
    rules.serverPeriods = input.Byte() == 's';
    rules.frequencies = {"Daily", "weekly", "%s", ""};
    rules.minimums = {5, 0, 6, 2};
    const std::string all = input.Rest();
    const std::size_t end = all.find("\n--\n");
    const std::string text = all.substr(0, end == all.npos ? end : end + 1);

    Store store;
    store.Load(text, rules);
    store.Check();
    std::string_view steps = end == all.npos ? "" : std::string_view(all).substr(end + 4);
    while (!steps.empty()) {
        store.Do(fuzz::Input::CutAt(steps, '\n'), rules);
        store.Check();
    }

    Findings first, second, again;
    Load(text, rules, first);
    // What is saved of the rejected lines is rejected again.
    Load(BasketFileText(first.rejected), rules, again);
    Demand(again.refused == first.refused);
    Load(BasketFileText(first.exported), rules, second);
    if (first.hasRoundedAway) return 0;
    Demand(second.refused == 0 && second.exported == first.exported);
    return 0;
}
