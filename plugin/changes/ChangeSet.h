// The changes that a file or a step makes of the book: read in portions, listed old beside new with what became
// of each, and summed up.
#pragma once

#include "plugin/changes/ChangeRules.h"
#include "plugin/changes/StepUp.h"
#include "plugin/controls/Lists.h"
#include "plugin/record/OrderLedger.h"

#include <array>
#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace planfold {

enum class ChangeField {
    line,
    state,
    registration,
    account,
    accountName,
    tradingSymbol,
    side,
    columns,
    before,
    after,
    difference,
    reason,
    count
};

using ChangeColumn = ListColumn<ChangeField>;
inline constexpr ChangeColumn kChangeColumns[] = {
    {"Line", 40, ChangeField::line, ValueType::number, Align::right},
    {"State", 75, ChangeField::state},
    {"SIP Registration No", 115, ChangeField::registration, ValueType::identifier},
    {"Client ID", 65, ChangeField::account},
    {"Client Name", 100, ChangeField::accountName},
    {"Trading Symbol", 105, ChangeField::tradingSymbol},
    {"Action", 50, ChangeField::side},
    {"Column", 75, ChangeField::columns},
    {"Old", 80, ChangeField::before, ValueType::text, Align::right},
    {"New", 80, ChangeField::after, ValueType::text, Align::right},
    {"Difference a Run (Rs)", 130, ChangeField::difference, ValueType::amount, Align::right},
    {"Reason", 260, ChangeField::reason},
};

// What became of a change that was sent.
struct ChangeResult {
    OrderState state = OrderState::notSent;
    bool isTried = false;
    std::string answer; // the server's words, or why it was not sent
};

class ChangeSet {
public:
    // What the file says, over the book as it is while it is read. The book outlives this.
    ChangeSet(const OrderCache& book, ChangeRules rules, std::string file);
    // The amounts of these registrations, stepped up.
    ChangeSet(const OrderCache& book, ChangeRules rules, std::span<const std::string> numbers,
              const StepUp& rule);

    // So many lines more. False once all are read.
    bool Read(std::size_t most);
    bool IsRead() const { return !m_file; }
    std::size_t LinesRead() const { return m_lines; }
    // Why the file could not be read, or not to its end: there are no changes then.
    const std::string& Fault() const { return m_fault; }
    // What the file lacks or has too much; empty when there is nothing to say.
    const std::string& Note() const { return m_note; }

    std::span<const Change> Changes() const { return m_changes; }
    const ChangeResult& Result(std::size_t change) const { return m_results[change]; }
    void SetResult(std::size_t change, ChangeResult result);
    std::size_t Unchanged() const { return m_lines - m_changes.size(); }
    std::size_t Refused() const;
    // Those that can be sent and were not.
    std::vector<std::size_t> Sendable() const;
    // The book has changed, or the rules: those that no longer fit are refused.
    void JudgeAnew(const ChangeRules& rules);
    // Why the change cannot be sent any more; empty when it can.
    std::string WhyStale(std::size_t change) const;

    // Valid until the change reads otherwise.
    const std::string& Text(std::size_t change, ChangeField field) const { return m_texts[change][field]; }
    // "Rs 3,40,000.00 more a run" of these; what they are of sales is said apart.
    std::string Difference(std::span<const std::size_t> changes) const;

private:
    void Add(Change change);
    void RefuseRepeated();
    std::string State(std::size_t change) const;
    void Write(std::size_t change);

    const OrderCache& m_book;
    ChangeRules m_rules;
    std::unique_ptr<ChangeFile> m_file;                          // until it is read
    std::unordered_map<std::string, std::vector<int>> m_linesOf; // by registration
    std::vector<Change> m_changes;
    std::vector<ChangeResult> m_results;
    std::vector<ByField<ChangeField, std::string>> m_texts;
    std::size_t m_lines = 0;
    std::string m_fault, m_note;
};

// Of a set as a whole, in ChangeTexts.cpp. What is asked before these of its changes are sent.
std::string QuestionOf(const ChangeSet& set, std::span<const std::size_t> changes);
// For an empty list; there may be no set.
std::string NoticeOf(const ChangeSet* set);
// What can be sent, what cannot or what became of it, and what else there is to say.
std::array<std::string, 3> StatusOf(const ChangeSet* set);

} // namespace planfold
