// Orders of which nobody knows what became of them: tells the dealer once at the start, compares them with the
// book when he wishes, and tells of one that turns out to be registered twice.
#pragma once

#include "plugin/basket/BasketView.h"
#include "plugin/doubts/BookComparison.h"
#include "plugin/doubts/Twins.h"

#include <string>

namespace planfold {

class DoubtsView : public Questions {
public:
    // Yes, no (the default) or cancel.
    virtual Choice Choose(Pass pass, std::string_view question) = 0;
    virtual void ShowOrdersOfDay(Pass pass) = 0;
    // Into the basket, to be placed again; how many of them stand there then.
    virtual std::size_t TakeBack(Pass pass, std::span<const OrderPlace> orders) = 0;

protected:
    ~DoubtsView() = default;
};

class Doubts final {
public:
    // The control may be null.
    Doubts(Session& session, DoubtsView& view, std::function<RxControl*()> control);
    Doubts(const Doubts&) = delete;
    Doubts& operator=(const Doubts&) = delete;

    // A window of the plug-in has come up.
    void OnPick() { m_isPicked = true; }
    // To be called every second.
    void OnTime();
    void OnResponse(void* message);
    // Compares what is in doubt with the book, as the dealer wishes it.
    void Compare();

private:
    std::optional<BookComparison::Outcome> AbsentBefore() const;
    bool KnowsStart();
    void TellAtStart();
    std::string DescribeDoubts() const;
    void HandleListed(const Answer& answer) { m_comparison.OnResponse(answer); }
    void HandleCancelled(const Answer& answer) { m_twins.OnCancelled(answer); }
    void TellOutcome();

    static const AnswerHandler<Doubts> kAnswers[];

    Session& m_session;
    DoubtsView& m_view;
    BookComparison m_comparison;
    Twins m_twins;
    std::optional<BookComparison::Outcome> m_outcome;
    bool m_isPicked = false;
    bool m_isTold = false;
    bool m_hasLooked = false; // for what an earlier session left registered twice
    bool m_asking = false;
};

} // namespace planfold
