#include "bench/BasketPeers.h"

#include "plugin/basket/BasketLine.h"

#include <csv.h>

#include <algorithm>
#include <cctype>
#include <cstring>
#include <ctime>
#include <deque>
#include <iomanip>
#include <sstream>

namespace bench {
namespace {

using Fields = std::vector<std::string>;
constexpr std::size_t kColumns = std::size(planfold::kBasketColumns);

bool IsNumber(const std::string& text) {
    return !text.empty() && std::ranges::all_of(text, [](unsigned char c) { return std::isdigit(c) != 0; });
}

bool IsOneOf(const std::string& text, std::initializer_list<const char*> words) {
    return std::ranges::any_of(words, [&](const char* word) { return text == word; });
}

bool ReadDate(Fields& fields, std::int64_t now) {
    std::tm date{};
    std::istringstream stream(fields[11]);
    stream >> std::get_time(&date, "%d/%b/%Y");
    if (stream.fail()) return false;
    const std::int64_t seconds = std::mktime(&date);
    fields[10] = std::to_string(seconds);
    return seconds >= now;
}

bool IsGood(Fields& fields, const TokenMap& tokens, std::int64_t now) {
    const auto token = tokens.find(fields[5]);
    if (token == tokens.end() || token->second != fields[4] || !ReadDate(fields, now)) return false;
    if (!IsNumber(fields[12]) || std::stoi(fields[12]) < 1 || std::stoi(fields[12]) > 60) return false;
    if (!IsOneOf(fields[14], {"B", "S"}) || !IsOneOf(fields[18], {"value", "qty"})
        || !IsOneOf(fields[9], {"daily", "weekly", "monthly", "yearly"}) || fields[13] != "MKT"
        || fields[6] != "CNC")
        return false;
    const std::string& value = fields[18] == "qty" ? fields[8] : fields[7];
    if (!IsNumber(value) || std::stod(value) > 2147483647) return false;
    fields[15] = fields[14] == "B" ? "BUY" : "SELL";
    fields[16] = "C";
    fields[17] = "DAY";
    return true;
}

} // namespace

std::size_t LoadPlainly(const std::string& text, const TokenMap& tokens, std::int64_t now) {
    std::deque<Fields> rows;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        Fields fields;
        std::istringstream columns(line);
        for (std::string field; std::getline(columns, field, ',');)
            fields.push_back(field);
        if (fields.size() < kColumns || fields.size() > kColumns + 1) continue;
        if (IsGood(fields, tokens, now)) rows.push_front(std::move(fields));
    }
    return rows.size();
}

std::size_t CutByLibcsv(const std::string& text) {
    std::size_t fields = 0;
    csv_parser parser;
    csv_init(&parser, 0);
    const auto count = [](void*, std::size_t, void* sum) { ++*static_cast<std::size_t*>(sum); };
    const auto end = [](int, void*) {};
    csv_parse(&parser, text.data(), text.size(), count, end, &fields);
    csv_fini(&parser, count, end, &fields);
    csv_free(&parser);
    return fields;
}

std::size_t CountLineEnds(const std::string& text) {
    std::size_t lines = 0;
    const char* const end = text.data() + text.size();
    for (const char* at = text.data();
         (at = static_cast<const char*>(std::memchr(at, '\n', static_cast<std::size_t>(end - at)))); ++at)
        ++lines;
    return lines;
}

} // namespace bench
