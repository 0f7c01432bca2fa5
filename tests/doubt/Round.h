// A round of doubt_test: what a dealer wants, what goes wrong and at which step, and what outlives his process.
#pragma once

#include "tests/net/ServerPlace.h"

#include <cstdint>
#include <random>
#include <string>
#include <string_view>

namespace planfold::test {

// Of a dealer's process, as it comes to them.
enum class Step {
    append,   // to the record, before a byte is written
    amid,     // half of it is written
    appended, // all of it is
    send,     // a request is about to be handed to the host
    sent,
    answer, // the host hands over an answer
    answered,
    keep, // the unsent orders are about to be kept
    kept,
    compare, // with the book
};

enum class Play { kill, leave, restart, down, record, full, server };

struct Fault {
    const char* name;
    Step step;
    Play play;
    const char* server = ""; // what it plays, and on the book's query behind "book "
};

inline constexpr Fault kFaults[] = {
    {"dealer killed before the record is written", Step::append, Play::kill},
    {"dealer killed amid a line of the record", Step::amid, Play::kill},
    {"dealer killed after the record is written", Step::appended, Play::kill},
    {"dealer killed before a request", Step::send, Play::kill},
    {"dealer killed after a request", Step::sent, Play::kill},
    {"dealer killed before an answer is taken", Step::answer, Play::kill},
    {"dealer killed after an answer is taken", Step::answered, Play::kill},
    {"dealer killed before the basket is kept", Step::keep, Play::kill},
    {"dealer killed after the basket is kept", Step::kept, Play::kill},
    {"dealer killed as he compares", Step::compare, Play::kill},
    {"dealer leaves before the answers", Step::sent, Play::leave},
    {"server killed after a request", Step::sent, Play::restart},
    {"server killed at an answer", Step::answer, Play::restart},
    {"server gone for long", Step::sent, Play::down},
    {"line cut before an order is handled", Step::send, Play::server, "disconnect-before 1"},
    {"line cut before an order is answered", Step::send, Play::server, "disconnect 1"},
    {"handled and not answered", Step::send, Play::server, "silent"},
    {"neither handled nor answered", Step::send, Play::server, "ignored"},
    {"refused", Step::send, Play::server, "error 99"},
    {"answered with garbage", Step::send, Play::server, "garbage"},
    {"answered twice", Step::send, Play::server, "twice"},
    {"answered without a serial number", Step::send, Play::server, "noserial"},
    {"a minute late", Step::send, Play::server, "delay "},
    {"record not writable", Step::append, Play::record},
    {"disk full", Step::append, Play::full},
    {"book not listed", Step::compare, Play::server, "book silent"},
    {"book refused", Step::compare, Play::server, "book error 98"},
    {"line cut as the book is listed", Step::compare, Play::server, "book disconnect 1"},
};

enum class Wish { basket, form, changes };

// All of it follows from seed and number.
struct Round {
    Round(unsigned seed, unsigned number)
        : random(seed * 1'000'003 + number), login("U" + std::to_string(number)) {
        wish = Below(10) < 6 ? Wish::basket : Below(2) ? Wish::form : Wish::changes;
        count =
            wish == Wish::basket && Below(20) == 0 ? 50 + Below(251) : 1 + Below(wish == Wish::basket ? 9 : 4);
        fault = &kFaults[number % std::size(kFaults)];
        at = 1 + Below(fault->step == Step::compare ? 1 : fault->step >= Step::keep ? 2 : count);
        dies = fault->play != Play::kill && Below(3) == 0;
        diesAt = static_cast<Step>(Below(9));
        diesAfter = 1 + Below(2 * count);
        const bool isUnwritten = fault->play == Play::record || fault->play == Play::full;
        agrees = isUnwritten && Below(2);
        overMidnight = Below(8) == 0;
        hasIdentifiers = Below(8) > 0;
        isTwin = !agrees && !overMidnight && wish != Wish::changes && Below(6) == 0;
        lateMs = 30 + Below(250);
        step = Below(3) * 40;
    }
    int Below(int end) { return static_cast<int>(random() % static_cast<unsigned>(end)); }

    // Each order is for another client, but that twins come in pairs.
    int Kind(int order) const { return isTwin ? order / 2 : order; }
    std::string Account(int order) const { return "C" + std::to_string(Kind(order)); }
    int Rupees(int order) const { return 1000 + Kind(order); }

    std::mt19937 random;
    std::string login; // of a user who has no orders of other rounds
    Wish wish;
    int count;
    const Fault* fault;
    int at; // which time that it comes to the step
    // Killed besides, wherever he is then.
    bool dies;
    Step diesAt;
    int diesAfter;
    bool agrees; // to send without a record
    bool overMidnight, hasIdentifiers, isTwin;
    int lateMs;
    int step; // of the clock between two rows of a placing
};

// Shared by the dealer's processes, one after the other.
struct Memory {
    std::int64_t skew = 0; // by which his clock is ahead
    std::int64_t lateUntilMs = 0;
    int lives = 0, identifiers = 0, came = 0, cameToDie = 0;
    bool isPlayed = false, hasDied = false;
};

// Lives in this process, which it ends: 0 when nothing is left in doubt. It talks with who plays the rounds by
// lines at the socket: "!what it asks for", which is answered by a byte; "o STATE ID NUMBER CLIENT/PAISE" and
// "c STATE NUMBER REQUEST" as often as it is told so of an order or a change; "t SECOND CLIENT" for what is
// told to be registered twice; "w TEXT" of what contradicts itself.
[[noreturn]] void LiveAsDealer(const Round& round, Memory& memory, const vesk::ServerPlace& place, int socket);

} // namespace planfold::test
