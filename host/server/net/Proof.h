// How a terminal proves which login it is without telling its secret: it signs the server's nonce, and all that
// its hello says, with the secret that both know.
//
// Thread: any. Failure: a system without random numbers or cryptography throws std::runtime_error.
#pragma once

#include "host/server/net/Protocol.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace vesk {

// That nobody can foretell.
std::string RandomBytes(std::size_t count);
std::string HmacSha256(std::string_view key, std::string_view bytes);

// The proof that belongs to the hello as the answer to the nonce.
std::string ProofOf(std::string_view secret, const std::string& nonce, net::Hello hello);
// Takes as long wherever they differ.
bool AreSame(std::string_view one, std::string_view other);

} // namespace vesk
