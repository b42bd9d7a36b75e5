// Corrections of single values of layers.

#include <algorithm>

#include "handover/correction_run.h"
#include "text/plain_number.h"
#include "text/printable.h"

namespace handover {
namespace {

Track constant(Property property, std::vector<double> values) {
    Track track;
    track.property = property;
    track.values = std::move(values);
    return track;
}

bool sets(const Layer& layer, Property property) {
    return std::any_of(layer.tracks.begin(), layer.tracks.end(),
                       [&](const Track& track) { return track.property == property; });
}

}  // namespace

void correct_layers(CorrectionRun& run) {
    for (Composition& composition : run.handover.compositions) {
        for (Layer& layer : composition.layers) {
            if (layer.object == kNone) {
                continue;
            }
            const SceneObject& object = run.handover.objects[layer.object];
            const std::string name = text::quoted(object.name);
            if (layer.kind == LayerKind::light && layer.light == LightKind::spot &&
                run.wants(Correction::spot_cone)) {
                // The scene's cones have no soft border.
                layer.tracks.push_back(constant(Property::cone_angle, {object.cone_angle}));
                layer.tracks.push_back(constant(Property::cone_feather, {0}));
                run.changed(Correction::spot_cone, name + " has a cone of " +
                                                       text::plain_number(object.cone_angle) +
                                                       " degrees with a hard border");
            }
            if (layer.kind == LayerKind::null && run.wants(Correction::null_anchors) &&
                !sets(layer, Property::anchor)) {
                layer.tracks.insert(layer.tracks.begin(), constant(Property::anchor, {0, 0, 0}));
                run.changed(Correction::null_anchors, name + " has its anchor point at 0, 0, 0");
            }
        }
    }
}

}  // namespace handover
