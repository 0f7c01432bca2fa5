// How a file's columns become orders: what the user said of it, kept under a name for the next file with the
// same headings.
#pragma once

#include "plugin/import/Headings.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace planfold {

struct ImportMapping {
    std::string name;
    std::vector<BasketField> columns; // what each is read as
    AmountUnit unit = AmountUnit::undecided;
    DatePattern pattern = DatePattern::undecided;
    int clientDigits = 0;                        // of a client's code that is a number; 0: any
    std::map<BasketField, std::string> defaults; // where no column says it

    bool operator==(const ImportMapping&) const = default;
};

// As the headings say; of two columns for the same field the first.
ImportMapping MappingOf(const Headings& headings);

// By which a mapping is found again: "Client Code;Symbol;;Amount (Rs);".
std::string KeyOf(const Headings& headings);

// Mappings as a small settings text.
//   [Branch Andheri]
//   headings = Client Code;Symbol;Amount;
//   columns = client;symbol;amount
//   amount = rupees
//   dates = day/month/year
//   client digits = 6
//   default exchange = NSE
class KeptMappings {
public:
    // Why the text cannot be used, with the line; empty when it can.
    std::string Read(std::string_view text);
    std::string Text() const;

    bool IsEmpty() const { return m_kept.empty(); }
    // For a file with these headings; null without one.
    const ImportMapping* Find(const Headings& headings) const;
    // In place of one with the same name, and of those for the same headings.
    void Keep(const Headings& headings, const ImportMapping& mapping);

private:
    struct Kept {
        std::string headings;
        ImportMapping mapping;
    };

    std::vector<Kept> m_kept;
};

// "rupees", "day/month/year"; nothing for any other word.
std::optional<AmountUnit> UnitOfWord(std::string_view word);
std::optional<DatePattern> PatternOfWord(std::string_view word);
const char* WordOf(AmountUnit unit);
const char* WordOf(DatePattern pattern);

} // namespace planfold
