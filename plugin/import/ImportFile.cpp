#include "plugin/import/ImportFile.h"

#include "plugin/base/Numbers.h"
#include "plugin/base/Text.h"

#include <algorithm>
#include <array>

namespace planfold {

namespace {

constexpr char kNoHeadings[] =
    "it has no line of headings, such as \"Client Code\" and \"Amount\"; Load reads a basket file without them";

constexpr std::size_t kLongestFirst = 60;

// In the preview and its counts.
struct FaultName {
    const char *one, *many;
};
constexpr FaultName kFaultNames[] = {
    {"", ""},
    {"value missing", "values missing"},
    {"no number", "no numbers"},
    {"number in doubt", "numbers in doubt"},
    {"part of a paisa", "parts of a paisa"},
    {"amount without a unit", "amounts without a unit"},
    {"number shortened by a spreadsheet", "numbers shortened by a spreadsheet"},
    {"lost leading zero", "lost leading zeros"},
    {"no date", "no dates"},
    {"date in doubt", "dates in doubt"},
    {"day number in doubt", "day numbers in doubt"},
    {"unknown word", "unknown words"},
    {"text that does not fit", "texts that do not fit"},
    {"row with amount and quantity", "rows with amount and quantity"},
    {"unknown scrip", "unknown scrips"},
    {"other scrip than the symbol's", "other scrips than the symbol's"},
    {"unreadable row", "unreadable rows"},
    {"against the basket's rules", "against the basket's rules"},
};
static_assert(std::size(kFaultNames) == static_cast<std::size_t>(ImportFault::count));

// Keeps the file's bytes for the reader that views them.
class HeldReader final : public BasketReading {
public:
    HeldReader(ImportFile file, const BasketRules& rules, ScripSource& scrips, BasketSink& sink)
        : m_file(std::move(file)), m_reader(m_file.Read(rules, scrips, sink)) {}

    bool Read(std::size_t lines) override { return m_reader->Read(lines); }
    int LinesRead() const override { return m_reader->LinesRead(); }
    std::size_t RowsLoaded() const override { return m_reader->RowsLoaded(); }
    const std::string& LastReason() const override { return m_reader->LastReason(); }
    std::size_t Done() const override { return m_reader->Done(); }
    std::size_t Total() const override { return m_reader->Total(); }

private:
    ImportFile m_file;
    std::unique_ptr<ImportReader> m_reader;
};

std::unique_ptr<TableReader> Opened(std::string_view bytes) {
    auto opened = OpenTable(bytes);
    auto* table = std::get_if<std::unique_ptr<TableReader>>(&opened);
    return table ? std::move(*table) : nullptr;
}

} // namespace

// The first rows, and why those of them are rejected that are.
class ImportFile::FirstRows final : public BasketSink {
public:
    void Follow(const ImportReader& reader) { m_reader = &reader; }
    void OnRow(const BasketTexts& texts) override { Add(texts, {}); }
    void OnRejected(const RejectedLine& line, const BasketTexts& texts) override {
        ++counts[static_cast<std::size_t>(m_reader->Finding().fault)];
        Add(texts, line.reason);
    }
    void OnNotice(std::string_view) override {}
    void OnLog(std::string_view) override {}

    std::array<std::size_t, static_cast<std::size_t>(ImportFault::count)> counts{};
    std::size_t read = 0;
    std::vector<PreviewRow> rows;

private:
    void Add(const BasketTexts& texts, std::string reason) {
        ++read;
        if (rows.size() == kRowsShown) return;
        PreviewRow& row = rows.emplace_back();
        row.line = m_reader->LinesRead();
        row.reason = std::move(reason);
        for (const ImportField& each : kImportFields)
            row.texts[each.field] = texts[each.field];
    }

