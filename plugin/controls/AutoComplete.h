// A typed text that is completed to an entry of a list, and looked for in the list once the typing has paused.
// The combo is the view.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace planfold {

class Pass;
struct HostCallbacks;

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

} // namespace planfold
