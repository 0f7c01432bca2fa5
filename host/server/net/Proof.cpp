#include "host/server/net/Proof.h"

#include <array>
#include <stdexcept>
#include <utility>

#ifdef _WIN32
#include <windows.h>

#include <bcrypt.h>
#else
#include <openssl/evp.h>
#include <openssl/hmac.h>
#include <openssl/rand.h>
#endif

namespace vesk {
namespace {

constexpr std::size_t kSha256Bytes = 32;
using Signature = std::array<unsigned char, kSha256Bytes>;

// Each answers whether the system could.
#ifdef _WIN32
unsigned char* BytesOf(std::string_view text) {
    return reinterpret_cast<unsigned char*>(const_cast<char*>(text.data())); // which nobody writes
}
bool MakeRandom(unsigned char* into, std::size_t count) {
    return BCryptGenRandom(nullptr, into, static_cast<ULONG>(count), BCRYPT_USE_SYSTEM_PREFERRED_RNG) >= 0;
}
bool Sign(std::string_view key, std::string_view bytes, Signature& signature) {
    BCRYPT_ALG_HANDLE algorithm = nullptr;
    if (BCryptOpenAlgorithmProvider(&algorithm, BCRYPT_SHA256_ALGORITHM, nullptr, BCRYPT_ALG_HANDLE_HMAC_FLAG)
        < 0)
        return false;
    const NTSTATUS status =
        BCryptHash(algorithm, BytesOf(key), static_cast<ULONG>(key.size()), BytesOf(bytes),
                   static_cast<ULONG>(bytes.size()), signature.data(), static_cast<ULONG>(signature.size()));
    BCryptCloseAlgorithmProvider(algorithm, 0);
    return status >= 0;
}
#else
bool MakeRandom(unsigned char* into, std::size_t count) {
    return RAND_bytes(into, static_cast<int>(count)) == 1;
}
bool Sign(std::string_view key, std::string_view bytes, Signature& signature) {
    unsigned size = 0;
    return HMAC(EVP_sha256(), key.data(), static_cast<int>(key.size()),
                reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size(), signature.data(), &size)
               != nullptr
           && size == signature.size();
}
#endif

} // namespace

std::string RandomBytes(std::size_t count) {
    std::string bytes(count, '\0');
    if (!MakeRandom(reinterpret_cast<unsigned char*>(bytes.data()), count))
        throw std::runtime_error("the system has no random numbers");
    return bytes;
}

std::string HmacSha256(std::string_view key, std::string_view bytes) {
    Signature signature{};
    if (!Sign(key, bytes, signature)) throw std::runtime_error("the system cannot sign");
    return {signature.begin(), signature.end()};
}

std::string ProofOf(std::string_view secret, const std::string& nonce, net::Hello hello) {
    hello.proof.clear();
    std::string bytes;
    net::PayloadWriter writer(bytes);
    writer(nonce);
    hello.Each(writer);
    return HmacSha256(secret, bytes);
}

bool AreSame(std::string_view one, std::string_view other) {
    unsigned char differing = one.size() != other.size();
    for (std::size_t i = 0; i < one.size() && i < other.size(); ++i)
        differing = static_cast<unsigned char>(differing | (one[i] ^ other[i]));
    return differing == 0;
}

} // namespace vesk
