#include "plugin/changes/ChangeRules.h"

#include "plugin/base/Numbers.h"
#include "plugin/base/Text.h"
#include "plugin/changes/Cells.h"
#include "plugin/orderbook/BookLists.h"

#include <algorithm>

namespace planfold {

namespace {

std::string Quoted(std::string_view text) {
    constexpr std::size_t most = 60;
    std::string quoted = "\"" + std::string(text.substr(0, most)) + (text.size() > most ? "...\"" : "\"");
    std::ranges::replace_if(
        quoted, [](char character) { return static_cast<unsigned char>(character) < ' '; }, ' ');
    return quoted;
}

std::string HeadingOf(OrderField field) {
    const auto column = std::ranges::find(kRegisteredColumns, field, &BookColumn::field);
    return std::string(Restored(column->heading));
}

// The value in the server's words; as it stands when no rule can read it.
std::string InServersWords(bool isByQuantity, std::string value) {
    const std::string typed = value;
    return ValueToWire(isByQuantity ? "Quantity" : "Amount", value) ? typed : value;
}

Change ChangeOf(const sOrderinfo& record, const ChangeRules& rules) {
    Change change;
    const auto valueField = ValueField(record);
    change.registration = record.Number();
    change.account = record.Text(OrderField::account);
    change.accountName = record.Text(OrderField::accountName);
    change.tradingSymbol = record.Text(OrderField::tradingSymbol);
    change.frequency = record.Text(OrderField::frequency);
    change.side = record.Text(OrderField::side);
    change.isByQuantity = valueField == OrderField::quantity;
    if (valueField)
        change.valueBefore = InServersWords(change.isByQuantity, std::string(record.Text(*valueField)));
    change.periodsBefore = record.Text(PeriodsField(record, rules.serverPeriods));
    change.value = change.valueBefore;
    change.periods = change.periodsBefore;
    change.print = PrintOf(record);
    return change;
}

// What differs in the columns that cannot be changed; empty when nothing does.
std::string OtherColumns(const ChangeFile::Row& row, const sOrderinfo& record, const ChangeRules& rules,
                         bool decimalComma) {
    const auto valueField = ValueField(record);
    const OrderField periodsField = PeriodsField(record, rules.serverPeriods);
    std::string text;
    for (const BookColumn& column : kRegisteredColumns) {
        const auto& cell = row.cells[column.field];
        if (!cell || column.field == valueField || column.field == periodsField) continue;
        if (column.field == OrderField::accountName) continue;
        const std::string_view ofBook = record.Text(column.field);
        if (MeansTheSame(*cell, ofBook, decimalComma)) continue;
        text += text.empty() ? "" : "; ";
        text += HeadingOf(column.field) + " is " + Quoted(ofBook) + " in the book, " + Quoted(*cell)
                + " in the file";
    }
    return text;
}

// What the file says, for the rules; none when that is no such number.
struct Typed {
    std::string value, periods;
    std::string fault; // of the first
    bool isValueFault = false;
};

Typed ReadTyped(const ChangeFile::Row& row, const sOrderinfo& record, const ChangeRules& rules,
                bool decimalComma) {
    Typed typed;
    const auto read = [&](OrderField field, auto reader, const char* kind) {
        std::string was(record.Text(field));
        const auto& cell = row.cells[field];
        if (!cell || MeansTheSame(*cell, was, decimalComma)) return was;
        // What is empty has a rule of its own.
        if (Restored(*cell).empty()) return std::string();
        if (const auto number = reader(*cell, decimalComma)) return *number;
        if (typed.fault.empty()) typed.fault = HeadingOf(field) + ": " + Quoted(*cell) + " is no " + kind;
        return std::string(Restored(*cell));
    };
    if (const auto field = ValueField(record))
        typed.value = *field == OrderField::amount ? read(*field, ReadRupees, "amount in rupees and paise")
                                                   : read(*field, ReadCount, "whole number of shares");
    typed.isValueFault = !typed.fault.empty();
    typed.periods = read(PeriodsField(record, rules.serverPeriods), ReadCount, "whole number of periods");
    return typed;
}

// Whether the file's value or periods are others than `stamp` says they were.
bool IsEdited(const ChangeFile::Row& row, const sOrderinfo& record, const ChangeRules& rules,
              const Stamp& stamp, bool decimalComma) {
    const auto isOther = [&](OrderField field, const std::string& was) {
        const auto& cell = row.cells[field];
        return cell && !MeansTheSame(*cell, was, decimalComma);
    };
    const auto valueField = ValueField(record);
    return (valueField && isOther(*valueField, stamp.value))
           || isOther(PeriodsField(record, rules.serverPeriods), stamp.periods);
}

std::string DescribeStale(const Stamp& stamp, const Stamp& now, const std::string& others) {
    std::string text;
    const auto add = [&](const char* name, const std::string& was, const std::string& is) {
        if (was == is) return;
        text.append(text.empty() ? "" : "; ").append(name).append(" ").append(is);
        text.append(" instead of ").append(was.empty() ? "none" : was);
    };
    add("value", stamp.value, now.value);
    add("periods", stamp.periods, now.periods);
    if (!others.empty()) text += (text.empty() ? "" : "; ") + others;
    return "Changed since it was exported" + (text.empty() ? "" : ": " + text);
}

Change Refused(Change change, std::string reason) {
    change.refusal = std::move(reason);
    return change;
}

Change Unknown(const ChangeFile::Row& row) {
    Change change;
    change.registration = Restored(*row.cells[OrderField::registrationNumber]);
    change.account = row.cells[OrderField::account].value_or("");
    change.tradingSymbol = row.cells[OrderField::tradingSymbol].value_or("");
    const bool isRounded =
        change.registration.find_first_of("eE") != std::string::npos && PlainNumber(change.registration, false);
    change.refusal = change.registration.empty() ? "The registration number is missing"
                     : isRounded ? "A spreadsheet has rounded the registration number: make its column text"
                                 : "No such registration in the book";
    return change;
}

} // namespace

std::int64_t Change::More() const {
    return refusal.empty() ? LeadingInteger(value) - LeadingInteger(valueBefore) : 0;
}

ChangeRules ChangeRulesOf(const Session& session) {
    return {session.m_nSipOperationMode != 0, PeriodRulesOf(session), session.identity.loginId};
}

std::string WhyNot(const sOrderinfo& record, const ChangeRules& rules) {
    const std::string_view status = record.Text(OrderField::sipStatus),
                           owner = record.Text(OrderField::loginId);
    if (!rules.user.empty() && !owner.empty() && owner != rules.user)
        return "The registration is of another user: " + std::string(owner);
    if (HasEnded(status) || IsCancelled(status))
        return "Cannot modify SIP. Order status: " + std::string(status);
    return ValueField(record) ? ""
                              : "The book does not say whether the registration is by amount or by quantity";
}

Change Propose(const sOrderinfo& record, const ChangeRules& rules, const std::string& value,
               const std::string& periods) {
    Change change = ChangeOf(record, rules);
    change.value = value;
    change.periods = periods;
    const auto wrong = ValueToWire(change.isByQuantity ? "Quantity" : "Amount", change.value);
    if (wrong) change.value = value;
    change.isAsTyped = wrong.has_value();
    change.refusal = WhyNot(record, rules);
    if (!change.refusal.empty()) return change;
    if (const auto refusal = CheckPeriods(rules.periods, change.frequency, periods))
        change.refusal = refusal->text;
    else if (wrong)
        change.refusal = wrong->text;
    return change;
}

std::optional<Change> JudgeRow(const ChangeFile::Row& row, bool decimalComma, bool hasStamps,
                               const OrderCache& book, const ChangeRules& rules) {
    const std::string_view number = Restored(*row.cells[OrderField::registrationNumber]);
    const RecordId id = number.empty() ? kNoRecord : book.Find(number);
    if (id == kNoRecord) return Unknown(row);
    const sOrderinfo& record = book[id];
    const Stamp now = Stamp::Of(record, rules.serverPeriods);
    const auto stamp = hasStamps ? Stamp::Read(row.stamp) : now;
    if (!stamp) return Refused(ChangeOf(record, rules), "\"As Exported\" is not as it was written");
    const bool isEdited = IsEdited(row, record, rules, *stamp, decimalComma);
    const bool isStale = stamp->print != now.print;
    // What nobody edited may have changed since.
    if (!isEdited && isStale) return std::nullopt;
    const std::string others = OtherColumns(row, record, rules, decimalComma);
    if (!isEdited && others.empty()) return std::nullopt;
    const Typed typed = ReadTyped(row, record, rules, decimalComma);
    Change change = Propose(record, rules, typed.value, typed.periods);
    if (std::string why = WhyNot(record, rules); !why.empty())
        return Refused(std::move(change), std::move(why));
    if (isStale) return Refused(std::move(change), DescribeStale(*stamp, now, others));
    if (!others.empty())
        return Refused(std::move(change),
                       others
                           + (hasStamps ? ": only amount, quantity and periods can be changed"
                                        : ": changed since it was exported, or in the spreadsheet"));
    if (typed.isValueFault) {
        change.value = typed.value;
        change.isAsTyped = true;
    }
    if (!typed.fault.empty()) return Refused(std::move(change), typed.fault);
    return change;
}

} // namespace planfold
