#include "bench/Cases.h"
#include "bench/SilentHost.h"
#include "plugin/orderentry/PlaceOrder.h"

#include <memory>

namespace bench {
namespace {

using namespace planfold;

constexpr LocalDateTime kNow{2027, 1, 10, 15, 30, 0};

class Desk {
public:
    Desk() {
        m_host.session.host.pu_get_trading_symbol_n_token = [](HostWindow, int, int, int, int, int, int,
                                                               OutString, OutString) { return 1; };
        m_host.session.host.pu_invoke_caution_order_confirmation = [](InString, InString, InString, InString,
                                                                      InString, InString) { return 0; };
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
        m_form.account = "C001";
        m_form.startDate = {2027, 1, 11, 15, 30, 0};
    }
    void Submit() {
        sSipOrderData order;
        const bool refused =
            ValidateSipOrder(m_host.pass, m_host.session, nullptr, m_form, kNow, order).has_value();
        Require(!refused
                    && SendAddSipOrders(m_host.pass, m_host.session, &m_host.control, m_host.notices, order,
                                        m_host.session.FreshIdentifier(m_host.pass), m_form.exchange),
                "Submit");
    }

private:
    NoRecord m_noRecord;
    SilentHost m_host{m_noRecord};
    SipOrderForm m_form;
};

} // namespace

Case SubmitCase() {
    return {"submit", [desk = std::make_shared<Desk>()] { desk->Submit(); }};
}

} // namespace bench
