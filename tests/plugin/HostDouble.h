// A host for native tests: answers the plug-in's callbacks from plain data, and records what was asked.
#pragma once

#include "plugin/messaging/Session.h"
#include "sdk/HeapStringManager.h"

#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace planfold::test {

// Texts that would be message boxes.
class RecordedNotices : public Notices {
public:
    void ShowMessage(std::string_view text) override { shown.emplace_back(text); }

    std::vector<std::string> shown;
};

struct HostDouble {
    HostDouble();
    ~HostDouble();
    HostDouble(const HostDouble&) = delete;
    HostDouble& operator=(const HostDouble&) = delete;

    // Finds the double's exports; those in `missing` are not there.
    HostLookup Lookup();

    std::set<std::string> missing;
    std::vector<std::string> lookedUp;

    std::vector<std::string> log;
    std::set<std::string> rights{"QV: Planfold"};
    std::string tradingSymbol = "ALPHA-EQ";
    std::string exchangeAndToken = "nse_cm|1013";
    std::string scripKey;                     // what was asked for
    std::vector<std::string> detailsAskedFor; // exchange, trading symbol
    std::map<std::string, std::string> tokens{{"NSE/ALPHA-EQ", "1013"}};
    std::string peerIdA = "BROKER";
    std::string peerIdB = "BRANCH";
    std::string uuid = "uuid-1"; // empty: the host gives none
    std::string activeClient;
    std::vector<std::string> accounts;
    int clientOverview = 0;
    int cautionAnswer = 0;
    std::vector<std::string> cautionAsked; // the six texts of the last question
    std::function<void()> duringCaution = [] {};
    std::map<std::string, std::string> settings;              // "section/key"
    std::vector<std::pair<std::string, std::string>> clients; // identifier, name
    std::set<std::string> validAccounts;
    std::string searched; // "mode:text" of the last search
    std::vector<ClientResult> found;
    std::vector<int> scripFills; // the flags
    VeskApp app{sizeof(VeskApp), 0, nullptr, nullptr};
    RxControl* control = nullptr; // what GetKeloRxControl gives
    int controlsTaken = 0;
    int controlsReturned = 0;

    HeapStringManager strings;
    std::string loginId = "DEALER1", peerA, peerB, active;
    Identity IdentityStrings() { return {loginId, peerA, peerB, active}; }
};

} // namespace planfold::test
