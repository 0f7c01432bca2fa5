#include "tools/planfold-basket/Sources.h"

#include "host/files/Files.h"
#include "tools/planfold-basket/Commands.h"

#include <iostream>
#include <iterator>
#include <system_error>

namespace basket {

vesk::Loaded<std::string> ReadText(const std::string& path) {
    if (path != kStandardStream) return vesk::ReadWholeFile(path);
    std::string text{std::istreambuf_iterator<char>(std::cin), {}};
    if (std::cin.bad()) return vesk::FileFault{path, 0, "standard input cannot be read"};
    return text;
}

bool WriteText(const std::string& path, std::string_view text) {
    if (path == kStandardStream)
        return static_cast<bool>(
            std::cout.write(text.data(), static_cast<std::streamsize>(text.size())).flush());
    constexpr std::ios::openmode asText{};
    std::error_code error;
    // A device or a pipe has nothing to lose, and must not be replaced.
    const std::filesystem::path file = vesk::PathOf(path);
    if (std::filesystem::exists(file, error) && !std::filesystem::is_regular_file(file, error))
        return vesk::WriteInPlace(path, text, asText);
    return vesk::WriteWholeFile(path, text, asText);
}

std::optional<ScripDetails> MasterScrips::Details(std::string_view exchange, std::string_view tradingSymbol) {
    const vesk::Scrip* scrip = m_master.ByTradingSymbol(exchange, tradingSymbol);
    if (!scrip) return std::nullopt;
    ScripDetails details{};
    details.decimals = scrip->decimals;
    details.priceMultiplier = scrip->multiplier;
    details.tickSize = scrip->tickSize;
    // The master has checked that both fit with a zero behind them.
    scrip->token.copy(details.token, sizeof details.token - 1);
    scrip->tradingSymbol.copy(details.tradingSymbol, sizeof details.tradingSymbol - 1);
    return details;
}

planfold::ScripNames MasterScrips::Names(std::string_view exchange, std::string_view series,
                                         std::string_view symbol) {
    const vesk::Scrip* scrip = m_master.BySymbol(exchange, series, symbol);
    if (!scrip) return {};
    return {scrip->tradingSymbol, scrip->token, scrip->company};
}

} // namespace basket
