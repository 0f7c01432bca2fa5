#include "bench/SampleBook.h"

#include "bench/Cases.h"
#include "sdk/Tags.h"

#include <algorithm>
#include <array>
#include <random>

namespace bench {
namespace {

constexpr std::uint32_t kFirstSerial = 100'000'000;

// One of the texts, drawn anew for each sample.
struct SampleField {
    std::uint32_t tag;
    std::array<std::string_view, 4> texts;
};
constexpr SampleField kFields[] = {
    {tag::loginId, {"DEALER1", "DEALER2", "DEALER3", "DEALER10"}},
    {tag::exchange, {"nse_cm", "nse_cm", "nse_cm", "bse_cm"}},
    {tag::tradingSymbol, {"ARBORTOOLS-EQ", "BYTEFIN-EQ", "LUMENBANK-EQ", "ALPHASTEEL-EQ"}},
    {tag::product, {"CNC", "CNC", "CNC", "CNC"}},
    {tag::side, {"B", "B", "B", "S"}},
    {tag::orderType, {"MKT", "MKT", "MKT", "MKT"}},
    {tag::investType, {"value", "value", "value", "qty"}},
    {tag::frequency, {"daily", "weekly", "monthly", "yearly"}},
    {tag::startDate, {"11-Jan-2026", "02-Feb-2026", "16-Mar-2026", "13-Apr-2026"}},
    {tag::totalPeriod, {"6", "12", "24", "120"}},
    {tag::nextExecutionDate, {"23-Nov-2026", "01-Dec-2026", "15-Dec-2026", ""}},
    {tag::account, {"C001", "C002", "C0317", "HUF2204"}},
    {tag::sipStatus, {"active", "active", "Paused", "expired"}},
    {tag::orderId, {"26112104470001", "26112104470002", "26112104470003", "26112104470004"}},
    {tag::streamName, {"PLANFOLD", "PLANFOLD", "PLANFOLD", "PLANFOLD"}},
    {tag::registrationDate, {"09-Jan-2026", "30-Jan-2026", "13-Mar-2026", "10-Apr-2026"}},
    {tag::orderSource, {"TWS", "TWS", "TWS", "WEB"}},
    {tag::userText, {"", "Order placed", "Instalment 7 executed", "Holiday, moved by a day"}},
    {tag::endDate, {"11-Dec-2026", "02-Jan-2027", "16-Feb-2028", "13-Mar-2036"}},
    {tag::token, {"1008", "1013", "1020", "10321"}},
};

} // namespace

void Numbers::Append(std::uint32_t serial) {
    m_text += "2611210" + std::to_string(kFirstSerial + serial);
}

Numbers::Numbers(std::uint32_t first, std::uint32_t count) {
    m_text.reserve(count * kLength);
    for (std::uint32_t i = 0; i < count; ++i)
        Append(first + i);
}

Numbers Numbers::InAnyOrder(std::uint32_t count) {
    std::vector<std::uint32_t> order(count);
    for (std::uint32_t i = 0; i < count; ++i)
        order[i] = i;
    std::ranges::shuffle(order, std::mt19937(count));
    Numbers numbers;
    numbers.m_text.reserve(count * kLength);
    for (const std::uint32_t serial : order)
        numbers.Append(serial);
    return numbers;
}

SampleMessages::SampleMessages(Kind kind) {
    std::mt19937 random(1);
    const std::string number(Numbers(0, 1)[0]);
    qmx::MessageWriter writer;
    for (std::size_t i = 0; i < kSamples; ++i) {
        writer.Start();
        for (const SampleField& field : kFields)
            writer.Add(field.tag, field.texts[random() % field.texts.size()]);
        writer.Add(tag::amountOrQuantity, std::to_string(100 * (100 + random() % 50'000)));
        writer.Add(tag::registrationNumber, number);
        if (kind == queried) writer.Add(tag::queriedRow, "1").Add(tag::echoedRequest, "om_get_sip_orders");
        std::string bytes = writer.Finish();
        Require(!bytes.empty(), "writing a sample");
        const std::size_t numberAt = bytes.find(number);
        m_samples.push_back({std::move(bytes), numberAt});
    }
}

std::string_view SampleMessages::Next(std::string_view number) {
    Sample& sample = m_samples[m_next++ % kSamples];
    std::ranges::copy(number, &sample.bytes[sample.numberAt]);
    return sample.bytes;
}

} // namespace bench
