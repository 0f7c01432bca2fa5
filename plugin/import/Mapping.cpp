#include "plugin/import/Mapping.h"

#include "base/Text.h"
#include "plugin/base/Text.h"

#include <algorithm>
#include <array>

namespace planfold {

namespace {

constexpr std::array kUnitWords{"undecided", "rupees", "paise"};
constexpr std::array kPatternWords{"undecided",      "day/month/year", "month/day/year",
                                   "year-month-day", "serial 1900",    "serial 1904"};
static_assert(kUnitWords.size() == static_cast<std::size_t>(AmountUnit::count));
static_assert(kPatternWords.size() == static_cast<std::size_t>(DatePattern::count));

constexpr char kNotReadWord[] = "-";
constexpr std::string_view kDefault = "default ";
constexpr int kMostClientDigits = 32;
constexpr std::size_t kMostKept = 1000;

template <class Meaning, class Words>
std::optional<Meaning> MeaningOf(const Words& words, std::string_view word) {
    const auto found = std::ranges::find(words, word);
    if (found == words.end()) return std::nullopt;
    return static_cast<Meaning>(found - words.begin());
}

// A carriage return is a blank at the end of a line only.
std::string_view SettingOf(std::string_view text) {
    return Trimmed(text.substr(0, text.find_last_not_of(" \t\r") + 1), " \t");
}

std::string_view CutAt(std::string_view& rest, char end) {
    const std::size_t at = std::min(rest.find(end), rest.size());
    const std::string_view part = rest.substr(0, at);
    rest.remove_prefix(std::min(at + 1, rest.size()));
    return part;
}

bool ReadColumns(ImportMapping& mapping, std::string_view text) {
    mapping.columns.clear();
    while (!text.empty()) {
        const std::string_view word = SettingOf(CutAt(text, ';'));
        const auto field = FieldOfWord(word);
        if ((!field && word != kNotReadWord) || mapping.columns.size() == kMostTableColumns) return false;
        mapping.columns.push_back(field.value_or(kNotRead));
    }
    return true;
}

bool ReadSetting(ImportMapping& mapping, std::string_view key, std::string_view value) {
    if (key == "columns") return ReadColumns(mapping, value);
    if (key == "amount") {
        const auto unit = UnitOfWord(value);
        mapping.unit = unit.value_or(mapping.unit);
        return unit.has_value();
    }
    if (key == "dates") {
        const auto pattern = PatternOfWord(value);
        mapping.pattern = pattern.value_or(mapping.pattern);
        return pattern.has_value();
    }
    if (key == "client digits") {
        const auto digits = base::ReadNumber<int>(value);
        if (!digits || *digits < 0 || *digits > kMostClientDigits) return false;
        mapping.clientDigits = *digits;
        return true;
    }
    if (!key.starts_with(kDefault)) return false;
    const auto field = FieldOfWord(key.substr(kDefault.size()));
    if (!field || !FindImportField(*field)->hasDefault || value.empty()) return false;
    mapping.defaults[*field] = value;
    return true;
}

} // namespace

std::optional<AmountUnit> UnitOfWord(std::string_view word) {
    return MeaningOf<AmountUnit>(kUnitWords, word);
}

std::optional<DatePattern> PatternOfWord(std::string_view word) {
    return MeaningOf<DatePattern>(kPatternWords, word);
}

const char* WordOf(AmountUnit unit) {
    return kUnitWords[static_cast<std::size_t>(unit)];
}

const char* WordOf(DatePattern pattern) {
    return kPatternWords[static_cast<std::size_t>(pattern)];
}

ImportMapping MappingOf(const Headings& headings) {
    ImportMapping mapping;
    for (const std::string& heading : headings.texts) {
        const BasketField field = FieldOfHeading(heading);
        const bool isTaken = std::ranges::find(mapping.columns, field) != mapping.columns.end();
        mapping.columns.push_back(isTaken ? kNotRead : field);
        if (isTaken) continue;
        if (field == BasketField::amount) mapping.unit = UnitOfHeading(heading);
        if (field == BasketField::startDateText) mapping.pattern = PatternOfHeading(heading);
    }
    // A basket has no other.
    mapping.defaults[BasketField::orderType] = "MKT";
    return mapping;
}

// The whole heading counts: "Amount (Rs)" is another file than "Amount (paise)".
std::string KeyOf(const Headings& headings) {
    std::string key;
    for (const std::string& heading : headings.texts) {
        for (const char c : heading)
            if (c != ';' && c != '\r' && c != '\n') key.push_back(c);
        key.push_back(';');
    }
    return key;
}

std::string KeptMappings::Read(std::string_view text) {
    m_kept.clear();
    for (int line = 1; !text.empty(); ++line) {
        std::string_view setting = SettingOf(CutAt(text, '\n'));
        if (setting.empty()) continue;
        if (setting.front() == '[' && setting.back() == ']' && m_kept.size() < kMostKept) {
            m_kept.emplace_back();
            m_kept.back().mapping.name = setting.substr(1, setting.size() - 2);
            continue;
        }
        const std::string_view key = SettingOf(CutAt(setting, '='));
        if (m_kept.empty()) return Format("line %d: a mapping begins with its [name]", line);
        Kept& kept = m_kept.back();
        if (key == "headings")
            kept.headings = SettingOf(setting);
        else if (!ReadSetting(kept.mapping, key, SettingOf(setting)))
            return Format("line %d: %s cannot be set so", line, std::string(key.substr(0, 40)).c_str());
    }
    return {};
}

std::string KeptMappings::Text() const {
    std::string text;
    const auto add = [&](std::string_view key, std::string_view value) {
        text.append(key).append(" = ").append(value).push_back('\n');
    };
    for (const Kept& kept : m_kept) {
        const ImportMapping& mapping = kept.mapping;
        text.append("[").append(mapping.name).append("]\n");
        add("headings", kept.headings);
        std::string columns;
        for (const BasketField field : mapping.columns) {
            const ImportField* row = FindImportField(field);
            columns.append(row ? row->word : kNotReadWord).push_back(';');
        }
        add("columns", columns);
        add("amount", WordOf(mapping.unit));
        add("dates", WordOf(mapping.pattern));
        add("client digits", std::to_string(mapping.clientDigits));
        for (const auto& [field, value] : mapping.defaults)
            if (!value.empty()) add(std::string(kDefault) + FindImportField(field)->word, value);
    }
    return text;
}

const ImportMapping* KeptMappings::Find(const Headings& headings) const {
    const auto found = std::ranges::find(m_kept, std::string(SettingOf(KeyOf(headings))), &Kept::headings);
    return found == m_kept.end() ? nullptr : &found->mapping;
}

void KeptMappings::Keep(const Headings& headings, const ImportMapping& mapping) {
    const std::string key(SettingOf(KeyOf(headings)));
    std::erase_if(m_kept,
                  [&](const Kept& kept) { return kept.headings == key || kept.mapping.name == mapping.name; });
    m_kept.push_back({key, mapping});
}

} // namespace planfold
