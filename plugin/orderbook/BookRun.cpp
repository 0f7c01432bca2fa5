#include "plugin/orderbook/BookRun.h"

#include "plugin/base/Text.h"

#include <map>

namespace planfold {

namespace {

// A box stays readable.
constexpr std::size_t kMostLines = 30;

struct Words {
    const char* doing;
    const char* noun;
};
// The rows are in the order of RunKind.
constexpr Words kWords[] = {
    {"Cancelling", "Cancel"}, {"Pausing", "Pause"}, {"Resuming", "Resume"}, {"Modifying", "Modify"}};

const Words& WordsOf(RunKind kind) {
    return kWords[static_cast<std::size_t>(kind)];
}

// A change's answer stands behind the name of its request.
std::string AnswerOf(const RecordedOrder& order) {
    constexpr std::string_view refused = "Refused: ";
    std::string_view text = order.Text(RecordField::text);
    const std::size_t start = text.find(": ");
    text = start == text.npos ? std::string_view() : text.substr(start + 2);
    if (text.starts_with(refused)) text.remove_prefix(refused.size());
    if (text.ends_with('.')) text.remove_suffix(1);
    return std::string(text);
}

std::string NameOf(const BookRun::Row& row) {
    return row.number + (row.client.empty() ? "" : " ") + row.client;
}

void AddLine(std::string& text, std::string_view line) {
    text.append(text.empty() ? "" : "\n").append(line);
}

} // namespace

std::string DescribeRefused(const BookRun::Row& row) {
    return NameOf(row) + ": " + row.refusal;
}

void BookRun::Enter(std::span<const OrderPlace> places) {
    for (const OrderPlace place : places) {
        m_byPlace[place] = m_places.size();
        m_rows[m_places.size()].state = OrderState::sent;
        m_places.push_back(place);
    }
    m_sent += places.size();
}

void BookRun::Settle(OrderPlace place, const RecordedOrder& order) {
    const auto known = m_byPlace.find(place);
    if (known == m_byPlace.end()) return;
    Row& row = m_rows[known->second];
    m_sent -= row.state == OrderState::sent;
    row.state = order.State();
    m_sent += row.state == OrderState::sent;
    row.refusal = row.state == OrderState::refused ? AnswerOf(order) : "";
}

OrderPlace BookRun::FirstWaiting() {
    while (m_firstWaiting < m_places.size() && m_rows[m_firstWaiting].state != OrderState::sent)
        ++m_firstWaiting;
    return m_firstWaiting < m_places.size() ? m_places[m_firstWaiting] : kNoOrder;
}

std::size_t BookRun::Count(OrderState state) const {
    if (state == OrderState::sent) return m_sent;
    return static_cast<std::size_t>(std::ranges::count(m_rows, state, &Row::state));
}

std::vector<OrderPlace> BookRun::InDoubt() const {
    std::vector<OrderPlace> places;
    for (std::size_t row = 0; row < m_places.size(); ++row)
        if (m_rows[row].state == OrderState::inDoubt) places.push_back(m_places[row]);
    return places;
}

// The dealer was told of his one row as of any other.
bool BookRun::IsPlain() const {
    return m_rows.size() == 1 && m_kind == RunKind::cancel
           && (m_rows[0].state == OrderState::done || m_rows[0].state == OrderState::notSent);
}

std::string BookRun::Numbers() const {
    const std::size_t notSent = Count(OrderState::notSent);
    std::string text = Format("%s: %zu of %zu requests were sent%s.", WordsOf(m_kind).noun,
                              m_rows.size() - notSent, m_rows.size(), m_stopped ? ", then it was stopped" : "");
    if (notSent < m_rows.size()) text += Format("\nThe server confirmed %zu", Count(OrderState::done));
    if (const std::size_t refused = Count(OrderState::refused)) text += Format(" and refused %zu", refused);
    if (notSent < m_rows.size()) text += ".";
    if (const std::size_t inDoubt = Count(OrderState::inDoubt) + Count(OrderState::absent))
        text += Format("\nIn doubt: %zu, to which no answer came.", inDoubt);
    if (notSent) text += Format("\nNot sent: %zu.", notSent);
    return text;
}

// The first of them, by what the server says, which often is the same.
std::string BookRun::Refusals() const {
    std::map<std::string_view, std::string> byReason;
    std::size_t refused = 0;
    for (const Row& row : m_rows) {
        if (row.state != OrderState::refused || ++refused > kMostLines) continue;
        std::string& names = byReason[row.refusal];
        names.append(names.empty() ? "" : ", ").append(NameOf(row));
    }
    std::string text = refused ? "\n\nRefused:" : "";
    for (const auto& [reason, names] : byReason)
        text.append("\n").append(reason).append(": ").append(names);
    if (refused > kMostLines) text += Format("\n... and %zu more", refused - kMostLines);
    return text;
}

std::string BookRun::Summary(bool isRecorded) const {
    const std::size_t refused = Count(OrderState::refused);
    // Refusals come first when there is not room for all.
    const std::size_t room = kMostLines - std::min(refused, kMostLines);
    std::string text;
    for (std::size_t i = 0; i < std::min(room, m_done.size()); ++i)
        AddLine(text, m_done[i]);
    if (room && m_done.size() > room) text += Format("\n... and %zu more", m_done.size() - room);
    if (const std::string failures = m_failures.Text(); !failures.empty()) AddLine(text, failures);
    if (IsPlain()) return text;
    if (!text.empty()) text += '\n';
    AddLine(text, Numbers());
    text += Refusals();
    if (isRecorded && refused + Count(OrderState::inDoubt) > 0)
        text += "\n\nAll of them: \"Orders of a Day...\" in the menu of the list.";
    return text;
}

std::string BookRun::Progress() const {
    const char* doing = WordsOf(m_kind).doing;
    if (AllTried()) return Format("%s: waiting for %zu answer%s", doing, m_sent, m_sent == 1 ? "" : "s");
    return Format("%s %zu of %zu", doing, m_next, m_rows.size());
}

} // namespace planfold
