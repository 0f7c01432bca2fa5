#include "plugin/basket/BasketRuns.h"

#include "plugin/base/Text.h"
#include "plugin/record/OrderRecord.h"
#include "plugin/resources/resource.h"
#include "sdk/Tags.h"

#include <utility>

namespace planfold {

namespace {

const char* const kNothingToPlace[] = {"Please Select an Order", "Please Select an Order",
                                       "No order of the basket waits to be placed.",
                                       "The server has refused no order of the basket."};

} // namespace

void BasketRuns::LetPlace(bool may) {
    m_placeable = may;
    ShowPlaceable();
}

void BasketRuns::ShowPlaceable() {
    m_view.Enable(IDC_BASKET_PLACE, m_placeable);
}

void BasketRuns::Load() {
    if (IsBusy()) return;
    const auto path =
        m_questions.Alone([&](Pass pass) { return m_view.AskLoadPath(pass); }).value_or(std::nullopt);
    if (!path) return;
    m_path = *path;
    LoadFile();
}

void BasketRuns::LoadFile() {
    auto text = m_view.ReadFile(m_path);
    if (!text) return m_view.ShowLast("File Open Error");
    if (base::IsUtf16(*text)) return m_view.ShowLast(Format("The basket cannot be read: %s.", kUtf16Fault));
    if (MayReplaceRows(m_loadAgain)) BeginLoading(ReadingOf(std::move(*text)), m_form.Rules(m_view.Now()));
}

bool BasketRuns::MayReplaceRows(const Act& again) {
    const std::size_t unsent = m_view.List().RowCount() - m_rows.SentCount();
    return unsent == 0
           || m_questions.Ask(
               Format("Orders in the basket that were not sent: %zu.\nLoad the file in their place?", unsent),
               again);
}

void BasketRuns::Import() {
    if (IsBusy()) return;
    auto choice =
        m_questions.Alone([&](Pass pass) { return m_view.AskImport(pass, m_form.Rules(m_view.Now())); })
            .value_or(std::nullopt);
    if (!choice) return;
    m_path = std::move(choice->path);
    m_import = std::move(choice->begin);
    ImportFile();
}

void BasketRuns::ImportFile() {
    if (MayReplaceRows(m_importAgain))
        BeginLoading(std::exchange(m_import, nullptr), m_form.Rules(m_view.Now()));
}

void BasketRuns::BeginLoading(const BeginReading& reading, BasketRules rules) {
    BasketList& list = m_view.List();
    m_history.BeginLoad(m_path.substr(m_path.find_last_of("\\/") + 1));
    m_session.record.Refresh();
    m_titleBefore = m_view.Title();
    m_view.SetTitle(m_titleBefore + " - Loading Basket. Please Wait.... ");
    m_view.ShowPanel();
    m_loading = std::make_shared<BasketLoading>(m_session, reading, std::move(rules),
                                                BasketLoading::Target{m_rows, list, m_rejected.lines});
    RunFor(kFirstPortionMs);
    if (IsUnderWay()) m_view.ShowRun();
}

void BasketRuns::EndLoading() {
    const auto loading = std::exchange(m_loading, nullptr);
    m_history.EndLoad();
    LetPlace(true);
    m_view.SetTitle(m_titleBefore);
    m_view.ShowRun();
    m_view.ShowStatus();
    m_view.ShowPanel();
    std::string texts[] = {loading->Notices(), loading->Reading().LastReason(), {}};
    if (m_bringsBack) {
        if (!m_life.Across([&](Pass) { texts[2] = EndBringingBack(loading->Stopped()); })) return;
    } else {
        if (loading->Stopped())
            texts[2] = Format("Loading was stopped: %d lines were read, %zu of them are in the list.",
                              loading->Reading().LinesRead(), loading->Reading().RowsLoaded());
        if (!KeepUnsent()) return;
    }
    for (const std::string& text : texts)
        if (!text.empty() && !m_life.Across([&](Pass pass) { m_view.ShowMessage(pass, text); })) return;
}

void BasketRuns::EndPlacing() {
    const auto placing = std::exchange(m_placing, nullptr);
    m_stoppedSent.clear();
    for (const RecordId record : placing->Sent())
        m_stoppedSent.push_back(m_rows[record].SerialNumber());
    m_stoppedTotal = placing->Total();
    // The others still wait for the button.
    LetPlace(m_placesPart && m_view.List().RowCount() > m_rows.SentCount());
    if (!KeepUnsent()) return;
    m_view.ShowRun();
    m_view.ShowStatus();
    const bool stopped = placing->Stopped();
    const bool isThere = m_questions.Alone([&](Pass) {
        const std::string failures = placing->FailureTexts();
        if (!failures.empty() && !m_life.Across([&](Pass pass) { m_view.ShowMessage(pass, failures); })) return;
        if (stopped) OfferToRemove();
    });
    if (isThere && !stopped) m_view.ShowLast("Order Placed..!!");
}

void BasketRuns::OfferToRemove() {
    LetPlace(true);
    const std::size_t sent = m_stoppedSent.size();
    if (sent == 0) return m_view.ShowLast("Placing was stopped before an order was sent.");
    if (!m_questions.Ask(
            Format("Placing was stopped: %zu of %zu orders were sent.\nRemove these %zu from the basket?", sent,
                   m_stoppedTotal, sent),
            m_removeAgain))
        return;
    std::vector<RecordId> records;
    for (const std::int32_t number : m_stoppedSent)
        // Others went while the question waited.
        if (const RecordId record = m_rows.BySerialNumber(number); record != kNoRecord)
            records.push_back(record);
    BasketList& list = m_view.List();
    list.BeginChanges();
    m_history.Remove(records, [&] {
        for (const RecordId record : records)
            list.Remove(record);
    });
    list.EndChanges();
    m_view.ShowStatus();
}

void BasketRuns::OnClosed() {
    // What a run did not come to may still be placed; what was placed stays so.
    const bool ranOn = IsUnderWay();
    if (ranOn) m_placeable = m_view.List().RowCount() > 0;
    // A portion may be on its way below.
    if (m_loading) m_loading->Stop();
    if (m_placing) m_placing->Abandon();
    m_history.EndLoad();
    m_loading.reset();
    m_placing.reset();
    if (!ranOn) return;
    if (!m_bringsBack)
        KeepUnsentLast();
    else if (!m_inPortion)
        BringNothingBack();
}

void BasketRuns::RunFor(std::int64_t milliseconds) {
    if (m_inPortion || !IsUnderWay()) return;
    const std::int64_t end = m_view.Milliseconds() + milliseconds;
    const auto loading = m_loading;
    const auto placing = m_placing;
    bool more = true, isThere = true;
    {
        const Turn turn(m_inPortion);
        if (loading) {
            m_view.ShowWaiting(true);
            m_view.List().BeginChanges();
            // A long load may go past midnight.
            const LocalDateTime now = m_view.Now();
            // What the form had taken may start today.
            loading->SetNow(ToSeconds(m_bringsBack ? now.Midnight() : now));
        }
        do
            isThere =
                m_life.Across([&](Pass pass) { more = loading ? loading->Step(pass) : placing->Step(pass); });
        while (isThere && more && !(placing && placing->Waits()) && m_view.Milliseconds() < end);
        if (loading) {
            m_view.List().EndChanges();
            m_view.ShowWaiting(false);
        }
    }
    if (!isThere) return m_bringsBack ? BringNothingBack() : KeepUnsentLast();
    if (more) return;
    if (loading)
        EndLoading();
    else
        EndPlacing();
}

void BasketRuns::Stop() {
    if (m_loading) m_loading->Stop();
    if (m_placing) m_placing->Abandon();
    if (m_placing) m_placing->Stop();
    RunFor(0);
}

std::string BasketRuns::Progress() const {
    if (m_loading) return Format("Loading: %d lines", m_loading->Reading().LinesRead());
    return Format("%s %zu of %zu", m_placing->IsSending() ? "Placing" : "Preparing", m_placing->Tried(),
                  m_placing->Total());
}

std::size_t BasketRuns::Done() const {
    return m_loading ? m_loading->Reading().Done() : m_placing->Tried();
}

std::size_t BasketRuns::Total() const {
    return m_loading ? m_loading->Reading().Total() : m_placing->Total();
}

void BasketRuns::Place(Placed which) {
    if (IsBusy()) return;
    std::vector<BasketPlacing::Row> placed = m_choice.Meant(which);
    if (placed.empty()) return m_view.ShowLast(kNothingToPlace[static_cast<std::size_t>(which)]);
    if (which == Placed::all && !m_placeable) return;
    if (!m_choice.MayPlace(placed, which, m_placeAgain[static_cast<std::size_t>(which)])) return;
    m_placesPart = m_placeable && which != Placed::all;
    LetPlace(false);
    // Its first call to the host is made before it stands.
    auto placing = m_questions.Alone([&](Pass pass) {
        return std::make_shared<BasketPlacing>(
            pass, m_session, m_control, m_rows, m_unanswered, m_history.File(),
            [this](Pass asking, std::string_view question) -> std::optional<bool> {
                if (!m_questions.MayAskFirst(m_goOn)) return std::nullopt;
                return m_view.Ask(asking, question);
            },
            std::move(placed));
    });
    if (!placing) return LetPlace(true);
    m_placing = std::move(*placing);
    if (!KeepUnsent()) return;
    RunFor(kFirstPortionMs);
    if (IsUnderWay()) m_view.ShowRun();
}

OrderPlace BasketRuns::TakeAnswered(const Answer& answer) {
    const std::string orderId = FieldText(answer.message, tag::orderId);
    std::int64_t serial = 0;
    int status = kFieldRead;
    if (GetFieldNumber(answer.message, tag::echoedNumber, 0, serial, status))
        if (const auto sent = m_unanswered.find(static_cast<std::int32_t>(serial));
            sent != m_unanswered.end()) {
            const OrderPlace place = sent->second;
            const RecordedOrder& order = m_session.record.Ledger()[place];
            const std::string_view sentId = order.Text(RecordField::orderId);
            if (orderId.empty() || sentId.empty() || sentId == orderId) {
                m_unanswered.erase(sent);
                return place;
            }
        }
    return PlaceOf(m_session, answer);
}

} // namespace planfold
