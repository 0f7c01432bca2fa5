#include "plugin/controls/TypedText.h"

#include "plugin/base/Text.h"
#include "plugin/messaging/HostCallbacks.h"

#include <algorithm>
#include <utility>

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

int TypeAhead::OnCharacter(char character, unsigned timeMs, int selected, const Find& find) {
    if (timeMs - std::exchange(m_lastMs, timeMs) > kPauseMs) m_typed.clear();
    m_typed.push_back(character);
    // A first letter goes on to the next entry; further ones may keep the selected entry.
    if (m_typed.size() == 1) return find(m_typed, selected);
    const int found = find(m_typed, selected > 0 ? selected - 1 : -1);
    const bool oneLetter = std::ranges::count(m_typed, character) == std::ssize(m_typed);
    return found < 0 && oneLetter ? find(std::string(1, character), selected) : found;
}

bool MayBeTyped(char32_t typed, std::string_view allowed) {
    constexpr std::string_view controlCodes("\x03\x08\x16\x18"); // copy, backspace, paste, cut
    if (allowed.empty()) return true;
    const char c = static_cast<char>(typed);
    return typed < 0x80 && (allowed.find(c) != allowed.npos || controlCodes.find(c) != controlCodes.npos);
}

std::string CleanValueText(std::string_view text) {
    std::string clean;
    bool point = false;
    for (const char c : text) {
        const bool firstPoint = c == '.' && !point;
        point = point || firstPoint;
        if (firstPoint || (c >= '0' && c <= '9')) clean += c;
    }
    return clean;
}

} // namespace planfold
