// The peer of the book's records: a vector of strings each, in a map of strings.
#pragma once

#include "plugin/orderbook/OrderCache.h"

#include <absl/container/flat_hash_map.h>

#include <string>
#include <vector>

namespace bench {

using PeerRecord = std::vector<std::string>;
using PeerBook = absl::flat_hash_map<std::string, PeerRecord>;

inline PeerRecord Copied(const planfold::sOrderinfo& record) {
    PeerRecord copy;
    copy.reserve(planfold::kOrderFieldCount);
    for (std::size_t i = 0; i < planfold::kOrderFieldCount; ++i)
        copy.emplace_back(record.Text(static_cast<planfold::OrderField>(i)));
    return copy;
}

} // namespace bench
