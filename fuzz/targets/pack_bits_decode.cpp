// Decodes a row into a buffer of exactly the size that the decoder is given. Two option bytes give that size.

#include <vector>

#include "check.h"
#include "input.h"
#include "texture/row_coding.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const std::size_t wanted = input.take_value<std::uint16_t>();
    const Bytes coded(input.rest().begin(), input.rest().end());
    require(decoded(coded, wanted) == reference_decode(coded, wanted), "as packet by packet");
    require(decoded_block(coded, wanted) == reference_decode(coded, wanted, 0), "with a zero behind it");
    return 0;
}
