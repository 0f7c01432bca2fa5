#include "plugin/basket/BasketChoice.h"

#include "plugin/base/Numbers.h"
#include "plugin/base/Text.h"
#include "plugin/orderentry/DuplicateGuard.h"

#include <algorithm>
#include <set>
#include <utility>

namespace planfold {

namespace {

std::string All(std::size_t rows) {
    return rows == 1 ? "it" : Format("all %zu", rows);
}

} // namespace

std::vector<BasketPlacing::Row> BasketChoice::Meant(Placed which) const {
    const BasketList& list = m_view.List();
    std::set<RecordId> selected;
    if (which == Placed::selected)
        for (const RecordId record : list.Selected())
            selected.insert(record);
    const auto isMeant = [&](RecordId record) {
        switch (which) {
        case Placed::selected:
            return selected.contains(record);
        case Placed::unsent:
            return !m_rows.IsSent(record);
        case Placed::refused:
            return m_rows.State(record) == RowState::refused;
        default:
            return true;
        }
    };
    std::vector<BasketPlacing::Row> placed;
    for (std::size_t row = 0; row < list.RowCount(); ++row)
        if (const RecordId record = list.RecordAt(row); isMeant(record))
            placed.push_back({record, static_cast<int>(row)});
    return placed;
}

bool BasketChoice::LeaveOutSent(std::vector<BasketPlacing::Row>& placed, Placed which, const Act& again) {
    if (which == Placed::refused) return true; // it is they that are meant
    const auto isSent = [&](const BasketPlacing::Row& row) { return m_rows.IsSent(row.record); };
    const std::size_t rows = placed.size();
    const auto sent = static_cast<std::size_t>(std::ranges::count_if(placed, isSent));
    if (sent == 0) return true;
    std::string question = rows == 1 ? "The order has already been sent.\n"
                                     : Format("%zu of the %zu orders have already been sent.\n", sent, rows);
    const auto isInDoubt = [&](const BasketPlacing::Row& row) {
        return m_rows.State(row.record) == RowState::inDoubt;
    };
    if (const auto doubts = std::ranges::count_if(placed, isInDoubt); doubts > 0)
        question += Format("In doubt: %zu. \"Compare Orders in Doubt\" tells whether the book has them.\n",
                           static_cast<std::size_t>(doubts));
    question += "\nYes: place " + All(rows) + (rows == 1 ? "" : ", and so these") + " again.\n";
    question += sent == rows ? "No: place none."
                             : Format("No: place only the other %zu.\nCancel: place none.", rows - sent);
    const Choice choice = m_questions.Choose(question, again);
    if (choice == Choice::no) std::erase_if(placed, isSent);
    return choice != Choice::cancel && !placed.empty();
}

// The start dates were judged when the rows came, perhaps days ago.
bool BasketChoice::LeaveOutLate(std::vector<BasketPlacing::Row>& placed, const Act& again) {
    const std::int64_t today = ToSeconds(m_view.Now().Midnight());
    const auto isLate = [&](const BasketPlacing::Row& row) {
        return LeadingInteger(m_rows[row.record].Text(BasketField::startDate)) < today;
    };
    const std::size_t rows = placed.size();
    const auto late = static_cast<std::size_t>(std::ranges::count_if(placed, isLate));
    if (late == 0) return true;
    const std::string fault =
        Format("The start date of %zu of the %zu orders has passed: enter another first.", late, rows);
    if (late == rows) {
        m_view.ShowLast(fault);
        return false;
    }
    if (!m_questions.Ask(fault + Format("\nPlace only the other %zu?", rows - late), again)) return false;
    std::erase_if(placed, isLate);
    return true;
}

// What was agreed to be sent again is not asked about twice. About what was refused nothing has been asked.
bool BasketChoice::LeaveOutLike(std::vector<BasketPlacing::Row>& placed, Placed which, const Act& again) {
    DuplicateGuard guard(m_session);
    StartDates dates;
    std::set<RecordId> like;
    for (auto row = placed.rbegin(); row != placed.rend(); ++row)
        if ((which == Placed::refused || !m_rows.IsSent(row->record))
            && guard.IsLike(AskedForBy(m_rows[row->record].Texts(), dates)))
            like.insert(row->record);
    if (like.empty()) return true;
    const std::size_t rows = placed.size();
    std::string question = guard.Text() + "\nYes: place " + All(rows) + ".\n";
    question += like.size() == rows
                    ? "No: place none."
                    : Format("No: place only the other %zu.\nCancel: place none.", rows - like.size());
    const Choice choice = m_questions.Choose(question, again);
    if (choice == Choice::no)
        std::erase_if(placed, [&](const BasketPlacing::Row& row) { return like.contains(row.record); });
    return choice != Choice::cancel && !placed.empty();
}

DeskLimits BasketChoice::Limits() const {
    return DeskLimits([this](const std::string& key) { return m_view.DeskLimit(key); },
                      ToSeconds(m_view.Now()));
}

// What has a question of its own, as clients and doubles have, is no warning here.
bool BasketChoice::KeepsLimits(const std::vector<BasketPlacing::Row>& placed, const Act& again) {
    DeskLimits limits = Limits();
    std::size_t warnings = 0;
    KeptTexts hard;
    const sBasketOrderData* row = nullptr;
    const auto tell = [&](const LimitBreach& breach) {
        if (!breach.isHard) return void(++warnings);
        const std::string of = breach.isOfRow ? std::string(row->Text(BasketField::account)) : breach.of;
        hard.Add(of.empty() ? breach.what : of + ": " + breach.what);
    };
    limits.TellUnreadable(tell);
    for (const BasketPlacing::Row& each : placed)
        limits.Add((row = &m_rows[each.record])->Texts(), tell);
    limits.End(tell);
    if (const std::string texts = hard.Text(); !texts.empty()) {
        m_view.ShowLast("The desk does not allow these orders to be placed.\n" + texts);
        return false;
    }
    return warnings == 0
           || m_questions.Ask(
               Format("Warnings: %zu. \"Check\" (Alt+C) lists them.\nPlace the orders all the same?", warnings),
               again);
}

bool BasketChoice::MayPlace(std::vector<BasketPlacing::Row>& placed, Placed which, const Act& again) {
    if (!LeaveOutSent(placed, which, again) || !LeaveOutLate(placed, again)) return false;
    std::set<std::string> clients;
    for (const BasketPlacing::Row& row : placed)
        clients.emplace(m_rows[row.record].Text(BasketField::account));
    return m_questions.AskAboutUnknown(clients, "Place their orders all the same?", again)
           && LeaveOutLike(placed, which, again) && KeepsLimits(placed, again)
           && m_questions.Ask("Are you sure to place these Basket Orders?", again);
}

} // namespace planfold
