// Texts from and to files, or the program's own streams.
#pragma once

#include "host/files/Files.h"
#include "host/market/ScripMaster.h"
#include "plugin/basket/BasketLine.h"

#include <map>
#include <string>
#include <string_view>

namespace basket {

// "-" is standard input; paths are UTF-8.
vesk::Loaded<std::string> ReadText(const std::string& path);

// Line feeds become the platform's line ends; "-" is standard output. A file is replaced as a whole or not at
// all. False when it cannot be.
bool WriteText(const std::string& path, std::string_view text);

// The desk's limits in a settings file, by key, as the basket's window finds them.
vesk::Loaded<std::map<std::string, std::string>> ReadLimits(const std::string& path);

// The terminal's scrip master as what baskets are checked against.
class MasterScrips final : public planfold::ScripSource {
public:
    // The master outlives this.
    explicit MasterScrips(const vesk::ScripMaster& master) : m_master(master) {}

    std::optional<ScripDetails> Details(std::string_view exchange, std::string_view tradingSymbol) override;
    planfold::ScripNames Names(std::string_view exchange, std::string_view series,
                               std::string_view symbol) override;

private:
    const vesk::ScripMaster& m_master;
};

} // namespace basket
