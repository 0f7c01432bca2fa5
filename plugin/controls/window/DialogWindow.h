// The base of the plug-in's dialogs: a dialog of the framework that is also the view which the code that
// decides talks to. Its message boxes go through the plug-in's one queue.
#pragma once

#include "framework/Dialog.h"
#include "framework/MessageBoxes.h"
#include "plugin/controls/DialogView.h"

namespace planfold {

LocalDateTime FromSystemTime(const SYSTEMTIME& time);
SYSTEMTIME ToSystemTime(const LocalDateTime& local);
LocalDateTime LocalNow();
// The entry that equals the text, ignoring case. False, and nothing changed, when there is none.
bool SelectEntry(framework::ComboBox combo, std::string_view text);
// Makes the window unless there is one, and shows it in front of the others, or what it waits for: then, and
// without a window, false.
bool BringUp(framework::Dialog& dialog, const Session& session);

// `View` is DialogView or what a window adds to it.
template <class View>
class DialogWindowOf : public framework::Dialog, public View {
public:
    DialogWindowOf(HINSTANCE module, int resource, framework::MessageBoxes& boxes)
        : Dialog(module, resource), m_boxes(boxes) {}

    void ShowMessage(Pass, std::string_view text) override { m_boxes.Show(Dialog::Handle(), text); }

    HostWindow Handle() const override { return Dialog::Handle(); }
    bool IsOpen() const override { return HasWindow(); }
    void SetTitle(std::string_view text) override { Self().SetText(std::string(text)); }
    void Close() override { Destroy(); }

    bool Has(int control) const override { return static_cast<bool>(Item(control)); }
    std::string Text(int control) const override { return Item(control).Text(); }
    void SetText(int control, std::string_view text) override { Item(control).SetText(std::string(text)); }
    void SetTexts(std::span<const ControlText> texts) override {
        const framework::RedrawHold hold(Dialog::Handle());
        for (const ControlText& row : texts)
            SetText(row.control, row.text);
    }
    void Show(int control, bool shown) override { Item(control).Show(shown); }
    void Enable(int control, bool enabled) override { Item(control).Enable(enabled); }
    // As a key of the dialog does it, by which an edit is selected whole and the default button follows.
    void Focus(int control) override {
        if (const HWND item = Item(control).Handle())
            Self().Send(WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(item), TRUE);
    }
    void SetDigitsOnly(int edit, bool on) override { Item<framework::Edit>(edit).DigitsOnly(on); }

    std::vector<std::string> Items(int combo) const override {
        return Item<framework::ComboBox>(combo).Items();
    }
    void ClearItems(int combo) override { Item<framework::ComboBox>(combo).Clear(); }
    void AddItem(int combo, std::string_view text) override {
        Item<framework::ComboBox>(combo).Add(std::string(text));
    }
    void Select(int combo, int index) override { Item<framework::ComboBox>(combo).Select(index); }
    bool SelectText(int combo, std::string_view text) override {
        return SelectEntry(Item<framework::ComboBox>(combo), text);
    }

    LocalDateTime Date(int picker) const override {
        return FromSystemTime(Item<framework::DatePicker>(picker).Time());
    }
    void SetDate(int picker, const LocalDateTime& date) override {
        Item<framework::DatePicker>(picker).SetTime(ToSystemTime(date));
    }

protected:
    framework::MessageBoxes& Boxes() { return m_boxes; }

private:
    framework::MessageBoxes& m_boxes;
};

using DialogWindow = DialogWindowOf<DialogView>;

} // namespace planfold
