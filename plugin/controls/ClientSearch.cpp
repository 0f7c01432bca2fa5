#include "plugin/controls/ClientSearch.h"

#include "plugin/base/Numbers.h"
#include "plugin/base/Text.h"

#include <algorithm>
#include <cstring>

namespace planfold {

namespace {

constexpr std::string_view kSettingsSection = "Client_Search_Settings";
constexpr int kMostMatchedRows = 10000; // from here on no row is looked for
constexpr int kPageRows = 10;

std::string UpperCase(std::string text) {
    for (char& c : text)
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    return text;
}

bool IsBlank(std::string_view text) {
    return text.find_first_not_of(" \t\r\n") == text.npos;
}

} // namespace

void ClientResults::Assign(const ClientResult* results, int count) {
    Clear();
    if (!results || count < 1) return;
    const auto rows = static_cast<std::size_t>(count);
    std::vector<std::size_t> lengths(rows * 2);
    std::size_t bytes = 0;
    for (std::size_t i = 0; i < rows; ++i) {
        lengths[2 * i] = results[i].clientId ? std::strlen(results[i].clientId) : 0;
        lengths[2 * i + 1] = results[i].clientName ? std::strlen(results[i].clientName) : 0;
        bytes += lengths[2 * i] + lengths[2 * i + 1] + 2;
    }
    m_texts.reserve(bytes);
    m_rows.reserve(rows);
    const auto keep = [&](const char* text, std::size_t length) {
        const std::size_t at = m_texts.size();
        if (length) m_texts.append(text, length);
        m_texts += '\0';
        return m_texts.data() + at; // reserved: the texts no longer move
    };
    for (std::size_t i = 0; i < rows; ++i) {
        const char* clientId = keep(results[i].clientId, lengths[2 * i]);
        m_rows.push_back({clientId, keep(results[i].clientName, lengths[2 * i + 1])});
    }
}

void ClientResults::Clear() {
    m_rows.clear();
    m_texts.clear();
}

void ClientSearch::SetUp(Pass pass, std::string settingsKey) {
    m_life.Renew();
    m_settingsKey = std::move(settingsKey);
    m_mode = SearchMode::all;
    m_results.Clear();
    m_pending = m_listShown = false;
    m_selected = -1;
    if (!m_session.host.pu_read_settings_from_json) return;
    const CString section = m_session.String(kSettingsSection);
    const CString key = m_session.String(m_settingsKey);
    CString kept = m_session.String();
    m_session.host.pu_read_settings_from_json(pass, &section, &key, &kept, 1);
    for (const SearchMode mode : {SearchMode::clientId, SearchMode::clientName})
        if (LeadingInteger(kept.View()) == static_cast<int>(mode)) m_mode = mode;
}

void ClientSearch::SetMode(SearchMode mode) {
    m_mode = mode;
    const auto write = m_session.host.pu_write_settings_to_json;
    if (!write) return;
    const CString section = m_session.String(kSettingsSection);
    const CString key = m_session.String(m_settingsKey);
    const CString value = m_session.String(std::to_string(static_cast<int>(mode)));
    Lifetime::Last([&](Pass pass) { write(pass, &section, &key, &value, 1); });
}

void ClientSearch::OnTyped() {
    m_view.SetTip({});
    m_pending = !m_view.SearchText().empty();
    if (m_pending) {
        m_view.StartDelay();
    } else {
        m_view.StopDelay();
        HideList();
    }
}

bool ClientSearch::Wants(Key key) const {
    switch (key) {
    case Key::enter:
        return m_listShown || m_pending;
    case Key::down:
        return true;
    default:
        return m_listShown;
    }
}

void ClientSearch::OnKey(Key key) {
    if (!Wants(key)) return;
    if (key == Key::escape) return HideList();
    const bool searches = !m_listShown || m_pending;
    if (searches && (key == Key::enter || key == Key::down)) return Search();
    switch (key) {
    case Key::enter:
        // Many matches and none chosen: the first is only shown, a second Enter takes it.
        return m_selected >= 0 || m_results.Count() == 1 ? Pick(std::max(m_selected, 0)) : MoveSelection(1);
    case Key::down:
        return MoveSelection(1);
    case Key::up:
        return MoveSelection(-1);
    case Key::pageDown:
        return MoveSelection(kPageRows);
    default:
        return MoveSelection(-kPageRows);
    }
}

void ClientSearch::OnFocusLost() {
    m_view.StopDelay();
    HideList();
}

bool ClientSearch::IsValidAccount(Pass pass, const std::string& text) const {
    if (!m_session.host.pu_is_valid_account) return false;
    const CString account = m_session.String(text);
    return m_session.host.pu_is_valid_account(pass, &account) != 0;
}

void ClientSearch::Search() {
    m_view.StopDelay();
    m_pending = false;
    const std::string upper = UpperCase(m_view.SearchText());
    std::string asked = upper;
    const Reply account = m_life.Across([&](Pass pass) { return IsValidAccount(pass, upper); });
    if (account == Reply::over) return;
    const bool isAccount = account == Reply::yes;
    if (isAccount) asked += '(';
    m_view.SetTip({});
    m_results.Clear();
    if (m_session.host.pu_get_entered_text_results) {
        const CString text = m_session.String(asked);
        int count = 0;
        const auto found = m_life.Across([&](Pass pass) {
            return m_session.host.pu_get_entered_text_results(pass, static_cast<int>(m_mode), &count, &text, 1);
        });
        if (!found) return;
        m_results.Assign(*found, count);
    }
    if (m_results.Count() > 0) {
        ShowList(upper, isAccount);
        if (!IsBlank(asked)) return;
    } else {
        HideList();
    }
    m_view.SetSearchText({});
}

void ClientSearch::ShowList(const std::string& upperText, bool isAccount) {
    m_selected = -1;
    if (m_results.Count() < kMostMatchedRows && isAccount) {
        for (int row = 0; row < m_results.Count() && m_selected < 0; ++row)
            if (UpperCase(m_results.Row(row).clientId) == upperText) m_selected = row;
        if (m_selected < 0) {
            m_view.SetSearchText({});
            return HideList();
        }
    }
    m_listShown = true;
    m_view.ShowResults(m_results.Count(), m_selected);
}

void ClientSearch::Forget() {
    m_pending = false;
    m_view.StopDelay();
    HideList();
}

void ClientSearch::HideList() {
    if (!m_listShown) return;
    m_listShown = false;
    m_selected = -1;
    m_view.HideResults();
}

void ClientSearch::MoveSelection(int by) {
    const int last = m_results.Count() - 1;
    m_selected = m_selected < 0 ? (by > 0 ? 0 : last) : std::clamp(m_selected + by, 0, last);
    m_view.SelectResult(m_selected);
}

void ClientSearch::Pick(int row) {
    if (row < 0 || row >= m_results.Count()) return;
    // A copy: the parent may search again while it is told.
    const std::string clientId = m_results.Row(row).clientId;
    const std::string clientName = m_results.Row(row).clientName;
    HideList();
    m_view.SetSearchText(clientId);
    m_view.SelectSearchText();
    m_view.SetTip(Format("%s(%s)", clientId.c_str(), clientName.c_str()));
    m_view.TellPicked({clientId.c_str(), clientName.c_str()});
}

} // namespace planfold
