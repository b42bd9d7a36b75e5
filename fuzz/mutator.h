#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

// Shared by the mutators of both formats. The fuzzer calls a mutator as LLVMFuzzerCustomMutator. It makes one
// change that keeps the file well-formed, or leaves the change to the fuzzer.

/// The fuzzer's own mutation of `size` bytes, up to `max_size`. Returns the new size.
extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t max_size);

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t max_size,
                                               unsigned int seed);

using MutatedBytes = std::vector<std::uint8_t>;

class Dice {
  public:
    explicit Dice(unsigned int seed) : random_(seed) {}
    /// A number from 0 to `sides` - 1; 0 when `sides` is 0.
    std::size_t below(std::size_t sides) { return sides == 0 ? 0 : random_() % sides; }
    bool one_in(std::size_t sides) { return below(sides) == 0; }
    template <class List>
    const auto& one_of(const List& list) {
        return list[below(std::size(list))];
    }

  private:
    std::minstd_rand random_;
};

/// The fuzzer's own mutation of a part, which may grow by `room` bytes.
MutatedBytes changed_by_fuzzer(MutatedBytes bytes, std::size_t room);

/// Runs `change` on the bytes after the options, or sometimes the fuzzer's own mutation on all bytes. Returns
/// the new size.
template <class Change>
std::size_t mutate(std::uint8_t* data, std::size_t size, std::size_t max_size, std::size_t option_bytes,
                   Dice& dice, const Change& change) {
    if (size <= option_bytes || dice.one_in(10)) {
        return LLVMFuzzerMutate(data, size, max_size);
    }
    if (option_bytes > 0 && dice.one_in(5)) {
        LLVMFuzzerMutate(data, option_bytes, option_bytes);
        return size;
    }
    const MutatedBytes after = change(MutatedBytes(data + option_bytes, data + size));
    if (after.empty() || after.size() > max_size - option_bytes) {
        return LLVMFuzzerMutate(data, size, max_size);
    }
    for (std::size_t i = 0; i < after.size(); ++i) {
        data[option_bytes + i] = after[i];
    }
    return option_bytes + after.size();
}
