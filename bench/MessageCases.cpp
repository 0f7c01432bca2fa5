#include "bench/Cases.h"
#include "bench/QuickFixPeer.h"
#include "host/connectvesk/QmxHost.h"

#include <array>
#include <cstdio>
#include <cstring>
#include <memory>

namespace bench {
namespace {

struct FieldText {
    std::uint32_t tag;
    std::string_view value; // of a literal: ends with a zero
};
// An order with every field that one can have.
constexpr FieldText kFields[] = {
    {0, "add_sip_orders"},
    {63001, "nse_cm"},
    {10100, "1013"},
    {63100, "ARBORTEX-EQ"},
    {12003, "B"},
    {12008, "MKT"},
    {64030, "CNC"},
    {54152, "value"},
    {53063, "500000"},
    {10012, "monthly"},
    {49165, "1799884800"},
    {63415, "12"},
    {31003, "DEALER1"},
    {54056, "C"},
    {54001, "C001"},
    {12005, "DAY"},
    {64056, "BROKER"},
    {64053, "BRANCH"},
    {54158, "26112104470001"},
    {53405, "N"},
    {63715, "1"},
    {64756, "TWS"},
};
constexpr std::size_t kFieldCount = std::size(kFields);
static_assert(kFieldCount == 22);

// The library as the plug-in uses it: the handles stay open, a received message gets one of its own.
class Library {
public:
    Library() {
        for (std::size_t i = 0; i < kFieldCount; ++i)
            m_values[i] = qmx::Datum(kFields[i].value);
        qmx_open_scratch(&m_scratch, kScratchBytes, &m_error);
        qmx_ctor_primecb(&m_message, &m_error);
        Encode();
        QmxDatum bytes{};
        qmx_message_bytes(m_message, &bytes, &m_error);
        m_bytes = qmx::View(bytes);
    }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;
    ~Library() {
        qmx_dtor_primecb(&m_message, &m_error);
        qmx_close_scratch(&m_scratch, &m_error);
    }

    void Encode() {
        constexpr std::uint32_t empty = 0;
        std::memcpy(m_scratch, &empty, sizeof empty);
        int good = qmx_start_msg(m_message, m_scratch, &m_error);
        for (std::size_t i = 0; i < kFieldCount; ++i)
            good &= qmx_add_data(m_message, kFields[i].tag, 1, &m_values[i], &m_error);
        Require(good != 0, "encode");
    }
    void DecodeAndRead() {
        void* message = nullptr;
        const QmxDatum bytes = qmx::Datum(m_bytes);
        int good = qmx_open_message(&message, &bytes, &m_error);
        for (const FieldText& field : kFields) {
            QmxDatum value{};
            good &= qmx_get_data(message, field.tag, 0, &value, &m_error);
            Keep(value.data);
        }
        good &= qmx_close_message(&message, &m_error);
        Require(good != 0, "decode");
    }

private:
    static constexpr std::uint32_t kScratchBytes = 32768;

    void* m_scratch = nullptr;
    void* m_message = nullptr;
    QmxError m_error{};
    QmxDatum m_values[kFieldCount];
    std::string m_bytes;
};

void EncodeByPrintf() {
    char text[1024];
    std::size_t used = 0;
    for (const FieldText& field : kFields)
        used += static_cast<std::size_t>(
            std::snprintf(text + used, sizeof text - used, "%u=%s\x01", field.tag, field.value.data()));
    Require(used < sizeof text, "snprintf");
    Keep(text);
}

QuickFixPeer::Fields PeerFields() {
    QuickFixPeer::Fields fields;
    for (const FieldText& field : kFields)
        fields.emplace_back(static_cast<int>(field.tag), field.value);
    return fields;
}

} // namespace

std::vector<Case> MessageCases() {
    auto library = std::make_shared<Library>();
    auto peer = std::make_shared<QuickFixPeer>(PeerFields());
    struct Block {
        std::array<char, kFloorBytes> from{}, to{};
    };
    auto block = std::make_shared<Block>();
    return {
        {"floor",
         [block] {
             Keep(block->from.data());
             std::memcpy(block->to.data(), block->from.data(), kFloorBytes);
             Keep(block->to.data());
         }},
        {"encode", [library] { library->Encode(); }},
        {"encode-quickfix", [peer] { Require(peer->Encode() > kFieldCount, "QuickFIX encode"); }},
        {"encode-quickfix-new", [peer] { Require(peer->EncodeAnew() > kFieldCount, "QuickFIX encode"); }},
        {"encode-snprintf", EncodeByPrintf},
        {"decode", [library] { library->DecodeAndRead(); }},
        {"decode-quickfix", [peer] { Require(peer->DecodeAndRead() > kFieldCount, "QuickFIX decode"); }},
    };
}

} // namespace bench
