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
