#include "handover/proof/gltf_model.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <limits>
#include <map>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <vector>

namespace proof {
namespace {

using GltfJson = nlohmann::json;
using GltfNumbers = std::array<double, 4>;

[[noreturn]] void refuse_glb(const std::string& reason) {
    throw std::runtime_error("the glTF file is not sound: " + reason);
}

std::uint32_t little_word(std::string_view bytes, std::size_t at) {
    if (bytes.size() < 4 || at > bytes.size() - 4) {
        refuse_glb("it is cut off");
    }
    std::uint32_t word = 0;
    for (std::size_t i = 4; i-- > 0;) {
        word = word << 8 | static_cast<unsigned char>(bytes[at + i]);
    }
    return word;
}

struct GltfChunks {
    std::string_view json;
    std::string_view data;
};

GltfChunks chunks_of(std::string_view bytes) {
    constexpr std::uint32_t kJsonChunk = 0x4E4F534A;
    constexpr std::uint32_t kDataChunk = 0x004E4942;
    if (!bytes.starts_with("glTF") || little_word(bytes, 4) != 2 || little_word(bytes, 8) != bytes.size()) {
        refuse_glb("its head is wrong");
    }
    GltfChunks chunks;
    std::size_t at = 12;
    while (at < bytes.size()) {
        const std::uint64_t length = little_word(bytes, at);
        const std::uint32_t kind = little_word(bytes, at + 4);
        if (length > bytes.size() - at - 8) {
            refuse_glb("a chunk is longer than the file");
        }
        const std::string_view content = bytes.substr(at + 8, length);
        if (kind == kJsonChunk && chunks.json.empty()) {
            chunks.json = content;
        } else if (kind == kDataChunk && chunks.data.empty()) {
            chunks.data = content;
        }
        at += 8 + length;
    }
    return chunks;
}

struct GltfSampler {
    std::vector<double> times;
    std::vector<GltfNumbers> values;
    bool step = false;
};

struct GltfChannels {
    std::optional<GltfSampler> translation;
    std::optional<GltfSampler> rotation;
};

struct GltfNode {
    std::array<double, 3> translation{};
    GltfNumbers rotation{0, 0, 0, 1};
    std::optional<std::size_t> camera;
    GltfChannels channels;
};

struct GltfPerspective {
    double yfov = 0;
    double aspect_ratio = 0;
    std::optional<GltfSampler> yfov_over_time;
};

GltfNumbers turned_part(const GltfNumbers& a, GltfNumbers b, double part) {
    double cosine = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        cosine += a[i] * b[i];
    }
    if (cosine < 0) {
        cosine = -cosine;
        for (double& one : b) {
            one = -one;
        }
    }
    const double angle = std::acos(std::min(1.0, cosine));
    const double sine = std::sin(angle);
    // So close that the formula would divide by nothing.
    const bool straight = sine < 1e-9;
    const double of_a = straight ? 1 - part : std::sin((1 - part) * angle) / sine;
    const double of_b = straight ? part : std::sin(part * angle) / sine;
    GltfNumbers turn{};
    for (std::size_t i = 0; i < 4; ++i) {
        turn[i] = of_a * a[i] + of_b * b[i];
    }
    return turn;
}

GltfNumbers sampled(const GltfSampler& sampler, double time, bool is_rotation) {
    const auto after = std::upper_bound(sampler.times.begin(), sampler.times.end(), time);
    if (after == sampler.times.begin()) {
        return sampler.values.front();
    }
    const auto i = static_cast<std::size_t>(after - sampler.times.begin()) - 1;
    if (i + 1 == sampler.times.size() || sampler.step) {
        return sampler.values[i];
    }
    const double part = (time - sampler.times[i]) / (sampler.times[i + 1] - sampler.times[i]);
    if (is_rotation) {
        return turned_part(sampler.values[i], sampler.values[i + 1], part);
    }
    GltfNumbers value{};
    for (std::size_t c = 0; c < 4; ++c) {
        value[c] = sampler.values[i][c] + part * (sampler.values[i + 1][c] - sampler.values[i][c]);
    }
    return value;
}

// The inverse of a rotation by a quaternion, applied to a vector.
std::array<double, 3> turned_back(GltfNumbers q, const std::array<double, 3>& v) {
    const double length = std::sqrt(q[0] * q[0] + q[1] * q[1] + q[2] * q[2] + q[3] * q[3]);
    for (double& one : q) {
        one /= length;
    }
    const double x = -q[0];
    const double y = -q[1];
    const double z = -q[2];
    const double w = q[3];
    const std::array<double, 3> t{2 * (y * v[2] - z * v[1]), 2 * (z * v[0] - x * v[2]),
                                  2 * (x * v[1] - y * v[0])};
    return {v[0] + w * t[0] + y * t[2] - z * t[1], v[1] + w * t[1] + z * t[0] - x * t[2],
            v[2] + w * t[2] + x * t[1] - y * t[0]};
}

class ReadGltf : public GltfFile {
  public:
    explicit ReadGltf(std::string_view bytes) {
        const GltfChunks chunks = chunks_of(bytes);
        data_ = chunks.data;
        document_ = GltfJson::parse(chunks.json, nullptr, false);
        if (!document_.is_object()) {
            refuse_glb("its JSON does not parse");
        }
        scale_ = document_.at("asset").at("extras").at("scale").get<double>();
        if (!(scale_ > 0)) {
            refuse_glb("its scale is not positive");
        }
        for (const GltfJson& camera : members("cameras")) {
            const GltfJson& perspective = camera.at("perspective");
            cameras_.push_back(
                {perspective.at("yfov").get<double>(), perspective.at("aspectRatio").get<double>(), {}});
        }
        for (const GltfJson& node : members("nodes")) {
            add_node(node);
        }
        for (const GltfJson& animation : members("animations")) {
            for (const GltfJson& channel : animation.at("channels")) {
                add_channel(animation, channel);
            }
        }
        document_ = nullptr;
    }

