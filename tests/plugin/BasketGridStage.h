// The basket's list, edited over the test host.
#pragma once

#include "tests/plugin/BasketStage.h"

namespace planfold::test {

class BasketGridStage : public BasketStage {
protected:
    BasketGridStage() { Open(); }
    RecordId Row(std::size_t row) const { return view.list.rows.at(row); }
    // "" when it was taken.
    std::string Edit(std::size_t row, BasketField field, std::string_view typed) {
        return basket.Grid().Edit(basket.Rows()[Row(row)].SerialNumber(), field, typed).value_or("");
    }
    void Select(std::initializer_list<std::size_t> rows) {
        view.list.selected.clear();
        for (const std::size_t row : rows)
            view.list.selected.push_back(Row(row));
    }
    // All that an undo has to bring back.
    std::string State() const {
        std::string text;
        for (const RecordId row : view.list.rows) {
            text += basket.Outcome().StateText(row) + Format("|%d|", basket.Rows().LineOf(row));
            AppendBasketLine(basket.Rows()[row], text);
        }
        text += Format("totals %lld, twice %zu, sent %zu\n",
                       static_cast<long long>(basket.Rows().Buy().amountPaise), basket.Rows().StandingTwice(),
                       basket.Rows().SentCount());
        for (const RejectedLine& line : basket.Rejected())
            text += Format("rejected %d ", line.number) + line.text + " " + line.reason + "\n";
        return text;
    }
};

} // namespace planfold::test
