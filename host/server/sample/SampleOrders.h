// Made-up orders over given accounts and scrips, the same ones for the same seed: for a server that shall hold
// many, and for a second session that trades beside the user.
//
// Thread: one at a time. Lifetime: market and configuration outlive the source.
#pragma once

#include "host/server/Registration.h"
#include "host/server/RowQuery.h"
#include "host/server/ServerConfig.h"

#include <random>
#include <string>
#include <vector>

namespace vesk {

struct SampleScrip {
    std::string exchange;
    std::string token;
    std::string tradingSymbol;
};

// Neither list is empty.
struct SampleMarket {
    std::vector<std::string> accounts;
    std::vector<SampleScrip> scrips;
};

// What Fill enters: registrations of these users, spread over the last two years.
struct FillPlan {
    std::size_t count;
    std::vector<UserIdentity> users;
    SampleMarket market;
    std::uint64_t seed = 1;
};

class Server;

// Enters many made-up registrations at once, of every kind that years of trading leave behind, and tells no
// listener. Why it stopped; empty when all is done.
std::string Fill(Server& server, const FillPlan& plan);

// Places orders of the user by ordinary requests, so that the others see them by the stream; the same ones for
// the same seed. The number of those that were registered.
std::size_t PlaceSampleOrders(Server& server, const UserIdentity& user, const SampleMarket& market,
                              std::uint64_t seed, std::size_t count);

class SampleOrders {
public:
    SampleOrders(const SampleMarket& market, const ServerConfig& config, std::uint64_t seed);

    // The fields that an order and its registration share, except whose it is and from when.
    Registration Next();
    // A number below `end`, which is positive.
    std::size_t Below(std::size_t end) { return static_cast<std::size_t>(m_random() % end); }
    template <typename T>
    const T& AnyOf(const std::vector<T>& values) {
        return values[Below(values.size())];
    }

private:
    const SampleMarket& m_market;
    std::vector<Frequency> m_frequencies;
    std::mt19937_64 m_random;
};

} // namespace vesk
