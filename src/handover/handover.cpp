#include "handover/handover.h"

#include <algorithm>

namespace handover {

std::size_t component_count(Property property) {
    switch (property) {
        case Property::anchor:
        case Property::position:
        case Property::scale:
        case Property::orientation:
        case Property::color:
            return 3;
        case Property::rotate_x:
        case Property::rotate_y:
        case Property::rotate_z:
        case Property::zoom:
        case Property::intensity:
        case Property::cone_angle:
        case Property::cone_feather:
        case Property::casts_shadows:
            return 1;
    }
    return 1;
}

std::string file_name(const NumberedFiles& files, std::int64_t number) {
    std::string digits = std::to_string(number);
    const auto width = static_cast<std::size_t>(std::max(files.padding, 1));
    digits.insert(0, width - std::min(width, digits.size()), '0');
    return files.prefix + digits + files.suffix;
}

}  // namespace handover
