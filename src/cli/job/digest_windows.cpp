#include <windows.h>

#include <bcrypt.h>

#include <array>
#include <stdexcept>

#include "cli/job/digest.h"
#include "text/printable.h"

namespace cli {
namespace {

void require(NTSTATUS status) {
    if (status < 0) {
        throw std::runtime_error("Windows does not compute a SHA-256");
    }
}

}  // namespace

struct Sha256::State {
    BCRYPT_ALG_HANDLE algorithm = nullptr;
    BCRYPT_HASH_HANDLE hash = nullptr;

    State() = default;
    State(const State&) = delete;
    State& operator=(const State&) = delete;
    ~State() {
        if (hash != nullptr) {
            BCryptDestroyHash(hash);
        }
        if (algorithm != nullptr) {
            BCryptCloseAlgorithmProvider(algorithm, 0);
        }
    }
};

Sha256::Sha256() : state_(std::make_unique<State>()) {
    require(BCryptOpenAlgorithmProvider(&state_->algorithm, BCRYPT_SHA256_ALGORITHM, nullptr, 0));
    require(BCryptCreateHash(state_->algorithm, &state_->hash, nullptr, 0, nullptr, 0, 0));
}

Sha256::~Sha256() = default;

void Sha256::add(std::string_view bytes) {
    std::string copy(bytes);  // the function takes bytes that it might change
    require(BCryptHashData(state_->hash, reinterpret_cast<PUCHAR>(copy.data()),
                           static_cast<ULONG>(copy.size()), 0));
}

std::string Sha256::hexadecimal() {
    std::array<UCHAR, 32> digest{};
    require(BCryptFinishHash(state_->hash, digest.data(), static_cast<ULONG>(digest.size()), 0));
    return text::hexadecimal_bytes({reinterpret_cast<const char*>(digest.data()), digest.size()});
}

}  // namespace cli
