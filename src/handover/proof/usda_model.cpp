#include "handover/proof/usda_model.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <locale>
#include <map>
#include <numbers>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace proof {
namespace {

using UsdaNumbers = std::array<double, 3>;

struct UsdaAttribute {
    UsdaNumbers value{};
    std::vector<double> times;
    std::vector<UsdaNumbers> samples;
    std::vector<std::string> texts;
};

struct UsdaPrim {
    std::string type;
    std::map<std::string, UsdaAttribute> attributes;
};

class UsdaReader {
  public:
    explicit UsdaReader(std::string_view text) : text_(text) {}

    std::vector<UsdaPrim> read() {
        constexpr std::string_view kHead = "#usda 1.0";
        if (!text_.starts_with(kHead)) {
            refuse("it does not begin with \"#usda 1.0\"");
        }
        at_ = kHead.size();
        skip_balanced('(', ')');
        expect_word("def");
        word();
        quoted();
        expect('{');
        std::vector<UsdaPrim> prims;
        while (!take('}')) {
            expect_word("def");
            UsdaPrim prim;
            prim.type = word();
            quoted();
            if (peek() == '(') {
                skip_balanced('(', ')');
            }
            expect('{');
            while (!take('}')) {
                read_property(prim);
            }
            prims.push_back(std::move(prim));
        }
        if (peek() != 0) {
            refuse("there is more after the last prim");
        }
        return prims;
    }

  private:
    [[noreturn]] void refuse(const std::string& reason) const {
        const auto line =
            std::count(text_.begin(), text_.begin() + static_cast<std::ptrdiff_t>(at_), '\n') + 1;
        throw std::runtime_error("line " + std::to_string(line) +
                                 " of the USD file is not understood: " + reason);
    }

    // The next character that is no blank; 0 at the end.
    char peek() {
        while (at_ < text_.size() && (text_[at_] == ' ' || text_[at_] == '\n' || text_[at_] == '\t')) {
            ++at_;
        }
        return at_ < text_.size() ? text_[at_] : '\0';
    }

    bool take(char c) {
        if (peek() != c || at_ == text_.size()) {
            return false;
        }
        ++at_;
        return true;
    }

    void expect(char c) {
        if (!take(c)) {
            refuse(std::string("there is no ") + c);
        }
    }

    void expect_word(const char* expected) {
        if (word() != expected) {
            refuse(std::string("there is no \"") + expected + '"');
        }
    }

    static bool is_word(char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
               c == ':' || c == '.';
    }

    std::string word() {
        peek();
        const std::size_t start = at_;
        while (at_ < text_.size() && is_word(text_[at_])) {
            ++at_;
        }
        if (at_ == start) {
            refuse("there is no word");
        }
        return std::string(text_.substr(start, at_ - start));
    }

    std::string quoted() {
        expect('"');
        std::string content;
        while (at_ < text_.size() && text_[at_] != '"') {
            if (text_[at_] == '\\') {
                ++at_;
            }
            if (at_ < text_.size()) {
                content += text_[at_++];
            }
        }
        expect('"');
        return content;
    }

    void skip_balanced(char open, char close) {
        expect(open);
        std::size_t depth = 1;
        while (depth > 0) {
            const char c = peek();
            if (c == '"') {
                quoted();
                continue;
            }
            if (c == 0) {
                refuse("a bracket is not closed");
            }
            depth += c == open ? 1 : 0;
            depth -= c == close ? 1 : 0;
            ++at_;
        }
    }

    double number() {
        peek();
        double value = 0;
#if defined(__cpp_lib_to_chars)
        const char* const end = text_.data() + text_.size();
        const auto [after, error] = std::from_chars(text_.data() + at_, end, value);
        if (error != std::errc()) {
            refuse("there is no number");
        }
        at_ = static_cast<std::size_t>(after - text_.data());
#else
        // The C++ library for macOS has no such conversion of real numbers.
        const std::string written(text_.substr(at_, text_.find_first_not_of("+-.0123456789eE", at_) - at_));
        std::istringstream stream(written);
        stream.imbue(std::locale::classic());
        if (!(stream >> value) || !stream.eof()) {
            refuse("there is no number");
        }
        at_ += written.size();
#endif
        return value;
    }

    UsdaNumbers numbers() {
        UsdaNumbers value{};
        if (!take('(')) {
            value[0] = number();
            return value;
        }
        std::size_t count = 0;
        do {
            if (count == value.size()) {
                refuse("a tuple has more than three numbers");
            }
            value[count++] = number();
        } while (take(','));
        expect(')');
        return value;
    }

    void read_property(UsdaPrim& prim) {
        std::string name;
        while (!take('=')) {
            name = word();
            if (take('[')) {
                expect(']');
            }
        }
        constexpr std::string_view kSamples = ".timeSamples";
        const bool sampled = name.ends_with(kSamples);
        if (sampled) {
            name.resize(name.size() - kSamples.size());
        }
        UsdaAttribute& attribute = prim.attributes[name];
        if (sampled) {
            read_samples(attribute);
        } else if (take('[')) {
            do {
                attribute.texts.push_back(quoted());
            } while (take(','));
            expect(']');
        } else if (peek() == '"') {
            attribute.texts.push_back(quoted());
        } else {
            attribute.value = numbers();
        }
    }

    void read_samples(UsdaAttribute& attribute) {
        expect('{');
        while (!take('}')) {
            const double time = number();
            if (!attribute.times.empty() && !(time > attribute.times.back())) {
                refuse("the times of samples do not rise");
            }
            expect(':');
            attribute.times.push_back(time);
            attribute.samples.push_back(numbers());
            take(',');
        }
    }

