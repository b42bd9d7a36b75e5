#pragma once

#include <array>
#include <cstddef>

#include "composition/read/text_cursor.h"
#include "host/host_interface.h"

/// The word KEY and its numbers, all of them plain: an optional minus sign and up to eight digits, with an
/// optional decimal point in all but the first.
struct PlainKey {
    TextPosition at;  ///< of KEY
    A_long frame = 0;
    std::array<float, 8> others{};  ///< in the order written
    std::size_t count = 0;          ///< of all numbers, the frame included
};

/// Receives the keys that ASCIIParser::ReadPlainKeys finds.
class PlainKeySink {
  public:
    virtual ~PlainKeySink() = default;
    /// Takes one key. Returns false when it cannot: the parser then stays in front of its entry.
    virtual bool take(const PlainKey& key) = 0;
};
