// Exports around placing orders: products and the cautionary questions.
#include "host/terminal/window/exports/HostExports.h"

namespace vesk {
namespace {

CautionOrder Order(InString client, InString investType, InString product, InString value, InString symbol,
                   InString exchange) {
    return {TextOf(client), TextOf(investType), TextOf(product),
            TextOf(value),  TextOf(symbol),     TextOf(exchange)};
}

BasketAnswer AnswerOf(int button) {
    if (button == IDYES) return BasketAnswer::confirm;
    return button == IDNO ? BasketAnswer::refuse : BasketAnswer::leaveOut;
}

} // namespace
} // namespace vesk

using namespace vesk;

int pu_load_product_type_combo(HostWindow dialog, int comboId) {
    return Serve(0, [&](Application& application) {
        const auto combo = Item<framework::ComboBox>(dialog, comboId);
        if (!combo) return 0;
        combo.Clear();
        for (const std::string& product : application.State().config.products)
            combo.Add(product);
        return 1;
    });
}

int pu_invoke_caution_order_confirmation(InString client, InString investType, InString product, InString value,
                                         InString symbol, InString exchange) {
    return Serve(int{kCautionUndecided}, [&](Application& application) -> int {
        const CautionOrder order = Order(client, investType, product, value, symbol, exchange);
        if (const auto decided = DecideCaution(application.State().master, order)) return *decided;
        const int answer = application.Ask(CautionQuestion(order), MB_YESNO | MB_ICONWARNING | MB_DEFBUTTON2);
        return answer == IDYES ? kCautionary : kNotCautionary;
    });
}

int pu_build_bskt_caution_order_map(InString client, InString investType, InString product, InString value,
                                    InString symbol, InString exchange, int row) {
    return Serve(0, [&](Application& application) {
        TerminalState& state = application.State();
        state.basketCaution.Add(state.master, Order(client, investType, product, value, symbol, exchange), row);
        return 1;
    });
}

int pu_invoke_bskt_caution_order_confirmation() {
    return Serve(0, [](Application& application) {
        BasketCaution& basket = application.State().basketCaution;
        const std::string question = basket.Question();
        if (question.empty()) return basket.Answer(BasketAnswer::refuse);
        return basket.Answer(
            AnswerOf(application.Ask(question, MB_YESNOCANCEL | MB_ICONWARNING | MB_DEFBUTTON2)));
    });
}

int pu_get_cautionary_bskt_confirm_state(InString symbol, InString exchange, int row) {
    return Serve(0, [&](Application& application) {
        return application.State().basketCaution.StateOf(Text(symbol), Text(exchange), row);
    });
}

int pu_free_allocated_memory() {
    return Serve(0, [](Application& application) {
        application.State().basketCaution.Clear();
        return 1;
    });
}
