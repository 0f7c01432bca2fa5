#include "tests/plugin/Doubles.h"

#include <array>

using planfold::test::FailQmxCall;

namespace {

// Calls left until the failing one; 0 when none is to fail. The linker leads the core's calls here.
std::array<int, FailQmxCall::functionCount> g_callsLeft{};

bool Fails(FailQmxCall::Function function, QmxError* error) {
    int& left = g_callsLeft[function];
    const bool fails = left > 0 && --left == 0;
    if (fails) error->code = kQmxBadHandle;
    return fails;
}

} // namespace

#define FAILING(function, which, parameters, arguments)                                                        \
    extern "C" int __real_##function parameters;                                                               \
    extern "C" int __wrap_##function parameters;                                                               \
    extern "C" int __wrap_##function parameters {                                                              \
        return !Fails(FailQmxCall::which, error) && __real_##function arguments;                               \
    }
FAILING(qmx_open_scratch, openScratch, (void** scratch, std::uint32_t size, QmxError* error),
        (scratch, size, error))
FAILING(qmx_ctor_primecb, ctorPrimeCb, (void** primeCb, QmxError* error), (primeCb, error))
FAILING(qmx_start_msg, startMsg, (void* primeCb, void* scratch, QmxError* error), (primeCb, scratch, error))
FAILING(qmx_add_data, addData,
        (void* primeCb, std::uint32_t tag, std::uint32_t count, const QmxDatum* data, QmxError* error),
        (primeCb, tag, count, data, error))

FailQmxCall::FailQmxCall(Function function, int call) {
    g_callsLeft[function] = call;
}

FailQmxCall::~FailQmxCall() {
    g_callsLeft = {};
}

std::vector<const char*> planfold::test::AddFailures(std::initializer_list<const char*> rest) {
    std::vector<const char*> texts{
        "Failed to add the request add_sip_orders",
        "Failed to add the Exchange segment",
        "Failed to add the Token",
        "Failed to add the Scrip Symbol",
        "Failed to mention either buy or sell",
        "Failed to mention the order Type",
        "Failed to add the Product Type",
        "Failed to add the Amount/Quantity",
        "Failed to add Amount or Quantity",
        "Failed to add the Frequency",
        "Failed to add the Start Date",
        "Failed to add the Total Period",
        "Failed to add User",
        "Failed to add customer Firm Id",
        "Failed to add Account ID",
        "Failed to specify the day",
        "Failed to add Broker Name",
        "Failed to add Branch Name",
    };
    texts.insert(texts.end(), rest);
    return texts;
}
