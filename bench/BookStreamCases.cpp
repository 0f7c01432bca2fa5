#include "bench/Cases.h"
#include "bench/PeerBook.h"
#include "bench/SampleBook.h"
#include "bench/SilentHost.h"
#include "host/korvexcontrols/model/Cells.h"
#include "plugin/orderbook/OrderBook.h"
#include "sdk/HeapStringManager.h"
#include "sdk/Tags.h"
#include "tests/support/ModelList.h"

#include <algorithm>
#include <memory>
#include <numeric>

namespace bench {
namespace {

using namespace planfold;
using test::ModelList;

constexpr std::string_view kAccountName = "Tara Thakur";

class ModelView final : public BookView {
public:
    void ShowMessage(planfold::Pass, std::string_view) override {}
    bool IsOpen() const override { return true; }
    bool MayAsk() override { return true; }
    bool Ask(Pass, std::string_view) override { return false; }
    std::string AskReason(Pass, std::size_t) override { return {}; }
    void OpenForModify(Pass, const sOrderinfo&) override {}
    void TellChanged(Pass, const sOrderinfo&) override {}
    void ShowRun() override {}
    BookList& Registered() override { return registered; }
    BookList& Cancelled() override { return cancelled; }

    ModelList registered, cancelled;
};

// The book without windows, in a host that knows a name for every client.
class Book {
public:
    Book() {
        m_session.host.pu_get_client_name = [](OutString name, InString) {
            *name = kAccountName;
            return 1;
        };
        m_session.m_nSipOperationMode = 1;
        m_view.registered.Show(m_book.Records());
        m_view.cancelled.Show(m_book.Records());
    }
    Book(const Book&) = delete;
    Book& operator=(const Book&) = delete;

    void Stream(std::string_view number) {
        const qmx::MessageReader received(m_streamed.Next(number));
        m_book.OnBroadcast(received.Handle());
    }
    void Answer(std::string_view number) {
        const qmx::MessageReader received(m_queried.Next(number));
        m_book.OnResponse(received.Handle());
    }
    std::uint32_t Rows() { return Registered().RowCount(); }
    korvex::ListModel& Registered() { return m_view.registered.Model(); }
    const OrderCache& Records() const { return m_book.Records(); }

private:
    HeapStringManager m_strings;
    std::string m_loginId = "DEALER1", m_peerA = "BROKER", m_peerB = "BRANCH", m_active;
    NoRecord m_noRecord;
    OrderRecord m_record{m_noRecord, [] { return LocalDateTime{2027, 1, 31, 9, 15, 0}; }};
    Session m_session{[](const char*) -> AnyFunction { return nullptr; },
                      {m_loginId, m_peerA, m_peerB, m_active},
                      m_strings,
                      m_record};
    ModelView m_view;
    OrderBook m_book{m_session, m_view, {}};
    SampleMessages m_streamed{SampleMessages::streamed}, m_queried{SampleMessages::queried};
};

std::unique_ptr<Book> Filled(std::uint32_t rows) {
    auto book = std::make_unique<Book>();
    const Numbers numbers(0, rows);
    for (std::uint32_t i = 0; i < rows; ++i)
        book->Answer(numbers[i]);
    Require(book->Rows() == rows, "filling the book");
    return book;
}

// How the rows are shown.
struct Showing {
    const char* name;
    void (*set)(korvex::ListModel& model);
};
constexpr Showing kShowings[] = {
    {"stream", [](korvex::ListModel&) {}},
    {"stream-filtered",
     [](korvex::ListModel& model) {
         const korvex::FilterInput input{korvex::FilterOperator::contains, "byte", {}};
         model.SetFilter(3, &input);
     }},
    {"stream-sorted",
     [](korvex::ListModel& model) {
         model.SetSort({{7, false, korvex::ValueType::amount}});
     }},
};
static_assert(kBookColumns[3].field == OrderField::tradingSymbol
              && kBookColumns[7].field == OrderField::amount);

Case StreamCase(const Showing& showing, std::uint32_t rows, std::shared_ptr<const Numbers> numbers) {
    std::shared_ptr<Book> book = Filled(rows);
    showing.set(book->Registered());
    return {Sized(showing.name, rows), [=, next = 0u]() mutable {
                book->Stream((*numbers)[next]);
                if (++next == numbers->Count()) next = 0;
            }};
}

// Looks through all cells of each row, as a search does that finds nothing.
Case SearchCase(std::uint32_t rows) {
    std::shared_ptr<Book> book = Filled(rows);
    std::vector<std::int32_t> columns(std::size(kBookColumns));
    std::iota(columns.begin(), columns.end(), 0);
    return {Sized("search", rows),
            [=] {
                const auto wanted = [](std::string_view cell) {
                    return korvex::ContainsFolded(cell, "nowhere");
                };
                const korvex::ListRows::Search all{.columns = columns};
                Require(book->Registered().Rows().Find(all, wanted) == korvex::kNone, "a search");
            },
            rows};
}

// New registrations in front of so many; the book is made anew when it has grown too far.
class Growth {
public:
    explicit Growth(std::uint32_t rows) : m_rows(rows), m_numbers(0, 0) {}

