// Every way in from outside (exports, interface slots, window procedures, hooks) runs inside Guard:
// no exception leaves, the caller gets the agreed failure value, and a line says where and what.
#pragma once

#include <exception>
#include <source_location>
#include <string>

namespace framework {

// Writes to the debugger's output, or standard error where there is none. Never throws.
void ReportFault(const char* what, const std::source_location& where) noexcept;

template <class Result, class Body>
Result Guard(Result failure, Body&& body,
             const std::source_location& where = std::source_location::current()) noexcept {
    try {
        return body();
    } catch (const std::exception& fault) {
        ReportFault(fault.what(), where);
    } catch (...) {
        ReportFault("unknown exception", where);
    }
    return failure;
}

template <class Body>
void Guard(Body&& body, const std::source_location& where = std::source_location::current()) noexcept {
    Guard(
        0,
        [&] {
            body();
            return 0;
        },
        where);
}

} // namespace framework
