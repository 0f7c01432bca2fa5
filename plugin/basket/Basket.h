// What the basket's window decides without being one, and what all that belongs to it has in common: the form,
// the rows, what is asked. The rows outlive the window: one closed by mistake has lost nothing when it is
// opened again.
#pragma once

#include "plugin/basket/BasketEntry.h"
#include "plugin/basket/BasketForm.h"
#include "plugin/basket/BasketGrid.h"
#include "plugin/basket/BasketHistory.h"
#include "plugin/basket/BasketReview.h"
#include "plugin/basket/BasketRuns.h"
#include "plugin/basket/BasketSaving.h"
#include "plugin/basket/ComingOrders.h"
#include "plugin/messaging/Answer.h"
#include "plugin/record/OrderRecord.h"

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace planfold {

class Basket final : private RecordListener {
public:
    // The window and its group of hot keys have this name.
    static constexpr char kName[] = "SIP Basket Entry";
    static constexpr int kDeleteHotKey = 193;

    // `control` may be null: every sending then fails with its own text.
    Basket(Session& session, BasketView& view, RxControl* control)
        : m_session(session), m_view(view), m_form(session, view, control, m_life),
          m_history(session.record, view, m_rows, m_rejected), m_questions(session, view, m_life),
          m_runs(session, view, control, m_questions, m_form, m_rows, m_rejected, m_history),
          m_grid(session, view, m_questions, m_form, m_rows, m_rejected, m_history, m_runs),
          m_entry(view, m_questions, m_form, m_rows, m_rejected, m_history, m_runs),
          m_coming(session, view, m_rows, m_history, m_runs), m_outcome(session, view, m_rows),
          m_saving(view, m_questions, m_rows, m_rejected, m_runs, m_outcome) {
        m_session.record.AddListener(*this);
    }
    Basket(const Basket&) = delete;
    Basket& operator=(const Basket&) = delete;
    ~Basket() { m_session.record.RemoveListener(*this); }

    // Fills a window that has just been made and asks the server for its operation mode. `customProducts` is
    // the settings file's list; it counts only for holders of the right.
    void Initialise(std::string_view customProducts);
    // The box is gone under which a question could not be asked: now what asks it begins anew, if what it was
    // about has not changed. False when more has to wait.
    bool OnBoxGone() { return m_questions.OnBoxGone(m_runs.IsBusy() && !m_runs.Waits()); }
    // The window is gone, and with it every run and question.
    void OnClosed();

    const Lifetime& Life() const { return m_life; }
    BasketForm& Form() { return m_form; }
    const BasketRows& Rows() const { return m_rows; }
    const std::vector<RejectedLine>& Rejected() const { return m_rejected.lines; }
    BasketRuns& Runs() { return m_runs; }
    BasketGrid& Grid() { return m_grid; }
    const BasketGrid& Grid() const { return m_grid; }
    BasketEntry& Entry() { return m_entry; }
    ComingOrders& Coming() { return m_coming; }
    const BasketOutcome& Outcome() const { return m_outcome; }
    BasketSaving& Saving() { return m_saving; }

    void Delete();
    // The last change of the basket is taken back, or made again.
    void Undo() { GoBack(&BasketHistory::Undo); }
    void Redo() { GoBack(&BasketHistory::Redo); }
    // What stands in the way of what the user wishes.
    void Tell(std::string_view text) { m_view.ShowLast(text); }
    // Then the key arrives as the host's message, and not from the list.
    bool HostOwnsDeleteKey() const { return m_hostOwnsDeleteKey; }
    // All that there is to say of the orders that were not sent; none while something else is under way.
    std::optional<std::vector<ReviewLine>> Check();
    void OnResponse(void* message);

private:
    void GoBack(std::optional<std::string> (BasketHistory::*go)());
    void RegisterDeleteKey(Pass pass);
    void HandleOperationMode(const Answer& answer) { m_form.OnOperationMode(answer); }
    void HandlePlaced(const Answer& answer);
    void OnOrder(OrderPlace place) override;

    static const AnswerHandler<Basket> kAnswers[];

    Session& m_session;
    BasketView& m_view;
    Lifetime m_life{[this] { return !m_session.Ended(); }}; // of the window
    BasketForm m_form;
    BasketRows m_rows;
    RejectedLines m_rejected;
    BasketHistory m_history;
    BasketQuestions m_questions;
    BasketRuns m_runs;
    BasketGrid m_grid;
    BasketEntry m_entry;
    ComingOrders m_coming;
    BasketOutcome m_outcome;
    BasketSaving m_saving;
    bool m_hostOwnsDeleteKey = false;
};

} // namespace planfold
