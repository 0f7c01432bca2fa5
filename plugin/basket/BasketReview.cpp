#include "plugin/basket/BasketReview.h"

#include "plugin/base/Numbers.h"
#include "plugin/base/Text.h"
#include "plugin/messaging/HostQuestions.h"
#include "plugin/orderentry/DuplicateGuard.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <memory>
#include <utility>

namespace planfold {

namespace {

constexpr const char* kKinds[] = {"Fault", "Warning", "Note", "Total"};
static_assert(std::size(kKinds) == static_cast<std::size_t>(ReviewKind::count));

// By what the totals are told.
struct Grouping {
    const char* name;
    BasketField field;
};
constexpr Grouping kGroupings[] = {
    {"Client", BasketField::account},
    {"Side", BasketField::sideWord},
    {"Scrip", BasketField::tradingSymbol},
    {"Start date", BasketField::startDate},
};

void Take(ReviewLine& line, const sBasketOrderData& row) {
    ++line.rows;
    const bool byAmount = row.Text(BasketField::investType) == "value";
    (byAmount ? line.amountPaise : line.quantity) +=
        LeadingInteger(row.Text(byAmount ? BasketField::amount : BasketField::quantity));
}

std::string NameOf(const sBasketOrderData& row) {
    return std::string(row.Text(BasketField::account)) + ' ' + std::string(row.Text(BasketField::tradingSymbol))
           + ' ' + std::string(row.Text(BasketField::frequency));
}

ReviewLine OfRow(ReviewKind kind, std::string what, const sBasketOrderData& row) {
    ReviewLine line{kind, std::move(what), NameOf(row), 0};
    Take(line, row);
    return line;
}

class Review {
public:
    Review(const ReviewFacts& facts, const BasketRows& rows, const std::vector<RecordId>& records)
        : m_facts(facts), m_rows(rows), m_records(records) {}

    void Rejected(const RejectedLines& rejected) {
        for (const RejectedLine& line : rejected.lines)
            lines.push_back({ReviewKind::fault, Format("Line %d was rejected: ", line.number) + line.reason,
                             line.text.substr(0, line.text.find('\0')), 0});
    }
    void Limits(DeskLimits limits) {
        const sBasketOrderData* row = nullptr;
        const auto tell = [&](const LimitBreach& breach) {
            const ReviewKind kind = breach.isHard ? ReviewKind::fault : ReviewKind::warning;
            if (breach.isOfRow)
                lines.push_back(OfRow(kind, breach.what, *row));
            else
                lines.push_back({kind, breach.what, breach.of, 0});
        };
        limits.TellUnreadable(tell);
        for (const RecordId record : m_records)
            limits.Add((row = &m_rows[record])->Texts(), tell);
        limits.End(tell);
    }
    void Likes() {
        StartDates dates;
        for (const RecordId record : m_records)
            if (m_facts.isLike && m_facts.isLike(AskedForBy(m_rows[record].Texts(), dates)))
                lines.push_back(OfRow(ReviewKind::warning,
                                      "Like a registration, an order of today or another row", m_rows[record]));
    }
    void Groups(std::int64_t today) {
        std::map<std::string, ReviewLine> groups[std::size(kGroupings)];
        for (const RecordId record : m_records)
            for (std::size_t i = 0; i < std::size(kGroupings); ++i) {
                const std::string key(m_rows[record].Text(kGroupings[i].field));
                const auto group =
                    groups[i].try_emplace(key, ReviewLine{ReviewKind::total, kGroupings[i].name, key, 0});
                Take(group.first->second, m_rows[record]);
            }
        for (auto& [client, line] : groups[0])
            if (client.empty() || (m_facts.isUnknown && m_facts.isUnknown(client)))
                Add(ReviewKind::warning, client.empty() ? "No client" : "The terminal does not know the client",
                    line);
        for (auto& [seconds, line] : groups[3]) {
            const LocalDateTime date = ToLocal(LeadingInteger(seconds));
            line.of = FormatPickerDate(date);
            if (ToSeconds(date) < today) Add(ReviewKind::fault, "The start date has passed", line);
            if (const auto day = DayOf(date); day && m_facts.closed.Has(*day))
                Add(ReviewKind::note, "Starts on a day without trading", line);
        }
        for (const auto& each : groups)
            for (const auto& [key, line] : each)
                lines.push_back(line);
    }
    void Tickets() {
        const auto amount = [&](RecordId record) {
            return LeadingInteger(m_rows[record].Text(BasketField::amount));
        };
        std::vector<RecordId> byAmount;
        std::ranges::copy_if(m_records, std::back_inserter(byAmount), [&](RecordId record) {
            return m_rows[record].Text(BasketField::investType) == "value";
        });
        if (byAmount.empty()) return;
        const auto [smallest, largest] = std::ranges::minmax_element(byAmount, {}, amount);
        lines.push_back(OfRow(ReviewKind::total, "Largest ticket", m_rows[*largest]));
        lines.push_back(OfRow(ReviewKind::total, "Smallest ticket", m_rows[*smallest]));
    }

    std::vector<ReviewLine> lines;

private:
    void Add(ReviewKind kind, const char* what, ReviewLine line) {
        line.kind = kind;
        line.what = what;
        lines.push_back(std::move(line));
    }

    const ReviewFacts& m_facts;
    const BasketRows& m_rows;
    const std::vector<RecordId>& m_records;
};

} // namespace

std::string ReviewText(const ReviewLine& line, ReviewField field) {
    switch (field) {
    case ReviewField::kind:
        return kKinds[static_cast<std::size_t>(line.kind)];
    case ReviewField::what:
        return line.what;
    case ReviewField::of:
        return line.of;
    case ReviewField::rows:
        return line.rows ? std::to_string(line.rows) : std::string();
    case ReviewField::amount:
        return line.amountPaise ? FormatRupees(line.amountPaise) : std::string();
    default:
        return line.quantity ? std::to_string(line.quantity) : std::string();
    }
}

ReviewFacts FactsOf(Pass pass, Session& session) {
    const auto guard = std::make_shared<DuplicateGuard>(session);
    return {session.ClosedDays(), [guard](const RecordTexts& order) { return guard->IsLike(order); },
            [pass, &session](const std::string& client) { return IsUnknownClient(pass, session, client); }};
}

std::vector<ReviewLine> ReviewBasket(const BasketRows& rows, const std::vector<RecordId>& records,
                                     const RejectedLines& rejected, DeskLimits limits,
                                     const ReviewFacts& facts) {
    Review review(facts, rows, records);
    review.Rejected(rejected);
    const std::int64_t today = limits.Today();
    review.Limits(std::move(limits));
    review.Likes();
    review.Groups(today);
    review.Tickets();
    std::ranges::stable_sort(review.lines, {}, &ReviewLine::kind);
    return std::move(review.lines);
}

} // namespace planfold