    [[nodiscard]] std::unique_ptr<Projector> camera(const std::string& id, const GltfPicture& picture,
                                                    const GltfRules& rules) const override;
    [[nodiscard]] std::optional<Point> position(const std::string& id, double frame,
                                                const GltfPicture& picture) const override {
        const auto found = by_id_.find(id);
        if (found == by_id_.end()) {
            return std::nullopt;
        }
        const auto place = place_of(nodes_[found->second], (frame - picture.from) / picture.rate_fps);
        return Point{place[0] / scale_, place[1] / scale_, -place[2] / scale_};
    }
    [[nodiscard]] bool uses_animation_pointer() const override {
        return std::any_of(cameras_.begin(), cameras_.end(),
                           [](const GltfPerspective& one) { return one.yfov_over_time.has_value(); });
    }

    static std::array<double, 3> place_of(const GltfNode& node, double time) {
        if (!node.channels.translation) {
            return node.translation;
        }
        const GltfNumbers place = sampled(*node.channels.translation, time, false);
        return {place[0], place[1], place[2]};
    }
    static GltfNumbers turn_of(const GltfNode& node, double time) {
        return node.channels.rotation ? sampled(*node.channels.rotation, time, true) : node.rotation;
    }
    [[nodiscard]] double scale() const { return scale_; }

  private:
    [[nodiscard]] const GltfJson& members(const char* name) const {
        static const GltfJson kNone = GltfJson::array();
        const auto found = document_.find(name);
        return found == document_.end() ? kNone : *found;
    }

    void add_node(const GltfJson& node) {
        GltfNode one;
        if (node.contains("translation")) {
            for (std::size_t i = 0; i < 3; ++i) {
                one.translation[i] = node["translation"].at(i).get<double>();
            }
        }
        if (node.contains("rotation")) {
            for (std::size_t i = 0; i < 4; ++i) {
                one.rotation[i] = node["rotation"].at(i).get<double>();
            }
        }
        if (node.contains("scale") || node.contains("matrix")) {
            refuse_glb("a node is scaled, which these files never do");
        }
        if (node.contains("camera")) {
            one.camera = node["camera"].get<std::size_t>();
            if (*one.camera >= cameras_.size()) {
                refuse_glb("a node has a camera that there is not");
            }
        }
        if (node.contains("extras") && node["extras"].contains("id")) {
            by_id_[node["extras"]["id"].get<std::string>()] = nodes_.size();
        }
        nodes_.push_back(one);
    }

    void add_channel(const GltfJson& animation, const GltfJson& channel) {
        const GltfSampler sampler =
            sampler_of(animation.at("samplers").at(channel.at("sampler").get<std::size_t>()));
        const GltfJson& target = channel.at("target");
        const std::string path = target.at("path");
        if (path == "pointer") {
            set_pointer(target.at("extensions").at("KHR_animation_pointer").at("pointer"), sampler);
            return;
        }
        const std::size_t node = target.at("node");
        if (node >= nodes_.size() || (path != "translation" && path != "rotation")) {
            refuse_glb("a channel moves what these files never move");
        }
        GltfChannels& channels = nodes_[node].channels;
        (path == "rotation" ? channels.rotation : channels.translation) = sampler;
    }

    void set_pointer(const std::string& pointer, const GltfSampler& sampler) {
        for (std::size_t i = 0; i < cameras_.size(); ++i) {
            if (pointer == "/cameras/" + std::to_string(i) + "/perspective/yfov") {
                cameras_[i].yfov_over_time = sampler;
                return;
            }
        }
        refuse_glb("a pointer leads elsewhere than to an angle of view");
    }

