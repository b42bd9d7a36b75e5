#include "handover/jsx/jsx_tracks.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

namespace handover {
namespace {

// Numbers in one call, and in one function: engines limit the constants of a function to 65,536 and fewer.
constexpr std::size_t kNumbersOfCall = 240;
constexpr std::size_t kNumbersOfFunction = 1920;

const char* interpolation_name(Interpolation interpolation) {
    switch (interpolation) {
        case Interpolation::host:
            return "host";
        case Interpolation::linear:
            return "linear";
        case Interpolation::hold:
            return "hold";
    }
    return "host";
}

// A sum of numbers: each is mixed in whole, which is eight times as fast as byte by byte.
class NumberSum {
  public:
    void add(std::uint64_t bits) {
        sum_ = (sum_ ^ bits) * 0x9E3779B97F4A7C15U;
        sum_ ^= sum_ >> 29U;
    }
    void add(double number) { add(std::bit_cast<std::uint64_t>(number)); }
    [[nodiscard]] std::string text() const {
        std::array<char, 16> digits{};
        const auto* const end = std::to_chars(digits.data(), digits.data() + digits.size(), sum_, 36).ptr;
        return {digits.data(), static_cast<std::size_t>(end - digits.data())};
    }

  private:
    std::uint64_t sum_ = 0xCBF29CE484222325U;
};

// Whether the runtime finds the number again from the few digits that tell it from its neighbours of 24 bits,
// as it finds most numbers of a scene. Below 2^24 such digits never lie halfway between two neighbours: that
// takes more digits than either has.
bool is_short_float(double number) {
    constexpr double kMost = 1 << 24;
    return number == 0 ||
           (std::abs(number) >= std::numeric_limits<float>::min() && std::abs(number) < kMost &&
            static_cast<double>(static_cast<float>(number)) == number);
}

// Calls in a row, broken into functions.
class Calls {
  public:
    explicit Calls(JsxText& text) : text_(text) {}

    void begin(const char* function) {
        if (wrapped_ && !open_) {
            text_ << "(function(){\n";
            open_ = true;
        }
        text_ << function << "([";
        first_ = true;
    }
    template <typename Number>
    void add(Number number) {
        if (!first_) {
            text_ << ',';
        }
        text_ << number;
        first_ = false;
        ++numbers_;
    }
    void end() {
        text_ << "]);\n";
        if (wrapped_ && numbers_ >= kNumbersOfFunction) {
            close();
        }
    }
    void close() {
        if (open_) {
            text_ << "})();\n";
            open_ = false;
            numbers_ = 0;
        }
    }
    void wrap(bool wrapped) { wrapped_ = wrapped; }

