#include "plugin/orderbook/OrderInfo.h"

#include "plugin/base/Codes.h"
#include "plugin/base/Numbers.h"
#include "plugin/messaging/Answer.h"
#include "plugin/messaging/HostQuestions.h"
#include "sdk/Tags.h"

#include <array>
#include <charconv>
#include <cstring>
#include <new>

namespace planfold {

// It stands in front of the texts, which lie one behind the other.
struct sOrderinfo::Head {
    Ends ends;
    std::uint32_t room; // for texts

    std::uint32_t Begin(std::size_t place) const { return place ? ends[place - 1] : 0; }
    std::uint32_t Length() const { return ends.back(); }
    char* Texts() { return reinterpret_cast<char*>(this + 1); }
};

void sOrderinfo::Freed::operator()(Head* block) const {
    memory->deallocate(block, sizeof(Head) + block->room);
}

std::string_view sOrderinfo::Text(OrderField field) const {
    if (!m_block) return {};
    const auto place = static_cast<std::size_t>(field);
    const std::uint32_t begin = m_block->Begin(place);
    return {m_block->Texts() + begin, m_block->ends[place] - begin};
}

void sOrderinfo::Fetch() const {
    if (!m_block) return;
    constexpr std::size_t line = 64, usual = 6 * line;
    for (std::size_t at = 0; at < usual; at += line)
        __builtin_prefetch(reinterpret_cast<const char*>(m_block.get()) + at);
}

void sOrderinfo::Apply(const OrderChanges& changes) {
    Fetch();
    // The pieces between the texts that change stay as they are, but may belong elsewhere.
    struct Piece {
        std::uint32_t from, to, length;
    };
    std::array<Piece, kOrderFieldCount + 1> pieces;
    std::array<std::uint8_t, kOrderFieldCount> changed;
    std::size_t count = 0;
    const Ends before = m_block ? m_block->ends : Ends{};
    Ends ends;
    Piece piece{};
    for (std::size_t i = 0; i < kOrderFieldCount; ++i) {
        if (const auto& text = changes[static_cast<OrderField>(i)]) {
            piece.length = (i ? before[i - 1] : 0) - piece.from;
            changed[count] = static_cast<std::uint8_t>(i);
            pieces[count++] = piece;
            piece = {before[i], piece.to + piece.length + static_cast<std::uint32_t>(text->size()), 0};
        }
        ends[i] = before[i] - piece.from + piece.to;
    }
    piece.length = before.back() - piece.from;
    pieces[count] = piece;
    if (!m_block && !ends.back()) return;

    MakeRoom(ends.back());
    m_block->ends = ends;
    char* const texts = m_block->Texts();
    const auto move = [&](const Piece& one) { std::memmove(texts + one.to, texts + one.from, one.length); };
    // In this order none is written over before it has moved.
    for (std::size_t i = 0; i <= count; ++i)
        if (pieces[i].to < pieces[i].from) move(pieces[i]);
    for (std::size_t i = count + 1; i-- > 0;)
        if (pieces[i].to > pieces[i].from) move(pieces[i]);
    // Not compared with those before, which would wait for the memory that they lie in.
    for (std::size_t i = 0; i < count; ++i) {
        const auto& text = *changes[static_cast<OrderField>(changed[i])];
        text.copy(texts + m_block->Begin(changed[i]), text.size());
    }
}

// Blocks are a little larger than their texts, so that most changes find room.
void sOrderinfo::MakeRoom(std::size_t length) {
    if (m_block && length <= m_block->room) return;
    constexpr std::size_t step = 64;
    const std::size_t bytes = (sizeof(Head) + length + step - 1) / step * step;
    const Freed& freed = m_block.get_deleter();
    std::unique_ptr<Head, Freed> block(static_cast<Head*>(freed.memory->allocate(bytes)), freed);
    if (m_block) std::memcpy(block.get(), m_block.get(), sizeof(Head) + m_block->Length());
    block->room = static_cast<std::uint32_t>(bytes - sizeof(Head));
    m_block = std::move(block);
}

namespace {

// What the meaning of a field hangs on, and room for a text that is made.
struct Reading {
    std::string_view investType;
    bool installments;
    const std::optional<std::string>& accountName;
    std::array<char, 320> made{}; // the longest amount has 312 characters
};

// The record's text from the one on the wire; none leaves the field as it was.
using Conversion = std::optional<std::string_view> (*)(Reading& reading, std::string_view wire);

std::optional<std::string_view> AsItIs(Reading&, std::string_view wire) {
    return wire;
}

template <const CodeTable& table>
std::optional<std::string_view> InWords(Reading&, std::string_view wire) {
    for (const CodeRow& row : table)
        if (row.from == wire) return row.to;
    return std::nullopt;
}

std::optional<std::string_view> WhenQuantity(Reading& reading, std::string_view wire) {
    if (reading.investType != "qty") return std::nullopt;
    return wire;
}

std::optional<std::string_view> RupeesWhenAmount(Reading& reading, std::string_view wire) {
    if (reading.investType != "value") return std::nullopt;
    const double rupees = LeadingReal(wire) / 100;
    char* const made = reading.made.data();
    const auto [end, fault] =
        std::to_chars(made, made + reading.made.size(), rupees, std::chars_format::fixed, 2);
    return std::string_view(made, static_cast<std::size_t>(end - made));
}

std::optional<std::string_view> WhenMonths(Reading& reading, std::string_view wire) {
    if (reading.installments) return std::nullopt;
    return wire;
}

std::optional<std::string_view> WhenInstallments(Reading& reading, std::string_view wire) {
    if (!reading.installments) return std::nullopt;
    return wire;
}

std::optional<std::string_view> AccountName(Reading& reading, std::string_view) {
    return reading.accountName;
}

struct RowField {
    OrderField field;
    std::uint32_t tag;
    Conversion conversion = AsItIs;
};
constexpr RowField kRowFields[] = {
    {OrderField::loginId, tag::loginId},
    {OrderField::exchange, tag::exchange, InWords<kExchangeToDisplay>},
    {OrderField::tradingSymbol, tag::tradingSymbol},
    {OrderField::product, tag::product},
    {OrderField::side, tag::side, InWords<kPlanToDisplay>},
    {OrderField::orderType, tag::orderType, InWords<kMarketOrderTypeToDisplay>},
    {OrderField::investType, tag::investType},
    {OrderField::quantity, tag::amountOrQuantity, WhenQuantity},
    {OrderField::amount, tag::amountOrQuantity, RupeesWhenAmount},
    {OrderField::frequency, tag::frequency},
    {OrderField::startDate, tag::startDate},
    {OrderField::totalPeriod, tag::totalPeriod, WhenMonths},
    {OrderField::installmentsRegistered, tag::totalPeriod, WhenInstallments},
    {OrderField::nextExecutionDate, tag::nextExecutionDate},
    {OrderField::registrationNumber, tag::registrationNumber},
    {OrderField::account, tag::account},
    {OrderField::accountName, tag::account, AccountName},
    {OrderField::sipStatus, tag::sipStatus},
    {OrderField::orderId, tag::orderId},
    {OrderField::streamName, tag::streamName},
    {OrderField::registrationDate, tag::registrationDate},
    {OrderField::orderSource, tag::orderSource},
    {OrderField::userText, tag::userText},
    {OrderField::cancelledDate, tag::cancelledDate},
    {OrderField::cancelledBy, tag::cancelledBy},
    {OrderField::endDate, tag::endDate},
    {OrderField::token, tag::token},
};
static_assert(std::size(kRowFields) == kOrderFieldCount);

} // namespace

OrderField PeriodsField(const sOrderinfo& record, bool serverPeriods) {
    const OrderField meant = serverPeriods ? OrderField::installmentsRegistered : OrderField::totalPeriod;
    const OrderField other = serverPeriods ? OrderField::totalPeriod : OrderField::installmentsRegistered;
    return record.Text(meant).empty() && !record.Text(other).empty() ? other : meant;
}

std::optional<std::string> AskAccountName(Pass pass, const Session& session, void* message) {
    const auto client = FieldView(message, tag::account);
    if (!client || !session.host.pu_get_client_name) return std::nullopt;
    return AskClientName(pass, session, *client);
}

void ReadOrderRow(void* message, bool installments, const std::optional<std::string>& accountName,
                  sOrderinfo& record) {
    record.Fetch(); // all of it, while the message is read
    Reading reading{record.Text(OrderField::investType), installments, accountName};
    OrderChanges changes;
    for (const auto& [field, tag, conversion] : kRowFields) {
        const auto wire = FieldView(message, tag);
        if (!wire) continue;
        if (field == OrderField::investType) reading.investType = *wire;
        changes[field] = conversion(reading, *wire);
    }
    record.Apply(changes);
}

} // namespace planfold
