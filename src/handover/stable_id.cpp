#include "handover/stable_id.h"

#include "text/ascii.h"

namespace handover {
namespace {

// FNV-1a with 64 bits: the same on every machine, and simple enough to be written again elsewhere.
constexpr std::uint64_t kOffsetBasis = 0xCBF29CE484222325U;
constexpr std::uint64_t kPrime = 0x100000001B3U;

std::uint64_t with_byte(std::uint64_t hash, unsigned char byte) {
    return (hash ^ byte) * kPrime;
}

// A zero ends the text, so that "ab" and "c" differ from "a" and "bc".
std::uint64_t with_text(std::uint64_t hash, std::string_view text) {
    for (const char c : text) {
        hash = with_byte(hash, static_cast<unsigned char>(c));
    }
    return with_byte(hash, 0);
}

// The lowest byte first.
std::uint64_t with_number(std::uint64_t hash, std::uint64_t number) {
    constexpr int kBytes = 8;
    for (int i = 0; i < kBytes; ++i) {
        hash = with_byte(hash, static_cast<unsigned char>(number & 0xFFU));
        number >>= 8U;
    }
    return hash;
}

std::string_view stem_of(std::string_view path) {
    const std::string_view name = text::last_component(path, "/\\");
    const std::size_t dot = name.rfind('.');
    return dot == 0 ? name : name.substr(0, dot);  // npos: all of it
}

}  // namespace

StableIds::StableIds(std::string_view scene) : root_(with_text(kOffsetBasis, stem_of(scene))) {}

StableIds::Key StableIds::next(Key parent, std::string_view kind, std::string_view name) {
    const Key alike = with_text(with_text(with_number(kOffsetBasis, parent), kind), name);
    return with_number(alike, made_[alike]++);
}

std::string StableIds::text(Key key) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    constexpr unsigned kNibbles = 16;
    std::string text = "vxr-";
    for (unsigned i = kNibbles; i > 0; --i) {
        text += kDigits[(key >> (4U * (i - 1))) & 0xFU];
    }
    return text;
}

}  // namespace handover
