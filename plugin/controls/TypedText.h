// What is made of typed text: completed to an entry of a list, collected to find one, and kept to what a value
// may be.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace planfold {

class Pass;
struct HostCallbacks;

// The combo whose typed text is completed.
class AutoCompleteView {
public:
    virtual std::string TypedText() const = 0;
    virtual std::vector<std::string> Entries() const = 0;
    // Puts the entry into the box, all behind the first `typed` characters selected.
    virtual void ShowCompletion(const std::string& entry, std::size_t typed) = 0;
    // Makes it the list's selection, as a pick does.
    virtual void PickEntry(int entry) = 0;
    virtual void StartTimer() = 0;
    virtual void StopTimer() = 0;

protected:
    ~AutoCompleteView() = default;
};

// A typed text that is completed to an entry of a list, and looked for in the list once the typing has paused.
class AutoComplete {
public:
    explicit AutoComplete(AutoCompleteView& view) : m_view(view) {}

    // A character was typed at the end of the text; nothing else completes, or deleting would be undone.
    void OnTyped();
    // Any change of the user's, the typing of a character among them.
    void OnChanged();
    // The timer goes off three times within the delay.
    void OnTimer();
    // Nothing is to be looked for any more.
    void Forget();

private:
    // Only an entry that equals the text: nobody's account is guessed.
    void Search();

    AutoCompleteView& m_view;
    int m_ticksLeft = 0; // 0: the timer does not run
};

// Milliseconds between two ticks of the timer, from the host's delay.
unsigned SearchTimerPeriod(Pass pass, const HostCallbacks& host);

// Letters typed over a drop-down list are collected: BAS selects the first entry that begins so, and not one
// that begins with B, then with A, then with S.
class TypeAhead {
public:
    // After it a letter begins anew.
    static constexpr unsigned kPauseMs = 1500;

    // The first entry after `after` that begins with the text, ignoring case, going on from the top at the end
    // of the list; -1 when there is none. `after` is -1 for the top.
    using Find = std::function<int(const std::string& text, int after)>;

    // The entry that a typed character selects, or -1 when none begins so: then nothing is to change. `timeMs`
    // runs on and wraps around; `selected` is -1 for none.
    int OnCharacter(char character, unsigned timeMs, int selected, const Find& find);
    // The next letter begins anew.
    void Forget() { m_typed.clear(); }

private:
    std::string m_typed;
    unsigned m_lastMs = 0;
};

// Whether a typed character may reach the edit: one of `allowed`, or the control code of backspace, copy,
// paste or cut. An empty `allowed` lets everything through.
bool MayBeTyped(char32_t typed, std::string_view allowed);

// The digits and the first "." of the text; everything else is dropped.
std::string CleanValueText(std::string_view text);

} // namespace planfold
