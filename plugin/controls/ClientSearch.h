// The client search: what the host is asked, what the list shows, and what keys and picks do. The box and its
// pop-up list are the view.
#pragma once

#include "plugin/messaging/Session.h"
#include "sdk/HostRecords.h"

#include <string>
#include <string_view>
#include <vector>

namespace planfold {

enum class SearchMode : int { all = 1, clientId = 2, clientName = 3 };

// A copy of the host's matches, which the host reuses at its next search.
class ClientResults {
public:
    ClientResults() = default;
    ClientResults(const ClientResults&) = delete;
    ClientResults& operator=(const ClientResults&) = delete;

    // Takes nothing from a null array or a count below 1; null texts read as empty.
    void Assign(const ClientResult* results, int count);
    void Clear();
    int Count() const { return static_cast<int>(m_rows.size()); }
    // Texts live until the next Assign or Clear.
    const ClientResult& Row(int row) const { return m_rows.at(static_cast<std::size_t>(row)); }

private:
    std::string m_texts; // all of them, zero-terminated
    std::vector<ClientResult> m_rows;
};

class ClientSearchView {
public:
    // False once the window is gone.
    virtual bool HasBox() const = 0;
    virtual std::string SearchText() const = 0;
    // The box's own change: it starts no search.
    virtual void SetSearchText(std::string_view text) = 0;
    virtual void SelectSearchText() = 0;
    // Empty removes it.
    virtual void SetTip(std::string_view text) = 0;
    // The pop-up under the box with that many rows; `selected` is -1 for none.
    virtual void ShowResults(int count, int selected) = 0;
    virtual void SelectResult(int row) = 0;
    virtual void HideResults() = 0;
    // Restarted by every call; ends in ClientSearch::OnDelayElapsed.
    virtual void StartDelay() = 0;
    virtual void StopDelay() = 0;
    virtual void TellPicked(const ClientResult& result) = 0;

protected:
    ~ClientSearchView() = default;
};

class ClientSearch {
public:
    enum class Key { up, down, pageUp, pageDown, enter, escape };

    ClientSearch(Session& session, ClientSearchView& view) : m_session(session), m_view(view) {}

    // For a box that has just been made: reads its kept mode by this settings key.
    void SetUp(Pass pass, std::string settingsKey);
    SearchMode Mode() const { return m_mode; }
    // Keeps it.
    void SetMode(SearchMode mode);

    void OnTyped();
    void OnDelayElapsed() { Search(); }
    // Whether the key is the search's; otherwise it is the dialog's. Asked before it is pressed, too.
    bool Wants(Key key) const;
    void OnKey(Key key);
    // What was typed stays to be searched on return, by Enter or Down.
    void OnFocusLost();
    void HideList();
    // What was typed is no longer to be searched for.
    void Forget();

    void Search();
    void Pick(int row);
    // The list tells which row the user selected.
    void OnSelected(int row) { m_selected = row; }
    const ClientResults& Results() const { return m_results; }

private:
    bool IsValidAccount(Pass pass, const std::string& text) const;
    void ShowList(const std::string& upperText, bool isAccount);
    void MoveSelection(int by);

    Session& m_session;
    ClientSearchView& m_view;
    Lifetime m_life{[this] { return m_view.HasBox(); }}; // of the box
    std::string m_settingsKey;
    SearchMode m_mode = SearchMode::all;
    ClientResults m_results;
    bool m_pending = false; // typed since the last search
    bool m_listShown = false;
    int m_selected = -1;
};

} // namespace planfold
