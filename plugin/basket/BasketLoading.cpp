#include "plugin/basket/BasketLoading.h"

#include "plugin/base/Codes.h"
#include "plugin/base/Text.h"
#include "plugin/messaging/HostQuestions.h"
#include "plugin/record/OrderRecord.h"

#include <algorithm>
#include <utility>

namespace planfold {

namespace {

constexpr int kLinesAStep = 64;

} // namespace

std::optional<ScripDetails> HostScrips::Details(std::string_view exchange, std::string_view tradingSymbol) {
    return AskScripDetails(m_pass.value(), m_session, exchange, tradingSymbol);
}

ScripNames HostScrips::Names(std::string_view exchange, std::string_view series, std::string_view symbol) {
    return AskScripNames(m_pass.value(), m_session, exchange, series, symbol);
}

BasketLoading::BasketLoading(const Session& session, const BeginReading& reading, BasketRules rules,
                             const Target& target)
    : m_session(session), m_rules(std::move(rules)), m_scrips(session), m_target(target),
      m_load(reading(m_rules, m_scrips, *this)) {}

bool BasketLoading::Step(Pass pass) {
    m_scrips.Admit(pass);
    // Each line may ask the host, which may bring the end of the load.
    for (int line = 0; line < kLinesAStep; ++line)
        if (m_stopped || m_session.Ended() || !m_load->Read(1)) return false;
    return true;
}

void BasketLoading::OnRow(const BasketTexts& texts) {
    const RecordId row = m_target.rows.AddLoaded(texts, m_load->LinesRead());
    KnowAgain(row, texts);
    m_target.list.InsertFront(row);
}

// Of several, the one that may be in the book.
void BasketLoading::KnowAgain(RecordId row, const BasketTexts& texts) {
    const OrderLedger& ledger = m_session.record.Ledger();
    if (ledger.Orders().empty()) return;
    if (std::exchange(m_recordCounts, ledger.AllCounts()) != ledger.AllCounts()) m_recorded.clear();
    const RecordTexts order = AskedForBy(texts, m_startDates);
    const auto [found, isNew] = m_recorded.try_emplace(AskedForKey(order));
    std::vector<OrderPlace>& places = found->second;
    if (isNew) {
        places = ledger.Like(order);
        std::ranges::reverse(places);
        std::ranges::stable_sort(places, {}, [&](OrderPlace place) { return MayStand(ledger[place].State()); });
    }
    BasketRows& rows = m_target.rows;
    while (!places.empty() && rows.ByOrder(places.back()) != kNoRecord)
        places.pop_back();
    if (!places.empty()) rows.SetOrder(row, places.back(), RowStateOf(ledger[places.back()].State()));
}

void BasketLoading::OnNotice(std::string_view text) {
    m_notice = text;
    m_notices.Add(text);
}

void BasketLoading::OnRejected(const RejectedLine& line, const BasketTexts& columns) {
    m_target.rejected.push_back(line);
    // What has no reason was told as a notice.
    if (line.reason.empty()) m_target.rejected.back().reason = m_notice;
    const auto text = [&](BasketField field) { return std::string(columns[field]); };
    std::string exchange = text(BasketField::exchange);
    Convert(kExchangeToDisplay, columns[BasketField::exchange], exchange);
    m_session.LogLast(Format("%s %s SIP Order Upload Failed: %s %s Client ID : %s by %s In Line Number %d",
                             exchange.c_str(), text(BasketField::sideWord).c_str(),
                             text(BasketField::product).c_str(), text(BasketField::token).c_str(),
                             text(BasketField::account).c_str(), m_session.identity.loginId.c_str(),
                             line.number));
}

} // namespace planfold
