// What the basket does at length, and what it asks before and tells after: loading and placing. With them the
// file of the orders that were not sent, whose offer is a load as well.
#pragma once

#include "plugin/base/LongRun.h"
#include "plugin/basket/BasketChoice.h"
#include "plugin/basket/BasketForm.h"
#include "plugin/basket/BasketHistory.h"
#include "plugin/basket/BasketLoading.h"

#include <memory>
#include <string>
#include <vector>

namespace planfold {

class BasketRuns final : public LongRun {
public:
    BasketRuns(Session& session, BasketView& view, RxControl* control, BasketQuestions& questions,
               const BasketForm& form, BasketRows& rows, RejectedLines& rejected, BasketHistory& history)
        : m_session(session), m_view(view), m_control(control), m_questions(questions),
          m_life(questions.Life()), m_form(form), m_rows(rows), m_rejected(rejected), m_history(history) {}

    // Once the window stands: asks what becomes of the orders that an earlier session did not send.
    void OfferUnsent();
    void Load();
    // As Load, of a file of any form, once its columns are settled.
    void Import();
    using Placed = BasketChoice::Placed;
    void Place(Placed which = Placed::all);
    DeskLimits Limits() const { return m_choice.Limits(); } // as the settings have them now
    // Says whether the rows may be placed; the place button shows it.
    void LetPlace(bool may);
    void ShowPlaceable();
    // The order that the server answers, by its identifier or the serial number of its row, whatever has become
    // of that since; kNoOrder when the answer tells neither.
    OrderPlace TakeAnswered(const Answer& answer);
    // The rows were changed, and nothing of the caller's comes after it.
    void KeepUnsentLast() { static_cast<void>(KeepUnsent()); }
    // The window is gone, and with it the run.
    void OnClosed();

    // Nothing else is done meanwhile: rows keep their places, the form its contents, and no second run begins.
    // A portion counts even when its window has gone: a new one must not take the rows away from under it.
    bool IsBusy() const { return m_questions.IsTaken() || m_inPortion || IsUnderWay(); }
    // Under way, but for a question that could not be asked.
    bool Waits() const { return m_placing && m_placing->Waits() && !m_inPortion && !m_questions.IsTaken(); }
    bool IsUnderWay() const override { return m_loading || m_placing; }
    void Continue() override {
        if (!Waits()) RunFor(kPortionMs);
    }
    void Stop() override;
    std::string Progress() const override;
    std::size_t Done() const override;
    std::size_t Total() const override;

private:
    using Act = BasketQuestions::Act;

    void LoadFile();
    void ImportFile();
    bool MayReplaceRows(const Act& again);
    void BeginLoading(const BeginReading& reading, BasketRules rules);
    void RunFor(std::int64_t milliseconds);
    void EndLoading();
    void EndPlacing();
    void OfferToRemove();
    // False when the window has gone meanwhile.
    [[nodiscard]] bool KeepUnsent();
    std::string EndBringingBack(bool stopped);
    void BringNothingBack();

    Session& m_session;
    BasketView& m_view;
    RxControl* m_control;
    BasketQuestions& m_questions;
    const Lifetime& m_life;
    const BasketForm& m_form;
    BasketRows& m_rows;
    RejectedLines& m_rejected; // of the last load
    BasketHistory& m_history;
    BasketChoice m_choice{m_session, m_view, m_questions, m_rows};
    const Act m_offerAgain{[this] { OfferUnsent(); }};
    const Act m_loadAgain{[this] { LoadFile(); }};
    const Act m_importAgain{[this] { ImportFile(); }};
    const Act m_placeAgain[4] = {{[this] { Place(Placed::all); }},
                                 {[this] { Place(Placed::selected); }},
                                 {[this] { Place(Placed::unsent); }},
                                 {[this] { Place(Placed::refused); }}};
    const Act m_goOn{[this] { RunFor(kPortionMs); }};
    const Act m_removeAgain{[this] { OfferToRemove(); }};
    // Shared with the portion that is under way, in which the window may be closed.
    std::shared_ptr<BasketLoading> m_loading;
    std::shared_ptr<BasketPlacing> m_placing;
    UnansweredRows m_unanswered;
    std::string m_path; // of the file to load
    BeginReading m_import;
    // Those that a placing sent before it was stopped, by serial number, and how many it was of.
    std::vector<std::int32_t> m_stoppedSent;
    std::size_t m_stoppedTotal = 0;
    std::string m_titleBefore;    // the load
    bool m_inPortion = false;     // the host may let the window's timer in
    bool m_placeable = false;     // the place button
    bool m_placesPart = false;    // what the list's menu meant, while the button stood open for all
    bool m_unsentSettled = false; // the kept file holds nothing that is not in the list
    bool m_notKept = false;       // the last attempt failed
    bool m_bringsBack = false;    // the load is of that file
};

} // namespace planfold
