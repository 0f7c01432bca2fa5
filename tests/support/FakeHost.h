// The test program as the host: every function that a host exports, with settable answers and a record of what
// the plug-in asked. One at a time; the exported functions go to the current one.
#pragma once

#include "sdk/HostExports.h"
#include "tests/support/Connection.h"
#include "tests/support/QuarantineStringManager.h"

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

class FakeHost;

// A request and response control as the host hands it out.
class FakeControl final : public RxControl {
public:
    FakeControl(FakeHost& host, int index, int ofKind, CKeloRxNotifierBase* its)
        : m_host(host), m_index(index), kind(ofKind), notifier(its) {}

    void Reserved0() override { Misused(); }
    void Reserved1() override { Misused(); }
    void Reserved2() override { Misused(); }
    void Reserved3() override { Misused(); }
    int SendRequest(std::uint64_t* requestNumber, void* message, int zero, QmxError* error) override;
    int Subscribe(std::uint64_t* out, const std::uint32_t* tags, const QmxDatum* values, std::uint32_t count,
                  RxControl* self, int zeroA, int zeroB, int one, QmxError* error) override;
    void Reserved6() override { Misused(); }
    void Reserved7() override { Misused(); }
    void Reserved8() override { Misused(); }
    void Reserved9() override { Misused(); }
    void Reserved10() override { Misused(); }
    void Reserved11() override { Misused(); }
    void Reserved12() override { Misused(); }
    void Reserved13() override { Misused(); }
    void Reserved14() override { Misused(); }
    int Stop(int zero) override;

private:
    void Misused();

    FakeHost& m_host;
    int m_index;

public:
    const int kind;
    CKeloRxNotifierBase* const notifier;
    bool live = true;
    bool stopped = false;
};

class FakeHost {
public:
    struct Scrip {
        std::string exchange, series, symbol, token, tradingSymbol, company;
    };
    // `control` counts the controls in the order in which they were taken.
    struct Sent {
        int control;
        Fields fields;
    };

    FakeHost();
    FakeHost(const FakeHost&) = delete;
    FakeHost& operator=(const FakeHost&) = delete;
    ~FakeHost();
    static FakeHost& Current();

    // Answers.
    std::set<std::string> rights{"QV: Planfold"};
    bool hasMainFrame = true;
    bool hasApp = true;
    std::uint32_t appSize = sizeof(VeskApp); // as the record says itself
    bool givesControls = true;
    std::string peerIdA = "PEERA", peerIdB = "PEERB";
    std::string uuid = "UUID-1"; // empty: refused
    std::string userDirectory;   // empty: refused
    std::string activeClient;
    std::vector<std::pair<std::string, std::string>> clients{{"C001", "First Client"},
                                                             {"C002", "Second Client"}};
    std::vector<std::string> products{"CNC", "MIS", "NRML"};
    std::vector<Scrip> scrips{{"nse_cm", "EQ", "ARBORTEX", "1013", "ARBORTEX-EQ", "Arbor Textiles"},
                              {"nse_cm", "EQ", "BYTEFIN", "2901", "BYTEFIN-EQ", "Byte Finance"},
                              {"nse_cm", "BE", "LUMENBANK", "2902", "LUMENBANK-BE", "Lumen Bank"},
                              {"bse_cm", "EQ", "INFOCAR", "500100", "INFOCAR", "Infocar Motors"}};
    std::map<std::pair<std::string, std::string>, std::string> settings; // (section, key)
    std::vector<std::uint32_t> nonTradingDates;
    std::vector<std::string> mappedAccounts{"C001", "C002"};
    int clientOverview = 0;
    int searchTime = 0;
    std::intptr_t fontVariation = 0, fontSize = 0;
    int caution = 0;
    std::function<void()> duringCaution; // runs once, while the host asks
    std::function<void()> duringSearch;  // runs once, while the host searches clients
    int sendResult = 1, subscribeResult = 1;
    std::int32_t subscribeError = 0;

    // What was seen. A call is "pu_is_valid_account(C001)": texts and numbers as they are, windows as their
    // identifiers.
    std::vector<std::string> calls;
    std::vector<std::string> log;
    std::vector<Sent> requests;
    std::vector<Sent> subscriptions;
    std::vector<std::string> misuses; // of the controls
    std::deque<FakeControl> controls;

    int CallsOf(std::string_view name) const;
    int LiveControls() const;
    std::string LastRequest() const { return requests.empty() ? "(none)" : Dump(requests.back().fields); }
    // To the notifier that took the control of that number.
    void Answer(int control, const Fields& fields);
    void Broadcast(int control, const Fields& fields);
    const Scrip* FindScrip(const std::function<bool(const Scrip&)>& matches) const;

    HWND MainFrame() const { return m_mainFrame; }
    VeskApp* App();
    const NonTradingDates* NonTrading();
    const ClientResult* Search(int mode, std::string_view text, int& count);

    QuarantineStringManager strings;

private:
    static FakeHost* s_current;
    HWND m_mainFrame;
    VeskApp m_app{};
    NonTradingDates m_nonTrading{};
    std::vector<ClientResult> m_results;
    std::vector<std::unique_ptr<std::pair<std::string, std::string>>> m_resultTexts;
};
