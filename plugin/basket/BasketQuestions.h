// How the basket asks: one thing at a time lets the host in, and what cannot be asked under another window's
// box waits until that is gone.
#pragma once

#include "plugin/basket/BasketView.h"
#include "plugin/messaging/Session.h"

#include <functional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace planfold {

// While one lives, nothing else begins.
class Turn {
public:
    explicit Turn(bool& taken) : m_taken(taken), m_before(std::exchange(taken, true)) {}
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;
    ~Turn() { m_taken = m_before; }

private:
    bool& m_taken;
    bool m_before;
};

class BasketQuestions {
public:
    // What asks a question. Its owner keeps it in one place, by which it is known when it waits already.
    struct Act {
        std::function<void()> begin;
        std::function<void()> onWait{}; // each time that it has to wait
    };

    // `life` is that of the window.
    BasketQuestions(const Session& session, BasketView& view, const Lifetime& life)
        : m_session(session), m_view(view), m_life(life) {}

    const Lifetime& Life() const { return m_life; }
    // The host is let in, and nothing else may begin.
    bool IsTaken() const { return m_taken; }
    // Lets the host in, and lets nothing else begin meanwhile.
    template <class Call>
    [[nodiscard]] auto Alone(Call&& call) {
        const Turn turn(m_taken);
        return m_life.Across(std::forward<Call>(call));
    }

    // False when the answer is No, the window has gone, or `act` has to wait.
    [[nodiscard]] bool Ask(const std::string& question, const Act& act);
    // Cancel where Ask is false without an answer.
    [[nodiscard]] Choice Choose(const std::string& question, const Act& act);
    // True when the host knows all of the clients, or the user says so.
    [[nodiscard]] bool AskAboutUnknown(const std::set<std::string>& clients, const char* question,
                                       const Act& act);

    // Whether a question can be asked; otherwise what is under way goes on by `act`, before all that waits to
    // begin.
    [[nodiscard]] bool MayAskFirst(const Act& act);

    // What has waited longest begins anew, unless the basket is busy. False when more has to wait.
    bool OnBoxGone(bool busy);
    // What waits is given up.
    void Forget() { m_later.clear(); }

private:
    // Whether a question can be asked; otherwise `act` begins anew once the open box is gone.
    bool MayAsk(const Act& act);

    const Session& m_session;
    BasketView& m_view;
    const Lifetime& m_life;
    std::vector<const Act*> m_later; // not done for want of a question
    bool m_taken = false;
};

} // namespace planfold
