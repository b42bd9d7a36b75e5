#include "texture/annotated_dump.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <vector>

#include "texture/txl/txl_ids.h"

namespace {

class Dump {
  public:
    explicit Dump(const std::string& bytes) : bytes_(bytes) {}

    std::string all() {
        add_line({4}, "magic \"" + bytes_.substr(0, 4) + "\"");
        add_line({4}, "ident \"" + bytes_.substr(4, 4) + "\"");
        while (at_ < bytes_.size()) {
            item();
        }
        return text_;
    }

  private:
    struct OpenChunk {
        std::int64_t id = 0;
        std::size_t values = 0;  // read so far
        std::int64_t channels = 1;
    };

    [[nodiscard]] std::int64_t number_at(std::size_t at, std::size_t size) const {
        std::uint32_t value = 0;
        for (std::size_t i = 0; i < size; ++i) {
            value = (value << 8) | static_cast<unsigned char>(bytes_.at(at + i));
        }
        return static_cast<std::int32_t>(value);
    }

    [[nodiscard]] static const char* chunk_meaning(std::int64_t id) {
        switch (id) {
            case kChunkTexture:
                return "502, the texture";
            case kChunkTextureHeader:
                return "\"TaTx\", the texture header";
            case kChunkPixelRows:
                return "\"TaVx\", pixel rows";
            case kChunkLayerList:
                return "599, the layer list";
            case kChunkAlphaChannels:
                return "110100, the alpha channels";
            case kChunkLayer:
                return "501, a layer";
            case kChunkLayerHeader:
                return "\"TaLy\", the layer header";
            default:
                return "not known";
        }
    }

    // The meaning of the next value in the innermost chunk.
    std::string meaning_of_next() {
        constexpr std::array<const char*, 3> kTexture = {"width", "height", "colour mode"};
        constexpr std::array<const char*, 5> kRows = {"x", "y", "pixels per row", "rows", "channels"};
        constexpr std::array<const char*, 11> kLayer = {"colour mode", "attributes", "0", "1.0", "false", "0",
                                                        "0",           "name",       "0", "0",   "false"};
        OpenChunk& chunk = open_.back();
        const std::size_t i = chunk.values++;
        switch (chunk.id) {
            case kChunkTextureHeader:
                return kTexture.at(i);
            case kChunkLayerHeader:
                return kLayer.at(i);
            case kChunkPixelRows:
                break;
            default:
                return "not known";
        }
        if (i < kRows.size()) {
            return kRows[i];
        }
        const auto plane = static_cast<std::int64_t>(i - kRows.size()) / 2;
        const std::string where = "row " + std::to_string(plane / chunk.channels) + ", channel " +
                                  std::to_string(plane % chunk.channels) + ": ";
        return where + ((i - kRows.size()) % 2 == 0 ? "flag" : "its bytes");
    }

    void item() {
        const auto tag = static_cast<unsigned char>(bytes_.at(at_));
        switch (tag) {
            case 1:
                open_.push_back({number_at(at_ + 1, 4)});
                add_line({1, 4, 4}, std::string("chunk ") + chunk_meaning(open_.back().id) + ", version " +
                                        std::to_string(number_at(at_ + 5, 4)));
                return;
            case 2:
                add_line({1}, std::string("end of ") + chunk_meaning(open_.back().id));
                open_.pop_back();
                return;
            case 12:
                return value_line({1, 1}, "UChar", number_at(at_ + 1, 1));
            case 15:
                return value_line({1, 4}, "Long", number_at(at_ + 1, 4));
            case 19:
                return add_line({1, 4}, "Real, " + meaning_of_next());
            case 21:
                return add_line({1, 1}, "Bool, " + meaning_of_next());
            case 128:
                return add_line({1, 4, static_cast<std::size_t>(number_at(at_ + 1, 4))},
                                "block, " + meaning_of_next());
            case 130:
                return add_line({1, 4, static_cast<std::size_t>(number_at(at_ + 1, 4))},
                                "string, " + meaning_of_next());
            default:
                return add_line({1}, "not known");
        }
    }

    void value_line(const std::vector<std::size_t>& sizes, const std::string& type, std::int64_t value) {
        const std::string meaning = meaning_of_next();
        if (meaning == "channels") {
            open_.back().channels = value;
        }
        add_line(sizes, type + ", " + meaning + (meaning == "0" ? "" : " " + std::to_string(value)));
    }

    // Adds one line with the next bytes, in parts of the given sizes separated by spaces.
    void add_line(const std::vector<std::size_t>& sizes, const std::string& meaning) {
        char offset[16];
        std::snprintf(offset, sizeof(offset), "%04zx ", at_);
        std::string line = offset;
        for (const std::size_t size : sizes) {
            line += ' ';
            for (std::size_t i = 0; i < size; ++i, ++at_) {
                char byte[4];
                std::snprintf(byte, sizeof(byte), "%02x",
                              static_cast<unsigned>(static_cast<unsigned char>(bytes_.at(at_))));
                line += byte;
            }
        }
        constexpr std::size_t kMeaningColumn = 39;
        line.resize(std::max(line.size(), kMeaningColumn), ' ');
        std::string indent(2 * (open_.size() - (sizes.size() == 3 && meaning.starts_with("chunk") ? 1 : 0)),
                           ' ');
        if (meaning.starts_with("end of")) {
            indent.resize(indent.size() - 2);
        }
        text_ += line + ' ' + indent + meaning + '\n';
    }

    const std::string& bytes_;
    std::size_t at_ = 0;
    std::vector<OpenChunk> open_;
    std::string text_;
};

}  // namespace

std::string annotated_dump(const std::string& bytes) {
    return Dump(bytes).all();
}
