#include "tests/plugin/Doubles.h"

#include <array>

namespace {

using planfold::test::FailQmxCall;

// Calls left until the failing one; 0 when none is to fail. The linker leads the core's calls here.
std::array<int, FailQmxCall::functionCount> g_callsLeft{};

bool Fails(FailQmxCall::Function function, QmxError* error) {
    int& left = g_callsLeft[function];
    const bool fails = left > 0 && --left == 0;
    if (fails) error->code = kQmxBadHandle;
    return fails;
}

} // namespace

extern "C" {
int __real_qmx_open_scratch(void** scratch, std::uint32_t size, QmxError* error);
int __real_qmx_ctor_primecb(void** primeCb, QmxError* error);
int __real_qmx_start_msg(void* primeCb, void* scratch, QmxError* error);
int __real_qmx_add_data(void* primeCb, std::uint32_t tag, std::uint32_t count, const QmxDatum* data,
                        QmxError* error);

int __wrap_qmx_open_scratch(void** scratch, std::uint32_t size, QmxError* error) {
    return !Fails(FailQmxCall::openScratch, error) && __real_qmx_open_scratch(scratch, size, error);
}
int __wrap_qmx_ctor_primecb(void** primeCb, QmxError* error) {
    return !Fails(FailQmxCall::ctorPrimeCb, error) && __real_qmx_ctor_primecb(primeCb, error);
}
int __wrap_qmx_start_msg(void* primeCb, void* scratch, QmxError* error) {
    return !Fails(FailQmxCall::startMsg, error) && __real_qmx_start_msg(primeCb, scratch, error);
}
int __wrap_qmx_add_data(void* primeCb, std::uint32_t tag, std::uint32_t count, const QmxDatum* data,
                        QmxError* error) {
    return !Fails(FailQmxCall::addData, error) && __real_qmx_add_data(primeCb, tag, count, data, error);
}
}

namespace planfold::test {

FailQmxCall::FailQmxCall(Function function, int call) {
    g_callsLeft[function] = call;
}

FailQmxCall::~FailQmxCall() {
    g_callsLeft = {};
}

Received::Received(const std::vector<Field>& fields) {
    qmx::MessageWriter writer;
    for (const Field& field : fields) {
        std::vector<QmxDatum> values;
        for (const std::string& value : field.values)
            values.push_back(qmx::Datum(value));
        writer.AddValues(field.tag, values.data(), static_cast<std::uint32_t>(values.size()));
    }
    m_bytes = writer.Finish();
    m_reader = std::make_unique<qmx::MessageReader>(m_bytes);
}

} // namespace planfold::test
