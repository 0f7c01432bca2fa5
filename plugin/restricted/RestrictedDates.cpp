#include "plugin/restricted/RestrictedDates.h"

#include "plugin/base/Numbers.h"
#include "plugin/messaging/Request.h"
#include "plugin/resources/resource.h"
#include "sdk/Tags.h"

#include <algorithm>
#include <string>

namespace planfold {

namespace {

constexpr int kDays = 31;
constexpr int kYears = 21;

// As it is chosen in the lists.
struct DayRange {
    std::string from;
    std::string to;
    std::string year;
};

// One of the three values: where it is chosen, sent and shown.
struct ValueRow {
    std::string DayRange::*member;
    int list;
    int held; // the display of what the server holds
    std::uint32_t tag;
    const char* missing;
};
constexpr ValueRow kValues[] = {
    {&DayRange::from, IDC_RESTRICT_FROM, IDC_HELD_FROM, tag::startDate, "Please select a From date"},
    {&DayRange::to, IDC_RESTRICT_TO, IDC_HELD_TO, tag::restrictedTo, "Please select a To date"},
    {&DayRange::year, IDC_RESTRICT_YEAR, IDC_HELD_YEAR, tag::restrictedYear, "Please select the year"},
};

constexpr char kSetName[] = "calendar_add_restricted_dates";
constexpr char kGetName[] = "calendar_get_restricted_dates";
// Both requests tell their failures in the words of the first.
constexpr char kNameFailed[] = "Failed to add the request calendar_add_restricted_dates";
constexpr char kSendFailed[] = "Sending Request calendar_add_restricted_dates Failed";
constexpr char kDateFailed[] = "Failed to add start date";

template <std::size_t row>
std::optional<std::string_view> Value(const DayRange& range) {
    return range.*kValues[row].member;
}

RestrictedRange InNumbers(const std::string& from, const std::string& to, const std::string& year) {
    const auto number = [](const std::string& text) {
        return static_cast<int>(std::clamp<std::int64_t>(LeadingInteger(text), 0, 9999));
    };
    return {number(year), number(from), number(to)};
}

constexpr RequestField<const DayRange> kSetFields[] = {
    {kValues[0].tag, Value<0>, kDateFailed},
    {kValues[1].tag, Value<1>, kDateFailed},
    {kValues[2].tag, Value<2>, kDateFailed},
};
constexpr Request<const DayRange> kSetRequest{kSetName, kNameFailed, kSetFields, kSendFailed};
constexpr Request<const DayRange> kGetRequest{kGetName, kNameFailed, {}, kSendFailed};

// Why the range is not to be sent; null when it may be.
const char* Refusal(const DayRange& range) {
    for (const ValueRow& row : kValues)
        if ((range.*row.member).empty()) return row.missing;
    if (LeadingInteger(range.from) > LeadingInteger(range.to)) return "From date can't be greater than To date";
    return nullptr;
}

} // namespace

const AnswerHandler<RestrictedDates> RestrictedDates::kAnswers[] = {
    {kSetName, &RestrictedDates::HandleSet},
    {kGetName, &RestrictedDates::HandleGet},
};

void RestrictedDates::Initialise(const LocalDateTime& now) {
    m_life.Renew();
    struct ListRow {
        int list;
        int first;
        int count;
    };
    const ListRow lists[] = {
        {IDC_RESTRICT_FROM, 1, kDays},
        {IDC_RESTRICT_TO, 1, kDays},
        {IDC_RESTRICT_YEAR, now.year, kYears},
    };
    for (const ListRow& row : lists) {
        if (m_view.Has(row.list))
            for (int number = row.first; number < row.first + row.count; ++number)
                m_view.AddItem(row.list, std::to_string(number));
        else if (!m_life.Across([&](Pass pass) { m_view.ShowMessage(pass, "Populating days failed"); }))
            return;
    }
}

void RestrictedDates::Set() {
    DayRange range;
    for (const ValueRow& row : kValues)
        range.*row.member = m_view.Text(row.list);
    if (const char* refusal = Refusal(range)) return m_view.ShowLast(refusal);
    const bool isThere = m_life.Across([&](Pass pass) {
        SendRequest<const DayRange>(pass, m_session, m_control, m_view, kSetRequest, range);
    });
    if (!isThere) return;
    m_asked = InNumbers(range.from, range.to, range.year);
    ShowHeld(nullptr);
}

void RestrictedDates::Get() {
    Lifetime::Last(
        [&](Pass pass) { SendRequest<const DayRange>(pass, m_session, m_control, m_view, kGetRequest, {}); });
}

void RestrictedDates::OnResponse(void* message) {
    if (m_session.Ended()) return;
    Dispatch<RestrictedDates>(*this, m_session, kAnswers, Answer(message));
}

void RestrictedDates::Know(const RestrictedRange& range) {
    std::erase_if(m_session.restricted, [&](const RestrictedRange& held) { return held.year == range.year; });
    if (range.year > 0) m_session.restricted.push_back(range);
}

void RestrictedDates::HandleSet(const Answer&) {
    Know(m_asked);
    const bool goesOn = m_session.life.Across(
        [&](Pass pass) { m_view.ShowMessage(pass, "Restricted Date configured Succesfully"); });
    if (const auto resend = m_session.host.pu_resend_nontradingDate_Request; resend && goesOn)
        Lifetime::Last([&](Pass pass) { resend(pass); });
}

void RestrictedDates::ShowHeld(const Answer* answer) {
    std::vector<ControlText> texts;
    for (const ValueRow& row : kValues)
        texts.push_back({row.held, answer ? FieldText(answer->message, row.tag) : ""});
    m_view.SetTexts(texts);
}

void RestrictedDates::HandleGet(const Answer& answer) {
    ShowHeld(&answer);
    const auto told = [&](const ValueRow& row) { return FieldText(answer.message, row.tag); };
    Know(InNumbers(told(kValues[0]), told(kValues[1]), told(kValues[2])));
    m_session.LogLast("Restricted date retrieved succesfully");
}

} // namespace planfold
