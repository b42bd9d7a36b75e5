#include "composition/read/read_footage.h"

#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>

#include "composition/model/composition.h"
#include "composition/model/heap_text.h"
#include "composition/read/ascii_parser.h"
#include "composition/read/read_report.h"
#include "composition/read/read_values.h"
#include "texture/file/base_file.h"
#include "texture/file/filename.h"

namespace {

constexpr std::uint64_t kFirstLineBytes = 20;

// Length of the folder part of `path`, including its separator; 0 for a bare name. The separators of every
// platform count on every platform, because files move between them.
std::size_t folder_length(std::string_view path) {
    const std::size_t separator = path.find_last_of(":\\/");
    return separator == std::string_view::npos ? 0 : separator + 1;
}

ReadErrorCode end_or(const ASCIIParser& p, ReadErrorCode at_end) {
    return p.status == kStatusReadFailed ? ReadErrorCode::read_failed : at_end;
}

// Skips everything up to and including the first double quote, even line ends.
std::optional<ReadErrorCode> find_opening_quote(ASCIIParser& p, TextPosition& at) {
    char c = 0;
    bool first = true;
    do {
        if (p.nextchar(&c) == 0) {
            return end_or(p, ReadErrorCode::missing_path);
        }
        if (first || c == '"') {
            at = p.CharPosition();
        }
        first = false;
    } while (c != '"');
    return std::nullopt;
}

// Collects the rest of the line, consumes the line end, and cuts the text at the last double quote.
std::optional<ReadErrorCode> collect_line(ASCIIParser& p, std::unique_ptr<char[]>& line) {
    constexpr std::size_t kNowhere = SIZE_MAX;
    std::unique_ptr<char[]> text(new_text(kFirstLineBytes));
    if (text == nullptr) {
        return ReadErrorCode::out_of_memory;
    }
    std::uint64_t size = kFirstLineBytes;
    std::size_t length = 0;
    std::size_t last_quote = kNowhere;
    char c = 0;
    for (;;) {
        if (p.nextchar(&c) == 0) {
            return end_or(p, ReadErrorCode::unended_path_line);
        }
        if (c == '\n' || c == '\r') {
            break;
        }
        if (c == '"') {
            last_quote = length;
        }
        text[length] = c;
        ++length;
        if (length == size - 1) {
            char* grown = text.release();
            const bool enough = grow_text(grown, length, size * 2);
            text.reset(grown);
            if (!enough) {
                return ReadErrorCode::out_of_memory;
            }
            size *= 2;
        }
    }
    // Deliberately the last quote of the line, not the next one: paths may contain quotes, and there is no
    // escape.
    if (last_quote == kNowhere) {
        return ReadErrorCode::unclosed_path;
    }
    text[last_quote] = '\0';
    if (text[0] == '\0') {
        return ReadErrorCode::empty_path;
    }
    line = std::move(text);
    return std::nullopt;
}

// Decides which file is meant: the one written, or the one of that name beside the composition file.
std::optional<ReadErrorCode> resolve(const ASCIIParser& p, FootagePath& path, char** result) {
    const Filename name(path.written.get());
    char* const own_form = name.GetString() == nullptr ? nullptr : copy_text(name.GetString());
    if (own_form == nullptr) {
        return ReadErrorCode::out_of_memory;
    }
    *result = own_form;
    BaseFile file;
    if (file.Open(name, 1, 0) != 0) {
        path.opens_as_written = true;
        return std::nullopt;
    }
    const char* const composition_path = p.filename.GetString();
    const std::size_t folder = composition_path == nullptr ? 0 : folder_length(composition_path);
    if (folder == 0) {
        return ReadErrorCode::path_without_folder;
    }
    const char* const component = own_form + folder_length(own_form);
    const std::size_t component_length = std::strlen(component);
    char* const joined = new_text(std::uint64_t{folder} + component_length + 2);
    if (joined == nullptr) {
        delete[] own_form;
        *result = nullptr;
        return ReadErrorCode::out_of_memory;
    }
    std::memcpy(joined, composition_path, folder);
    std::memcpy(joined + folder, component, component_length + 1);
    *result = joined;
    delete[] own_form;
    return std::nullopt;
}

}  // namespace

FootagePath read_footage_path(ASCIIParser& p, char** result) {
    FootagePath path;
    path.problem = find_opening_quote(p, path.at);
    if (!path.problem) {
        path.problem = collect_line(p, path.written);
    }
    if (!path.problem) {
        path.problem = resolve(p, path, result);
    }
    return path;
}

int ReadFilename(ASCIIParser& p, char** result) {
    return read_footage_path(p, result).problem ? 0 : 1;
}

namespace {

// Tells the observer why the path could not be read.
int fail_path(const ASCIIParser& p, const FootagePath& path) {
    if (p.Observer() == nullptr) {
        return 0;
    }
    const char* expected = "a footage path in double quotes";
    std::string found;
    switch (*path.problem) {
        case ReadErrorCode::missing_path:
            found = "no double quote up to the end of the file";
            break;
        case ReadErrorCode::unclosed_path:
            expected = "a closing double quote on the line of the footage path";
            found = "the end of the line";
            break;
        case ReadErrorCode::unended_path_line:
            expected = "a line end after the footage path";
            found = "the end of the file";
            break;
        case ReadErrorCode::empty_path:
            found = "an empty path";
            break;
        case ReadErrorCode::path_without_folder:
            expected = "footage that opens, or a composition file named with its folder";
            found = "\"" + std::string(path.written.get()) + "\"";
            break;
        case ReadErrorCode::read_failed:
            found = "a part of the file that cannot be read";
            break;
        default:
            found = "a path that does not fit into memory";
            break;
    }
    return fail_at(p, *path.problem, path.at, expected, found);
}

// Reads the path of an entry that begins at `at` and tells the observer.
FootagePath read_path(ASCIIParser& p, CFileItem& file, const TextPosition& at, bool top_level) {
    FootagePath read = read_footage_path(p, &file.path);
    if (ReadObserver* const observer = p.Observer()) {
        observer->on_footage({file, top_level, at, read.at, read.written == nullptr ? "" : read.written.get(),
                              read.opens_as_written, read.problem});
    }
    return read;
}

}  // namespace

int CFileItem::Read(ASCIIParser& p) {
    const TextPosition at = p.TokenStart();
    if (read_blend_mode(p, blendMode) == 0 || read_alpha_mode(p, alphaMode) == 0) {
        return 0;
    }
    const FootagePath read = read_path(p, *this, at, false);
    return read.problem ? fail_path(p, read) : 1;
}

int read_top_level_footage(ASCIIParser& p, CFileItem& file) {
    const TextPosition at = p.TokenStart();
    // "<->" comes as three tokens: the middle one is a number without a digit.
    const bool opened = p.nextsym(0) == kTokenOther && Compare(p.text, "<") == 0;
    const bool lined = opened && p.nextsym(0) == kTokenNumber && Compare(p.text, "-") == 0;
    const bool closed = lined && p.nextsym(0) == kTokenOther && Compare(p.text, ">") == 0;
    if (!closed) {
        return fail(p, ReadErrorCode::expected_footage_mark, "<-> between FILE or FSEQ and the alpha word");
    }
    if (read_alpha_mode(p, file.alphaMode) == 0) {
        return 0;
    }
    // Deliberately ignores the result: an entry whose path could not be read stays, and reading continues
    // after it.
    read_path(p, file, at, true);
    return 1;
}
