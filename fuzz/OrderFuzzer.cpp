// Order forms of any content: refused with a text, or an order that the server can read.

#include "fuzz/Fuzz.h"
#include "plugin/base/Numbers.h"
#include "plugin/orderentry/SipOrder.h"
#include "tests/support/FakeHost.h"

#include <algorithm>
#include <climits>

using fuzz::Demand;
using namespace planfold;

namespace {

constexpr LocalDateTime kNow{2027, 1, 31, 15, 30, 0};

bool IsDigits(std::string_view text) {
    return !text.empty() && text.find_first_not_of("0123456789") == text.npos;
}

// The picker gives real dates only: so many days from now.
LocalDateTime DateIn(std::string_view days) {
    const std::int64_t ahead = std::clamp<std::int64_t>(LeadingInteger(days), -100'000, 1'000'000);
    return ToLocal(ToSeconds(kNow) + ahead * kSecondsPerDay);
}

void CheckPassed(const Session& session, const SipOrderForm& form, const sSipOrderData& record) {
    if (!form.modifyMode) {
        const std::int64_t start = LeadingInteger(record.startDate);
        Demand(IsDigits(record.startDate) && start >= ToSeconds(kNow.Midnight()));
        Demand(start <= ToSeconds(kNow) + 2 * 366 * kSecondsPerDay);
    }
    Demand(!record.totalPeriod.empty());
    const std::int64_t period = LeadingInteger(record.totalPeriod);
    if (session.m_nSipOperationMode != 1) Demand(period >= 1 && period <= 60);
    if (form.investType == "Amount")
        Demand(IsDigits(record.amountOrQuantity) && record.amountOrQuantity.size() <= 9);
    if (form.investType == "Quantity") {
        const std::int64_t shares = LeadingInteger(record.amountOrQuantity);
        Demand(std::to_string(shares) == record.amountOrQuantity && shares != 0);
        // What is sent is what was typed; only what is far below zero is held at the end of 32 bits.
        Demand(shares == std::max<std::int64_t>(LeadingInteger(form.value), INT_MIN) && shares <= INT_MAX);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    test::FakeHost host;
    Session session(host.Lookup(), host.IdentityStrings(), host.strings, host.record);
    fuzz::Input input(data, size);
    SipOrderForm form;
    for (std::string SipOrderForm::*member :
         {&SipOrderForm::investType, &SipOrderForm::value, &SipOrderForm::totalPeriod, &SipOrderForm::frequency,
          &SipOrderForm::exchange, &SipOrderForm::series, &SipOrderForm::symbol, &SipOrderForm::action,
          &SipOrderForm::orderType, &SipOrderForm::product, &SipOrderForm::account})
        form.*member = input.Line();
    form.startDate = DateIn(input.Line());
    // Letters: "m" a modification, "s" the server's periods, "k" the scrip by its key.
    const std::string ways = input.Line();
    form.modifyMode = ways.find('m') != ways.npos;
    session.m_nSipOperationMode = ways.find('s') != ways.npos;
    session.host = ResolveHostCallbacks(session.lookup);
    if (ways.find('k') != ways.npos) session.host.pu_get_trading_symbol_n_token = nullptr;
    for (const Frequency& frequency : kFrequencies)
        session.MinimumPeriods(frequency) = LeadingReal(input.Line());
    host.scrips = {{"nse_cm", form.series, form.symbol, "", input.Line(), ""}};
    host.exchangeAndToken = input.Line();
    host.scrips.front().token = input.Line();

    sSipOrderData record;
    if (const auto refusal = ValidateSipOrder(test::kPass, session, nullptr, form, kNow, record))
        Demand(!refusal->text.empty());
    else
        CheckPassed(session, form, record);
    return 0;
}
