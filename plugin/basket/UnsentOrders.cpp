#include "plugin/basket/UnsentOrders.h"

#include "plugin/basket/BasketFile.h"

#include <utility>

namespace planfold {

namespace {

constexpr std::string_view kDoubtful = "placing";

template <class Visit>
void ForEachLine(std::string_view text, Visit visit) {
    BasketLines lines(text);
    while (const auto line = lines.Next())
        visit(line->text, BasketLineNote(line->text) == kDoubtful);
}

} // namespace

// A load puts each line in front of those before it.
std::string UnsentText(const BasketRows& rows, const BasketList& list, bool placing) {
    std::string text;
    for (std::size_t row = list.RowCount(); row-- > 0;) {
        const RecordId record = list.RecordAt(row);
        if (rows.IsSent(record)) continue;
        const bool doubtful = placing || record == rows.Sending();
        AppendBasketLine(rows[record], text, doubtful ? kDoubtful : kNoNote);
    }
    return BasketFileText(std::move(text));
}

UnsentCounts CountUnsent(std::string_view text) {
    UnsentCounts counts;
    ForEachLine(text, [&](std::string_view, bool doubtful) {
        ++counts.orders;
        counts.doubtful += doubtful;
    });
    return counts;
}

void RememberDoubtful(std::string_view text, BasketRows& rows) {
    ForEachLine(text, [&](std::string_view line, bool doubtful) {
        BasketTexts columns;
        if (doubtful && SplitBasketLine(line, columns)) rows.RememberSent(columns);
    });
}

} // namespace planfold
