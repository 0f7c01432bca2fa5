#include "bench/Cases.h"

#include "host/connectvesk/QmxHost.h"
#include "plugin/orderentry/PlaceOrder.h"
#include "sdk/HeapStringManager.h"

#include <memory>

namespace bench {
namespace {

using namespace planfold;

constexpr LocalDateTime kNow{2027, 1, 10, 15, 30, 0};

class SilentNotices final : public Notices {
public:
    void ShowMessage(std::string_view) override {}
};

// Takes the bytes and drops them.
class SilentControl final : public RxControl {
public:
    int SendRequest(std::uint64_t*, void* message, int, QmxError* error) override {
        QmxDatum bytes{};
        const int good = qmx_message_bytes(message, &bytes, error);
        Keep(bytes.data);
        return good;
    }
    int Subscribe(std::uint64_t*, const std::uint32_t*, const QmxDatum*, std::uint32_t, RxControl*, int, int,
                  int, QmxError*) override {
        return 1;
    }
    int Stop(int) override { return 1; }
    void Reserved0() override {}
    void Reserved1() override {}
    void Reserved2() override {}
    void Reserved3() override {}
    void Reserved6() override {}
    void Reserved7() override {}
    void Reserved8() override {}
    void Reserved9() override {}
    void Reserved10() override {}
    void Reserved11() override {}
    void Reserved12() override {}
    void Reserved13() override {}
    void Reserved14() override {}
};

class Desk {
public:
    Desk() {
        m_session.host.pu_get_trading_symbol_n_token = [](HostWindow, int, int, int, int, int, int, OutString,
                                                          OutString) { return 1; };
        m_session.host.pu_get_uuid = [](OutString) { return 1; };
        m_session.host.pu_invoke_caution_order_confirmation = [](InString, InString, InString, InString,
                                                                 InString, InString) { return 0; };
        m_session.m_nSipOperationMode = 1;
        m_session.OpenHandles(m_notices);
        m_form.exchange = "NSE";
        m_form.series = "EQ";
        m_form.symbol = "ARBORTEX";
        m_form.action = "SIP";
        m_form.orderType = "MARKET";
        m_form.product = "CNC";
        m_form.frequency = "monthly";
        m_form.investType = "Amount";
        m_form.value = "5000";
        m_form.totalPeriod = "12";
        m_form.client = "C001";
        m_form.startDate = {2027, 1, 11, 15, 30, 0};
    }
    Desk(const Desk&) = delete;
    Desk& operator=(const Desk&) = delete;

    void Submit() {
        sSipOrderData order;
        const bool refused = ValidateSipOrder(m_session, nullptr, m_form, kNow, order).has_value();
        Require(!refused && SendAddSipOrders(m_session, &m_control, m_notices, order, m_form.exchange),
                "Submit");
    }

private:
    HeapStringManager m_strings;
    std::string m_loginId = "DEALER1", m_peerA = "BROKER", m_peerB = "BRANCH", m_active;
    Session m_session{
        [](const char*) -> AnyFunction { return nullptr; }, {m_loginId, m_peerA, m_peerB, m_active}, m_strings};
    SilentNotices m_notices;
    SilentControl m_control;
    SipOrderForm m_form;
};

} // namespace

Case SubmitCase() {
    return {"submit", [desk = std::make_shared<Desk>()] { desk->Submit(); }};
}

} // namespace bench
