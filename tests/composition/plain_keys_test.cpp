#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <cstring>
#include <filesystem>
#include <random>
#include <span>
#include <string>
#include <tuple>
#include <vector>

#include "composition/model/scene_object.h"
#include "composition/read/plain_number.h"
#include "composition/read/read_observer.h"
#include "parsed_text.h"
#include "refused_memory.h"

// Plain keys are read as a whole. Reading the same file token by token gives the same model and leaves the
// tokenizer in the same state.

namespace {

// Asks for every value, so every key is read token by token.
class EveryToken : public ReadObserver {
  public:
    std::vector<TextPosition> keys;
    void on_keyword(std::string_view keyword, const TextPosition& at) override {
        if (keyword == "KEY") {
            keys.push_back(at);
        }
    }
};

// Takes plain keys as a whole.
class EveryKey : public EveryToken {
  public:
    int plain = 0;
    [[nodiscard]] bool takes_plain_keys() const override { return true; }
    void on_plain_key(const TextPosition& at, std::int32_t frame, std::span<const float> others) override {
        keys.push_back(at);
        frames.push_back(frame);
        numbers.insert(numbers.end(), others.begin(), others.end());
        ++plain;
    }
    std::vector<std::int32_t> frames;
    std::vector<float> numbers;
};

std::string state_of(const ASCIIParser& p) {
    const auto position = [](const TextPosition& at) {
        return std::to_string(at.offset_bytes) + ":" + std::to_string(at.line) + ":" +
               std::to_string(at.column);
    };
    std::string state = "status " + std::to_string(p.status) + " sym " + std::to_string(p.sym) + " text ";
    state += p.text == p.textA ? "A" : p.text == p.textB ? "B" : "heap";
    state += " \"" + std::string(p.text) + "\" before \"" + (p.text == p.textA ? p.textB : p.textA) + "\"";
    for (const A_long number : {p.pushedBack, p.rewound, p.bytesLeft, p.charCount, p.bufCount,
                                A_long{p.curChar}, A_long{p.lastEol}, p.line}) {
        state += " " + std::to_string(number);
    }
    return state + " token " + position(p.TokenStart()) + " character " + position(p.CharPosition());
}

std::string bits(float number) {
    return std::to_string(std::bit_cast<std::uint32_t>(number)) + " ";
}

std::string model_of(tagProjectSettings& settings) {
    std::string model;
    for (CSceneObject* object : nodes_of(settings.objects)) {
        model += std::string("object ") + (object->name != nullptr ? object->name : "?") + "\n";
        for (A_long i = 0; i < object->keyCount; ++i) {
            const tagKeyFrame& key = *object->keys[i];
            model += std::to_string(key.frame) + ": ";
            for (const float number : key.position) {
                model += bits(number);
            }
            for (const float number : key.rotation) {
                model += bits(number);
            }
            model += bits(key.fov) + bits(key.targetDistance) + "\n";
        }
    }
    return model;
}

std::string outcome_of(ReadText& read) {
    return "result " + std::to_string(read.result) + "\n" + state_of(read.parsed.p) + "\n" +
           model_of(read.settings);
}

// Reads `text` three times; returns how many keys were taken as a whole.
int expect_the_same(const std::string& text) {
    EveryToken every_token;
    EveryKey every_key;
    ReadText by_token(text, &every_token);
    ReadText by_key(text, &every_key);
    ReadText silent(text);
    const std::string expected = outcome_of(by_token);
    EXPECT_EQ(outcome_of(by_key), expected) << text;
    EXPECT_EQ(outcome_of(silent), expected) << text;
    const auto places = [](const EveryToken& observer) {
        std::vector<std::tuple<std::int64_t, std::int64_t, std::int64_t>> list;
        for (const TextPosition& at : observer.keys) {
            list.emplace_back(at.offset_bytes, at.line, at.column);
        }
        return list;
    };
    EXPECT_EQ(places(every_key), places(every_token)) << text;
    return every_key.plain;
}

constexpr const char* kKey = "KEY 12 1.5 -2.25 3 10.125 -20 0.5";

struct LayoutCase {
    const char* why;
    std::string
        entries;  ///< of a camera, after a first line of comment that is long enough for keys to be taken
    int plain;
};

TEST(PlainKeys, LayoutsOfACamera) {
    const std::string key = std::string("  ") + kKey;
    const std::vector<LayoutCase> cases = {
        {"without a distance", key + " 45\n" + key + " 45\n", 2},
        {"with a distance", key + " 45 800\n" + key + " 45 800\n", 2},
        {"one with and one without", key + " 45 800\n" + key + " 45\n", 2},
        {"CR LF", key + " 45\r\n" + key + " 45 800\r\n", 2},
        {"LF CR", key + " 45\n\r" + key + " 45 800\n\r", 2},
        {"CR", key + " 45\r" + key + " 45 800\r", 2},
        {"tabs", "\tKEY\t12\t1\t2\t3\t4\t5\t6\t45\n", 1},
        {"several blanks", "   KEY   12  1  2  3  4  5  6   45  \n", 1},
        {"several on one line", key + " 45 " + key + " 45 800 " + key + " 45\n", 3},
        {"the distance on the next line", key + " 45\n 800\n" + key + " 45\n", 1},
        {"a blank line between", key + " 45\n\n" + key + " 45\n", 1},
        {"two CR LF between", key + " 45\r\n\r\n" + key + " 45\r\n", 1},
        {"a comment after it", key + " 45 / wide\n" + key + " 45\n", 1},
        {"a comment after a number", key + " 45/wide\n" + key + " 45\n", 1},
        {"a comment between", key + " 45\n/ wide\n" + key + " 45\n", 1},
        {"seven numbers", key + "\n" + key + " 45\n", 0},
        {"ten numbers", key + " 45 800 1\n" + key + " 45\n", 0},
        {"an exponent", key + " 4.5e1\n" + key + " 45\n", 1},
        {"a fraction as frame", "KEY 12.5 1 2 3 4 5 6 45\n" + key + " 45\n", 1},
        {"the brace after it", key + " 45 }", 1},
        {"the brace at a number", key + " 45}", 0},
        {"a NUL byte after a number", key + std::string(" 45\0\n", 5), 0},
        {"a word at a number", "KEY 12 1 2 3 4 5 6 45KEY 13 1 2 3 4 5 6 45\n", 1},
        {"KEY as the beginning of a word", "KEYS 12 1 2 3 4 5 6 45\n", 0},
        {"in lower case", "key 12 1 2 3 4 5 6 45\n", 0},
        {"KEY at its first number", "KEY-12 1 2 3 4 5 6 45\n", 0},
    };
    for (const LayoutCase& c : cases) {
        SCOPED_TRACE(c.why);
        EXPECT_EQ(
            expect_the_same(file_with_objects("CAMERA \"One\" {\n" + c.entries + "}\nNULL \"Two\" {\n}\n")),
            c.plain);
    }
}

TEST(PlainKeys, ObserverIsToldWhatIsKept) {
    EveryKey observer;
    const ReadText read(
        file_with_objects("CAMERA \"One\" {\n KEY -3 1 2 3 4 5 6 45\n KEY 7 1 2 3 4 5 6 45 800\n}\n"),
        &observer);
    EXPECT_EQ(read.result, 1);
    EXPECT_THAT(observer.frames, testing::ElementsAre(-3, 7));
    EXPECT_THAT(observer.numbers, testing::ElementsAre(1, 2, 3, 4, 5, 6, 45, 1, 2, 3, 4, 5, 6, 45, 800));
}

// Every position of the keys relative to block ends, for each kind of line end.
TEST(PlainKeys, AcrossBlockEnds) {
    for (const std::string line_end : {"\n", "\r\n"}) {
        std::string objects;
        for (const char* kind : {"CAMERA", "LIGHT", "NULL"}) {
            objects += kind + std::string(" \"Long\" {") + line_end;
            for (int i = 0; i < 60; ++i) {
                objects += "  KEY " + std::to_string(i) + " 1.5 -2.25 3 10.125 -20 0.5" +
                           (kind[0] == 'C' ? i % 3 == 0 ? " 45 800.5" : " 45" : "") + line_end;
            }
            objects += "}" + line_end;
        }
        for (int shift = 0; shift < ASCIIParser::kBlockBytes && !HasFailure(); shift += 31) {
            EXPECT_GT(expect_the_same(
                          file_with_objects(std::string(static_cast<std::size_t>(shift), ' ') + objects)),
                      150);
        }
    }
}

// One entry of every kind; the first block ends after each of its bytes.
TEST(PlainKeys, BlockEndsAtEveryByteOfAnEntry) {
    const std::string key = std::string("  ") + kKey;
    const std::string entries[] = {
        key + " 45\n",
        key + " 45 800.25\n",
        key + " 45\r\n",
        key + " 45\n\r\n\r",
        "\tKEY\t-12\t1\t2\t3\t4\t5\t6\t45\t\n",
        "KEY 12" + std::string(40, ' ') + "1 2 3 4 5 6 45\n",
        "KEY 12 1 2 3 4 5 6" + std::string(300, ' ') + "45\n",
        "KEY 12 1 2 3 4 5 6 45 / wide\n",
        "KEY 12 1 2 3/4\n 4 5 6 45 8\n",
        "KEY 12 1 2 3 4 5 6 4.5e1 800\n",
        "KEY 12345678 -1234.567 .5 5. 0.0000001 5 6 123456789.5\n",
        "KEY 12 1 2\n3 4 5 6 45 KEY 13 1 2 3 4 5 6 45 }",
        "KEY 12 1 2 3 4 5 6 45}",
        "KEY 12 1 2 3 x 5 6 45\n",
        "KEY 12 1 2 3- 4 5 6 45\n",
        "KEY 12 1 2 3\n",
        "KEYS 12 1 2 3 4 5 6 45\n",
        "KE 12 1 2 3 4 5 6 45\n",
        std::string("KEY 12 1 2\0 3 4 5 6 45\n", 23),
    };
    for (const char* kind : {"CAMERA", "NULL"}) {
        std::string head = kind;
        head.append(" \"One\" {").append(key).append(" 1\n");
        head = file_with_objects(head);
        for (const std::string& entry : entries) {
            for (std::size_t byte = 0; byte <= entry.size() + 2 && !HasFailure(); ++byte) {
                const std::size_t filler = ASCIIParser::kBlockBytes - head.size() - byte;
                for (const char* line_end : {"", "\n"}) {
                    std::string text = head;
                    text.append(filler - std::strlen(line_end), ' ').append(line_end).append(entry);
                    expect_the_same(text.append(key).append(" 45\n").append(key).append(" 45\n}\n"));
                }
            }
        }
    }
}

// A file that becomes shorter while it is read: the missing part of a block is noticed at the same token,
// even where that block was joined to the one before.
TEST(PlainKeys, BlocksThatCannotBeReadCompletely) {
    std::string text = file_with_objects("NULL \"One\" {\n");
    for (int i = 0; i < 400; ++i) {
        text += "  " + std::string(kKey) + "\n";
    }
    text += "}\n";
    EveryToken every_token;
    EveryKey every_key;
    const auto outcome_when_cut = [&](std::size_t bytes, ReadObserver* observer) {
        ParsedText parsed(text, 0, observer);
        tagProjectSettings settings;
        std::filesystem::resize_file(parsed.folder.path("shot.aec"), bytes);
        const int result = read_composition_file(parsed.p, settings);
        return std::to_string(result) + " " + state_of(parsed.p) + "\n" + model_of(settings);
    };
    // The C library has already buffered the first 4 KiB.
    for (std::size_t bytes = 5'000; bytes < text.size() && !HasFailure(); bytes += 397) {
        const std::string expected = outcome_when_cut(bytes, &every_token);
        EXPECT_EQ(outcome_when_cut(bytes, &every_key), expected) << bytes;
        EXPECT_EQ(expected.substr(0, 10), "0 status 1") << bytes;
    }
    EXPECT_GT(every_key.plain, 3'000);
}

TEST(PlainKeys, RandomEntries) {
    static constexpr const char* kNumbers[] = {"0",      "-1",     "12.5",       "-140.458", "0.001",
                                               "45.000", "100000", "1e2",        "0x1F",     "-",
                                               "1.2.3",  "7E",     "123456789.5"};
    static constexpr const char* kBetween[] = {" ",  " ",   " ",    " ",   "  ",   "\t",     "\n",
                                               "\r", " \n", "\r\n", "/\n", "\n\n", " / x\n", ""};
    static constexpr const char* kWords[] = {"KEY",           "KEY", "KEY",   "KEY", "KEY",
                                             "COLOR 1 0.5 0", "}",   "\"x\"", ","};
    std::mt19937 random(11);
#if defined(VXR_SANITIZED)  // which takes ten times as long
    constexpr int kRounds = 150;
#else
    constexpr int kRounds = 600;
#endif
    const auto pick = [&](const auto& list) { return std::string(list[random() % std::size(list)]); };
    int plain = 0;
    for (int round = 0; round < kRounds && !HasFailure(); ++round) {
        std::string text;
        const bool wild = round % 3 == 0;
        for (const char* kind : {"CAMERA", "LIGHT", "NULL"}) {
            text += kind + std::string(" \"Name\" {\n");
            for (auto entries = random() % 70; entries > 0; --entries) {
                text += wild && random() % 20 == 0 ? pick(kWords) : "KEY";
                for (auto numbers =
                         (kind[0] == 'C' ? 8 : 7) + random() % 2 * (wild || kind[0] == 'C' ? 1 : 0);
                     numbers > 0; --numbers) {
                    const bool rare = random() % (wild ? 10 : 100) == 0;
                    text += (random() % (wild ? 20 : 500) == 0 ? pick(kBetween) : " ") +
                            (rare ? pick(kNumbers) : std::string(kNumbers[random() % 7]));
                }
                text += random() % 10 == 0 ? pick(kBetween) + "\n" : "\n";
            }
            text += "}\n";
        }
        plain += expect_the_same(file_with_objects(text));
    }
    EXPECT_GT(plain, 8'000 * kRounds / 600);
}

TEST(PlainKeys, OutOfMemoryIsReportedAtTheKey) {
    const std::string text = file_with_objects("NULL \"One\" {\n KEY 1 1 2 3 4 5 6\n KEY 2 1 2 3 4 5 6\n}\n");
    class Failure : public EveryKey {
      public:
        void on_failure(const diagnostic::Diagnostic& error) override {
            code = error.code;
            line = error.at.line.value_or(0);
        }
        diagnostic::Code code = ReadErrorCode::expected_name;
        std::int64_t line = 0;
    };
    long needed = 0;
    {
        tagProjectSettings settings;
        ParsedText parsed(text);
        const RefusedMemory count_only(1'000'000);
        ASSERT_EQ(read_composition_file(parsed.p, settings), 1);
        needed = RefusedMemory::asked();
    }
    Failure failure;
    tagProjectSettings settings;
    ParsedText parsed(text, 0, &failure);
    {
        const RefusedMemory refuse(needed - 1);  // the array of the second key
        EXPECT_EQ(read_composition_file(parsed.p, settings), 0);
    }
    EXPECT_EQ(failure.plain, 1);
    EXPECT_EQ(failure.line, 7) << "the second key";
    EXPECT_EQ(failure.code, ReadErrorCode::out_of_memory);
    EXPECT_EQ(parsed.p.sym, kTokenIdentifier);
    EXPECT_STREQ(parsed.p.text, "KEY");
}

}  // namespace
