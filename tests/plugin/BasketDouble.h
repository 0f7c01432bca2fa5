// The basket without its window.
#pragma once

#include "plugin/basket/Basket.h"
#include "plugin/resources/resource.h"
#include "tests/plugin/Doubles.h"

#include <algorithm>
#include <utility>

namespace planfold::test {

class BasketListDouble final : public BasketList {
public:
    std::size_t RowCount() const override { return rows.size(); }
    std::size_t ShownCount() const override { return rows.size() - hidden; }
    RecordId RecordAt(std::size_t row) const override { return rows.at(row); }
    std::size_t IndexOf(RecordId record) const override {
        return static_cast<std::size_t>(std::ranges::find(rows, record) - rows.begin());
    }
    void InsertFront(RecordId record) override { rows.insert(rows.begin(), record); }
    void Repaint(RecordId) override {}
    void Remove(RecordId record) override { std::erase(rows, record); }
    void RemoveAll() override { rows.clear(); }
    void BeginChanges() override { ++changes; }
    void EndChanges() override { --changes; }
    std::vector<RecordId> Selected() const override { return selected; }
    RecordId FirstSelected() const override { return selected.empty() ? kNoRecord : selected.front(); }
    void RemoveSelected() override {
        for (const RecordId record : std::exchange(selected, {}))
            Remove(record);
    }

    std::vector<RecordId> rows; // the newest first
    std::vector<RecordId> selected;
    std::size_t hidden = 0;
    int changes = 0; // begun and not ended
};

class UnsentDouble final : public UnsentFile {
public:
    std::optional<std::string> Read() override { return text.empty() ? std::nullopt : std::optional(text); }
    std::string Replace(std::string_view now) override {
        if (!writable) return "disk full";
        text = now;
        written.push_back(text);
        return {};
    }
    std::string SaveAside(std::string_view saved, const LocalDateTime&) override {
        if (!writable) return {};
        aside.emplace_back(saved);
        return "aside.csv";
    }

    std::string text;
    Texts written, aside;
    bool writable = true;
};

class BasketDouble : public DialogDoubleOf<BasketView> {
public:
    BasketDouble() {
        controls[IDC_SERIES].items = {"BE", "EQ"};
        controls[IDC_SYMBOL].items = {"ARBORTEX", "BYTEFIN"};
        controls[IDC_CLIENT_COMBO].items = {"C001", "C002"};
        controls[IDC_HOST_PRODUCTS].items = {"CNC", "MIS"};
    }

    BasketList& List() override { return list; }
    std::string Title() const override { return title; }
    void SetTitle(std::string_view text) override {
        titles.emplace_back(text);
        title = text;
    }
    bool MayAsk() override { return !otherBox; }
    bool Ask(Pass, std::string_view question) override {
        questions.emplace_back(question);
        if (const auto action = std::exchange(duringQuestion, nullptr)) action();
        return yes;
    }
    Choice Choose(Pass pass, std::string_view question) override {
        Ask(pass, question);
        return choice;
    }
    UnsentFile& Unsent() override { return unsent; }
    std::optional<std::string> AskLoadPath(Pass) override {
        if (const auto action = std::exchange(duringLoadQuestion, nullptr)) action();
        return path;
    }
    std::optional<std::string> AskExportPath(Pass) override { return path; }
    std::optional<std::string> AskRejectsPath(Pass) override { return path; }
    std::optional<ImportChoice> AskImport(Pass, const BasketRules&) override {
        return import ? std::optional(ImportChoice{"branch.csv", import}) : std::nullopt;
    }
    std::optional<std::string> ReadFile(const std::string& name) override {
        const auto file = files.find(name);
        return file == files.end() ? std::nullopt : std::optional(file->second);
    }
    bool WriteFileWhole(const std::string& name, std::string_view text) override {
        if (writable) files[name] = text;
        return writable;
    }
    std::string DeskLimit(const std::string& key) override { return limits[key]; }
    void ShowWaiting(bool on) override { waiting += on ? 1 : -1; }
    void ShowStatusSoon() override {}
    void ShowStatus() override {}
    void ShowPanel() override {}
    void ShowRun() override {}
    LocalDateTime Now() const override { return now; }
    // Each look costs a step.
    std::int64_t Milliseconds() const override { return clock += clockStep; }

    BasketListDouble list;
    Texts questions, titles;
    bool yes = true, otherBox = false;
    Choice choice = Choice::yes;
    UnsentDouble unsent;
    std::function<void()> duringQuestion, duringLoadQuestion; // run once
    std::optional<std::string> path = "basket.csv";
    std::map<std::string, std::string> files, limits;
    BeginReading import; // none: the user chooses no file
    bool writable = true;
    int waiting = 0;
    LocalDateTime now{2027, 1, 31, 15, 30, 0};
    mutable std::int64_t clock = 0;
    std::int64_t clockStep = 0;
};

} // namespace planfold::test
