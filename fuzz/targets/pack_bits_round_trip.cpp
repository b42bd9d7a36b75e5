// Encodes a row and decodes it again. Two option bytes give the room that the encoder has.

#include <vector>

#include "check.h"
#include "input.h"
#include "texture/row_coding.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const std::size_t capacity = input.take_value<std::uint16_t>();
    const Bytes plain(input.rest().begin(), input.rest().end());
    const Reference reference = reference_encode(plain);
    const std::optional<Bytes> coded = encoded(plain, capacity);
    require(coded.has_value() == (!plain.empty() && capacity >= reference.room_bytes),
            "it is coded exactly when there is room");
    if (coded) {
        require(*coded == reference.coded, "as packet by packet");
        require(decoded(*coded, plain.size()) == plain, "and comes back");
    }
    return 0;
}
