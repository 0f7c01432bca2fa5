#include "bench/Cases.h"
#include "bench/PeerBook.h"
#include "bench/SampleBook.h"
#include "bench/SqlitePeer.h"
#include "plugin/orderbook/OrderInfo.h"

#include <boost/unordered/unordered_flat_map.hpp>

#include <array>
#include <memory>

namespace bench {
namespace {

using planfold::OrderCache;
using planfold::OrderField;

struct TextHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const { return boost::hash<std::string_view>{}(text); }
};
using BoostBook = boost::unordered_flat_map<std::string, PeerRecord, TextHash, std::equal_to<>>;

// Without a copy of the number, whatever views the map takes.
PeerBook::iterator Find(PeerBook& book, std::string_view number) {
    return book.find(absl::string_view(number.data(), number.size()));
}
BoostBook::iterator Find(BoostBook& book, std::string_view number) {
    return book.find(number);
}

// What modifying a registration changes of it, and then an instalment.
constexpr OrderField kUpdated[] = {
    OrderField::amount,    OrderField::endDate,
    OrderField::sipStatus, OrderField::nextExecutionDate,
    OrderField::userText,  OrderField::installmentsRegistered,
};

void Fill(OrderCache& cache, const Numbers& numbers) {
    SampleMessages messages(SampleMessages::queried);
    for (std::uint32_t i = 0; i < numbers.Count(); ++i) {
        const qmx::MessageReader reader(messages.Next(numbers[i]));
        ReadOrderRow(reader.Handle(), true, "Tara Thakur", cache[cache.Add(numbers[i])]);
    }
}

// The records, and what is asked of them, one number after the other.
struct Records {
    explicit Records(std::uint32_t count) : asked(Numbers::InAnyOrder(count)) {
        Fill(cache, Numbers(0, count));
        Fill(samples, Numbers(0, kSamples));
    }
    std::string_view NextNumber() { return asked[next = next + 1 == asked.Count() ? 0 : next + 1]; }
    const planfold::sOrderinfo& NextSample() { return samples[sample = (sample + 1) % kSamples]; }

    static constexpr std::uint32_t kSamples = 251; // prime to every number of records
    Numbers asked;
    OrderCache cache;
    OrderCache samples; // whose texts the updates set
    std::uint32_t next = 0, sample = 0;
};

void Update(OrderCache& cache, std::string_view number, const planfold::sOrderinfo& sample) {
    planfold::OrderChanges changes;
    for (const OrderField field : kUpdated)
        changes[field] = sample.Text(field);
    cache[cache.Find(number)].Apply(changes);
}

void Update(PeerBook& book, std::string_view number, const planfold::sOrderinfo& sample) {
    PeerRecord& record = Find(book, number)->second;
    for (const OrderField field : kUpdated)
        record[static_cast<std::size_t>(field)] = sample.Text(field);
}

void Update(SqlitePeer& table, std::string_view number, const planfold::sOrderinfo& sample) {
    std::array<std::string_view, 1 + std::size(kUpdated)> texts{number};
    for (std::size_t i = 0; i < std::size(kUpdated); ++i)
        texts[i + 1] = sample.Text(kUpdated[i]);
    table.Upsert(texts);
}

template <class Book>
std::shared_ptr<Book> PeerOf(const OrderCache& cache) {
    auto book = std::make_shared<Book>();
    book->reserve(cache.Size());
    for (planfold::RecordId i = 0; i < cache.Size(); ++i)
        book->emplace(cache[i].Number(), Copied(cache[i]));
    return book;
}

std::shared_ptr<SqlitePeer> TableOf(const OrderCache& cache) {
    std::array<std::size_t, std::size(kUpdated)> updated{};
    for (std::size_t i = 0; i < updated.size(); ++i)
        updated[i] = static_cast<std::size_t>(kUpdated[i]);
    const auto key = static_cast<std::size_t>(OrderField::registrationNumber);
    auto table = std::make_shared<SqlitePeer>(planfold::kOrderFieldCount, key, updated);
    for (planfold::RecordId i = 0; i < cache.Size(); ++i) {
        std::array<std::string_view, planfold::kOrderFieldCount> texts;
        for (std::size_t field = 0; field < texts.size(); ++field)
            texts[field] = cache[i].Text(static_cast<OrderField>(field));
        table->Insert(texts);
    }
    return table;
}

template <class Book>
Case FindIn(std::string name, std::shared_ptr<Records> records, std::shared_ptr<Book> book) {
    return {std::move(name), [=] {
                const auto found = Find(*book, records->NextNumber());
                Require(found != book->end(), "find");
                Keep(&*found);
            }};
}

} // namespace

std::vector<Case> RecordCases(std::uint32_t count, bool peers) {
    auto records = std::make_shared<Records>(count);
    std::vector<Case> cases{
        {Sized("find", count),
         [=] {
             const auto found = records->cache.Find(records->NextNumber());
             Require(found != planfold::kNoRecord, "find");
             Keep(&records->cache[found]);
         }},
        {Sized("update", count), [=] { Update(records->cache, records->NextNumber(), records->NextSample()); }},
    };
    if (!peers) return cases;
    auto absl = PeerOf<PeerBook>(records->cache);
    auto table = TableOf(records->cache);
    cases.push_back(FindIn(Sized("find-absl", count), records, absl));
    cases.push_back(FindIn(Sized("find-boost", count), records, PeerOf<BoostBook>(records->cache)));
    cases.push_back(
        {Sized("update-absl", count), [=] { Update(*absl, records->NextNumber(), records->NextSample()); }});
    cases.push_back(
        {Sized("update-sqlite", count), [=] { Update(*table, records->NextNumber(), records->NextSample()); }});
    return cases;
}

std::vector<Result> RecordBytes(std::uint32_t count) {
    const Numbers numbers(0, count);
    const std::size_t before = HeapBytes();
    OrderCache cache;
    Fill(cache, numbers);
    const std::size_t filled = HeapBytes();
    PeerBook peer;
    for (planfold::RecordId i = 0; i < count; ++i)
        peer.emplace(cache[i].Number(), Copied(cache[i]));
    const std::size_t both = HeapBytes();
    return {{"bytes-record", static_cast<double>(filled - before) / count},
            {"bytes-record-absl", static_cast<double>(both - filled) / count}};
}

} // namespace bench
