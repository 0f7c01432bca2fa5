// Made-up baskets, the same ones in every run, as they are exported: 2,000 scrips, 28 start dates.
#pragma once

#include "bench/BasketPeers.h"
#include "plugin/basket/BasketFile.h"

#include <cstdint>
#include <string>
#include <unordered_map>

namespace bench {

class SampleScrips final : public planfold::ScripSource {
public:
    SampleScrips();

    std::optional<ScripDetails> Details(std::string_view exchange, std::string_view tradingSymbol) override;
    planfold::ScripNames Names(std::string_view, std::string_view series, std::string_view symbol) override;

    TokenMap tokens;

private:
    std::unordered_map<std::string, ScripDetails> m_details;
};

struct SampleBasket {
    explicit SampleBasket(std::uint32_t count);

    void Load(const std::string& from, planfold::BasketSink& sink);
    std::size_t GoodOfBad() const;

    std::uint32_t lines;
    std::string text;
    std::string withBad; // one line in twenty, by each rule in turn
    SampleScrips scrips;
    planfold::BasketRules rules;
};

} // namespace bench
