#include "plugin/import/Headings.h"

#include <algorithm>
#include <set>

namespace planfold {

namespace {

constexpr int kRowsSearched = 50;
constexpr std::size_t kFewestKnown = 2;
constexpr std::size_t kLongestHeading = 127;

bool IsOneOf(std::string_view word, std::string_view list) {
    while (!list.empty()) {
        const std::size_t end = std::min(list.find(';'), list.size());
        if (list.substr(0, end) == word) return true;
        list.remove_prefix(std::min(end + 1, list.size()));
    }
    return false;
}

// Small letters and digits of all of it, with a blank for each run of anything else.
std::string Words(std::string_view heading) {
    std::string words = " ";
    for (const char c : heading) {
        const bool isLarge = c >= 'A' && c <= 'Z';
        const bool isKept = isLarge || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9');
        if (isKept)
            words.push_back(isLarge ? static_cast<char>(c - 'A' + 'a') : c);
        else if (words.back() != ' ')
            words.push_back(' ');
    }
    if (words.back() != ' ') words.push_back(' ');
    return words;
}

template <class Meaning>
struct Hint {
    std::string_view word; // as Words has it
    Meaning meaning;
};
constexpr Hint<AmountUnit> kUnitHints[] = {
    {" rs ", AmountUnit::rupees},  {" rupees ", AmountUnit::rupees}, {" rupee ", AmountUnit::rupees},
    {" inr ", AmountUnit::rupees}, {" paise ", AmountUnit::paise},   {" paisa ", AmountUnit::paise},
};
constexpr Hint<DatePattern> kPatternHints[] = {
    {" dd mm yyyy ", DatePattern::dayFirst},   {" dd mm yy ", DatePattern::dayFirst},
    {" mm dd yyyy ", DatePattern::monthFirst}, {" mm dd yy ", DatePattern::monthFirst},
    {" yyyy mm dd ", DatePattern::yearFirst},  {" ddmmyyyy ", DatePattern::dayFirst},
    {" mmddyyyy ", DatePattern::monthFirst},   {" yyyymmdd ", DatePattern::yearFirst},
};

template <class Meaning, std::size_t count>
Meaning MeaningIn(const Hint<Meaning> (&hints)[count], std::string_view heading) {
    const std::string words = Words(heading);
    for (const auto& hint : hints)
        if (words.find(hint.word) != words.npos) return hint.meaning;
    return Meaning::undecided;
}

} // namespace

const ImportField* FindImportField(BasketField field) {
    const auto* found = std::ranges::find(kImportFields, field, &ImportField::field);
    return found == std::end(kImportFields) ? nullptr : found;
}

std::optional<BasketField> FieldOfWord(std::string_view word) {
    for (const ImportField& row : kImportFields)
        if (word == row.word) return row.field;
    return std::nullopt;
}

std::string HeadingKey(std::string_view heading) {
    std::string key = Words(heading.substr(0, heading.find_first_of("([")));
    std::erase(key, ' ');
    return key;
}

BasketField FieldOfHeading(std::string_view heading) {
    std::string key = HeadingKey(heading);
    // "Amount Rs" and "Amount in Paise" say their unit without parentheses.
    if (UnitOfHeading(heading) != AmountUnit::undecided)
        for (const std::string_view unit : {"rs", "rupees", "rupee", "inr", "paise", "paisa"})
            if (key.size() > unit.size() && key.ends_with(unit)) {
                key.resize(key.size() - unit.size());
                if (key.ends_with("in")) key.resize(key.size() - 2);
                break;
            }
    for (const ImportField& row : kImportFields)
        if (IsOneOf(key, row.synonyms)) return row.field;
    return kNotRead;
}

AmountUnit UnitOfHeading(std::string_view heading) {
    // The rupee's sign.
    if (heading.find("\xE2\x82\xB9") != heading.npos) return AmountUnit::rupees;
    return MeaningIn(kUnitHints, heading);
}

DatePattern PatternOfHeading(std::string_view heading) {
    return MeaningIn(kPatternHints, heading);
}

Headings FindHeadings(TableReader& table) {
    Headings best;
    TableRow row;
    for (int i = 0; i < kRowsSearched && table.Next(row); ++i) {
        std::set<BasketField> known;
        for (const TableCell& cell : row.cells)
            if (cell.kind == CellKind::text) known.insert(FieldOfHeading(cell.text));
        known.erase(kNotRead);
        if (known.size() < kFewestKnown || known.size() <= best.known) continue;
        best = {row.line, {}, known.size()};
        for (const TableCell& cell : row.cells)
            best.texts.emplace_back(cell.text.substr(0, kLongestHeading));
    }
    return best;
}

} // namespace planfold