    [[nodiscard]] GltfSampler sampler_of(const GltfJson& json) const {
        GltfSampler sampler;
        const std::string way = json.value("interpolation", "LINEAR");
        if (way != "LINEAR" && way != "STEP") {
            refuse_glb("it has an interpolation that these files never have");
        }
        sampler.step = way == "STEP";
        const std::vector<GltfNumbers> times = numbers_of(json.at("input"));
        sampler.values = numbers_of(json.at("output"));
        if (times.empty() || times.size() != sampler.values.size()) {
            refuse_glb("a sampler has not one value for each time");
        }
        for (const GltfNumbers& time : times) {
            if (!sampler.times.empty() && !(time[0] > sampler.times.back())) {
                refuse_glb("times do not rise");
            }
            sampler.times.push_back(time[0]);
        }
        return sampler;
    }

    [[nodiscard]] std::vector<GltfNumbers> numbers_of(std::size_t index) const {
        constexpr int kFloats = 5126;
        const GltfJson& accessor = document_.at("accessors").at(index);
        const std::string type = accessor.at("type");
        const std::size_t components = type == "SCALAR" ? 1 : type == "VEC3" ? 3 : type == "VEC4" ? 4 : 0;
        if (components == 0 || accessor.at("componentType") != kFloats) {
            refuse_glb("an accessor has other numbers than floats");
        }
        const GltfJson& view = document_.at("bufferViews").at(accessor.at("bufferView").get<std::size_t>());
        const std::uint64_t count = accessor.at("count");
        const std::uint64_t offset =
            std::uint64_t{view.value("byteOffset", 0U)} + accessor.value("byteOffset", 0U);
        const std::uint64_t size_bytes = components * sizeof(float);
        if (offset > data_.size() || count > (data_.size() - offset) / size_bytes) {
            refuse_glb("an accessor goes beyond the data");
        }
        std::vector<GltfNumbers> numbers(count);
        for (std::size_t i = 0; i < count; ++i) {
            for (std::size_t c = 0; c < components; ++c) {
                const std::uint32_t word = little_word(data_, offset + i * size_bytes + c * sizeof(float));
                numbers[i][c] = std::bit_cast<float>(word);
            }
        }
        return numbers;
    }

    std::string_view data_;
    GltfJson document_;
    double scale_ = 1;
    std::vector<GltfPerspective> cameras_;
    std::vector<GltfNode> nodes_;
    std::map<std::string, std::size_t> by_id_;

    friend class GltfCamera;
};

class GltfCamera : public Projector {
  public:
    GltfCamera(const ReadGltf& file, std::size_t node, const GltfPicture& picture, const GltfRules& rules)
        : file_(file), node_(file.nodes_[node]), picture_(picture), rules_(rules) {}

    void land(double frame, std::span<const Point> points, std::span<Landing> landings) const override {
        const double time = (frame - picture_.from) / picture_.rate_fps;
        const std::array<double, 3> eye = ReadGltf::place_of(node_, time);
        const GltfNumbers turn = ReadGltf::turn_of(node_, time);
        const GltfPerspective& perspective = file_.cameras_[*node_.camera];
        const double yfov = rules_.animates_angle && perspective.yfov_over_time
                                ? sampled(*perspective.yfov_over_time, time, false)[0]
                                : perspective.yfov;
        const double top = std::tan(yfov / 2);
        for (std::size_t i = 0; i < points.size(); ++i) {
            const double scale = file_.scale();
            const std::array<double, 3> seen = turned_back(
                turn,
                {points[i].x * scale - eye[0], points[i].y * scale - eye[1], -points[i].z * scale - eye[2]});
            const double depth = -seen[2];
            const double across = seen[0] / depth / (top * perspective.aspect_ratio);
            const double up = seen[1] / depth / top;
            landings[i] = {picture_.width_px / 2 * (1 + across), picture_.height_px / 2 * (1 - up), false};
            landings[i].seen = depth > 0 && std::isfinite(across) && std::isfinite(up);
        }
    }

  private:
    const ReadGltf& file_;
    const GltfNode& node_;
    GltfPicture picture_;
    GltfRules rules_;
};

std::unique_ptr<Projector> ReadGltf::camera(const std::string& id, const GltfPicture& picture,
                                            const GltfRules& rules) const {
    const auto found = by_id_.find(id);
    if (found == by_id_.end() || !nodes_[found->second].camera) {
        return nullptr;
    }
    return std::make_unique<GltfCamera>(*this, found->second, picture, rules);
}

}  // namespace

std::unique_ptr<GltfFile> read_glb(std::string_view bytes) {
    try {
        return std::make_unique<ReadGltf>(bytes);
    } catch (const GltfJson::exception& error) {
        refuse_glb(error.what());
    }
}

}  // namespace proof
