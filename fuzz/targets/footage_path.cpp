// Reads footage paths until the file has no bytes left.

#include <cstring>
#include <memory>

#include "check.h"
#include "composition/read/ascii_parser.h"
#include "composition/read/read_footage.h"
#include "input.h"

const std::size_t kOptionBytes = 0;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string path = scratch().write("paths.aec", Input(data, size).rest_text());
    ASCIIParser p;
    if (p.Init(Filename(path.c_str()), 1, 0) != 0) {
        return 0;
    }
    for (std::size_t read = 0; p.status == 0; ++read) {
        require(read <= size, "there are no more paths than bytes");
        char* result = nullptr;
        const FootagePath found = read_footage_path(p, &result);
        const std::unique_ptr<char[]> owned(result);
        require(!found.problem || result == nullptr, "a path that was not read is none");
        if (!found.problem) {
            require(result != nullptr && std::strlen(result) > 0, "a path that was read is not empty");
            require(found.written != nullptr && std::strlen(found.written.get()) > 0, "it was written");
            require(found.opens_as_written ||
                        std::strncmp(result, scratch().path("").c_str(), scratch().path("").size()) == 0,
                    "it opens, or leads to the folder of the composition file");
        }
        require(found.at.offset_bytes >= 0 && found.at.offset_bytes <= static_cast<std::int64_t>(size),
                "its place is in the file");
    }
    return 0;
}
