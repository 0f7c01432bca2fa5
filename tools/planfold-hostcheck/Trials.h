// What a host's exports answer when the plug-in calls them.
#pragma once

#include "plugin/messaging/HostCallbacks.h"
#include "plugin/resources/resource.h"
#include "sdk/HeapStringManager.h"
#include "tools/planfold-hostcheck/Findings.h"

#include <functional>

namespace hostcheck {

using planfold::AnyFunction, planfold::HostLookup;

// Identifiers of the plug-in's controls.
namespace id {
inline constexpr int exchange = IDC_EXCHANGE, series = IDC_SERIES, symbol = IDC_SYMBOL,
                     expiry = IDC_HOST_SCRIP_1, strike = IDC_HOST_SCRIP_2, option = IDC_HOST_SCRIP_3,
                     product = IDC_PRODUCT, client = IDC_CLIENT_COMBO, amount = IDC_VALUE;
inline constexpr int combos[] = {exchange, series, symbol, expiry, strike, option, product, client};
} // namespace id

// What the exports are tried with that is not portable. All on the host's GUI thread.
class Workplace {
public:
    // A form with these combos, and the amount's edit.
    virtual HostWindow Form() const = 0;
    virtual HostWindow Control(int id) const = 0;
    virtual std::vector<std::string> Items(int combo) const = 0;
    // Adds the item when the combo has none like it.
    virtual void Choose(int combo, std::string_view item) = 0;
    virtual bool IsWindow(HostWindow window) const = 0;
    virtual bool IsFolder(std::string_view path) const = 0;
    // Runs the host's message loop until it is so, at most ten seconds.
    virtual void WaitUntil(const std::function<bool()>& isSo) = 0;
    // Before each call: if the host ends in it, the last name is the one to look at.
    virtual void Begin(std::string_view name) = 0;

protected:
    ~Workplace() = default;
};

// Calls what a plug-in calls, but for what asks the user or changes orders, and judges the answers. One request
// is sent, which reads only; the setting "planfold-hostcheck" is written.
// The manager is that of the module that asks: a host that keeps a text must not outlive it.
Findings TryExports(const HostLookup& lookup, Workplace& workplace, HeapStringManager& strings);

} // namespace hostcheck
