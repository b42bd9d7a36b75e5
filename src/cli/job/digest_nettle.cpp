#include <nettle/sha2.h>

#include <array>
#include <cstdint>

#include "cli/job/digest.h"
#include "text/printable.h"

namespace cli {

struct Sha256::State {
    sha256_ctx context;
};

Sha256::Sha256() : state_(std::make_unique<State>()) {
    sha256_init(&state_->context);
}

Sha256::~Sha256() = default;

void Sha256::add(std::string_view bytes) {
    sha256_update(&state_->context, bytes.size(), reinterpret_cast<const std::uint8_t*>(bytes.data()));
}

std::string Sha256::hexadecimal() {
    std::array<std::uint8_t, SHA256_DIGEST_SIZE> digest{};
    sha256_digest(&state_->context, digest.size(), digest.data());
    return text::hexadecimal_bytes({reinterpret_cast<const char*>(digest.data()), digest.size()});
}

}  // namespace cli
