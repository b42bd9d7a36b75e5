#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "composition/model/project_settings.h"
#include "composition/read/ascii_parser.h"
#include "composition/read/composition_file.h"
#include "support/temporary_folder.h"

/// A tokenizer over a real file with the given bytes that has read the first token.
class ParsedText {
  public:
    explicit ParsedText(std::string_view text, int eol_is_token = 0, ReadObserver* observer = nullptr) {
        const std::string path = folder.write("shot.aec", text);
        p.SetObserver(observer);
        init = p.Init(Filename(path.c_str()), 1, eol_is_token);
    }

    TemporaryFolder folder;
    ASCIIParser p;
    A_long init = -1;
};

/// A composition file with the given bytes, read as a whole. `folder` also holds the footage of the test.
class ReadText {
  public:
    explicit ReadText(std::string_view text, ReadObserver* observer = nullptr) : parsed(text, 0, observer) {
        result = parsed.init == 0 ? read_composition_file(parsed.p, settings) : 0;
    }

    ParsedText parsed;
    tagProjectSettings settings;
    int result = 0;
};

inline constexpr const char* kHeader = "VORTAN XR COMPOSITION\n";
inline constexpr const char* kSettings = "RESOLUTION 720 576 FROM 0 TO 99 RANGE 100 FPS 25\n";

/// A valid file whose root composition, and everything after it, is `rest`.
inline std::string file_with(std::string_view rest) {
    return std::string(kHeader) + kSettings + std::string(rest);
}

/// A valid file with an empty root composition, followed by `rest`.
inline std::string file_with_objects(std::string_view rest) {
    return file_with("COMPOSITION NRM \"Main\" {\n}\n" + std::string(rest));
}

/// The nodes of a list, in its order.
template <class T>
std::vector<T*> nodes_of(CDoubleLinkedList<T>& list) {
    std::vector<T*> nodes;
    for (T* node = list.First(); node != nullptr; node = list.Next(node)) {
        nodes.push_back(node);
    }
    return nodes;
}
