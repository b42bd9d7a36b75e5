#include "footage.h"

#include <filesystem>

#include "support/temporary_folder.h"

namespace {

struct Copy {
    const char* from;  // below examples/
    const char* to;
};

constexpr Copy kCopies[] = {
    {"square/haze.tga", "plate.tga"},          {"square/grey_card.jpg", "still.jpg"},
    {"square/objectbuffer0001.tif", "s1.tif"}, {"square/objectbuffer0002.tif", "s2.tif"},
    {"square/objectbuffer0003.tif", "s4.tif"}, {"textured/grain.txl", "grain.txl"},
};

}  // namespace

void put_footage_into(const TemporaryFolder& folder) {
    if (std::filesystem::exists(folder.path(kCopies[0].to))) {
        return;
    }
    for (const Copy& copy : kCopies) {
        std::filesystem::copy_file(std::string(VXR_EXAMPLES_DIR "/") + copy.from, folder.path(copy.to));
    }
}
