#include "plugin/controls/AutoComplete.h"

#include "plugin/base/Text.h"
#include "plugin/messaging/HostCallbacks.h"

#include <algorithm>

namespace planfold {

namespace {

constexpr int kTicks = 3;
constexpr int kUsualDelayMs = 3000;

} // namespace

void AutoComplete::OnTyped() {
    const std::string text = m_view.TypedText();
    if (text.empty()) return;
    for (const std::string& entry : m_view.Entries())
        if (StartsWithIgnoringCase(entry, text)) return m_view.ShowCompletion(entry, text.size());
}

void AutoComplete::OnChanged() {
    if (m_ticksLeft == 0) m_view.StartTimer();
    m_ticksLeft = kTicks;
}

void AutoComplete::OnTimer() {
    if (m_ticksLeft == 0 || --m_ticksLeft > 0) return;
    m_view.StopTimer();
    Search();
}

void AutoComplete::Forget() {
    if (m_ticksLeft > 0) m_view.StopTimer();
    m_ticksLeft = 0;
}

void AutoComplete::Search() {
    const std::string text = m_view.TypedText();
    const std::vector<std::string> entries = m_view.Entries();
    for (std::size_t i = 0; i < entries.size(); ++i)
        if (EqualsIgnoringCase(entries[i], text)) return m_view.PickEntry(static_cast<int>(i));
}

unsigned SearchTimerPeriod(Pass pass, const HostCallbacks& host) {
    // The first call only asks whether there is one.
    const bool given = host.pu_get_client_search_time && host.pu_get_client_search_time(pass) != 0;
    const int delayMs = given ? host.pu_get_client_search_time(pass) : kUsualDelayMs;
    return static_cast<unsigned>(std::max(delayMs / kTicks, 1));
}

} // namespace planfold
