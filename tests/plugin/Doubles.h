// What stands around the plug-in's core besides the host: texts that would be boxes, the dialog, failing calls
// of the connection library, and a session over all of it.
#pragma once

#include "plugin/controls/ClientSearch.h"
#include "plugin/controls/DialogView.h"
#include "plugin/history/OrderHistory.h"
#include "plugin/orderentry/OrderEntry.h"
#include "tests/support/FakeHost.h"

#include <utility>
#include <vector>

namespace planfold::test {

// Texts that would be message boxes.
class RecordedNotices : public Notices {
public:
    void ShowMessage(Pass, std::string_view text) override { shown.emplace_back(text); }

    Texts shown;
};

// A dialog without a window.
template <class View>
class DialogDoubleOf : public View {
public:
    struct Control {
        std::string text;
        Texts items;
        int selected = -1;
        bool shown = true;
        bool enabled = true;
        bool digitsOnly = false;
    };

    void ShowMessage(Pass, std::string_view text) override {
        boxes.emplace_back(text);
        if (const auto action = std::exchange(duringBox, nullptr)) action();
    }
    HostWindow Handle() const override { return nullptr; }
    bool IsOpen() const override { return !closed; }
    void SetTitle(std::string_view text) override { title = text; }
    void Close() override { closed = true; }

    bool Has(int id) const override { return !lacking.contains(id); }
    std::string Text(int id) const override {
        const Control& control = controls[id];
        return control.selected >= 0 ? control.items.at(static_cast<std::size_t>(control.selected))
                                     : control.text;
    }
    void SetText(int id, std::string_view text) override { controls[id].text = text; }
    void SetTexts(std::span<const ControlText> texts) override {
        for (const ControlText& row : texts)
            SetText(row.control, row.text);
    }
    void Show(int id, bool shown) override { controls[id].shown = shown; }
    void Enable(int id, bool enabled) override { controls[id].enabled = enabled; }
    void Focus(int id) override { focused = id; }
    void SetDigitsOnly(int id, bool on) override { controls[id].digitsOnly = on; }
    Texts Items(int id) const override { return controls[id].items; }
    void ClearItems(int id) override {
        controls[id].items.clear();
        controls[id].selected = -1;
    }
    void AddItem(int id, std::string_view text) override { controls[id].items.emplace_back(text); }
    void Select(int id, int index) override {
        Control& control = controls[id];
        control.selected = index < static_cast<int>(control.items.size()) ? index : -1;
    }
    bool SelectText(int id, std::string_view text) override {
        Control& control = controls[id];
        for (std::size_t i = 0; i < control.items.size(); ++i)
            if (control.items[i] == text) {
                control.selected = static_cast<int>(i);
                return true;
            }
        return false;
    }
    LocalDateTime Date(int) const override { return date; }
    void SetDate(int, const LocalDateTime& value) override { date = value; }

    mutable std::map<int, Control> controls;
    std::set<int> lacking; // controls that the dialog does not have
    Texts boxes;
    std::function<void()> duringBox; // run once
    std::string title;
    LocalDateTime date;
    int focused = 0;
    bool closed = false;
};
using DialogDouble = DialogDoubleOf<DialogView>;

// A client search without its box and list.
class SearchDouble : public ClientSearchView {
public:
    bool HasBox() const override { return true; }
    std::string SearchText() const override { return text; }
    void SetSearchText(std::string_view value) override { text = value; }
    void SelectSearchText() override { textSelected = true; }
    void SetTip(std::string_view value) override { tip = value; }
    void ShowResults(int count, int row) override {
        rows = count;
        selected = row;
    }
    void SelectResult(int row) override { selected = row; }
    void HideResults() override { rows = 0; }
    void StartDelay() override { delayed = true; }
    void StopDelay() override { delayed = false; }
    void TellPicked(const ClientResult& result) override { picked = result.clientId; }

    std::string text, tip, picked;
    int rows = 0, selected = -1; // rows of the list; 0 while it is hidden
    bool delayed = false, textSelected = false;
};

class HistoryDouble : public HistoryView {
public:
    void ShowMessage(Pass, std::string_view text) override { boxes.emplace_back(text); }
    void OnRecordChanged() override {}
    void ListRecords() override {
        ++listings;
        focused = !history || history->Records().empty() ? std::nullopt : std::optional<std::size_t>(0);
    }
    std::optional<std::size_t> FocusedRecord() const override { return focused; }
    void ShowDetails(const HistoryDetails&, const std::string&) override {}
    void Show(bool on) override { shown = on; }

    const OrderHistory* history = nullptr; // the first of whose orders is focused when they are listed
    Texts boxes;
    std::optional<std::size_t> focused;
    int listings = 0;
    bool shown = false;
};

class OrderEntryDouble final : public DialogDoubleOf<OrderEntryView> {
public:
    bool MayAsk() override { return !otherBox; }
    bool Ask(Pass, std::string_view question) override {
        questions.emplace_back(question);
        if (const auto action = std::exchange(duringQuestion, nullptr)) action();
        return yes;
    }
    void ShowPlanSoon() override {}
    void ShowSummary(std::string_view text, bool alarming) override {
        summary = text;
        alarms = alarming;
    }
    std::int64_t Milliseconds() const override { return now; }

    Texts questions;
    bool yes = true, otherBox = false;
    std::function<void()> duringQuestion; // run once
    std::string summary;
    bool alarms = false;
    std::int64_t now = 0;
};

// A session with a host; the peers as they are after the check of the host.
struct Stage {
    Stage() {
        host.peerA = "BROKER";
        host.peerB = "BRANCH";
        session.host = ResolveHostCallbacks(session.lookup);
        session.OpenHandles(kPass, notices);
    }

    FakeHost host;
    RecordedNotices notices;
    FakeControl control{host};
    Session session{host.Lookup(), host.IdentityStrings(), host.strings, host.record};
};

// Lets the n-th call (from 1) of a connection library function fail while it lives.
class FailQmxCall {
public:
    enum Function { openScratch, ctorPrimeCb, startMsg, addData, functionCount };

    FailQmxCall(Function function, int call);
    FailQmxCall(const FailQmxCall&) = delete;
    FailQmxCall& operator=(const FailQmxCall&) = delete;
    ~FailQmxCall();
};

} // namespace planfold::test