    std::string_view text_;
    std::size_t at_ = 0;
};

UsdaNumbers attribute_at(const UsdaPrim& prim, const std::string& name, double time) {
    const auto found = prim.attributes.find(name);
    if (found == prim.attributes.end()) {
        throw std::runtime_error("the USD file has a prim without " + name);
    }
    const UsdaAttribute& attribute = found->second;
    if (attribute.times.empty()) {
        return attribute.value;
    }
    const auto after = std::upper_bound(attribute.times.begin(), attribute.times.end(), time);
    if (after == attribute.times.begin()) {
        return attribute.samples.front();
    }
    const auto i = static_cast<std::size_t>(after - attribute.times.begin()) - 1;
    if (i + 1 == attribute.times.size()) {
        return attribute.samples[i];
    }
    const double part = (time - attribute.times[i]) / (attribute.times[i + 1] - attribute.times[i]);
    UsdaNumbers value{};
    for (std::size_t c = 0; c < value.size(); ++c) {
        value[c] = (1 - part) * attribute.samples[i][c] + part * attribute.samples[i + 1][c];
    }
    return value;
}

// Undoes a turn about one axis.
UsdaNumbers turned_back_about(char axis, double degrees, const UsdaNumbers& v) {
    const double angle = degrees * std::numbers::pi / 180;
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    switch (axis) {
        case 'X':
            return {v[0], c * v[1] + s * v[2], c * v[2] - s * v[1]};
        case 'Y':
            return {c * v[0] - s * v[2], v[1], c * v[2] + s * v[0]};
        default:
            return {c * v[0] + s * v[1], c * v[1] - s * v[0], v[2]};
    }
}

constexpr const char* kTranslate = "xformOp:translate";

class UsdaCamera : public Projector {
  public:
    UsdaCamera(const UsdaPrim& prim, double width_px, double height_px)
        : prim_(prim), width_px_(width_px), height_px_(height_px) {
        const auto order = prim.attributes.find("xformOpOrder");
        constexpr std::string_view kRotate = "xformOp:rotate";
        if (order == prim.attributes.end() || order->second.texts.size() != 2 ||
            order->second.texts[0] != kTranslate || !order->second.texts[1].starts_with(kRotate) ||
            order->second.texts[1].size() != kRotate.size() + 3) {
            throw std::runtime_error("the USD file has a camera that is not first placed and then turned");
        }
        rotate_ = order->second.texts[1];
        axes_ = rotate_.substr(kRotate.size());
        if (axes_.find_first_not_of("XYZ") != std::string::npos) {
            throw std::runtime_error("the USD file turns a camera by " + rotate_);
        }
    }

    void land(double frame, std::span<const Point> points, std::span<Landing> landings) const override {
        const UsdaNumbers eye = attribute_at(prim_, kTranslate, frame);
        const UsdaNumbers angles = attribute_at(prim_, rotate_, frame);
        const double focal = attribute_at(prim_, "focalLength", frame)[0];
        const double wide = attribute_at(prim_, "horizontalAperture", frame)[0];
        const double high = attribute_at(prim_, "verticalAperture", frame)[0];
        for (std::size_t i = 0; i < points.size(); ++i) {
            UsdaNumbers seen{points[i].x - eye[0], points[i].y - eye[1], -points[i].z - eye[2]};
            // A turn by "ZXY" is about z, then x, then y: undone, y comes first.
            for (std::size_t axis = axes_.size(); axis-- > 0;) {
                seen =
                    turned_back_about(axes_[axis], angles[static_cast<std::size_t>(axes_[axis] - 'X')], seen);
            }
            const double depth = -seen[2];
            landings[i].x_px = width_px_ / 2 + width_px_ * focal / wide * seen[0] / depth;
            landings[i].y_px = height_px_ / 2 - height_px_ * focal / high * seen[1] / depth;
            landings[i].seen =
                depth > 0 && std::isfinite(landings[i].x_px) && std::isfinite(landings[i].y_px);
        }
    }

  private:
    const UsdaPrim& prim_;
    double width_px_;
    double height_px_;
    std::string rotate_;
    std::string axes_;
};

class ReadUsda : public UsdaFile {
  public:
    explicit ReadUsda(std::string_view text) : prims_(UsdaReader(text).read()) {
        for (const UsdaPrim& prim : prims_) {
            const auto id = prim.attributes.find("vxr:id");
            if (id != prim.attributes.end() && id->second.texts.size() == 1) {
                by_id_[id->second.texts[0]] = &prim;
            }
        }
    }

    [[nodiscard]] std::unique_ptr<Projector> camera(const std::string& id, double width_px,
                                                    double height_px) const override {
        const auto found = by_id_.find(id);
        return found == by_id_.end() || found->second->type != "Camera"
                   ? nullptr
                   : std::make_unique<UsdaCamera>(*found->second, width_px, height_px);
    }

    [[nodiscard]] std::optional<Point> position(const std::string& id, double frame) const override {
        const auto found = by_id_.find(id);
        if (found == by_id_.end()) {
            return std::nullopt;
        }
        const UsdaNumbers place = attribute_at(*found->second, kTranslate, frame);
        return Point{place[0], place[1], -place[2]};
    }

  private:
    std::vector<UsdaPrim> prims_;
    std::map<std::string, const UsdaPrim*> by_id_;
};

}  // namespace

std::unique_ptr<UsdaFile> read_usda(std::string_view text) {
    return std::make_unique<ReadUsda>(text);
}

}  // namespace proof
