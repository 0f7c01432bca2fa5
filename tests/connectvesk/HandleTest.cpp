// Wrong handles of every kind are refused, by every function.

#include "host/connectvesk/QmxHost.h"

#include <gtest/gtest.h>

#include <functional>
#include <set>
#include <vector>

namespace {

struct Call {
    const char* name;
    std::function<int(void* message, QmxError*)> make;
};

const Call kCallsOnMessages[] = {
    {"qmx_add_data",
     [](void* message, QmxError* error) {
         const QmxDatum datum = qmx::Datum("x");
         return qmx_add_data(message, 1, 1, &datum, error);
     }},
    {"qmx_get_field",
     [](void* message, QmxError* error) {
         QmxField field;
         return qmx_get_field(message, 1, &field, error);
     }},
    {"qmx_get_data",
     [](void* message, QmxError* error) {
         QmxDatum datum;
         return qmx_get_data(message, 1, 0, &datum, error);
     }},
    {"qmx_message_bytes",
     [](void* message, QmxError* error) {
         QmxDatum bytes;
         return qmx_message_bytes(message, &bytes, error);
     }},
};

TEST(Handle, WrongOnesAreRefusedByEveryCall) {
    QmxError error{};
    void* scratch = nullptr;
    void* open = nullptr;
    ASSERT_TRUE(qmx_open_scratch(&scratch, 64, &error));
    ASSERT_TRUE(qmx_ctor_primecb(&open, &error));
    void* closed = open;
    ASSERT_TRUE(qmx_dtor_primecb(&open, &error));
    EXPECT_EQ(open, nullptr);
    void* unstarted = nullptr;
    ASSERT_TRUE(qmx_ctor_primecb(&unstarted, &error));
    void* unbound = nullptr;
    void* lost = nullptr;
    ASSERT_TRUE(qmx_ctor_primecb(&unbound, &error));
    ASSERT_TRUE(qmx_open_scratch(&lost, 64, &error));
    ASSERT_TRUE(qmx_start_msg(unbound, lost, &error));
    ASSERT_TRUE(qmx_close_scratch(&lost, &error));

    const struct {
        const char* name;
        void* handle;
    } handles[] = {{"null", nullptr},
                   {"scratch", scratch},
                   {"closed", closed},
                   {"not started", unstarted},
                   {"scratch closed", unbound}};
    for (const auto& handle : handles)
        for (const Call& call : kCallsOnMessages) {
            error = {};
            EXPECT_EQ(call.make(handle.handle, &error), 0) << call.name << " on " << handle.name;
            EXPECT_EQ(error.code, kQmxBadHandle) << call.name << " on " << handle.name;
            EXPECT_STRNE(error.text, "");
            EXPECT_EQ(call.make(handle.handle, nullptr), 0);
        }
    qmx_dtor_primecb(&unstarted, &error);
    qmx_dtor_primecb(&unbound, &error);
    void* late = scratch;
    EXPECT_TRUE(qmx_close_scratch(&scratch, &error));
    EXPECT_FALSE(qmx_close_scratch(&late, &error)) << "closed twice";
    EXPECT_EQ(error.code, kQmxBadHandle);
}

TEST(Handle, StartWantsAnOpenScratchOfOurOwn) {
    QmxError error{};
    alignas(16) char foreign[128] = {};
    void* message = nullptr;
    ASSERT_TRUE(qmx_ctor_primecb(&message, &error));
    for (void* scratch :
         {static_cast<void*>(nullptr), static_cast<void*>(foreign + 64), static_cast<void*>(foreign + 65)}) {
        EXPECT_FALSE(qmx_start_msg(message, scratch, &error));
        EXPECT_EQ(error.code, kQmxBadHandle);
    }
    qmx_dtor_primecb(&message, &error);
}

TEST(Handle, OpeningRefusesAbsurdSizesAndNowhereToPut) {
    QmxError error{};
    for (const std::uint32_t size : {0u, 3u, (1u << 30) + 1, 0xFFFFFFFFu}) {
        void* scratch = nullptr;
        EXPECT_FALSE(qmx_open_scratch(&scratch, size, &error)) << size;
        EXPECT_EQ(error.code, kQmxBadArgument);
        EXPECT_EQ(scratch, nullptr);
    }
    EXPECT_FALSE(qmx_open_scratch(nullptr, 64, &error));
    EXPECT_FALSE(qmx_ctor_primecb(nullptr, &error));
}

} // namespace
