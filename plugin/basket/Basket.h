// What the basket's window decides without being one: the form, loading, editing, placing, export, and what an
// answer changes. The rows outlive the window: one closed by mistake has lost nothing when it is opened again.
#pragma once

#include "plugin/base/LongRun.h"
#include "plugin/basket/BasketForm.h"
#include "plugin/basket/BasketLoading.h"
#include "plugin/basket/BasketPlacing.h"
#include "plugin/basket/BasketRows.h"
#include "plugin/basket/BasketView.h"
#include "plugin/messaging/Answer.h"

#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace planfold {

class Basket final : public LongRun {
public:
    // The window's name, and its group of hot keys.
    static constexpr char kName[] = "SIP Basket Entry";
    static constexpr int kDeleteHotKey = 193;

    // `control` may be null: every sending then fails with its own text.
    Basket(Session& session, BasketView& view, RxControl* control)
        : m_session(session), m_view(view), m_control(control), m_form(session, view, control, m_life) {}

    // Fills a window that has just been made and asks the server for its operation mode. `customProducts` is
    // the settings file's list; it counts only for holders of the right.
    void Initialise(std::string_view customProducts);
    // Once the window stands: asks what becomes of the orders that an earlier session did not send.
    void OfferUnsent();
    // The box is gone under which a question could not be asked: now what asks it begins anew, if what it was
    // about has not changed. False when more has to wait.
    bool OnBoxGone();
    // The window is gone, and with it every run and question.
    void OnClosed();

    const Lifetime& Life() const { return m_life; }
    BasketForm& Form() { return m_form; }
    const BasketRows& Rows() const { return m_rows; }
    const std::vector<RejectedLine>& Rejected() const { return m_rejected; }

    void AddOrModify();
    // A row was chosen for modification.
    void Activate(RecordId record);
    // A rejected line was chosen to be corrected in the form.
    void ActivateRejected(std::size_t index);
    void Delete();
    // Then the key arrives as the host's message, and not from the list.
    bool HostOwnsDeleteKey() const { return m_hostOwnsDeleteKey; }
    void Load();
    void Export();
    // The rejected lines as they were read, to be corrected and loaded again.
    void SaveRejected();
    void Place();

    // What the rows come to, a part of the status line each.
    std::vector<std::string> Status() const;

    bool IsUnderWay() const override { return m_loading || m_placing; }
    void Continue() override { RunFor(kPortionMs); }
    void Stop() override;
    std::string Progress() const override;
    std::size_t Done() const override;
    std::size_t Total() const override;

    void OnResponse(void* message);

private:
    // What asks a question.
    using Act = void (Basket::*)();
    // The form as it is, and the row that it would be taken into.
    struct Pressed {
        SipOrderForm form;
        std::int32_t row;

        bool operator==(const Pressed&) const = default;
    };

    static constexpr std::int64_t kFirstPortionMs = 500; // what is done by then needs no progress window
    static constexpr std::int64_t kPortionMs = 50;

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

    // Nothing else is done meanwhile: rows keep their places, the form its contents, and no second run begins.
    // A portion counts even when its window has gone: a new one must not take the rows away from under it.
    bool IsBusy() const { return m_taken || m_inPortion || IsUnderWay(); }
    // Lets the host in, and lets nothing else begin meanwhile.
    template <class Call>
    [[nodiscard]] auto Alone(Call&& call) {
        const Turn turn(m_taken);
        return m_life.Across(std::forward<Call>(call));
    }
    // Whether a question can be asked; otherwise `act` is done again once the open box is gone.
    bool MayAsk(Act act);
    // False when the answer is No, the window has gone, or `act` has to wait.
    [[nodiscard]] bool Ask(const std::string& question, Act act);
    Choice Choose(const std::string& question, Act act); // cancel then
    Choice AskAboutSent();
    [[nodiscard]] bool AskAboutUnknown(const std::set<std::string>& clients, const char* question, Act act);
    Pressed Press() const;
    void LoadFile();
    void BeginLoading(std::string text, BasketRules rules);
    void RunFor(std::int64_t milliseconds);
    void EndLoading();
    void EndPlacing();
    void OfferToRemove();
    // False when the window has gone meanwhile.
    [[nodiscard]] bool KeepUnsent();
    // Where nothing comes after it.
    void KeepUnsentLast() { static_cast<void>(KeepUnsent()); }
    std::string EndBringingBack(bool stopped);
    void BringNothingBack();
    void RegisterDeleteKey(Pass pass);
    void LeaveModifyMode();
    void LeaveCorrected();
    void TellNotShown(int fields);
    bool IsModifying() const;
    // kNoRecord when it is no longer there.
    RecordId RowToModify() const;
    // When that is not the row that the form shows.
    std::string OtherRowQuestion(RecordId selected) const;
    void HandleOperationMode(const Answer& answer) { m_form.OnOperationMode(answer); }
    void HandlePlaced(const Answer& answer);

    static const AnswerHandler<Basket> kAnswers[];

    Session& m_session;
    BasketView& m_view;
    RxControl* m_control;
    Lifetime m_life{[this] { return !m_session.Ended(); }}; // of the window
    BasketForm m_form;
    BasketRows m_rows;
    std::vector<RejectedLine> m_rejected; // of the last load
    UnansweredRows m_unanswered;
    // Shared with the portion that is under way, in which the window may be closed.
    std::shared_ptr<BasketLoading> m_loading;
    std::shared_ptr<BasketPlacing> m_placing;
    std::vector<Act> m_later; // not done for want of a question
    Pressed m_pressed{};      // as it was then
    std::string m_path;       // of the file to load
    // Those that a placing sent before it was stopped, by serial number, and how many it was of.
    std::vector<std::int32_t> m_stoppedSent;
    std::size_t m_stoppedTotal = 0;
    std::string m_titleBefore;   // the load
    std::int32_t m_shownRow = 0; // by serial number: which the form was filled from, to modify it
    int m_correctedLine = 0;     // of the rejected ones: which the form was filled from
    bool m_inPortion = false;    // the host may let the window's timer in
    bool m_taken = false;
    bool m_placeable = false;     // the place button
    bool m_unsentSettled = false; // the kept file holds nothing that is not in the list
    bool m_bringsBack = false;    // the load is of that file
    bool m_hostOwnsDeleteKey = false;
};

} // namespace planfold
