// What the definitions of the host's exports have in common. Each is declared here with the type that the
// plug-ins expect, so that a definition of another type does not compile.
#pragma once

#include "framework/Guard.h"
#include "framework/Window.h"
#include "host/terminal/window/Application.h"
#include "sdk/HostExports.h"

#include <string>
#include <string_view>
#include <type_traits>

extern "C" {
#define VESK_DECLARE(name, ...) __declspec(dllexport) sdk::fn::name name;
VESK_HOST_EXPORTS(VESK_DECLARE)
VESK_HOST_EXPORTS_BESIDE_THE_TABLE(VESK_DECLARE)
#undef VESK_DECLARE
}

#define VESK_CHECK(name, ...) static_assert(std::is_same_v<decltype(name), sdk::fn::name>);
VESK_HOST_EXPORTS(VESK_CHECK)
VESK_HOST_EXPORTS_BESIDE_THE_TABLE(VESK_CHECK)
#undef VESK_CHECK

namespace vesk {

// Runs an export's body with the running application. Before it starts, after it ends, and when an exception
// comes up, the answer is `failure`.
template <class Result, class Body>
Result Serve(Result failure, Body&& body,
             const std::source_location& where = std::source_location::current()) noexcept {
    return framework::Guard(
        failure,
        [&]() -> Result {
            Application* application = RunningApplication();
            return application ? body(*application) : failure;
        },
        where);
}

inline std::string_view Text(InString string) {
    return string ? string->View() : std::string_view();
}
inline std::string TextOf(InString string) {
    return std::string(Text(string));
}
inline void Put(OutString target, std::string_view text) {
    if (target) target->Assign(text);
}
template <class Control = framework::Window>
Control Item(HostWindow dialog, int id) {
    return Control(GetDlgItem(dialog, id));
}

} // namespace vesk
