// What the list's own boxes have in common: they belong to the list, stand where they stood last, and take
// their keys inside a message loop that knows nothing of dialogs.
#pragma once

#include "framework/Colours.h"
#include "framework/Dialog.h"
#include "framework/KeyboardHook.h"
#include "host/korvexcontrols/model/ColumnFilter.h"

#include <functional>
#include <optional>
#include <string>

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
    void Place() const;
    void RememberPlace() const;

    std::weak_ptr<void> m_owner;
    std::string m_name;
    std::optional<framework::KeyboardHook> m_keys;
};

// Asks for the filter of one column.
class FilterDialog final : public CQVDialog {
public:
    // The filter that was chosen; null when there is to be none.
    using Chosen = std::function<void(const FilterInput*)>;

    FilterDialog(std::weak_ptr<void> owner);

    // The box is not modal: it goes with the list's window.
    void Ask(HWND list, const std::string& heading, ValueType type, const FilterInput* now, Chosen chosen);

private:
    void OnInit() override;
    bool OnCommand(const framework::Command& command) override;
    void ShowSecond() const;
    FilterInput Read() const;
    void Accept();
    void Finish(const FilterInput* input);

    std::string m_heading;
    ValueType m_type = ValueType::text;
    std::optional<FilterInput> m_now;
    Chosen m_chosen;
    framework::ColorStatic m_fault;
};

// Looks for a text in the list.
class FindDialog final : public CQVDialog {
public:
    // Goes to the next row with the text, or the one before; false when there is none.
    using Step = std::function<bool(const std::string& text, bool forward)>;

    FindDialog(std::weak_ptr<void> owner, Step step);

    void Show(HWND list, const std::string& text);

private:
    void OnInit() override;
    bool OnCommand(const framework::Command& command) override;

    Step m_step;
    std::string m_text;
};

} // namespace korvex
