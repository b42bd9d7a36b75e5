#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "support/temporary_folder.h"

/// The entry of every target. Always returns 0.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

/// The number of option bytes at the start of a target's inputs. The mutators keep the rest well-formed.
extern const std::size_t kOptionBytes;

/// The bytes of one input. A target with options takes them from the front; missing ones are 0. The rest is
/// the content of a file or buffer.
class Input {
  public:
    Input(const std::uint8_t* data, std::size_t size) : bytes_(data, size) {}

    std::uint8_t take() {
        if (bytes_.empty()) {
            return 0;
        }
        const std::uint8_t first = bytes_.front();
        bytes_ = bytes_.subspan(1);
        return first;
    }
    /// Reads the next bytes as one big-endian value.
    template <class Value>
    Value take_value() {
        std::uint64_t bits = 0;
        for (std::size_t i = 0; i < sizeof(Value); ++i) {
            bits = bits << 8 | take();
        }
        return static_cast<Value>(bits);
    }
    std::span<const std::uint8_t> take_bytes(std::size_t count) {
        const auto taken = bytes_.first(std::min(count, bytes_.size()));
        bytes_ = bytes_.subspan(taken.size());
        return taken;
    }

    [[nodiscard]] std::span<const std::uint8_t> rest() const { return bytes_; }
    [[nodiscard]] std::string_view rest_text() const {
        return {reinterpret_cast<const char*>(bytes_.data()), bytes_.size()};
    }

  private:
    std::span<const std::uint8_t> bytes_;
};

/// This process's folder for the files that the code under test reads. It lies in the system's temporary
/// folder; script/fuzz puts that into memory.
inline const TemporaryFolder& scratch() {
    static const TemporaryFolder folder;
    return folder;
}
