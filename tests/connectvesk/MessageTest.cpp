// What goes into a message comes out of it, and what does not fit is refused by code.

#include "host/connectvesk/QmxHost.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

void SetFill(void* scratch, std::uint32_t fill) {
    std::memcpy(scratch, &fill, sizeof fill);
}

class Message : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(qmx_open_scratch(&m_scratch, 256, &m_error));
        ASSERT_TRUE(qmx_ctor_primecb(&m_message, &m_error));
        ASSERT_TRUE(qmx_start_msg(m_message, m_scratch, &m_error));
    }
    void TearDown() override {
        qmx_dtor_primecb(&m_message, &m_error);
        qmx_close_scratch(&m_scratch, &m_error);
    }
    int Add(std::uint32_t tag, std::string_view text) {
        const QmxDatum datum = qmx::Datum(text);
        return qmx_add_data(m_message, tag, 1, &datum, &m_error);
    }

    void* m_scratch = nullptr;
    void* m_message = nullptr;
    QmxError m_error{};
    QmxDatum m_datum{};
};

TEST_F(Message, ComesOutAsBuiltAndAsReceived) {
    const QmxDatum frequencies[] = {qmx::Datum("daily"), {nullptr, 0}, qmx::Datum("yearly")};
    ASSERT_TRUE(Add(0, "add_sip_orders"));
    ASSERT_TRUE(qmx_add_data(m_message, 10012, 3, frequencies, &m_error));
    ASSERT_TRUE(Add(64804, ""));
    ASSERT_TRUE(Add(0xFFFFFFFFu, std::string_view("a\0\\\xE9", 4)));
    const char* const dump = "0=add_sip_orders 10012=daily||yearly 64804= 4294967295=a\\x00\\x5C\\xE9";
    EXPECT_EQ(qmx::Dump(m_message), dump);

    QmxDatum bytes{};
    ASSERT_TRUE(qmx_message_bytes(m_message, &bytes, &m_error));
    std::uint32_t fill = 0;
    std::memcpy(&fill, m_scratch, sizeof fill);
    EXPECT_EQ(bytes.length, fill);
    const std::string sent(qmx::View(bytes));
    const qmx::MessageReader received(sent);
    ASSERT_TRUE(received.Good()) << received.Error().text;
    EXPECT_EQ(qmx::Dump(received.Handle()), dump);
}

TEST_F(Message, TellsAbsentFieldFromIndexBeyondItsCount) {
    ASSERT_TRUE(Add(5, "x"));
    QmxField field{};
    EXPECT_FALSE(qmx_get_field(m_message, 6, &field, &m_error));
    EXPECT_EQ(m_error.code, kQmxFieldAbsent);
    EXPECT_FALSE(qmx_get_data(m_message, 6, 0, &m_datum, &m_error));
    EXPECT_EQ(m_error.code, kQmxFieldAbsent);
    EXPECT_STREQ(m_error.text, "field 6 is absent");
    for (const std::uint32_t index : {1u, 2u, 0xFFFFFFFFu}) {
        EXPECT_FALSE(qmx_get_data(m_message, 5, index, &m_datum, &m_error)) << index;
        EXPECT_EQ(m_error.code, kQmxBadIndex) << index;
    }
}

TEST_F(Message, StaysAsItWasAfterARefusedField) {
    ASSERT_TRUE(Add(5, "kept"));
    QmxDatum before{};
    ASSERT_TRUE(qmx_message_bytes(m_message, &before, &m_error));
    const std::string kept(qmx::View(before));

    const char byte = 'x';
    const QmxDatum one{&byte, 1};
    const QmxDatum endless{&byte, 0xFFFFFFFFu};
    const QmxDatum nullWithLength{nullptr, 3};
    const QmxDatum wrapping[] = {{&byte, 0xFFFFFFF0u}, {&byte, 0x20u}};
    const struct {
        std::uint32_t tag;
        std::uint32_t count;
        const QmxDatum* data;
        std::int32_t code;
    } rows[] = {
        {6, 0, &one, kQmxBadArgument},
        {6, 1, nullptr, kQmxBadArgument},
        {6, 1, &nullWithLength, kQmxBadArgument},
        {5, 1, &one, kQmxBadArgument},
        {6, 1, &endless, kQmxBufferFull},
        {6, 2, wrapping, kQmxBufferFull},
        {6, 0xFFFFFFFFu, &one, kQmxBufferFull},
        {6, 0x40000000u, &one, kQmxBufferFull},
    };
    for (const auto& row : rows) {
        EXPECT_FALSE(qmx_add_data(m_message, row.tag, row.count, row.data, &m_error)) << row.code;
        EXPECT_EQ(m_error.code, row.code) << m_error.text;
        EXPECT_STRNE(m_error.text, "");
        QmxDatum after{};
        ASSERT_TRUE(qmx_message_bytes(m_message, &after, &m_error));
        EXPECT_EQ(qmx::View(after), kept);
    }
    EXPECT_TRUE(Add(6, "and goes on"));
}

TEST_F(Message, IsStartedOnlyOverAFillLengthOfZero) {
    ASSERT_TRUE(Add(5, "x"));
    EXPECT_FALSE(qmx_start_msg(m_message, m_scratch, &m_error));
    EXPECT_EQ(m_error.code, kQmxBadArgument);
    // Nothing may be appended to the message before.
    EXPECT_FALSE(Add(6, "y"));
    EXPECT_EQ(m_error.code, kQmxBadHandle);
    SetFill(m_scratch, 0);
    EXPECT_TRUE(qmx_start_msg(m_message, m_scratch, &m_error));
    EXPECT_EQ(qmx::Dump(m_message), "");
}

TEST_F(Message, OverwrittenBytesAreNeverReadBeyondTheBuffer) {
    ASSERT_TRUE(Add(5, "first"));
    ASSERT_TRUE(Add(6, "second"));
    std::uint32_t fill = 0;
    std::memcpy(&fill, m_scratch, sizeof fill);
    char* const bytes = static_cast<char*>(m_scratch) + 4;
    for (std::uint32_t i = 0; i < fill; ++i) {
        const char original = bytes[i];
        for (int value = 0; value < 256; ++value) {
            bytes[i] = static_cast<char>(value);
            for (const std::uint32_t tag : {5u, 6u})
                if (qmx_get_data(m_message, tag, 0, &m_datum, &m_error)) {
                    EXPECT_GE(m_datum.data, bytes);
                    EXPECT_LE(m_datum.data + m_datum.length, bytes + fill);
                }
        }
        bytes[i] = original;
        EXPECT_EQ(qmx::Text(m_message, 5), "first") << "restored at " << i;
        EXPECT_EQ(qmx::Text(m_message, 6), "second") << "restored at " << i;
    }
    EXPECT_EQ(qmx::Dump(m_message), "5=first 6=second");
}

} // namespace
