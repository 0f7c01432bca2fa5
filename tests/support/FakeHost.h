// A host for every ring: all functions that the plug-in looks for, answered from plain data, and a record of
// what was asked. One at a time.
#pragma once

#include "host/connectvesk/QmxHost.h"
#include "plugin/messaging/Session.h"
#include "plugin/record/OrderRecord.h"
#include "sdk/Tags.h"
#include "tests/support/QuarantineStringManager.h"

#include <deque>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace planfold::test {

struct Field {
    std::uint32_t tag;
    std::vector<std::string> values;
};
// It can be made from text: "frequency=monthly,yearly account=C001", where a tag goes by its name and has a
// value or several.
struct Fields : std::vector<Field> {
    using vector::vector;
    Fields(const std::string& text);
    Fields(const char* text) : Fields(std::string(text)) {}
};
// The request add_sip_orders as it leaves the plug-in, up to the branch, and with some fields otherwise.
Fields Order(const Fields& changes);
// "add_sip_orders exchange=nse_cm token=1013"
std::string TextOf(const Fields& message);
using Texts = std::vector<std::string>;

// What a call under test needs that lets the host in.
inline const Pass kPass = [] {
    std::optional<Pass> made;
    Lifetime::Last([&](Pass pass) { made = pass; });
    return *made;
}();

// A message as the host hands it to a notifier.
class Received {
public:
    explicit Received(const Fields& fields);
    void* Message() const { return m_reader->Handle(); }

private:
    std::string m_bytes;
    std::unique_ptr<qmx::MessageReader> m_reader;
};

// The order record's files, in memory: one whatever the day.
struct RecordDouble final : RecordFiles {
    bool HasFolder() const override { return hasFolder; }
    std::optional<std::string> Read(const LocalDateTime& of) override {
        if (of.Midnight() != day) return std::nullopt;
        return text;
    }
    bool Append(const LocalDateTime&, std::string_view lines, bool, std::size_t&) override;
    // The events in their order, each "event client registration text" as far as it has them.
    Texts Events() const;

    std::string text;
    LocalDateTime day{2027, 1, 31};
    bool hasFolder = true, writable = true;
    int appends = 0;
};

struct FakeHost;
inline constexpr unsigned kCalledAfterItsEnd = 9;

// Keeps every request and subscription as one line of text with its host.
class FakeControl final : public RxControl {
public:
    explicit FakeControl(FakeHost& host, int ofKind = kRxRequests, CKeloRxNotifierBase* its = nullptr)
        : kind(ofKind), notifier(its), m_host(host) {}

    void Reserved0() override { Misused(); }
    void Reserved1() override { Misused(); }
    void Reserved2() override { Misused(); }
    void Reserved3() override { Misused(); }
    int SendRequest(std::uint64_t* number, void* message, int zero, QmxError* error) override;
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

    const int kind;
    CKeloRxNotifierBase* const notifier;
    bool live = true;
    int subscribed = 0, stops = 0;

private:
    void Misused();

    FakeHost& m_host;
};

struct FakeHost {
    struct Scrip {
        std::string exchange, series, symbol, token, tradingSymbol, company;
    };

    FakeHost();
    FakeHost(const FakeHost&) = delete;
    FakeHost& operator=(const FakeHost&) = delete;
    ~FakeHost();

    // Finds the host's functions without a loader.
    HostLookup Lookup();
    Identity IdentityStrings() { return {loginId, peerA, peerB, active}; }
    int CallsOf(std::string_view name) const;
    int LiveControls() const;
    std::string LastRequest() const { return requests.empty() ? "(none)" : requests.back(); }
    // Goes to the window that took the first control.
    void Answer(const Fields& fields);
    // Goes to the window that sent the last request.
    void AnswerSender(const Fields& fields);
    // The control of the kind that was taken last: the book's.
    FakeControl& Newest(int kind);
    void AnswerBook(const Fields& fields);
    void Stream(int kind, const Fields& fields);

    // Answers.
    std::set<std::string> missing; // for Lookup
    std::set<std::string> rights{"QV: Planfold"};
    HostWindow mainFrame = nullptr; // a real window under Windows
    VeskApp app{sizeof(VeskApp), 0, nullptr, nullptr};
    bool hasApp = true, refuses = false; // what controls are asked for
    bool connected = true;
    std::string peerIdA = "PEERA", peerIdB = "PEERB";
    std::string uuid = "UUID-1"; // empty: the host gives none
    std::string activeClient;
    std::string userDirectory = "C:\\user"; // a folder that is empty at first under Windows
    std::vector<std::pair<std::string, std::string>> clients{{"C001", "First Client"},
                                                             {"C002", "Second Client"}};
    std::set<std::string> validAccounts{"C001", "C002"};
    std::vector<Scrip> scrips{{"nse_cm", "EQ", "ARBORTEX", "1013", "ARBORTEX-EQ", "Arbor Textiles"},
                              {"nse_cm", "EQ", "BYTEFIN", "2901", "BYTEFIN-EQ", "Byte Finance"},
                              {"nse_cm", "BE", "LUMENBANK", "2902", "LUMENBANK-BE", "Lumen Bank"},
                              {"bse_cm", "EQ", "INFOCAR", "500100", "INFOCAR", "Infocar Motors"}};
    std::string exchangeAndToken;                // instead of the scrip's own
    std::map<std::string, std::string> settings; // "section/key"
    Texts accounts;
    int clientOverview = 0;
    bool ended = false; // a call would then end the process with kCalledAfterItsEnd
    std::intptr_t fontVariation = 0, fontSize = 0;
    int caution = 0;
    std::map<int, int> cautionOfRow; // of a basket
    std::deque<int> searchTimes{0};
    // Run once, inside the host.
    std::function<void()> duringCaution, duringSearch, duringScripLookUp, duringScripFill, duringAccounts,
        duringLog, duringRowState, duringResize;

    // Run with each request before it is taken.
    std::function<void()> onRequest;

    // What was seen. A call is "pu_is_valid_account(C001)": texts and numbers as they are, windows as their
    // identifiers.
    Texts lookedUp, calls, log, requests, subscriptions, misuses;
    std::deque<FakeControl> controls;
    FakeControl* sender = nullptr; // of the last request

    RecordDouble recordFiles;
    LocalDateTime recordTime{2027, 1, 31, 15, 30, 0};
    OrderRecord record{recordFiles, [this] { return recordTime; }};
    QuarantineStringManager strings;
    std::string loginId = "DEALER1", peerA, peerB, active;
};

// The one that stands.
FakeHost& Host();

} // namespace planfold::test
