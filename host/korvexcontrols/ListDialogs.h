// What the list's own boxes have in common: they belong to the list, stand where they stood last, and take
// their keys inside a message loop that knows nothing of dialogs.
#pragma once

#include "framework/Colours.h"
#include "framework/Dialog.h"
#include "framework/KeyboardHook.h"
#include "framework/RunProgressDlg.h"
#include "host/korvexcontrols/model/ColumnFilter.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace korvex {

class CQVDialog : public framework::Dialog {
public:
    // `owner` is kept alive while a message is handled; `name` is the one that the place is remembered under.
    CQVDialog(std::weak_ptr<void> owner, int resource, std::string name);

protected:
    std::shared_ptr<void> Hold() override { return m_owner.lock(); }
    void OnInit() override;
    void OnDestroyed() override;
    std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

    // Opens above the window that the list lies in; a box that is open already comes to the front.
    void Open(HWND list);

private:
    std::weak_ptr<void> m_owner;
    std::string m_name;
    std::optional<framework::KeyboardHook> m_keys;
};

// Asks for the filter of one column.
class FilterDialog final : public CQVDialog {
public:
    struct Column {
        std::string heading;
        ValueType type, content;
        std::optional<FilterInput> now;
    };
    struct Calls {
        std::function<Column(std::int32_t)> about;
        // The filter that was chosen; null when there is to be none.
        std::function<void(std::int32_t, const FilterInput*)> chosen;
    };

    FilterDialog(std::weak_ptr<void> owner, Calls calls);

    // The box is not modal: it goes with the list's window. Without a current column (-1) it asks for that
    // first.
    void Ask(HWND list, std::vector<std::int32_t> columns, std::int32_t current);

private:
    void OnInit() override;
    bool OnCommand(const framework::Command& command) override;
    void ShowColumn();
    void ShowValues() const;
    FilterInput Read() const;
    void Tell(const std::string& fault, int id);
    void Accept();
    void Finish(const FilterInput* input);

    Calls m_calls;
    std::vector<std::int32_t> m_columns;
    std::int32_t m_current = -1;
    Column m_column;
    framework::ColorStatic m_fault;
};

// Asks for the name of a view.
class ViewDialog final : public CQVDialog {
public:
    using Named = std::function<void(const std::string& name)>;

    ViewDialog(std::weak_ptr<void> owner, Named named);

    void Show(HWND list, const std::string& name);

private:
    void OnInit() override;
    bool OnCommand(const framework::Command& command) override;

    Named m_named;
    std::string m_name;
};

// Looks for a text in the list.
class FindDialog final : public CQVDialog {
public:
    // Goes to the next row with the text, or the one before; false when there is none.
    using Step = std::function<bool(const std::string& text, bool forward)>;

    FindDialog(std::weak_ptr<void> owner, Step step);

    void Show(HWND list, const std::string& text);
    // Goes out of the way of a place of the screen.
    void Uncover(const RECT& place) const;

private:
    void OnInit() override;
    bool OnCommand(const framework::Command& command) override;

    Step m_step;
    std::string m_text;
};

// How far rows have gone out. The list can be worked in meanwhile.
class OutputProgress final : public framework::RunProgressDlg {
public:
    OutputProgress(std::weak_ptr<void> owner, base::LongRun& run);

private:
    std::shared_ptr<void> Hold() override { return m_owner.lock(); }

    std::weak_ptr<void> m_owner;
};

} // namespace korvex
