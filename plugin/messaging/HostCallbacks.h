// The host's exports as the plug-in calls them: one an export, empty when the host lacks it; and the rights
// that it administers for the plug-in.
#pragma once

#include "plugin/base/Lifetime.h"
#include "sdk/HostExports.h"

#include <concepts>
#include <cstddef>
#include <functional>
#include <optional>
#include <string_view>

namespace planfold {

inline constexpr std::string_view kRightsRoot = "QV";
// The first is needed to use the plug-in at all; the two others unlock more of it.
inline constexpr std::string_view kPluginRight = "QV: Planfold";
inline constexpr std::string_view kCustomRight = "QV: Planfold: Custom";
inline constexpr std::string_view kRestrictedDatesRight = "QV: Planfold: SIP Set Restricted Date";

using AnyFunction = void (*)();
// Finds an export of the host executable by name; null when there is none.
using HostLookup = std::function<AnyFunction(const char* name)>;

// An export of the host, called only by who may let the host in.
template <class Function>
class HostCall;
template <class Result, class... Arguments>
class HostCall<Result(Arguments...)> {
public:
    using Pointer = Result (*)(Arguments...);

    HostCall() = default;
    HostCall(std::convertible_to<Pointer> auto function) : m_function(function) {}

    explicit operator bool() const { return m_function != nullptr; }
    bool operator==(std::nullptr_t) const { return m_function == nullptr; }
    Result operator()(Pass, Arguments... arguments) const { return m_function(arguments...); }

private:
    Pointer m_function = nullptr;
};

struct HostCallbacks {
#define PLANFOLD_POINTER(name, ...) HostCall<sdk::fn::name> name;
    VESK_HOST_EXPORTS(PLANFOLD_POINTER)
#undef PLANFOLD_POINTER
};

HostCallbacks ResolveHostCallbacks(const HostLookup& lookup);

// For exports that are looked up where they are used: `Find<sdk::fn::pu_get_exe_app>(lookup,
// "pu_get_exe_app")`.
template <class Function>
HostCall<Function> Find(const HostLookup& lookup, const char* name) {
    return reinterpret_cast<Function*>(lookup(name));
}

// Whether the user holds the right; none when the host cannot be asked.
std::optional<bool> AskRight(Pass pass, const HostLookup& lookup, StringManager& strings,
                             std::string_view right);

} // namespace planfold
