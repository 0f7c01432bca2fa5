// The command line of a program as a table of its options: "--name value", or "--name" alone.
#pragma once

#include <algorithm>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace vesk {

// What is wrong with the words, for the user; none when nothing is.
using Complaint = std::optional<std::string>;

template <class Options>
struct OptionRow {
    std::string_view name;                                  // with its hyphens
    bool (*read)(Options& options, std::string_view value); // false: not understood
    std::string_view value = "a value";                     // what it needs; empty when it stands alone
};

// Stores a value as it is; an empty one is not understood.
template <auto member, class Options>
bool ReadText(Options& options, std::string_view value) {
    options.*member = value;
    return !value.empty();
}

inline std::string Quoted(std::string_view text) {
    return '"' + std::string(text) + '"';
}

// Reads the words, without the program's name, into the options. A word that is no option goes to `takeWord`,
// which answers whether there is a place for it.
template <class Options, class TakeWord>
Complaint ReadOptionRows(std::span<const std::string> words, std::span<const OptionRow<Options>> rows,
                         Options& options, TakeWord&& takeWord) {
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::string& word = words[i];
        if (word == "-" || !word.starts_with('-')) {
            if (!takeWord(word)) return Quoted(word) + " is one word too many";
            continue;
        }
        const auto row = std::ranges::find(rows, std::string_view(word), &OptionRow<Options>::name);
        if (row == rows.end()) return "unknown option " + word;
        if (!row->value.empty() && ++i == words.size()) return word + " needs " + std::string(row->value);
        const std::string_view value = row->value.empty() ? std::string_view() : std::string_view(words[i]);
        if (!row->read(options, value)) return word + " does not take " + Quoted(value);
    }
    return std::nullopt;
}

} // namespace vesk
