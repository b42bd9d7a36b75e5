#pragma once

#include <cstring>
#include <type_traits>
#include <vector>

/// Every byte of a host record, including padding.
template <typename Record>
[[nodiscard]] std::vector<unsigned char> bytes_of(const Record& record) {
    static_assert(std::is_trivially_copyable_v<Record>);
    std::vector<unsigned char> bytes(sizeof(record));
    std::memcpy(bytes.data(), &record, sizeof(record));
    return bytes;
}

/// A record filled with the byte `filling`.
template <typename Record>
[[nodiscard]] Record filled_with(unsigned char filling) {
    static_assert(std::is_trivially_copyable_v<Record>);
    Record record;
    std::memset(&record, filling, sizeof(record));
    return record;
}
