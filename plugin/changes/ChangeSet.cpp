#include "plugin/changes/ChangeSet.h"

#include "plugin/base/Numbers.h"
#include "plugin/base/Text.h"
#include "plugin/changes/Cells.h"

#include <algorithm>
#include <iterator>

namespace planfold {

namespace {

constexpr char kWithoutStamps[] =
    "The file has no column \"As Exported\": what others changed in amount, quantity or periods since it was "
    "exported cannot be told from what is meant here.";

constexpr const char* kStates[] = {"Sent", "Modified", "Refused", "Not sent", "In doubt", "In doubt"};
static_assert(std::size(kStates) == static_cast<std::size_t>(OrderState::count));

// As the book's cells have them: "-1500.00".
std::string InCell(const Change& change, const std::string& value) {
    return value.empty() || change.isByQuantity ? value : InRupees(LeadingInteger(value));
}

// "Amount; Periods" and what stands there, one after the other.
std::string Cells(const Change& change, const std::string& value, const std::string& periods) {
    std::string text = change.ChangesValue() ? value : "";
    if (change.ChangesPeriods()) text += (text.empty() ? "" : "; ") + periods;
    return text;
}

// "Rs 500.00 more"; empty for nothing.
std::string MoreOrLess(std::int64_t paise, std::int64_t shares) {
    const auto word = [](std::int64_t number) { return number > 0 ? " more" : " less"; };
    std::string text = paise ? FormatRupees(paise < 0 ? -paise : paise) + word(paise) : "";
    if (shares)
        text += (text.empty() ? "" : " and ") + GroupedCount(shares < 0 ? -shares : shares) + " shares"
                + word(shares);
    return text;
}

} // namespace

ChangeSet::ChangeSet(const OrderCache& book, ChangeRules rules, std::string file)
    : m_book(book), m_rules(std::move(rules)), m_file(std::make_unique<ChangeFile>(std::move(file))) {
    m_fault = m_file->Fault();
    if (!m_fault.empty()) {
        m_file.reset();
        return;
    }
    if (!m_file->HasStamps()) m_note = kWithoutStamps;
    if (!m_file->OtherColumns().empty())
        m_note += (m_note.empty() ? "" : " ") + std::string("Not read: ") + m_file->OtherColumns() + '.';
}

ChangeSet::ChangeSet(const OrderCache& book, ChangeRules rules, std::span<const std::string> numbers,
                     const StepUp& rule)
    : m_book(book), m_rules(std::move(rules)) {
    for (const std::string& number : numbers) {
        const RecordId id = book.Find(number);
        if (id == kNoRecord) continue;
        ++m_lines;
        const std::string value(book[id].Text(ValueField(book[id]).value_or(OrderField::amount)));
        Change change = Propose(book[id], m_rules, value,
                                std::string(book[id].Text(PeriodsField(book[id], m_rules.serverPeriods))));
        const auto next = rule.Of(LeadingInteger(change.valueBefore));
        if (change.refusal.empty() && change.isByQuantity)
            change.refusal = "Invests by quantity, not by amount";
        if (change.refusal.empty() && !next) change.refusal = "Beyond what an amount can be";
        if (change.refusal.empty()) change = Propose(book[id], m_rules, InRupees(*next), change.periods);
        if (!change.refusal.empty() || change.ChangesValue()) Add(std::move(change));
    }
}

void ChangeSet::Add(Change change) {
    m_changes.push_back(std::move(change));
    m_results.emplace_back();
    m_texts.emplace_back();
    Write(m_changes.size() - 1);
}

bool ChangeSet::Read(std::size_t most) {
    ChangeFile::Row row;
    for (; m_file && most > 0; --most) {
        if (!m_file->Next(row)) {
            m_fault = m_file->Fault();
            m_file.reset();
            RefuseRepeated();
            break;
        }
        ++m_lines;
        m_linesOf[std::string(Restored(*row.cells[OrderField::registrationNumber]))].push_back(row.line);
        auto change = JudgeRow(row, m_file->DecimalComma(), m_file->HasStamps(), m_book, m_rules);
        if (!change) continue;
        change->line = row.line;
        Add(std::move(*change));
    }
    return m_file != nullptr;
}

// Which of its lines is meant nobody can tell.
void ChangeSet::RefuseRepeated() {
    if (!m_fault.empty()) {
        m_changes.clear();
        m_results.clear();
        m_texts.clear();
    }
    for (std::size_t i = 0; i < m_changes.size(); ++i) {
        Change& change = m_changes[i];
        const std::vector<int>& lines = m_linesOf[change.registration];
        if (!change.refusal.empty() || lines.size() < 2) continue;
        change.refusal = Format("The registration is in lines %d and %d", lines[0], lines[1]);
        Write(i);
    }
    m_linesOf.clear();
}

std::size_t ChangeSet::Refused() const {
    return static_cast<std::size_t>(
        std::ranges::count_if(m_changes, [](const Change& change) { return !change.refusal.empty(); }));
}

std::vector<std::size_t> ChangeSet::Sendable() const {
    std::vector<std::size_t> changes;
    for (std::size_t i = 0; i < m_changes.size(); ++i)
        if (m_changes[i].refusal.empty() && m_results[i].state == OrderState::notSent) changes.push_back(i);
    return changes;
}

std::string ChangeSet::WhyStale(std::size_t index) const {
    const Change& change = m_changes[index];
    const RecordId id = m_book.Find(change.registration);
    if (id == kNoRecord) return "No such registration in the book";
    if (std::string why = WhyNot(m_book[id], m_rules); !why.empty()) return why;
    return PrintOf(m_book[id]) == change.print ? "" : "Changed meanwhile";
}

void ChangeSet::JudgeAnew(const ChangeRules& rules) {
    m_rules = rules;
    for (const std::size_t index : Sendable()) {
        Change& change = m_changes[index];
        change.refusal = WhyStale(index);
        const auto wrong = CheckPeriods(rules.periods, change.frequency, change.periods);
        if (change.refusal.empty() && wrong) change.refusal = wrong->text;
        Write(index);
    }
}

std::string ChangeSet::State(std::size_t index) const {
    if (!m_changes[index].refusal.empty()) return "Not possible";
    const ChangeResult& result = m_results[index];
    return result.isTried ? kStates[static_cast<std::size_t>(result.state)] : "To be sent";
}

void ChangeSet::SetResult(std::size_t change, ChangeResult result) {
    m_results[change] = std::move(result);
    Write(change);
}

void ChangeSet::Write(std::size_t index) {
    const Change& change = m_changes[index];
    auto& texts = m_texts[index];
    const std::int64_t more = change.isByQuantity ? 0 : change.More();
    texts[ChangeField::line] = change.line ? Format("%d", change.line) : "";
    texts[ChangeField::state] = State(index);
    texts[ChangeField::registration] = change.registration;
    texts[ChangeField::account] = change.account;
    texts[ChangeField::accountName] = change.accountName;
    texts[ChangeField::tradingSymbol] = change.tradingSymbol;
    texts[ChangeField::side] = change.side;
    texts[ChangeField::columns] = Cells(change, change.isByQuantity ? "Quantity" : "Amount", "Periods");
    texts[ChangeField::before] = Cells(change, InCell(change, change.valueBefore), change.periodsBefore);
    texts[ChangeField::after] =
        Cells(change, change.isAsTyped ? change.value : InCell(change, change.value), change.periods);
    texts[ChangeField::difference] = more ? InRupees(more) : "";
    texts[ChangeField::reason] = change.refusal.empty() ? m_results[index].answer : change.refusal;
}

std::string ChangeSet::Difference(std::span<const std::size_t> changes) const {
    std::array<std::int64_t, 2> paise{}, shares{}; // of purchases and of sales
    std::array<bool, 2> are{};
    for (const std::size_t index : changes) {
        const Change& change = m_changes[index];
        are[change.IsSale()] = true;
        (change.isByQuantity ? shares : paise)[change.IsSale()] += change.More();
    }
    std::string text;
    for (const std::size_t isSale : {0u, 1u}) {
        const std::string more = MoreOrLess(paise[isSale], shares[isSale]);
        if (!are[isSale] || (more.empty() && are[0] && are[1])) continue;
        text += (text.empty() ? "" : ", ") + (more.empty() ? "the same amounts" : more)
                + (isSale ? " a run of sales" : " a run");
    }
    return text;
}

} // namespace planfold
