// Sends the rows of a run in portions, each on the disk before its first request.
#pragma once

#include "plugin/orderbook/BookRun.h"
#include "plugin/orderentry/RecordedOrders.h"

#include <optional>

namespace planfold {

// What is asked of the server for the rows of a run, by their places in it.
class RunRequests {
public:
    // As the record has it; none when the window has gone meanwhile.
    virtual std::optional<RecordedOrder> Recorded(const BookRun& run, std::size_t row) = 0;
    // False when it could not be sent.
    virtual bool SendOne(Pass pass, BookRun& run, std::size_t row) = 0;

protected:
    ~RunRequests() = default;
};

class RunSender {
public:
    // What comes back from a click in the blink of an eye, and what keeps the window painting.
    static constexpr std::size_t kFirstPortion = 250, kPortion = 100;

    // `life` is that of the runs.
    RunSender(Session& session, Questions& questions, const Lifetime& life, RunRequests& requests)
        : m_session(session), m_questions(questions), m_life(life), m_requests(requests),
          m_recording(session.record) {}

    // Another run begins.
    void Begin();
    // At most so many of the rows, unless a question about them waits for another box. The run must last until
    // this returns. False when the window has gone meanwhile.
    [[nodiscard]] bool SendPortion(BookRun& run, std::size_t most);
    // A portion is going out, and the host may have been let in.
    bool IsSending() const { return m_sending; }
    // No box is open any more.
    void OnBoxGone() { m_waitsForBox = false; }

private:
    void SendRecorded(BookRun& run, std::size_t most);

    Session& m_session;
    Questions& m_questions;
    const Lifetime& m_life;
    RunRequests& m_requests;
    BeforeSending m_recording;
    bool m_sending = false;
    bool m_waitsForBox = false;
};

} // namespace planfold
