#include "plugin/orderbook/BookRun.h"

#include "plugin/base/Text.h"

namespace planfold {

namespace {

struct Words {
    const char* doing;
    const char* noun;
};
// The rows are in the order of RunKind.
constexpr Words kWords[] = {{"Cancelling", "Cancel"}, {"Pausing", "Pause"}, {"Resuming", "Resume"}};

const Words& WordsOf(RunKind kind) {
    return kWords[static_cast<std::size_t>(kind)];
}

} // namespace

std::string BookRun::Summary() const {
    std::string text = Format("%s: %zu of %zu requests were sent%s.", WordsOf(m_kind).noun, m_sent,
                              m_records.size(), m_stopped ? ", then it was stopped" : "");
    if (m_confirmed + m_refused == 0) return text;
    text += Format("\nThe server confirmed %zu", m_confirmed);
    if (m_refused) text += Format(" and refused %zu (see the log)", m_refused);
    return text + ".";
}

std::string BookRun::Progress() const {
    return Format("%s %zu of %zu", WordsOf(m_kind).doing, m_next, m_records.size());
}

} // namespace planfold