    std::uint32_t Units() const { return std::min(m_rows / 10, 10'000u); }
    void Prepare() {
        if (!m_book || m_book->Rows() > m_rows + m_rows / 2) m_book = Filled(m_rows);
        m_numbers = Numbers(m_book->Rows(), Units());
    }
    void Grow() {
        for (std::uint32_t i = 0; i < m_numbers.Count(); ++i)
            m_book->Stream(m_numbers[i]);
        Require(m_book->Registered().ShownAt(0) == m_book->Rows() - 1, "a new row in front");
    }

private:
    std::uint32_t m_rows;
    Numbers m_numbers;
    std::unique_ptr<Book> m_book;
};

// The same answers read by tag in the same order, each value as it is.
class PeerFill {
public:
    void Answer(std::string_view number) {
        constexpr std::uint32_t tags[] = {
            tag::loginId,
            tag::exchange,
            tag::tradingSymbol,
            tag::product,
            tag::side,
            tag::orderType,
            tag::amountOrQuantity,
            tag::frequency,
            tag::startDate,
            tag::totalPeriod,
            tag::nextExecutionDate,
            tag::registrationNumber,
            tag::account,
            tag::investType,
            tag::sipStatus,
            tag::amountOrQuantity,
            tag::orderId,
            tag::streamName,
            tag::registrationDate,
            tag::account,
            tag::orderSource,
            tag::totalPeriod,
            tag::userText,
            tag::cancelledDate,
            tag::cancelledBy,
            tag::endDate,
            tag::token,
        };
        static_assert(std::size(tags) == kOrderFieldCount);
        const qmx::MessageReader received(m_messages.Next(number));
        PeerRecord record;
        record.reserve(kOrderFieldCount);
        for (const std::uint32_t each : tags)
            record.emplace_back(qmx::Text(received.Handle(), each));
        m_book.insert_or_assign(std::string(qmx::Text(received.Handle(), tag::registrationNumber)),
                                std::move(record));
    }
    std::uint32_t Rows() const { return static_cast<std::uint32_t>(m_book.size()); }

private:
    SampleMessages m_messages{SampleMessages::queried};
    PeerBook m_book;
};

template <class Filled>
Case FillCase(std::string name, std::shared_ptr<const Numbers> numbers) {
    struct State {
        std::unique_ptr<Filled> book;
    };
    auto state = std::make_shared<State>();
    return {std::move(name),
            [=] {
                for (std::uint32_t i = 0; i < numbers->Count(); ++i)
                    state->book->Answer((*numbers)[i]);
                Require(state->book->Rows() == numbers->Count(), "filling");
            },
            numbers->Count(),
            [=] {
                state->book.reset();
                state->book = std::make_unique<Filled>();
            }};
}

} // namespace

std::vector<Case> StreamCases(std::uint32_t rows) {
    auto numbers = std::make_shared<const Numbers>(Numbers::InAnyOrder(rows));
    std::vector<Case> cases;
    for (const Showing& showing : kShowings)
        cases.push_back(StreamCase(showing, rows, numbers));
    cases.push_back(SearchCase(rows));
    auto growth = std::make_shared<Growth>(rows);
    cases.push_back({Sized("new", rows), [=] { growth->Grow(); }, growth->Units(), [=] { growth->Prepare(); }});
    return cases;
}

std::vector<Case> FillCases(std::uint32_t rows) {
    auto numbers = std::make_shared<const Numbers>(0, rows);
    return {FillCase<Book>(Sized("fill", rows), numbers),
            FillCase<PeerFill>(Sized("fill-absl", rows), numbers)};
}

std::vector<Result> RowBytes(std::uint32_t rows) {
    const auto book = Filled(rows);
    const std::size_t before = HeapBytes();
    ModelList list;
    list.Show(book->Records());
    for (RecordId record = 0; record < rows; ++record)
        list.InsertFront(record, Arrival::listed);
    const std::size_t plain = HeapBytes();
    kShowings[2].set(list.Model());
    const std::size_t sorted = HeapBytes();
    return {{"bytes-row", static_cast<double>(plain - before) / rows},
            {"bytes-row-sorted", static_cast<double>(sorted - before) / rows}};
}

} // namespace bench
