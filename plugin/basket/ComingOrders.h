// Orders that come into the basket whole, as if they had been entered one by one: one step of its history.
#pragma once

#include "plugin/basket/BasketForm.h"
#include "plugin/basket/BasketRuns.h"

#include <optional>
#include <span>
#include <vector>

namespace planfold {

class ComingOrders final {
public:
    ComingOrders(Session& session, BasketView& view, BasketRows& rows, BasketHistory& history, BasketRuns& runs)
        : m_session(session), m_view(view), m_rows(rows), m_history(history), m_runs(runs) {}

    // Orders of the record that are proven not to be registered come back, to be placed again. How many of them
    // stand in the basket.
    std::size_t TakeBack(Pass pass, std::span<const OrderPlace> orders);
    // Orders without tokens and serial numbers. How many came in: the host does not know every scrip.
    std::size_t Add(Pass pass, std::vector<sSipOrderData> orders);

private:
    struct ComingOrder {
        FormOrder order;
        OrderPlace place; // of the record; kNoOrder for one that was never sent
    };

    // With what the host knows of its scrip; none when it does not know it.
    std::optional<FormOrder> Complete(Pass pass, sSipOrderData order) const;
    std::size_t TakeIn(const std::vector<ComingOrder>& orders);

    Session& m_session;
    BasketView& m_view;
    BasketRows& m_rows;
    BasketHistory& m_history;
    BasketRuns& m_runs;
};

} // namespace planfold
