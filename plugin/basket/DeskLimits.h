// What a desk allows its baskets, as the settings file says it: a key each, such as "Amount=1,00,000 hard".
#pragma once

#include "plugin/basket/BasketOrder.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>

namespace planfold {

enum class DeskLimit : std::uint8_t {
    amount,        // rupees of one instalment
    quantity,      // of one instalment
    periods,       // instalments
    firstDate,     // days from today to the first one
    rowsPerClient, // orders
    total,         // rupees of all first instalments
    count
};
inline constexpr const char* kLimitsSection = "Basket_Limits";
const char* KeyOf(DeskLimit limit);

// Something that is beyond a limit: of one order, or of what they come to.
struct LimitBreach {
    DeskLimit limit;
    bool isHard = false;  // it cannot be placed
    std::string what;     // "Amount above Rs 1,00,000.00"
    std::string of{};     // a client, where it is about one
    bool isOfRow = false; // about the row that was added last
};

class DeskLimits {
public:
    // `valueOf` gives a key's text, empty for none.
    DeskLimits(const std::function<std::string(const std::string&)>& valueOf, std::int64_t now);

    // Its midnight, in seconds since 1970 by the local clock: what starts before it is late.
    std::int64_t Today() const { return m_today; }

    using Tell = std::function<void(const LimitBreach&)>;
    // Orders one by one, then what they come to. Settings that nobody can read are told first of all.
    void TellUnreadable(const Tell& tell) const;
    void Add(const BasketTexts& row, const Tell& tell);
    void End(const Tell& tell) const;

private:
    struct Bound {
        std::optional<std::int64_t> most; // paise where it is money
        bool isHard = false;
        std::string unreadable{};
    };

    void Judge(DeskLimit limit, std::int64_t value, const Tell& tell, bool isOfRow,
               const std::string& of = {}) const;
    Bound& At(DeskLimit limit) { return m_bounds[static_cast<std::size_t>(limit)]; }
    const Bound& At(DeskLimit limit) const { return m_bounds[static_cast<std::size_t>(limit)]; }

    std::array<Bound, static_cast<std::size_t>(DeskLimit::count)> m_bounds;
    std::int64_t m_today;
    std::int64_t m_total = 0;
    std::map<std::string, std::int64_t> m_rowsOf; // by client
};

} // namespace planfold
