#include "host/connectvesk/QmxHost.h"
#include "sdk/Tags.h"
#include "tools/planfold-hostcheck/Bench.h"

#include <thread>

namespace hostcheck {
namespace {

class Listener final : public CKeloRxNotifierBase {
public:
    void OnBroadcast(void*, std::uint32_t, void*) override { wasStreamed = true; }
    void OnResponse(void*, void* message, void*) override {
        wasElsewhere = wasElsewhere || std::this_thread::get_id() != m_thread;
        wasInside = wasInside || isSending;
        wasNamed = wasNamed || qmx::Text(message, tag::echoedRequest) == kRequest;
        isAnswered = true;
    }

    static constexpr std::string_view kRequest = "get_sip_operation_mode";
    bool isSending = false, isAnswered = false, wasInside = false, wasElsewhere = false, wasNamed = false,
         wasStreamed = false;

private:
    const std::thread::id m_thread = std::this_thread::get_id();
};

Verdict AskServer(RxControl& control, Listener& listener, Workplace& workplace) {
    qmx::MessageWriter message;
    message.Add(tag::requestName, Listener::kRequest);
    std::uint64_t number = 0;
    QmxError error{};
    listener.isSending = true;
    const bool isTaken = control.SendRequest(&number, message.Handle(), 0, &error) != 0;
    listener.isSending = false;
    if (!isTaken) return Wrong("gives a control that refuses a request: " + std::string(TextOf(error.text)));
    workplace.WaitUntil([&] { return listener.isAnswered; });
    if (!listener.isAnswered)
        return Wrong("gives a control that " + Quoted(Listener::kRequest)
                     + " brought no answer for in ten seconds");
    if (listener.wasInside) return Wrong("gives a control that answers from inside SendRequest");
    if (listener.wasElsewhere) return Wrong("gives a control that answers on another thread");
    if (listener.wasStreamed) return Wrong("gives a control that streams what nobody subscribed to");
    return listener.wasNamed ? Verdict() : Wrong("gives a control whose answers do not name their request");
}

// Takes a control, works with it, and gives it back.
template <class Work>
Verdict WithControl(Bench& bench, RxControlKind kind, Work work) {
    const auto get = bench.Find<sdk::fn::GetKeloRxControl>("GetKeloRxControl");
    const auto giveBack = bench.Find<sdk::fn::DestoryKeloRxCOntrol>("DestoryKeloRxCOntrol");
    if (!get || !giveBack) return Untried("needs its counterpart");
    Listener listener;
    RxControl* control = get(kind, &listener);
    if (!control) return Wrong("gives no control of kind " + std::to_string(kind));
    Verdict verdict = work(*control, listener);
    giveBack(control);
    return verdict;
}

Verdict TryRequests(Bench& bench) {
    return WithControl(bench, kRxRequests, [&](RxControl& control, Listener& listener) {
        return AskServer(control, listener, bench.workplace);
    });
}

Verdict TryStreams(Bench& bench) {
    const auto stop = [](RxControl& control, Listener&) {
        return control.Stop(0) ? Verdict() : Wrong("comes after a stream that cannot be stopped");
    };
    return First({WithControl(bench, kRxIdentityStream, stop), WithControl(bench, kRxAccountStream, stop)});
}

Verdict TryApp(sdk::fn::pu_get_exe_app* call, Bench& bench) {
    const VeskApp* app = call();
    if (!app) return Wrong("gives no application");
    if (app->size < sizeof(VeskApp))
        return Wrong("gives a record of " + std::to_string(app->size) + " bytes, not "
                     + std::to_string(sizeof(VeskApp)));
    if (!bench.workplace.IsWindow(app->mainFrame)) return Wrong("gives a main frame that is no window");
    return {};
}

Verdict TryPeers(sdk::fn::pu_get_peer_data* call, Bench& bench) {
    CString broker = bench.Text(), branch = bench.Text(), other = bench.Text();
    if (!call(&broker, &branch, &other)) return Wrong("fails");
    return Whole({&broker, &branch, &other}, bench.strings);
}

Verdict TryRight(sdk::fn::pu_is_actionright_enabled* call, Bench& bench) {
    const CString right = bench.Text(planfold::kPluginRight), unknown = bench.Text(kNobody);
    if (!call(&right)) return Wrong("does not grant \"QV: Planfold\": nothing opens for this user");
    if (call(&unknown)) return Wrong("grants a right that there is not");
    return {};
}

Verdict TryUuid(sdk::fn::pu_get_uuid* call, Bench& bench) {
    CString first = bench.Text(), second = bench.Text();
    if (!call(&first) || !call(&second) || first.IsEmpty()) return Wrong("gives none");
    if (first.View() == second.View()) return Wrong("gives " + Quoted(first.View()) + " twice");
    return Whole({&first, &second}, bench.strings);
}

Verdict TryDirectory(sdk::fn::pu_get_UserDirectory* call, Bench& bench) {
    CString folder = bench.Text();
    if (!call(&folder) || folder.IsEmpty()) return Wrong("gives none");
    if (folder.View().ends_with('\\'))
        return Wrong("gives " + Quoted(folder.View()) + ", with a closing backslash");
    if (!bench.workplace.IsFolder(folder.View()))
        return Wrong("gives " + Quoted(folder.View()) + ", which is no folder");
    return Whole({&folder}, bench.strings);
}

Verdict TryLog(sdk::fn::pu_add_to_tabbed_log* call, Bench& bench) {
    const int before = bench.strings.LiveBuffers();
    call(PassedString("planfold-hostcheck tries the log", bench.strings).Hand());
    const int left = bench.strings.LiveBuffers() - before;
    return left == 0 ? Verdict() : Wrong("does not destroy the text that it is passed by value, or keeps it");
}

Verdict TrySettings(Bench& bench) {
    const auto write = bench.Find<sdk::fn::pu_write_settings_to_json>("pu_write_settings_to_json");
    const auto read = bench.Find<sdk::fn::pu_read_settings_from_json>("pu_read_settings_from_json");
    if (!write || !read) return Untried("needs its counterpart");
    const CString section = bench.Text("planfold-hostcheck"), key = bench.Text("trial");
    for (const std::string_view value : {"1", "2"}) {
        const CString written = bench.Text(value);
        CString told = bench.Text();
        if (!write(&section, &key, &written, 1)) return Wrong("cannot write a setting");
        if (!read(&section, &key, &told, 1)) return Wrong("cannot read the setting that was written");
        if (Verdict verdict = Same("setting", told.View(), value); !verdict.IsGood()) return verdict;
    }
    return {};
}

Verdict TryNonTradingDates(sdk::fn::pu_get_non_trading_dates_map* call, Bench&) {
    const NonTradingDates* dates = call();
    if (!dates || dates->count == 0) return {};
    if (!dates->dates) return Wrong("gives a count without dates");
    std::uint32_t last = 0;
    for (const std::uint32_t date : std::span(dates->dates, dates->count)) {
        const std::uint32_t month = date / 100 % 100, day = date % 100;
        if (date < 19000101 || date > 99991231 || month < 1 || month > 12 || day < 1 || day > 31)
            return Wrong("gives " + std::to_string(date) + ", which is no date as yyyymmdd");
        if (date <= last) return Wrong("gives dates that do not ascend, at " + std::to_string(date));
        last = date;
    }
    return {};
}

Verdict TryFont(sdk::fn::pu_get_FontVariation* call, Bench&) {
    constexpr std::intptr_t most = 100;
    std::intptr_t variation = 0, size = 0;
    call(&variation, &size, nullptr, nullptr);
    if (size < 0 || size > most || variation < -most || variation > most)
        return Wrong("gives a size of " + std::to_string(size) + " points, and " + std::to_string(variation)
                     + " more");
    return {};
}

} // namespace

std::span<const Trial> SessionTrials() {
    using namespace sdk::fn;
    static constexpr Trial trials[] = {
        {"pu_get_exe_app", Try<pu_get_exe_app, TryApp>},
        {"pu_get_peer_data", Try<pu_get_peer_data, TryPeers>},
        {"pu_is_actionright_enabled", Try<pu_is_actionright_enabled, TryRight>},
        {"GetKeloRxControl", TryTogether<TryRequests>},
        {"DestoryKeloRxCOntrol", TryTogether<TryStreams>},
        {"pu_is_connected", Call<pu_is_connected>},
        {"pu_get_uuid", Try<pu_get_uuid, TryUuid>},
        {"pu_get_UserDirectory", Try<pu_get_UserDirectory, TryDirectory>},
        {"pu_add_to_tabbed_log", Try<pu_add_to_tabbed_log, TryLog>},
        {"pu_write_settings_to_json", TryTogether<TrySettings>},
        {"pu_read_settings_from_json", TryTogether<TrySettings>},
        {"pu_get_non_trading_dates_map", Try<pu_get_non_trading_dates_map, TryNonTradingDates>},
        {"pu_resend_nontradingDate_Request", Call<pu_resend_nontradingDate_Request>},
        {"pu_get_FontVariation", Try<pu_get_FontVariation, TryFont>},
    };
    return trials;
}

} // namespace hostcheck
