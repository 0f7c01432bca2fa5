// What the trials of exports share: the bench that they work at, and what they find.
#pragma once

#include "tools/planfold-hostcheck/Trials.h"

#include <initializer_list>

namespace hostcheck {

// A scrip as the exports tell it one after the other.
struct Scrip {
    std::string symbol, exchange, token, tradingSymbol;
};

struct Bench {
    const HostLookup& lookup;
    Workplace& workplace;
    HeapStringManager& strings;
    Scrip scrip;
    std::string client; // one that a search found

    CString Text(std::string_view text = {}) { return CString(text, strings); }
    template <class Function>
    Function* Find(const char* name) const {
        return reinterpret_cast<Function*>(lookup(name));
    }
};

struct Verdict {
    State state = State::present;
    std::string detail;

    bool IsGood() const { return state == State::present; }
};
inline Verdict Wrong(std::string why) {
    return {State::wrong, std::move(why)};
}
inline Verdict Untried(std::string why) {
    return {State::untried, std::move(why)};
}

// An argument that every host must say no to.
inline constexpr std::string_view kNobody = "NO-SUCH-THING";

std::string Quoted(std::string_view text);
// The first that is not good.
Verdict First(std::initializer_list<Verdict> verdicts);
// What was told, beside what it must be.
Verdict Same(std::string_view what, std::string_view told, std::string_view must);
// A text that the host filled is whole, and still its maker's.
Verdict Whole(std::initializer_list<const CString*> texts, StringManager& maker);
// What a call has put into a combo.
Verdict FilledWithTexts(Bench& bench, int combo);

struct Trial {
    std::string_view name;
    Verdict (*run)(AnyFunction found, Bench& bench);
};

template <class Function, Verdict (*run)(Function*, Bench&)>
Verdict Try(AnyFunction found, Bench& bench) {
    return run(reinterpret_cast<Function*>(found), bench);
}
// Finds the exports itself: they are tried together.
template <Verdict (*run)(Bench&)>
Verdict TryTogether(AnyFunction, Bench& bench) {
    return run(bench);
}
// All that is seen is that it comes back.
template <class Function>
Verdict Call(AnyFunction found, Bench&) {
    reinterpret_cast<Function*>(found)();
    return {};
}

// In the order in which they are run: what needs another's answer stands behind it.
std::span<const Trial> SessionTrials();
std::span<const Trial> ScripTrials();
std::span<const Trial> ClientTrials();

} // namespace hostcheck
