#include "handover/handover.h"

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

}  // namespace handover
