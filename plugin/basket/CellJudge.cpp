#include "plugin/basket/CellJudge.h"

#include "base/Text.h"
#include "plugin/base/Codes.h"
#include "plugin/base/Numbers.h"
#include "plugin/basket/BasketColumns.h"
#include "plugin/basket/BasketFile.h"
#include "plugin/orderentry/SipOrder.h"

#include <algorithm>
#include <array>
#include <utility>

namespace planfold {

namespace {

constexpr std::size_t kLongestCell = 127;
constexpr std::string_view kCellBlanks = " \t\r";
constexpr const char* kNoAmount = "Please enter valid amount.";

// By which words of cells become those of files.
std::optional<CodeTable> WordsOf(BasketField field) {
    switch (field) {
    case BasketField::exchange:
        return kExchangeToServer;
    case BasketField::orderType:
        return kOrderTypeToServer;
    case BasketField::side:
        return kPlanToServer;
    default:
        return std::nullopt;
    }
}

// As the form's edit lets it be typed.
bool IsPositiveDecimal(std::string_view text) {
    return std::ranges::count(text, '.') <= 1 && text.find_first_not_of("0123456789.") == text.npos;
}

bool IsValue(BasketField field) {
    return field == BasketField::amount || field == BasketField::quantity;
}

bool NamesScrip(BasketField field) {
    return field == BasketField::exchange || field == BasketField::series || field == BasketField::symbol;
}

// Of a line of cells below headings, by the columns of the list.
using Headings = std::vector<std::optional<BasketField>>;

std::vector<std::string_view> SplitCells(std::string_view line) {
    std::vector<std::string_view> cells;
    for (std::size_t at = 0; at <= line.size();) {
        const std::size_t end = std::min(line.find('\t', at), line.size());
        cells.push_back(Trimmed(line.substr(at, end - at), kCellBlanks));
        at = end + 1;
    }
    return cells;
}

// Empty when it is no line of headings.
Headings HeadingsOf(std::string_view line) {
    Headings headings;
    std::size_t known = 0;
    for (const std::string_view cell : SplitCells(line)) {
        const auto column = std::ranges::find_if(kBasketListColumns, [&](const BasketColumn& each) {
            return EqualsIgnoringCase(each.heading, cell);
        });
        const bool isKnown = column != std::end(kBasketListColumns);
        known += isKnown ? 1 : 0;
        headings.push_back(isKnown && IsEditable(column->field) ? std::optional(column->field) : std::nullopt);
    }
    if (known < 2) headings.clear();
    return headings;
}

PastedLine LineInFileOrder(std::string_view line) {
    constexpr std::size_t columns = 20;
    PastedLine pasted;
    std::size_t cells = 0;
    for (const std::string_view cell : SplitCells(line)) {
        if (cells++ > 0) pasted.text += ',';
        pasted.text += cell;
    }
    // A spreadsheet copies no empty columns at the end.
    if (cells < columns) pasted.text.append(columns - cells, ',');
    return pasted;
}

PastedLine LineBelow(const Headings& headings, std::string_view line, const BasketRules& rules) {
    PastedLine pasted{};
    pasted.namesScrip = true;
    ByField<BasketField, std::string> texts;
    texts[BasketField::orderType] = "MKT";
    const std::vector<std::string_view> cells = SplitCells(line);
    for (std::size_t i = 0; i < std::min(cells.size(), headings.size()); ++i) {
        const auto field = headings[i];
        // The list shows what an order is not by as 0.
        const bool isZero = IsValue(field.value_or(BasketField::userText)) && IsPositiveDecimal(cells[i])
                            && LeadingReal(cells[i]) == 0.0;
        if (!field || cells[i].empty() || isZero) continue;
        auto refusal = CellToFile(*field, cells[i], rules, texts[*field]);
        if (refusal && !pasted.refusal) pasted.refusal = std::move(refusal);
    }
    texts[BasketField::investType] = texts[BasketField::amount].empty() ? "qty" : "value";
    for (const BasketField field : kBasketColumns)
        pasted.text.append(texts[field]).push_back(',');
    return pasted;
}

} // namespace

bool IsEditable(BasketField field) {
    return field != BasketField::userText && field != kStateOfRow;
}

std::optional<std::string> CellToFile(BasketField field, std::string_view typed, const BasketRules& rules,
                                      std::string& text) {
    text = Trimmed(typed, kCellBlanks);
    if (text.size() > kLongestCell || text.find_first_of(std::string_view(",\n\r\0", 4)) != text.npos)
        return kInvalidFormat;
    if (const auto words = WordsOf(field))
        for (const CodeRow& word : *words)
            if (EqualsIgnoringCase(word.from, text)) {
                text = word.to;
                return std::nullopt;
            }
    const auto spelled = [&](const auto& words, auto&& wordOf) {
        for (const auto& each : words)
            if (EqualsIgnoringCase(wordOf(each), text)) text = wordOf(each);
    };
    std::optional<Refusal> refusal;
    std::string wire = text;
    switch (field) {
    case BasketField::account:
        return text.empty() ? std::optional<std::string>(kBasketTexts.noClient) : std::nullopt;
    case BasketField::product:
        spelled(rules.products, [](const std::string& each) { return std::string_view(each); });
        return std::nullopt;
    case BasketField::frequency:
        spelled(kFrequencies, [](const Frequency& each) { return std::string_view(each.word); });
        return std::nullopt;
    case BasketField::amount:
        if (!IsPositiveDecimal(text)) return kNoAmount;
        refusal = ValueToWire("Amount", wire, kBasketTexts);
        break;
    case BasketField::quantity:
        if (!AllDigits(text)) return kBasketTexts.malformedQuantity;
        refusal = ValueToWire("Quantity", wire, kBasketTexts);
        break;
    default:
        return std::nullopt;
    }
    if (refusal) return std::move(refusal->text);
    text = std::move(wire);
    return std::nullopt;
}

std::optional<std::string> CellJudge::Judge(Pass pass, BasketTexts& columns, int lineNumber) {
    m_scrips.Admit(pass);
    auto refusal = m_check.Validate(columns, lineNumber);
    if (!refusal) return std::nullopt;
    return refusal->reason.empty() ? std::move(refusal->notice) : std::move(refusal->reason);
}

std::optional<std::string> CellJudge::JudgeCell(Pass pass, BasketTexts& columns, BasketField field,
                                                std::string_view typed) {
    if (IsValue(field) && field != ValueField(columns[BasketField::investType]))
        return field == BasketField::amount ? "The order is by quantity." : "The order is by amount.";
    if (auto refusal = CellToFile(field, typed, m_rules, m_typed)) return refusal;
    columns[field] = m_typed;
    if (NamesScrip(field)) LookUpScrip(pass, columns);
    // Its number, which no reason but those of lines names, is cut off.
    auto refusal = Judge(pass, columns, 0);
    if (refusal) refusal->resize(std::min(refusal->find(" In Line Number"), refusal->size()));
    return refusal;
}

void CellJudge::LookUpScrip(Pass pass, BasketTexts& columns) {
    m_names = AskScripNames(pass, m_session, columns[BasketField::exchange], columns[BasketField::series],
                            columns[BasketField::symbol]);
    columns[BasketField::tradingSymbol] = m_names.tradingSymbol;
    columns[BasketField::token] = m_names.token;
}

std::vector<PastedLine> LinesOfCells(std::string_view cells, const BasketRules& rules) {
    std::vector<PastedLine> pasted;
    BasketLines lines(cells);
    Headings headings;
    bool isFirst = true;
    while (const auto line = lines.Next()) {
        if (std::exchange(isFirst, false) && !(headings = HeadingsOf(line->text)).empty()) continue;
        if (Trimmed(line->text, kCellBlanks).empty()) continue;
        pasted.push_back(headings.empty() ? LineInFileOrder(line->text)
                                          : LineBelow(headings, line->text, rules));
    }
    return pasted;
}

} // namespace planfold
