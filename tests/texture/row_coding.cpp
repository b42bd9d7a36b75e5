#include "texture/row_coding.h"

#include <cstdint>

#include "texture/exact_buffer.h"
#include "texture/txl/pack_bits.h"

namespace {

// An independent encoder, written from the table of packets alone: it forms the packets first, then the bytes
// and the room that they need.
struct Packet {
    bool run = false;
    Bytes bytes;
};

std::vector<Packet> packets_of(const Bytes& plain) {
    std::vector<Packet> packets;
    bool open = false;
    std::size_t i = 0;
    while (i < plain.size()) {
        std::size_t same = 1;
        while (same < 128 && i + same < plain.size() && plain[i + same] == plain[i]) {
            ++same;
        }
        if (same >= 3) {
            packets.push_back({true, Bytes(same, plain[i])});
            open = false;
            i += same;
            continue;
        }
        if (!open) {
            packets.push_back({false, {}});
        }
        packets.back().bytes.push_back(plain[i++]);
        open = packets.back().bytes.size() < 128;
    }
    return packets;
}

// Whether a decoder takes the byte after the input: only for a run whose control byte is the last of it.
bool takes_byte_behind(const Bytes& coded, std::size_t wanted) {
    std::size_t at = 0;
    std::size_t filled = 0;
    while (filled < wanted && at < coded.size()) {
        const std::size_t control = coded[at++];
        if (control > 0x80) {
            if (at == coded.size()) {
                return true;
            }
            ++at;
            filled += 257 - control;
        } else if (control < 0x80) {
            at += control + 1;
            filled += control + 1;
        }
    }
    return false;
}

}  // namespace

std::optional<Bytes> encoded(const Bytes& plain, std::size_t capacity) {
    ExactBuffer src(plain);
    ExactBuffer dst(capacity);
    const std::int32_t written = pack_bits_encode(src.data(), src.size(), dst.data(), dst.size());
    if (written == 0) {
        return std::nullopt;
    }
    return dst.first(static_cast<std::size_t>(written));
}

std::optional<Bytes> decoded(const Bytes& coded, std::size_t wanted) {
    Bytes readable = coded;
    if (takes_byte_behind(coded, wanted)) {
        readable.push_back(kGuard);
    }
    ExactBuffer src(readable);
    ExactBuffer dst(wanted);
    if (!pack_bits_decode(src.data(), static_cast<std::int32_t>(coded.size()), dst.data(), dst.size())) {
        return std::nullopt;
    }
    return dst.all();
}

std::optional<Bytes> decoded_block(const Bytes& coded, std::size_t wanted) {
    ExactBuffer src(coded);
    ExactBuffer dst(wanted);
    if (!pack_bits_decode_block(src.data(), src.size(), dst.data(), dst.size())) {
        return std::nullopt;
    }
    return dst.all();
}

Reference reference_encode(const Bytes& plain) {
    Reference reference;
    const std::vector<Packet> packets = packets_of(plain);
    for (const Packet& packet : packets) {
        const std::size_t length = packet.bytes.size();
        if (packet.run) {
            reference.coded.push_back(static_cast<unsigned char>(257 - length));
            reference.coded.push_back(packet.bytes.front());
        } else {
            reference.coded.push_back(static_cast<unsigned char>(length - 1));
            reference.coded.insert(reference.coded.end(), packet.bytes.begin(), packet.bytes.end());
        }
    }
    reference.room_bytes = reference.coded.size();
    if (!packets.empty() && !packets.back().run && packets.back().bytes.size() == 128) {
        ++reference.room_bytes;
    }
    return reference;
}

std::optional<Bytes> reference_decode(const Bytes& coded, std::size_t wanted, unsigned char behind) {
    Bytes out;
    std::size_t at = 0;
    while (out.size() < wanted && at < coded.size()) {
        const unsigned char control = coded[at++];
        if (control == 0x80) {
            continue;
        }
        if (control > 0x80) {
            const unsigned char value = at < coded.size() ? coded[at] : behind;
            ++at;
            out.insert(out.end(), 257U - control, value);
        } else {
            if (at >= coded.size()) {
                return std::nullopt;
            }
            // Until the output is full or the input is used up.
            for (unsigned i = 0; i <= control && at < coded.size() && out.size() < wanted; ++i) {
                out.push_back(coded[at++]);
            }
        }
        if (out.size() > wanted) {
            out.resize(wanted);
        }
    }
    if (out.size() < wanted || at < coded.size()) {
        return std::nullopt;
    }
    return out;
}

Bytes random_row(std::mt19937& random, std::size_t longest) {
    const auto below = [&random](std::size_t limit) {
        return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random);
    };
    const std::size_t length = 1 + below(longest);
    Bytes row;
    while (row.size() < length) {
        const bool same = below(2) == 0;
        const std::size_t stretch = 1 + below(below(4) == 0 ? 300 : 5);
        const auto value = static_cast<unsigned char>(below(256));
        for (std::size_t i = 0; i < stretch; ++i) {
            row.push_back(same ? value : static_cast<unsigned char>(below(256)));
        }
    }
    row.resize(length);
    return row;
}
