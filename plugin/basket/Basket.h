// What the basket's window decides without being one: the form, editing, export, what an answer changes, and
// its runs and questions. The rows outlive the window: one closed by mistake has lost nothing when it is opened
// again.
#pragma once

#include "plugin/basket/BasketForm.h"
#include "plugin/basket/BasketGrid.h"
#include "plugin/basket/BasketHistory.h"
#include "plugin/basket/BasketReview.h"
#include "plugin/basket/BasketRuns.h"
#include "plugin/messaging/Answer.h"
#include "plugin/record/OrderRecord.h"

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace planfold {

// A row that was not registered, and why.
struct BasketResult {
    RecordId record;
    std::string reason;
};

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
          m_grid(session, view, m_questions, m_form, m_rows, m_rejected, m_history, m_runs) {
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

    void AddOrModify();
    // A row was chosen for modification.
    void Activate(RecordId record);
    // A rejected line was chosen to be corrected in the form.
    void ActivateRejected(std::size_t index);
    void Delete();
    // The last change of the basket is taken back, or made again.
    void Undo() { GoBack(&BasketHistory::Undo); }
    void Redo() { GoBack(&BasketHistory::Redo); }
    // What stands in the way of what the user wishes.
    void Tell(std::string_view text) { m_view.ShowLast(text); }
    // Orders of the record that are proven not to be registered come back, to be placed again. How many of them
    // stand in the basket.
    std::size_t TakeBack(Pass pass, std::span<const OrderPlace> orders);
    // Orders without tokens and serial numbers, as if they had been entered one by one. How many came in: the
    // host does not know every scrip.
    std::size_t Add(Pass pass, std::vector<sSipOrderData> orders);
    // Then the key arrives as the host's message, and not from the list.
    bool HostOwnsDeleteKey() const { return m_hostOwnsDeleteKey; }
    void Export();
    // All that there is to say of the orders that were not sent; none while something else is under way.
    std::optional<std::vector<ReviewLine>> Check();
    // The rejected lines as they were read, to be corrected and loaded again.
    void SaveRejected();
    // The same as a table with headings, and why each was rejected.
    void SaveReasons();
    // The rows that were not registered, as a basket's file.
    void SaveResults();
    // As a table with the list's headings: all rows, or those that were not registered.
    void SaveTable(bool resultsOnly);

    // What has become of the row, in words: "Registered SIP2611…", "Refused: ... (code 104)."
    std::string StateText(RecordId record) const;
    // "CL105 BASALTAGRO monthly 1500.00"
    std::string Describe(RecordId record) const;
    // In the order of the rows.
    std::vector<BasketResult> Results() const;
    // What the rows come to, a part of the status line each.
    std::vector<std::string> Status() const;

    void OnResponse(void* message);

private:
    // The form as it is, and the row that it would be taken into.
    struct Pressed {
        SipOrderForm form;
        std::int32_t row;

        bool operator==(const Pressed&) const = default;
    };
    struct ComingOrder {
        FormOrder order;
        OrderPlace place; // of the record; kNoOrder for one that was never sent
    };

    // With what the host knows of its scrip; none when it does not know it.
    std::optional<FormOrder> Complete(Pass pass, sSipOrderData order) const;
    // One step of the history.
    std::size_t TakeIn(const std::vector<ComingOrder>& orders);
    void Save(const std::function<std::string()>& text);
    Pressed Press() const;
    void AddAgain();
    void GoBack(std::optional<std::string> (BasketHistory::*go)());
    void RegisterDeleteKey(Pass pass);
    void LeaveModifyMode();
    void TakeIn(const BasketTexts& texts);
    void TellNotShown(int fields);
    bool IsModifying() const;
    // kNoRecord when it is no longer there.
    RecordId RowToModify() const;
    // When that is not the row that the form shows.
    std::string OtherRowQuestion(RecordId selected) const;
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
    const BasketQuestions::Act m_addAgain{[this] { AddAgain(); }, [this] { m_pressed = Press(); }};
    Pressed m_pressed{};         // as it was when it had to wait
    std::int32_t m_shownRow = 0; // by serial number: which the form was filled from, to modify it
    bool m_hostOwnsDeleteKey = false;
};

} // namespace planfold
