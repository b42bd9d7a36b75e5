#include "mutator.h"

MutatedBytes changed_by_fuzzer(MutatedBytes bytes, std::size_t room) {
    const std::size_t size = bytes.size();
    bytes.resize(size + room + 1);
    bytes.resize(LLVMFuzzerMutate(bytes.data(), size, size + room + 1));
    return bytes;
}
