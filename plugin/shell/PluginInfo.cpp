#include "plugin/shell/PluginInfo.h"

#include "plugin/messaging/Rights.h"

namespace planfold {

namespace {

constexpr std::string_view kName = "Planfold";
constexpr std::string_view kVersion = "4.5.2.10";
constexpr std::uint32_t kBuildStamp = 29032010; // DDMMYYYY
constexpr std::uint32_t kInterfaceNumber = 58;

// New elements live in the host's own strings, so that they may outlive this library.
StringManager& ManagerFor(const CString* sibling, StringManager& ownStrings) {
    return sibling ? sibling->Manager() : ownStrings;
}

} // namespace

void FillPluginInfo(Pass pass, const HostLookup& lookup, CString* name, CString* version, CStringArray* menu,
                    std::uint32_t* buildStamp, std::uint32_t* interfaceNumber, StringManager& ownStrings) {
    StringManager& strings = ManagerFor(name ? name : version, ownStrings);
    if (name) *name = kName;
    if (version) *version = kVersion;
    if (menu) {
        for (const std::string_view entry : {kOrderEntryMenu, kBasketMenu, kBookMenu})
            menu->Append(entry, strings);
        if (AskRight(pass, lookup, strings, kRestrictedDatesRight).value_or(false))
            menu->Append(kRestrictedDatesMenu, strings);
    }
    if (buildStamp) *buildStamp = kBuildStamp;
    if (interfaceNumber) *interfaceNumber = kInterfaceNumber;
}

void FillRights(CString* root, CStringArray* names, StringManager& ownStrings) {
    StringManager& strings = ManagerFor(root, ownStrings);
    if (root) *root = kRightsRoot;
    if (!names) return;
    for (const std::string_view right : {kPluginRight, kCustomRight, kRestrictedDatesRight})
        names->Append(right, strings);
}

} // namespace planfold
