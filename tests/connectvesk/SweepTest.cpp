// The writer at every capacity, and the reader over every cut and every changed byte.

#include "host/connectvesk/QmxHost.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>

namespace {

constexpr std::string_view kDump = "0=add_sip_orders 10012=daily||yearly 54001=CL1";

// Adds field after field as long as they fit; how many did.
int AddFields(void* message) {
    const QmxDatum name = qmx::Datum("add_sip_orders");
    const QmxDatum frequencies[] = {qmx::Datum("daily"), {nullptr, 0}, qmx::Datum("yearly")};
    const QmxDatum account = qmx::Datum("CL1");
    QmxError error{};
    int added = 0;
    added += qmx_add_data(message, 0, 1, &name, &error);
    if (added == 1) added += qmx_add_data(message, 10012, 3, frequencies, &error);
    if (added == 2) added += qmx_add_data(message, 54001, 1, &account, &error);
    if (added < 3) {
        EXPECT_EQ(error.code, kQmxBufferFull);
    }
    return added;
}

// Each buffer is a block of exactly its capacity, so AddressSanitizer sees the byte behind it.
TEST(WriterSweep, BeginsToSucceedAtExactlyOneCapacityForEachField) {
    int before = -1;
    std::uint32_t firstWhole = 0;
    std::uint32_t wholeFill = 0;
    for (std::uint32_t capacity = 4; capacity < 200; ++capacity) {
        QmxError error{};
        void* scratch = nullptr;
        void* message = nullptr;
        ASSERT_TRUE(qmx_open_scratch(&scratch, capacity, &error));
        ASSERT_TRUE(qmx_ctor_primecb(&message, &error));
        const int added = qmx_start_msg(message, scratch, &error) ? AddFields(message) : -1;
        EXPECT_GE(added, before) << "at " << capacity;
        EXPECT_LE(added, before + 1) << "at " << capacity;
        std::uint32_t fill = 0;
        std::memcpy(&fill, scratch, sizeof fill);
        EXPECT_LE(fill + 4, capacity);
        if (added == 3) {
            if (!firstWhole) firstWhole = capacity;
            wholeFill = fill;
            EXPECT_EQ(qmx::Dump(message), kDump);
        }
        before = added;
        qmx_dtor_primecb(&message, &error);
        qmx_close_scratch(&scratch, &error);
    }
    EXPECT_EQ(before, 3);
    EXPECT_EQ(firstWhole, wholeFill + 4) << "room was left unused";
}

std::string Built() {
    qmx::MessageWriter writer;
    AddFields(writer.Handle());
    return writer.Finish();
}

// Reads everything there is; under AddressSanitizer a step outside the exact copy is caught.
void ReadAll(std::string_view bytes) {
    const std::unique_ptr<char[]> exact(new char[bytes.size()]);
    if (!bytes.empty()) std::memcpy(exact.get(), bytes.data(), bytes.size());
    const qmx::MessageReader reader({exact.get(), bytes.size()});
    if (!reader.Good()) {
        EXPECT_EQ(reader.Error().code, kQmxCorrupt);
        EXPECT_STRNE(reader.Error().text, "");
        return;
    }
    for (const std::uint32_t tag : {0u, 10012u, 54001u})
        for (std::uint32_t i = 0; i < qmx::Count(reader.Handle(), tag); ++i) {
            const std::string_view value = qmx::Text(reader.Handle(), tag, i);
            EXPECT_LE(value.data() + value.size(), exact.get() + bytes.size());
        }
    EXPECT_NE(qmx::Dump(reader.Handle()).front(), '(');
}

TEST(ReaderSweep, EveryCutIsToldAsIncomplete) {
    const std::string whole = Built();
    for (std::size_t length = 0; length < whole.size(); ++length) {
        ReadAll(std::string_view(whole).substr(0, length));
        const qmx::MessageReader cut(std::string_view(whole).substr(0, length));
        ASSERT_FALSE(cut.Good()) << length;
        EXPECT_NE(std::string_view(cut.Error().text).find("incomplete"), std::string_view::npos);
    }
    const qmx::MessageReader longer(whole + "x");
    EXPECT_FALSE(longer.Good());
}

TEST(ReaderSweep, FieldsThatContradictThemselvesAreRefused) {
    const auto word = [](std::uint32_t number) {
        return std::string(reinterpret_cast<const char*>(&number), sizeof number);
    };
    const auto message = [&](const std::string& fields) {
        return word(0x31584D51) + word(static_cast<std::uint32_t>(8 + fields.size())) + fields;
    };
    const std::string field = word(5) + word(1) + word(5) + word(1) + "x";
    std::string many;
    for (std::uint32_t tag = 6; tag < 2000; ++tag)
        many += word(tag) + word(1) + word(4) + word(0);
    ASSERT_TRUE(qmx::MessageReader(message(field + many)).Good());
    const struct {
        const char* fault;
        std::string fields;
    } rows[] = {
        {"the same field twice", field + field},
        {"the same field twice, far apart among many", field + many + field},
        {"no values", word(5) + word(0) + word(0)},
        {"more values than there are", word(5) + word(2) + word(5) + word(1) + "x"},
        {"fewer values than there are", word(5) + word(1) + word(8) + word(0) + word(0)},
        {"a value larger than its field", word(5) + word(1) + word(5) + word(2) + "x"},
        {"a field larger than the message", word(5) + word(1) + word(6) + word(1) + "x"},
        {"a second value behind the end", word(5) + word(2) + word(9) + word(1) + "x"},
        {"an endless value", word(5) + word(1) + word(5) + word(0xFFFFFFFF) + "x"},
        {"an endless field", word(5) + word(1) + word(0xFFFFFFFF) + word(1) + "x"},
        {"bytes behind the last field", field + "x"},
    };
    for (const auto& row : rows) {
        const std::string bytes = message(row.fields);
        ReadAll(bytes);
        const qmx::MessageReader reader(bytes);
        EXPECT_FALSE(reader.Good()) << row.fault;
        EXPECT_EQ(reader.Error().code, kQmxCorrupt) << row.fault;
    }
}

} // namespace