  private:
    JsxText& text_;
    std::size_t numbers_ = 0;
    bool wrapped_ = false;
    bool open_ = false;
    bool first_ = true;
};

// The two functions of the runtime that take the same kind of whole numbers.
struct CountedCalls {
    const char* list;  // any numbers
    const char* run;   // numbers that follow one another, by the first and how many there are
};

void write_counted(JsxText& text, const CountedCalls& functions, const std::vector<double>& numbers) {
    constexpr std::size_t kRun = 4;  // shorter ones are as short written out
    Calls calls(text);
    calls.wrap(numbers.size() > kNumbersOfCall);
    std::size_t written = 0;
    const auto write_list = [&](std::size_t end) {
        while (written < end) {
            calls.begin(functions.list);
            for (std::size_t left = kNumbersOfCall; left > 0 && written < end; --left) {
                calls.add(numbers[written++]);
            }
            calls.end();
        }
    };
    for (std::size_t at = 0; at < numbers.size();) {
        std::size_t last = at + 1;
        while (last < numbers.size() && numbers[last] == numbers[last - 1] + 1) {
            ++last;
        }
        if (last - at >= kRun) {
            write_list(at);
            calls.close();
            text << functions.run << '(' << numbers[at] << ',' << last - at << ");\n";
            written = last;
        }
        at = last;
    }
    write_list(numbers.size());
    calls.close();
}

}  // namespace

const char* jsx_name(Property property) {
    switch (property) {
        case Property::anchor:
            return "anchor";
        case Property::position:
            return "position";
        case Property::scale:
            return "scale";
        case Property::orientation:
            return "orientation";
        case Property::rotate_x:
            return "rotateX";
        case Property::rotate_y:
            return "rotateY";
        case Property::rotate_z:
            return "rotateZ";
        case Property::zoom:
            return "zoom";
        case Property::intensity:
            return "intensity";
        case Property::color:
            return "color";
        case Property::cone_angle:
            return "coneAngle";
        case Property::cone_feather:
            return "coneFeather";
        case Property::casts_shadows:
            return "castsShadows";
    }
    return "";
}

JsxTrack::JsxTrack(const Track& track)
    : track_(track), count_(std::max<std::size_t>(track.frames.size(), track.values.empty() ? 0 : 1)) {
    const std::size_t size = component_count(track.property);
    // A track without the numbers of its keys is ours, not the file's, but nothing is read beyond its end.
    count_ = std::min(count_, track.values.size() / size);
    NumberSum sum;
    double last = -HUGE_VAL;
    for (std::size_t key = 0; key < count_; ++key) {
        const double frame = track.frames.empty() ? 0 : track.frames[key];
        bool sound = std::isfinite(frame) && frame > last;
        for (std::size_t i = 0; i < size; ++i) {
            sound = sound && std::isfinite(track.values[key * size + i]);
        }
        if (!sound) {
            if (kept_.empty()) {
                kept_.assign(count_, true);
            }
            kept_[key] = false;
            ++left_out_;
            continue;
        }
        last = frame;
        sum.add(frame);
        for (std::size_t i = 0; i < size; ++i) {
            sum.add(track.values[key * size + i]);
        }
    }
    sum.add(static_cast<std::uint64_t>(track.interpolation) + (track.frames.empty() ? 0U : 8U));
    for (const std::size_t hold : track.holds) {
        sum.add(std::uint64_t{hold});
    }
    mark_ = sum.text();
}

std::vector<double> JsxTrack::kept_frames() const {
    std::vector<double> frames;
    frames.reserve(count_);
    for (std::size_t key = 0; key < count_; ++key) {
        if (keeps(key)) {
            frames.push_back(track_.frames[key]);
        }
    }
    return frames;
}

// The runtime counts the keys that it is given.
std::vector<double> JsxTrack::kept_holds() const {
    std::vector<double> holds;
    std::size_t given = 0;
    std::size_t next = 0;
    for (std::size_t key = 0; key < count_ && next < track_.holds.size(); ++key) {
        while (next < track_.holds.size() && track_.holds[next] < key) {
            ++next;
        }
        if (next < track_.holds.size() && track_.holds[next] == key && keeps(key)) {
            holds.push_back(static_cast<double>(given));
        }
        given += keeps(key) ? 1 : 0;
    }
    return holds;
}

void JsxTrack::write(JsxText& text, const JsxTrack* before) const {
    text << "track(\"" << jsx_name(track_.property) << "\",\"" << interpolation_name(track_.interpolation)
         << "\");\n";
    if (!track_.frames.empty()) {
        if (before != nullptr && before->left_out_ == 0 && left_out_ == 0 && before->count_ == count_ &&
            before->track_.frames == track_.frames) {
            text << "same();\n";
        } else {
            write_counted(text, {"frames", "run"}, kept_frames());
        }
    }
    const std::size_t size = component_count(track_.property);
    Calls calls(text);
    calls.wrap(count_ * size > kNumbersOfCall);
    const std::size_t keys_of_call = kNumbersOfCall / size;
    const auto values_from = [this](std::size_t at) {
        return track_.values.begin() + static_cast<std::ptrdiff_t>(at);
    };
    for (std::size_t i = 0; i < count_; i += keys_of_call) {
        const std::size_t end = std::min(i + keys_of_call, count_);
        const bool floats = std::all_of(values_from(i * size), values_from(end * size), is_short_float);
        calls.begin(floats ? "floats" : "values");
        for (std::size_t key = i; key < end; ++key) {
            for (std::size_t k = 0; keeps(key) && k < size; ++k) {
                const double value = track_.values[key * size + k];
                floats ? calls.add(static_cast<float>(value)) : calls.add(value);
            }
        }
        calls.end();
    }
    calls.close();
    write_counted(text, {"holds", "holdRun"}, kept_holds());
}

}  // namespace handover
