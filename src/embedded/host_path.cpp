#include "embedded/host_path.h"

#include <array>

namespace embedded {
namespace {

std::string hex_byte(char byte) {
    constexpr std::array<char, 17> kDigits{"0123456789ABCDEF"};
    const auto value = static_cast<unsigned char>(byte);
    return {'0', 'x', kDigits[value >> 4U], kDigits[value & 0xFU]};
}

}  // namespace

std::string path_problem(HostGeneration generation, const std::string& path) {
    if (generation == HostGeneration::classic) {
        return {};
    }
    const std::string_view text = path;
    const auto fault = first_fault(text);
    if (!fault) {
        return {};
    }
    return "the path is not UTF-8 (byte " + hex_byte(path[*fault]) + " at offset " + std::to_string(*fault) +
           "), and current hosts take paths in Unicode; only a classic host can take it";
}

}  // namespace embedded
