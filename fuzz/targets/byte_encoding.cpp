// Names and paths in any bytes, on their way to a host that takes UTF-16. The first byte chooses the
// encoding.

#include <algorithm>
#include <string>
#include <vector>

#include "check.h"
#include "embedded/text_encoding.h"
#include "host/byte_encoding.h"
#include "input.h"

const std::size_t kOptionBytes = 1;

namespace {

bool is_separator(char c) {
    return c == '/' || c == '\\';
}

bool is_ascii(char c) {
    return static_cast<unsigned char>(c) < 0x80;
}

void check_name(const std::string& name, ByteEncoding encoding) {
    const std::u16string units = utf16_from_bytes(name, encoding);
    require(units.size() == name.size(), "every byte is one character");
    for (std::size_t i = 0; i < name.size(); ++i) {
        require(is_ascii(name[i]) ? units[i] == static_cast<char16_t>(name[i]) : units[i] >= 0x80,
                "ASCII stays ASCII, and nothing becomes it");
    }
    const std::string shown = utf8_from_name(name, encoding);
    // The embedded host's own conversion.
    require(embedded::is_utf8(shown), "a name becomes UTF-8");
    require(embedded::to_utf16(shown) == utf16_from_name(name, encoding), "both forms are one name");
    require(!embedded::is_utf8(name) || shown == name, "UTF-8 stays as it is");
}

void check_path(const std::string& path) {
    const std::vector<std::string> paths = paths_in_other_encodings(path);
    require(paths.empty() == embedded::is_utf8(path), "only what is not UTF-8 is guessed at");
    const auto separators = std::count_if(path.begin(), path.end(), is_separator);
    for (const std::string& one : paths) {
        require(embedded::is_utf8(one), "a guess is UTF-8");
        require(std::count_if(one.begin(), one.end(), is_separator) == separators,
                "a guess has the folders of the path");
    }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const ByteEncoding encoding =
        (input.take() & 1U) == 0 ? ByteEncoding::windows_1252 : ByteEncoding::mac_roman;
    const std::string text(input.rest_text());
    check_name(text, encoding);
    check_path(text);
    return 0;
}
