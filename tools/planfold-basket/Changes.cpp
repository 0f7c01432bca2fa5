#include "host/files/OptionRows.h"
#include "plugin/base/Codes.h"
#include "plugin/base/Numbers.h"
#include "plugin/changes/Cells.h"
#include "plugin/changes/ChangeSet.h"
#include "plugin/orderbook/BookLists.h"
#include "tools/planfold-basket/Commands.h"
#include "tools/planfold-basket/Sources.h"

#include <nlohmann/json.hpp>

#include <vector>

namespace basket {
namespace {

using namespace planfold;

struct ChangeOptions {
    std::string old, edited, mode, user;
    bool json = false;
};

constexpr vesk::OptionRow<ChangeOptions> kOptions[] = {
    {"--mode", vesk::ReadText<&ChangeOptions::mode>},
    {"--user", vesk::ReadText<&ChangeOptions::user>},
    {"--json", [](ChangeOptions& options, std::string_view) { return options.json = true; }, ""},
};

vesk::Complaint ReadWords(std::span<const std::string> words, ChangeOptions& options) {
    auto complaint =
        vesk::ReadOptionRows<ChangeOptions>(words, kOptions, options, [&](const std::string& word) {
            std::string& file = options.old.empty() ? options.old : options.edited;
            return file.empty() && (file = word, true);
        });
    if (complaint) return complaint;
    if (options.edited.empty()) return "changes needs the old and the edited file";
    return std::nullopt;
}

// "05-Mar-2027", as the book has it, from "2027-03-05".
std::string AsInBook(const std::string& cell) {
    std::string text(Restored(cell));
    if (DateInFigures(text) != text) return text;
    return text.substr(8, 2) + '-' + std::string(MonthName(static_cast<int>(LeadingInteger(text.substr(5, 2)))))
           + '-' + text.substr(0, 4) + text.substr(10);
}

// Why it cannot be read; empty when the book is made of it.
std::string ReadBook(std::string text, OrderCache& book) {
    ChangeFile file(std::move(text));
    ChangeFile::Row row;
    while (file.Next(row)) {
        const std::string number(Restored(*row.cells[OrderField::registrationNumber]));
        if (number.empty()) continue;
        ByField<OrderField, std::string> texts;
        OrderChanges changes;
        for (const BookColumn& column : kRegisteredColumns)
            if (const auto& cell = row.cells[column.field])
                changes[column.field] = texts[column.field] =
                    column.type == ValueType::text ? AsInBook(*cell) : std::string(Restored(*cell));
        changes[OrderField::investType] = !texts[OrderField::amount].empty()     ? "value"
                                          : !texts[OrderField::quantity].empty() ? "qty"
                                                                                 : "";
        const RecordId known = book.Find(number);
        book[known == kNoRecord ? book.Add(number) : known].Apply(changes);
    }
    return file.Fault();
}

constexpr struct {
    const char* name;
    ChangeField field;
} kFields[] = {
    {"registration", ChangeField::registration},
    {"client", ChangeField::account},
    {"tradingSymbol", ChangeField::tradingSymbol},
    {"columns", ChangeField::columns},
    {"old", ChangeField::before},
    {"new", ChangeField::after},
    {"difference", ChangeField::difference},
    {"reason", ChangeField::reason},
};

std::string PlainChanges(const std::string& file, const ChangeSet& set) {
    std::string text = set.Note().empty() ? "" : set.Note() + '\n';
    for (std::size_t i = 0; i < set.Changes().size(); ++i) {
        text += file + Format(":%d: ", set.Changes()[i].line) + set.Text(i, ChangeField::registration);
        if (const std::string& columns = set.Text(i, ChangeField::columns); !columns.empty())
            text += ' ' + columns + ' ' + set.Text(i, ChangeField::before) + " -> "
                    + set.Text(i, ChangeField::after);
        const std::string& reason = set.Text(i, ChangeField::reason);
        text += (reason.empty() ? "" : ": " + reason) + '\n';
    }
    const std::vector<std::size_t> sendable = set.Sendable();
    return text
           + Format("%zu modifications%s%s; %zu not possible, %zu unchanged\n", sendable.size(),
                    sendable.empty() ? "" : ": ", set.Difference(sendable).c_str(), set.Refused(),
                    set.Unchanged());
}

std::string JsonChanges(const std::string& file, const ChangeSet& set) {
    std::int64_t more[2] = {};
    nlohmann::ordered_json rows = nlohmann::ordered_json::array();
    for (std::size_t i = 0; i < set.Changes().size(); ++i) {
        const Change& change = set.Changes()[i];
        nlohmann::ordered_json row = {{"line", change.line}, {"possible", change.refusal.empty()}};
        for (const auto& [name, field] : kFields)
            row[name] = set.Text(i, field);
        rows.push_back(std::move(row));
        if (!change.isByQuantity) more[change.IsSale()] += change.More();
    }
    const nlohmann::ordered_json report = {
        {"file", file},
        {"note", set.Note()},
        {"modifications", set.Sendable().size()},
        {"notPossible", set.Refused()},
        {"unchanged", set.Unchanged()},
        {"buyMorePaise", more[0]},
        {"sellMorePaise", more[1]},
        {"changes", std::move(rows)},
    };
    // A cell may hold what is no UTF-8.
    return report.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + '\n';
}

} // namespace

int Changes(std::span<const std::string> words) {
    if (std::ranges::find(words, std::string_view("--help")) != words.end())
        return WriteText(std::string(kStandardStream), kHelp) ? kAllGood : kFailed;
    ChangeOptions options;
    if (const auto complaint = ReadWords(words, options))
        return Fail(*complaint + "; see planfold-basket --help");
    // Modes are read as a basket's.
    Options ofBasket;
    const std::string mode[] = {"check", "-", "--scrips", "-", "--mode", options.mode};
    if (const auto complaint = ReadOptions(std::span(mode).first(options.mode.empty() ? 4 : 6), ofBasket))
        return Fail(*complaint + "; see planfold-basket --help");
    auto old = ReadText(options.old);
    if (!old) return Fail(old.Fault().Text());
    auto edited = ReadText(options.edited);
    if (!edited) return Fail(edited.Fault().Text());
    OrderCache book;
    if (const std::string fault = ReadBook(old.Value(), book); !fault.empty())
        return Fail(options.old + ": " + fault);
    const planfold::BasketRules& rules = ofBasket.rules;
    ChangeSet set(book, {rules.serverPeriods, {rules.serverPeriods, rules.minimums}, options.user},
                  edited.Value());
    while (set.Read(1'000'000)) {
    }
    if (!set.Fault().empty()) return Fail(options.edited + ": " + set.Fault());
    const std::string report =
        options.json ? JsonChanges(options.edited, set) : PlainChanges(options.edited, set);
    if (!WriteText(std::string(kStandardStream), report)) return kFailed;
    return set.Refused() ? kSomeRejected : kAllGood;
}

} // namespace basket
