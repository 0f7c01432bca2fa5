// A change set on its way: read in portions, asked about once, sent in portions that are on the disk before
// they go out, and followed to the last answer.
#pragma once

#include "plugin/base/LongRun.h"
#include "plugin/changes/ChangeSet.h"
#include "plugin/messaging/Answer.h"
#include "plugin/messaging/Session.h"
#include "plugin/orderbook/RunSender.h"
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
class ChangeView : public Questions {
public:
    virtual bool IsOpen() const = 0;
    // There are others, or `anew` is false and they read otherwise.
    virtual void ShowRows(bool anew) = 0;
    // The reading or sending has begun, gone on or ended.
    virtual void ShowRun() = 0;
    virtual std::int64_t Milliseconds() const = 0;

protected:
    ~ChangeView() = default;
};

class ChangeRun final : public LongRun, private RecordListener, private RunRequests {
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
    void Begin(std::span<const std::size_t> changes);
    void SendPortion(std::size_t most);
    std::optional<RecordedOrder> Recorded(const BookRun& run, std::size_t row) override;
    bool SendOne(Pass pass, BookRun& run, std::size_t row) override;
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
    RunSender m_sender{m_session, m_view, m_life, *this};
    bool m_asking = false, m_asksLater = false;
    bool m_resultsChanged = false;
};

} // namespace planfold
