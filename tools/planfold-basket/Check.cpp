#include "base/Text.h"
#include "plugin/basket/BasketFile.h"
#include "plugin/import/ImportFile.h"
#include "tools/planfold-basket/Report.h"
#include "tools/planfold-basket/Sources.h"

namespace basket {

using namespace planfold;

namespace {

constexpr std::size_t kLinesAtOnce = 1'000'000;

// What the words say goes before what is kept, and that before what the headings say.
void Apply(const Options& options, ImportFile& file) {
    ImportMapping& mapping = file.Mapping();
    if (options.unit != AmountUnit::undecided) mapping.unit = options.unit;
    if (options.pattern != DatePattern::undecided) mapping.pattern = options.pattern;
    for (const auto& [field, value] : options.defaults)
        mapping.defaults[field] = value;
}

} // namespace

int Check(const Options& options, ScripSource& scrips) {
    const auto text = ReadText(options.file);
    if (!text) return Fail(text.Fault().Text());
    if (base::IsUtf16(text.Value())) return Fail(options.file + ": " + kUtf16Fault);
    Findings findings(options);
    BasketReader load(text.Value(), options.rules, scrips, findings);
    while (load.Read(kLinesAtOnce)) {
    }
    return Tell(options, load, findings);
}

int Import(const Options& options, ScripSource& scrips) {
    KeptMappings kept;
    if (!options.map.empty()) {
        const auto settings = ReadText(options.map);
        if (!settings) return Fail(settings.Fault().Text());
        if (const std::string fault = kept.Read(settings.Value()); !fault.empty())
            return Fail(options.map + ": " + fault);
    }
    auto bytes = ReadText(options.file);
    if (!bytes) return Fail(bytes.Fault().Text());
    ImportFile file;
    if (const std::string fault = file.Open(std::move(bytes.Value()), kept); !fault.empty())
        return Fail(options.file + ": " + fault);
    if (!options.map.empty() && !file.IsKept())
        return Fail(options.map + ": has no mapping for these headings");
    Apply(options, file);
    Findings findings(options);
    const auto reader = file.Read(options.rules, scrips, findings);
    findings.columnOf = [&] { return reader->Finding().column; };
    while (reader->Read(kLinesAtOnce)) {
    }
    return Tell(options, *reader, findings, file.NotRead());
}

} // namespace basket
