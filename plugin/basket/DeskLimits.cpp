#include "plugin/basket/DeskLimits.h"

#include "plugin/base/Dates.h"
#include "plugin/base/Numbers.h"
#include "plugin/base/Text.h"

#include <algorithm>

namespace planfold {

namespace {

struct LimitRow {
    const char* key;
    const char* above; // in front of the bound
    bool isMoney;
};
constexpr LimitRow kLimits[] = {
    {"Amount", "Amount above ", true},
    {"Quantity", "Quantity above ", false},
    {"Periods", "Periods above ", false},
    {"FirstDate", "Days to the first date above ", false},
    {"RowsPerClient", "Orders of a client above ", false},
    {"Total", "Total above ", true},
};
static_assert(std::size(kLimits) == static_cast<std::size_t>(DeskLimit::count));

const LimitRow& RowOf(DeskLimit limit) {
    return kLimits[static_cast<std::size_t>(limit)];
}

// "1,00,000.50" as hundredths; none for anything else.
std::optional<std::int64_t> ReadHundredths(std::string text) {
    constexpr std::size_t mostDigits = 15;
    std::erase(text, ',');
    const std::size_t point = std::min(text.find('.'), text.size());
    const std::string whole = text.substr(0, point);
    std::string part = point < text.size() ? text.substr(point + 1) : std::string();
    if (whole.empty() || whole.size() > mostDigits || part.size() > 2 || !AllDigits(whole) || !AllDigits(part))
        return std::nullopt;
    part.resize(2, '0');
    return LeadingInteger(whole) * 100 + LeadingInteger(part);
}

} // namespace

const char* KeyOf(DeskLimit limit) {
    return RowOf(limit).key;
}

DeskLimits::DeskLimits(const std::function<std::string(const std::string&)>& valueOf, std::int64_t now)
    : m_today(ToSeconds(ToLocal(now).Midnight())) {
    constexpr std::string_view hard = " hard";
    for (std::size_t i = 0; i < m_bounds.size(); ++i) {
        Bound& bound = m_bounds[i];
        std::string text = valueOf(kLimits[i].key);
        bound.isHard = text.size() > hard.size()
                       && EqualsIgnoringCase(std::string_view(text).substr(text.size() - hard.size()), hard);
        if (bound.isHard) text.resize(text.size() - hard.size());
        if (text.empty()) continue;
        bound.most = ReadHundredths(text);
        if (!bound.most || (!kLimits[i].isMoney && *bound.most % 100 != 0)) {
            bound.most.reset();
            bound.unreadable = text;
        } else if (!kLimits[i].isMoney) {
            *bound.most /= 100;
        }
    }
}

void DeskLimits::TellUnreadable(const Tell& tell) const {
    for (std::size_t i = 0; i < m_bounds.size(); ++i)
        if (const Bound& bound = m_bounds[i]; !bound.unreadable.empty())
            tell({static_cast<DeskLimit>(i), bound.isHard,
                  std::string("The limit ") + kLimits[i].key + " cannot be read: " + bound.unreadable});
}

void DeskLimits::Judge(DeskLimit limit, std::int64_t value, const Tell& tell, bool isOfRow,
                       const std::string& of) const {
    const Bound& bound = At(limit);
    if (!bound.most || value <= *bound.most) return;
    const LimitRow& row = RowOf(limit);
    tell({limit, bound.isHard,
          row.above + (row.isMoney ? FormatRupees(*bound.most) : std::to_string(*bound.most)), of, isOfRow});
}

void DeskLimits::Add(const BasketTexts& row, const Tell& tell) {
    const BasketField field = ValueField(row[BasketField::investType]);
    const std::int64_t value = LeadingInteger(row[field]);
    const bool byAmount = field == BasketField::amount;
    Judge(byAmount ? DeskLimit::amount : DeskLimit::quantity, value, tell, true);
    Judge(DeskLimit::periods, LeadingInteger(row[BasketField::totalPeriod]), tell, true);
    const std::int64_t ahead = LeadingInteger(row[BasketField::startDate]) - m_today;
    Judge(DeskLimit::firstDate, ahead / kSecondsPerDay, tell, true);
    if (byAmount && __builtin_add_overflow(m_total, value, &m_total)) m_total = INT64_MAX;
    ++m_rowsOf[std::string(row[BasketField::account])];
}

void DeskLimits::End(const Tell& tell) const {
    for (const auto& [client, rows] : m_rowsOf)
        Judge(DeskLimit::rowsPerClient, rows, tell, false, client);
    Judge(DeskLimit::total, m_total, tell, false);
}

} // namespace planfold
