// What the tests of import have in common: a reading of a table as one text.
#pragma once

#include "plugin/base/Dates.h"
#include "plugin/import/ImportFile.h"
#include "tests/plugin/BasketStage.h"

#include <string>
#include <vector>

namespace planfold {

using Field = BasketField;
using Fault = ImportFault;

class Scrips final : public ScripSource {
public:
    std::optional<ScripDetails> Details(std::string_view, std::string_view) override { return std::nullopt; }
    ScripNames Names(std::string_view exchange, std::string_view series, std::string_view symbol) override {
        if (exchange != "nse_cm" || series != "EQ" || symbol.starts_with("NO")) return {};
        return {std::string(symbol) + "-EQ", "0042", ""};
    }
};

// "5:C001 ALPHA-EQ value 150000 monthly 05/Mar/2027 12 B|6! the reason|"
class Dump final : public BasketSink {
public:
    void OnRow(const BasketTexts& texts) override {
        text += std::to_string(reader->LinesRead()) + ":" + std::string(texts[Field::account]);
        for (const Field field : {Field::tradingSymbol, Field::investType, ValueField(texts[Field::investType]),
                                  Field::frequency, Field::startDateText, Field::totalPeriod, Field::side})
            text.append(" ").append(texts[field]);
        text += "|";
    }
    void OnRejected(const RejectedLine& line, const BasketTexts&) override {
        text += std::to_string(line.number) + "! " + line.reason + "|";
        columns.push_back(reader->Finding().column);
    }
    void OnNotice(std::string_view) override {}
    void OnLog(std::string_view) override {}

    const ImportReader* reader = nullptr;
    std::string text;
    std::vector<int> columns;
};

inline const BasketRules kRules{{"CNC"}, {}, false, {}, ToSeconds({2027, 1, 31, 15, 30, 0})};

inline std::string Imported(const ImportFile& file, std::vector<int>* columns = nullptr) {
    Scrips scrips;
    Dump dump;
    const auto reader = file.Read(kRules, scrips, dump);
    dump.reader = reader.get();
    while (reader->Read(2)) {
    }
    if (columns) *columns = dump.columns;
    return dump.text;
}

inline std::string Imported(std::string text, const KeptMappings& kept = {}) {
    ImportFile file;
    const std::string fault = file.Open(std::move(text), kept);
    return fault.empty() ? Imported(file) : "fault: " + fault;
}

} // namespace planfold
