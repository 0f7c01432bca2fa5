// Files of any content that are imported: a text, or behind "xlsx" lines of name and content that become the
// parts of a workbook. Each row is an order or is refused with its line and a reason, orders are lines that
// load, and the memory is bounded whatever the file says of itself.

#include "fuzz/Fuzz.h"
#include "plugin/base/Dates.h"
#include "plugin/basket/BasketFile.h"
#include "plugin/basket/BasketOrder.h"
#include "plugin/import/PreviewTexts.h"

#include <zlib.h>

using fuzz::Demand;
using namespace planfold;

namespace {

class Scrips final : public ScripSource {
public:
    std::optional<ScripDetails> Details(std::string_view, std::string_view) override { return std::nullopt; }
    ScripNames Names(std::string_view, std::string_view series, std::string_view symbol) override {
        if (symbol.size() > 20) return {};
        return {std::string(symbol) + "-" + std::string(series), "1", ""};
    }
};

class Findings final : public BasketSink {
public:
    void OnRow(const BasketTexts& texts) override {
        ++rows;
        AppendBasketLine(sBasketOrderData(texts, 0), exported);
        rounded |= texts[BasketField::investType] == "value" && texts[BasketField::amount] == "0";
    }
    void OnRejected(const RejectedLine& line, const BasketTexts&) override {
        ++rejected;
        Demand(line.number >= last && !line.reason.empty() && line.reason.size() < 2000);
        last = line.number;
    }
    void OnNotice(std::string_view) override {}
    void OnLog(std::string_view) override {}

    std::string exported;
    std::size_t rows = 0, rejected = 0;
    int last = 0;
    bool rounded = false;
};

void Put(std::string& bytes, std::size_t number, int size) {
    for (; size > 0; --size, number >>= 8)
        bytes.push_back(static_cast<char>(number & 0xFF));
}

// A part's content packed as workbooks have it, and told truly of itself.
std::string Packed(const std::string& content) {
    std::string packed(compressBound(static_cast<uLong>(content.size())) + 16, '\0');
    z_stream stream{};
    deflateInit2(&stream, 1, Z_DEFLATED, -MAX_WBITS, 8, Z_DEFAULT_STRATEGY);
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(content.data()));
    stream.avail_in = static_cast<uInt>(content.size());
    stream.next_out = reinterpret_cast<Bytef*>(packed.data());
    stream.avail_out = static_cast<uInt>(packed.size());
    Demand(deflate(&stream, Z_FINISH) == Z_STREAM_END);
    packed.resize(stream.total_out);
    deflateEnd(&stream);
    return packed;
}

// "xl/workbook.xml=<workbook>..." a line each; "*9" in front repeats the content 2^9 times.
std::string Workbook(std::string_view lines) {
    std::string bytes, directory;
    std::size_t count = 0;
    for (; !lines.empty(); ++count) {
        std::string_view line = fuzz::Input::CutAt(lines, '\n');
        std::size_t doublings = 0;
        if (line.size() > 2 && line[0] == '*') {
            doublings = static_cast<unsigned char>(line[1]) % 12;
            line.remove_prefix(2);
        }
        const std::string name(fuzz::Input::CutAt(line, '='));
        std::string content(line);
        for (; doublings > 0 && content.size() < (1u << 20); --doublings)
            content += content;
        const std::string packed = Packed(content);
        const std::size_t place = bytes.size();
        std::string fields;
        Put(fields, 8, 2);
        Put(fields, 0, 4);
        Put(fields, crc32(0, reinterpret_cast<const Bytef*>(content.data()), static_cast<uInt>(content.size())),
            4);
        Put(fields, packed.size(), 4);
        Put(fields, content.size(), 4);
        Put(fields, name.size(), 2);
        bytes.append("PK\x03\x04\x14\0\0\0", 8).append(fields).append(2, '\0').append(name).append(packed);
        directory.append("PK\x01\x02\x14\0\x14\0\0\0", 10).append(fields).append(12, '\0');
        Put(directory, place, 4);
        directory.append(name);
    }
    const std::size_t place = bytes.size();
    bytes += directory;
    bytes.append("PK\x05\x06\0\0\0\0", 8);
    for (int i = 0; i < 2; ++i)
        Put(bytes, count, 2);
    Put(bytes, directory.size(), 4);
    Put(bytes, place, 4);
    return bytes.append(2, '\0');
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string_view text = fuzz::Text(data, size);
    const bool isWorkbook = text.starts_with("xlsx\n");
    const std::string bytes = isWorkbook ? Workbook(text.substr(5)) : std::string(text);

    KeptMappings kept;
    if (kept.Read(text).empty()) {
        KeptMappings again;
        Demand(again.Read(kept.Text()).empty() && again.Text() == kept.Text());
    }
    ImportFile file;
    if (!file.Open(bytes, kept).empty()) return 0;
    Scrips scrips;
    BasketRules rules;
    rules.products = {"CNC"};
    rules.now = ToSeconds({2027, 1, 31, 15, 30, 0});
    for (const DatePattern pattern : {DatePattern::undecided, DatePattern::dayFirst, DatePattern::since1900}) {
        file.Mapping().pattern = pattern;
        file.Mapping().unit = pattern == DatePattern::undecided ? AmountUnit::undecided : AmountUnit::rupees;
        Findings findings;
        const auto reader = file.Read(rules, scrips, findings);
        while (reader->Read(3))
            Demand(reader->Done() <= reader->Total());
        Demand(reader->RowsLoaded() == findings.rows);
        if (findings.rounded) continue;
        file.Try(rules, scrips);
        while (file.TryMore(1'000)) {
        }
        Demand(file.Good() == findings.rows && file.RowsTried() == findings.rows + findings.rejected);
        Demand(!FaultsText(file).empty());
        for (const char c : findings.exported)
            Demand(c == '\n' || c < 0 || c >= ' ');
    }
    return 0;
}