    const ImportReader* m_reader = nullptr;
};

// One reading that goes on row by row.
struct ImportFile::Trial {
    const BasketRules rules;
    FirstRows first{};
    std::unique_ptr<ImportReader> reader{};
    bool hasMore = true;
};

std::string ImportFile::Open(std::string bytes, const KeptMappings& kept) {
    m_bytes = std::make_shared<const std::string>(std::move(bytes));
    auto opened = OpenTable(*m_bytes);
    if (const std::string* fault = std::get_if<std::string>(&opened)) return *fault;
    TableReader& table = *std::get<std::unique_ptr<TableReader>>(opened);
    m_headings = FindHeadings(table);
    if (m_headings.line == 0) return table.Fault().empty() ? kNoHeadings : table.Fault();
    const ImportMapping* known = kept.Find(m_headings);
    m_isKept = known && known->columns.size() == m_headings.texts.size();
    m_mapping = m_isKept ? *known : MappingOf(m_headings);
    TableRow row;
    m_firstValues.assign(m_headings.texts.size(), {});
    const auto first = Opened(*m_bytes);
    for (int i = 0; i < kRowsTried && first->Next(row); ++i)
        for (std::size_t at = 0; row.line > m_headings.line && at < m_firstValues.size(); ++at)
            if (at < row.cells.size() && m_firstValues[at].empty())
                m_firstValues[at] = row.cells[at].text.substr(0, kLongestFirst);
    if (!m_isKept) LookAtColumns(*Opened(*m_bytes));
    return {};
}

// Where one code has zeros in front, all that are numbers have its length; a shorter one has lost some. A
// heading whose order of day and month one of its dates contradicts has been outlived by its column, and
// decides nothing.
void ImportFile::LookAtColumns(TableReader& table) {
    const auto cellOf = [&](const TableRow& row, BasketField field) {
        const auto place =
            static_cast<std::size_t>(std::ranges::find(m_mapping.columns, field) - m_mapping.columns.begin());
        return place < std::min(row.cells.size(), m_mapping.columns.size()) ? row.cells[place] : TableCell();
    };
    TableRow row;
    std::size_t digits = 0;
    bool areAlike = true;
    for (int i = 0; i < kRowsTried && table.Next(row); ++i) {
        if (row.line <= m_headings.line) continue;
        const std::string_view code = PlainText(cellOf(row, BasketField::account).text);
        if (code.starts_with('0') && AllDigits(code)) {
            areAlike = areAlike && (digits == 0 || digits == code.size());
            digits = code.size();
        }
        std::string date;
        const TableCell day = cellOf(row, BasketField::startDateText);
        if (ReadDay(day, m_mapping.pattern, date) == ImportFault::noDate
            && ReadDay(day, DatePattern::undecided, date) == ImportFault::none)
            m_mapping.pattern = DatePattern::undecided;
    }
    if (areAlike && digits <= 32) m_mapping.clientDigits = static_cast<int>(digits);
}

void ImportFile::ReadColumnAs(std::size_t column, BasketField field) {
    for (BasketField& other : m_mapping.columns)
        if (field != kNotRead && other == field) other = kNotRead;
    m_mapping.columns.at(column) = field;
    if (field == BasketField::amount) m_mapping.unit = UnitOfHeading(m_headings.texts[column]);
    if (field == BasketField::startDateText) m_mapping.pattern = PatternOfHeading(m_headings.texts[column]);
}

std::vector<std::string> ImportFile::NotRead() const {
    std::vector<std::string> headings;
    for (std::size_t i = 0; i < m_headings.texts.size(); ++i)
        if (m_mapping.columns[i] == kNotRead && !m_headings.texts[i].empty())
            headings.push_back(m_headings.texts[i]);
    return headings;
}

std::unique_ptr<ImportReader> ImportFile::Read(const BasketRules& rules, ScripSource& scrips,
                                               BasketSink& sink) const {
    return std::make_unique<ImportReader>(Opened(*m_bytes), m_headings, m_mapping, rules, scrips, sink);
}

BeginReading ImportFile::Begin() const {
    ImportFile kept = *this;
    kept.m_trial.reset();
    return [file = std::move(kept)](const BasketRules& rules, ScripSource& scrips, BasketSink& sink) {
        return std::make_unique<HeldReader>(file, rules, scrips, sink);
    };
}

void ImportFile::Try(const BasketRules& rules, ScripSource& scrips) {
    m_trial = std::make_shared<Trial>(Trial{rules});
    m_trial->reader = Read(m_trial->rules, scrips, m_trial->first);
    m_trial->first.Follow(*m_trial->reader);
    m_doubt = {};
    TryMore(kRowsTried);
}

// The host, asked about a scrip, may let another choice in.
bool ImportFile::TryMore(int rows) {
    const auto trial = m_trial;
    for (int i = 0; i < rows && trial->hasMore; ++i) {
        trial->hasMore = trial->reader->Read(1);
        if (trial != m_trial) return HasMore();
    }
    if (m_doubt.said.empty() && Count(ImportFault::undecidedDate) > 0) FindDoubt();
    return trial->hasMore;
}

std::span<const PreviewRow> ImportFile::Rows() const {
    return m_trial ? std::span<const PreviewRow>(m_trial->first.rows) : std::span<const PreviewRow>();
}

std::size_t ImportFile::RowsTried() const {
    return m_trial ? m_trial->first.read : 0;
}

std::size_t ImportFile::Good() const {
    return m_trial ? m_trial->reader->RowsLoaded() : 0;
}

bool ImportFile::HasMore() const {
    return m_trial && m_trial->hasMore;
}

std::size_t ImportFile::Count(ImportFault fault) const {
    return m_trial ? m_trial->first.counts[static_cast<std::size_t>(fault)] : 0;
}

// The first cell of the column that says two dates.
void ImportFile::FindDoubt() {
    const auto table = Opened(*m_bytes);
    const auto column = std::ranges::find(m_mapping.columns, BasketField::startDateText);
    if (column == m_mapping.columns.end()) return;
    const auto place = static_cast<std::size_t>(column - m_mapping.columns.begin());
    TableRow row;
    while (m_doubt.said.empty() && table->Next(row)) {
        if (row.line <= m_headings.line || row.cells.size() <= place) continue;
        std::string date;
        const TableCell& cell = row.cells[place];
        if (ReadDay(cell, DatePattern::undecided, date) != ImportFault::undecidedDate) continue;
        m_doubt.said = PlainText(cell.text);
        static_cast<void>(ReadDay(cell, DatePattern::dayFirst, m_doubt.dayFirst));
        static_cast<void>(ReadDay(cell, DatePattern::monthFirst, m_doubt.monthFirst));
    }
}

std::vector<std::string> ImportFile::FaultTexts() const {
    std::vector<std::pair<std::size_t, std::string>> found;
    for (std::size_t i = 1; i < std::size(kFaultNames); ++i)
        if (const std::size_t count = Count(static_cast<ImportFault>(i)); count > 0)
            found.emplace_back(count,
                               Format("%zu %s", count, count == 1 ? kFaultNames[i].one : kFaultNames[i].many));
    std::ranges::stable_sort(found, std::ranges::greater(), [](const auto& each) { return each.first; });
    std::vector<std::string> texts;
    texts.reserve(found.size());
    for (const auto& each : found)
        texts.push_back(each.second);
    return texts;
}

} // namespace planfold
