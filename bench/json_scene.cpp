#include "json_scene.h"

// RapidJSON's fastest variant that runs on every x86-64.
#define RAPIDJSON_SSE2
#include <rapidjson/reader.h>

#include <array>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <sstream>
#include <string_view>

#include "composition/model/heap_text.h"
#include "composition/model/scene_object.h"

namespace {

struct IntegerName {
    std::string_view name;
    A_long tagProjectSettings::*member;
};

constexpr IntegerName kIntegers[] = {
    {"width", &tagProjectSettings::width}, {"height", &tagProjectSettings::height},
    {"from", &tagProjectSettings::from},   {"to", &tagProjectSettings::to},
    {"range", &tagProjectSettings::range}, {"fps", &tagProjectSettings::fps},
};

/// Receives the parser's events. An object's kind comes first, so that its record exists when the rest
/// arrives.
class SceneHandler : public rapidjson::BaseReaderHandler<rapidjson::UTF8<>, SceneHandler> {
  public:
    explicit SceneHandler(tagProjectSettings& settings) : settings_(settings) {}

    bool Key(const char* text, rapidjson::SizeType length, bool /*copy*/) {
        const std::string_view name(text, length);
        integer_ = nullptr;
        text_ = TextPlace::none;
        if (name == "kind") {
            text_ = TextPlace::kind;
        } else if (name == "name") {
            text_ = TextPlace::name;
        } else {
            for (const IntegerName& one : kIntegers) {
                if (name == one.name) {
                    integer_ = &(settings_.*one.member);
                }
            }
        }
        return true;
    }

    bool String(const char* text, rapidjson::SizeType length, bool /*copy*/) {
        const std::string_view value(text, length);
        if (text_ == TextPlace::kind) {
            return begin_object(value);
        }
        if (text_ != TextPlace::name) {
            return false;
        }
        char*& name = object_ != nullptr ? object_->name : settings_.composition.name;
        name = copy_text(text);
        return name != nullptr;
    }

    bool StartArray() {
        ++depth_;
        if (depth_ < kKeyDepth) {
            return true;
        }
        key_ = object_ == nullptr ? nullptr : object_->AddKeyframe();
        value_ = 0;
        return key_ != nullptr;
    }
    bool EndArray(rapidjson::SizeType /*count*/) {
        --depth_;
        return true;
    }

    bool Double(double number) {
        if (depth_ != kKeyDepth) {
            return false;
        }
        return take_key_value(static_cast<float>(number));
    }
    bool Int(int number) { return take_integer(number); }
    bool Uint(unsigned number) { return take_integer(static_cast<int>(number)); }

    bool Default() { return false; }
    bool StartObject() { return true; }
    bool EndObject(rapidjson::SizeType /*count*/) { return true; }

  private:
    static constexpr int kKeyDepth = 3;  // objects, keys of one, one key
    enum class TextPlace { none, kind, name };

    bool begin_object(std::string_view kind) {
        if (kind == "CAMERA") {
            object_ = new CCamera;
        } else if (kind == "LIGHT") {
            object_ = new CLight;
        } else {
            object_ = new CNull;
        }
        object_->isNull = kind == "NULL" ? 1 : 0;
        settings_.objects.AddAtHead(object_);
        return true;
    }

    bool take_integer(int number) {
        if (depth_ == kKeyDepth) {
            if (value_ != 0) {
                return take_key_value(static_cast<float>(number));
            }
            key_->frame = number;
            ++value_;
            return true;
        }
        if (integer_ == nullptr) {
            return false;
        }
        *integer_ = number;
        return true;
    }

    bool take_key_value(float number) {
        switch (value_++) {
            case 1:
            case 2:
            case 3:
                key_->position[value_ - 2] = number;
                return true;
            case 4:
            case 5:
            case 6:
                key_->rotation[value_ - 5] = number;
                return true;
            case 7:
                key_->fov = number;
                return true;
            case 8:
                key_->targetDistance = number;
                return true;
            default:
                return false;
        }
    }

    tagProjectSettings& settings_;
    A_long* integer_ = nullptr;
    TextPlace text_ = TextPlace::none;
    CSceneObject* object_ = nullptr;
    tagKeyFrame* key_ = nullptr;
    int depth_ = 0;
    int value_ = 0;
};

}  // namespace

std::string json_scene_text(const SceneShape& shape) {
    // Converts the composition's text line by line, so that each number keeps its spelling.
    std::istringstream lines(composition_text(shape));
    std::string json = "{";
    bool in_object = false;
    bool first_key = true;
    bool first_object = true;
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        std::string word;
        words >> word;
        const auto name = [&] { return line.substr(line.find('"'), line.rfind('"') - line.find('"') + 1); };
        if (word == "KEY") {
            json += first_key ? "[" : ",[";
            first_key = false;
            std::string separator;
            for (std::string number; words >> number; separator = ",") {
                json.append(separator).append(number);
            }
            json += "]";
        } else if (word == "CAMERA" || word == "LIGHT" || word == "NULL") {
            json += (first_object ? R"("objects":[{"kind":")" : R"(,{"kind":")") + word + R"(","name":)" +
                    name() + R"(,"keys":[)";
            in_object = true;
            first_key = true;
            first_object = false;
        } else if (word == "}" && in_object) {
            json += "]}";
        } else if (word == "COMPOSITION") {
            json += R"("name":)" + name() + ",";
        } else if (word == "RESOLUTION") {
            std::string width;
            std::string height;
            words >> width >> height;
            json.append(R"("width":)").append(width).append(R"(,"height":)").append(height).append(",");
        } else if (word != "VORTAN" && word != "}") {
            std::string number;
            words >> number;
            for (char& c : word) {
                c = static_cast<char>(c - 'A' + 'a');
            }
            json.append("\"").append(word).append("\":").append(number).append(",");
        }
    }
    return json + (first_object ? R"("objects":[]})" : "]}");
}

bool read_json_scene(const std::string& path, std::vector<char>& buffer, tagProjectSettings& settings) {
    std::FILE* const file = std::fopen(path.c_str(), "rb");
    if (file == nullptr) {
        return false;
    }
    std::setvbuf(file, nullptr, _IONBF, 0);
    const std::size_t got = std::fread(buffer.data(), 1, buffer.size() - 1, file);
    std::fclose(file);
    buffer[got] = '\0';
    SceneHandler handler(settings);
    rapidjson::InsituStringStream stream(buffer.data());
    rapidjson::Reader reader;
    constexpr unsigned kFlags = rapidjson::kParseInsituFlag | rapidjson::kParseFullPrecisionFlag;
    return !reader.Parse<kFlags>(stream, handler).IsError();
}
