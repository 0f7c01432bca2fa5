// A change set on its way: read in portions, asked about once, sent in portions that are on the disk before
// they go out, and followed to the last answer.
#pragma once

#include "plugin/base/LongRun.h"
#include "plugin/changes/ChangeSet.h"
#include "plugin/messaging/Answer.h"
#include "plugin/messaging/Session.h"
#include "plugin/orderbook/BookRun.h"
#include "plugin/record/OrderRecord.h"
#include "sdk/RxControl.h"

#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace planfold {

// The window as the code that decides sees it.
class ChangeView : public Notices {
public:
    virtual bool IsOpen() const = 0;
    // Whether a question can be asked. Otherwise the open box comes to the front, and OnBoxGone follows.
    virtual bool MayAsk() = 0;
    // A question with Yes and No, of which No is the default; true for Yes.
    virtual bool Ask(Pass pass, std::string_view question) = 0;
    // There are others, or `anew` is false and they read otherwise.
    virtual void ShowRows(bool anew) = 0;
    // The reading or sending has begun, gone on or ended.
    virtual void ShowRun() = 0;
    virtual std::int64_t Milliseconds() const = 0;

protected:
    ~ChangeView() = default;
};

class ChangeRun final : public LongRun, private RecordListener {
public:
    // `control` gives the control by which is asked, or null.
    ChangeRun(Session& session, const OrderCache& book, ChangeView& view, std::function<RxControl*()> control)
        : m_session(session), m_book(book), m_view(view), m_control(std::move(control)) {
        m_session.record.AddListener(*this);
    }
    ChangeRun(const ChangeRun&) = delete;
    ChangeRun& operator=(const ChangeRun&) = delete;
    ~ChangeRun() { m_session.record.RemoveListener(*this); }

    // The file's text and its name without folders, instead of what is listed.
    void Load(std::string text, std::string name);
    // These registrations' amounts, stepped up, instead of what is listed.
    void Step(std::span<const std::string> numbers, const StepUp& rule);
    // Sends what can be sent, after one question.
    void Send();
    // No box is open any more: what waited is asked about. False when more waits.
    bool OnBoxGone();
    void OnResponse(void* message);
    // The window is gone: nothing more is sent. What was sent is recorded all the same.
    void Forget();

    // Whether a list can be replaced, which is told otherwise.
    bool TellsBusy();

    const ChangeSet* Set() const { return m_set.get(); }
    bool CanSend() const { return m_set && m_set->IsRead() && !IsUnderWay() && !m_set->Sendable().empty(); }
    // For an empty list.
    std::string Notice() const;
    // What can be sent, what cannot or what became of it, and what else there is to say.
    std::array<std::string, 3> Status() const;

    bool IsUnderWay() const override { return IsReading() || m_run; }
    void Continue() override;
    void Stop() override;
    bool CanStop() const override { return IsReading() || IsSending(); }
    std::string Progress() const override;
    std::size_t Done() const override;
    std::size_t Total() const override;

private:
    bool IsReading() const { return m_set && !m_set->IsRead(); }
    bool IsSending() const { return m_run && !m_run->AllTried(); }
    bool Replace();
    void ReadSome();
    std::string Question(std::span<const std::size_t> changes) const;
    void Begin(std::span<const std::size_t> changes);
    void SendPortion(std::size_t most);
    void SendRecorded(std::size_t most);
    std::optional<std::vector<OrderPlace>> RecordSending(std::span<const RecordedOrder> orders);
    RecordedOrder Recorded(const Change& change) const;
    bool SendOne(Pass pass, std::size_t change);
    void TakeResults();
    void EndRun();
    void OnOrder(OrderPlace place) override;
    void HandleModified(const Answer& answer);
    void HandleOperationMode(const Answer& answer);

    static const AnswerHandler<ChangeRun> kAnswers[];

    Session& m_session;
    const OrderCache& m_book;
    ChangeView& m_view;
    std::function<RxControl*()> m_control;
    Lifetime m_life{[this] { return m_view.IsOpen() && !m_session.Ended(); }}; // of a list in its window
    std::unique_ptr<ChangeSet> m_set;
    std::string m_source;
    std::unique_ptr<BookRun> m_run;
    std::vector<std::size_t> m_sent; // the changes that are the run's rows
    bool m_asking = false, m_asksLater = false;
    bool m_sending = false;
    bool m_waitsForBox = false;   // to ask before the next portion
    bool m_withoutRecord = false; // the dealer agreed for this run
    bool m_resultsChanged = false;
};

} // namespace planfold
