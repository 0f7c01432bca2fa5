#include "host/server/ChangeMemory.h"

#include "host/server/schedule/Schedule.h"

namespace vesk {
namespace {

constexpr std::size_t kMostChanges = 200'000; // some 30 MB
constexpr std::int64_t kLongest = std::int64_t{7} * 86'400;

constexpr std::string_view kChangeRecord = "changed";
// The journal's names of the fields.
constexpr std::uint32_t kTagLogin = 1, kTagSentAs = 2, kTagContents = 3, kTagAt = 4;

constexpr std::uint32_t kAsked[] = {
    tag::requestName, tag::registrationNumber, tag::amountOrQuantity, tag::totalPeriod,
    tag::orderId,     tag::cancelledBy,        tag::userText};

std::string KeyOf(std::string_view loginId, std::string_view sentAs) {
    return std::string(loginId).append(1, '\0').append(sentAs);
}

} // namespace

std::uint32_t ChangeOrigin::ContentsOf(void* message) {
    std::uint32_t sum = 0;
    for (const std::uint32_t tag : kAsked) {
        const std::string_view text = qmx::Text(message, tag);
        sum = Crc32(text, Crc32(std::to_string(text.size()) + ":", sum));
    }
    return sum;
}

std::string ChangeOrigin::Json() const {
    FieldRecord record;
    record.Set(kTagLogin, loginId);
    record.Set(kTagSentAs, sentAs);
    if (contents) record.Set(kTagContents, std::to_string(*contents));
    record.Set(kTagAt, std::to_string(at));
    return record.JsonAs(kChangeRecord);
}

void ChangeMemory::Remember(const ChangeOrigin& origin) {
    if (origin.sentAs.empty()) return;
    const auto [known, isNew] =
        m_known.emplace(KeyOf(origin.loginId, origin.sentAs), Known{origin.contents, origin.at});
    if (!isNew) return;
    m_order.push_back(&known->first);
    for (auto oldest = m_known.find(*m_order.front());
         m_order.size() > kMostChanges || origin.at - oldest->second.at > kLongest;
         oldest = m_known.find(*m_order.front())) {
        m_order.pop_front();
        m_known.erase(oldest);
    }
}

std::optional<ChangeOrigin> ChangeMemory::Find(std::string_view loginId, std::string_view sentAs) const {
    const auto found = m_known.find(KeyOf(loginId, sentAs));
    if (found == m_known.end()) return std::nullopt;
    return ChangeOrigin{loginId, sentAs, found->second.contents, found->second.at};
}

void ChangeMemory::WriteTo(const Journal::Sink& sink) const {
    for (const std::string* key : m_order) {
        const Known& known = m_known.at(*key);
        const std::string_view whole = *key;
        const std::size_t end = whole.find('\0');
        sink(ChangeOrigin{whole.substr(0, end), whole.substr(end + 1), known.contents, known.at}.Json());
    }
}

bool ChangeMemory::Replay(std::string_view record) {
    FieldRecord fields;
    if (!RecordReader(record).TakeAll(kChangeRecord, fields)) return false;
    ChangeOrigin origin{fields.Text(kTagLogin), fields.Text(kTagSentAs)};
    if (const auto contents = WholeNumber(fields.Text(kTagContents)))
        origin.contents = static_cast<std::uint32_t>(*contents);
    origin.at = WholeNumber(fields.Text(kTagAt)).value_or(0);
    Remember(origin);
    return true;
}

} // namespace vesk
