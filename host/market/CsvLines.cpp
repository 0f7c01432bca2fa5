#include "host/market/CsvLines.h"

namespace vesk {
namespace {

std::string_view NextLine(std::string_view& rest) {
    const std::size_t end = rest.find('\n');
    std::string_view line = rest.substr(0, end);
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    return line;
}

void Split(std::string_view line, std::vector<std::string_view>& fields) {
    fields.clear();
    for (std::size_t start = 0;;) {
        const std::size_t comma = line.find(',', start);
        fields.push_back(line.substr(start, comma - start));
        if (comma == std::string_view::npos) return;
        start = comma + 1;
    }
}

} // namespace

std::optional<FileFault> ReadCsv(std::string_view text, std::string_view fileName, std::string_view heading,
                                 const CsvRow& row) {
    std::vector<std::string_view> fields;
    Split(heading, fields);
    const std::size_t expected = fields.size();
    bool headingSeen = false;
    std::size_t number = 0;
    while (!text.empty()) {
        const std::string_view line = NextLine(text);
        ++number;
        const auto fault = [&](std::string what) {
            return FileFault{std::string(FileNameOf(fileName)), number, std::move(what)};
        };
        if (line.empty() || line.front() == '#') continue;
        if (!headingSeen) {
            if (line != heading) return fault("the heading \"" + std::string(heading) + "\" is expected");
            headingSeen = true;
            continue;
        }
        Split(line, fields);
        if (fields.size() != expected)
            return fault(std::to_string(expected) + " fields expected, " + std::to_string(fields.size())
                         + " found");
        if (std::optional<std::string> what = row(fields)) return fault(std::move(*what));
    }
    if (!headingSeen)
        return FileFault{std::string(FileNameOf(fileName)), 0,
                         "the heading \"" + std::string(heading) + "\" is missing"};
    return std::nullopt;
}

} // namespace vesk
