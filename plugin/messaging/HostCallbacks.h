// The host's exports as the plug-in calls them: one pointer an export, null when the host lacks it.
#pragma once

#include "sdk/HostExports.h"

#include <functional>

namespace planfold {

using AnyFunction = void (*)();
// Finds an export of the host executable by name; null when there is none.
using HostLookup = std::function<AnyFunction(const char* name)>;

struct HostCallbacks {
#define PLANFOLD_POINTER(name, ...) sdk::fn::name* name = nullptr;
    VESK_HOST_EXPORTS(PLANFOLD_POINTER)
#undef PLANFOLD_POINTER
};

HostCallbacks ResolveHostCallbacks(const HostLookup& lookup);

// For exports that are looked up where they are used: `Find<sdk::fn::pu_get_exe_app>(lookup,
// "pu_get_exe_app")`.
template <class Function>
Function* Find(const HostLookup& lookup, const char* name) {
    return reinterpret_cast<Function*>(lookup(name));
}

} // namespace planfold
