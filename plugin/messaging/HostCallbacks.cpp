#include "plugin/messaging/HostCallbacks.h"

#include <algorithm>
#include <array>

namespace planfold {

namespace {

struct Slot {
    const char* name;
    void (*set)(HostCallbacks&, AnyFunction);
};

constexpr std::array tableOrder{
#define PLANFOLD_SLOT(name, ...)                                                                               \
    Slot{#name,                                                                                                \
         [](HostCallbacks& host, AnyFunction found) { host.name = reinterpret_cast<sdk::fn::name*>(found); }},
    VESK_HOST_EXPORTS(PLANFOLD_SLOT)
#undef PLANFOLD_SLOT
};

// The request controls and the search delay are looked up after the tabbed log and the peer data; the rest
// goes by the table.
constexpr auto resolveOrder = [] {
    auto order = tableOrder;
    const auto at = [&](sdk::HostExport name) { return order.begin() + static_cast<std::ptrdiff_t>(name); };
    std::rotate(at(sdk::HostExport::GetKeloRxControl), at(sdk::HostExport::pu_add_to_tabbed_log),
                at(sdk::HostExport::pu_get_uuid));
    return order;
}();

} // namespace

HostCallbacks ResolveHostCallbacks(const HostLookup& lookup) {
    HostCallbacks host;
    for (const Slot& slot : resolveOrder)
        slot.set(host, lookup(slot.name));
    return host;
}

std::optional<bool> AskRight(Pass pass, const HostLookup& lookup, StringManager& strings,
                             std::string_view right) {
    const auto enabled = Find<sdk::fn::pu_is_actionright_enabled>(lookup, "pu_is_actionright_enabled");
    if (!enabled) return std::nullopt;
    const CString name(right, strings);
    return enabled(pass, &name) != 0;
}

} // namespace planfold
