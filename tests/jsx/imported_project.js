// Compares what a script built in the stand-in for After Effects with the project that the plug-in built in the embedded
// host (docs/project-json.md). What cannot be compared:
//   - undo steps, preferences, messages, in-specs and handles, which scripts do not see;
//   - alpha of footage without alpha, and fields of stills, which After Effects refuses to scripts;
//   - point of interest and orientation of point lights, which it hides, and whether they are aimed;
//   - in- and out-points that the plug-in leaves to the host;
//   - properties that the plug-in fetches without setting them, as the cone angle of spots;
//   - numbers that are not finite, which the script leaves out;
//   - names that reach the host as other bytes than UTF-8.
"use strict";

const STREAMS = {
    anchor_point: ["ADBE Transform Group", "ADBE Anchor Point"], position: ["ADBE Transform Group", "ADBE Position"],
    scale: ["ADBE Transform Group", "ADBE Scale"], orientation: ["ADBE Transform Group", "ADBE Orientation"],
    x_rotation: ["ADBE Transform Group", "ADBE Rotate X"], y_rotation: ["ADBE Transform Group", "ADBE Rotate Y"],
    z_rotation: ["ADBE Transform Group", "ADBE Rotate Z"], zoom: ["ADBE Camera Options Group", "ADBE Camera Zoom"],
    intensity: ["ADBE Light Options Group", "ADBE Light Intensity"], color: ["ADBE Light Options Group", "ADBE Light Color"],
    casts_shadows: ["ADBE Light Options Group", "ADBE Casts Shadows"],
};

/// Every difference, a sentence each.
function differences(host, project) {
    const found = [];
    const say = (where, what, got, wanted) => found.push(`${where}: ${what} is ${JSON.stringify(got)}, not ${JSON.stringify(wanted)}`);
    const same = (where, what, got, wanted) => {
        if (JSON.stringify(got) !== JSON.stringify(wanted)) {
            say(where, what, got, wanted);
        }
    };
    const near = (where, what, got, wanted) => {
        if (!(Math.abs(got - wanted) <= 1e-9 * Math.max(1, Math.abs(wanted)))) {
            say(where, what, got, wanted);
        }
    };
    const seconds = (time) => time.value / time.scale;

    const items = host.state.items.filter((item) => !item.solid);
    const wantedItems = project.items.slice(1);
    same("project", "the number of items", items.length, wantedItems.length);
    for (let i = 0; i < Math.min(items.length, wantedItems.length); ++i) {
        compareItem(items[i], wantedItems[i]);
    }
    return found;

    function compareItem(item, wanted) {
        const where = `item ${wanted.id}`;
        same(where, "its kind", item.kind, wanted.kind);
        same(where, "its name", item.raw.name, wanted.name);
        same(where, "its folder", items.indexOf(item.parent), wantedItems.findIndex((one) => one.id === wanted.parent_folder));
        if (item.kind === "footage" && wanted.kind === "footage") {
            compareFootage(where, item, project.footage.find((one) => one.id === wanted.content));
        } else if (item.kind === "composition" && wanted.kind === "composition") {
            compareComposition(where, item, project.compositions.find((one) => one.id === wanted.content));
        }
    }

    function compareFootage(where, item, wanted) {
        const source = item.source;
        same(where, "its source", source.kind, wanted.kind === "module_file" ? "file" : wanted.kind);
        same(where, "its width", source.width, wanted.width);
        same(where, "its height", source.height, wanted.height);
        if (wanted.kind === "sequence") {
            same(where, "its numbers", [source.first, source.last], [wanted.sequence.first, wanted.sequence.last]);
        }
        if (wanted.kind === "placeholder") {
            near(where, "its length", source.seconds, seconds(wanted.duration));
        } else if (typeof wanted.path === "string") {
            same(where, "its file", decodeURIComponent(source.uri), wanted.path);
        }
        const read = wanted.interpretation;
        near(where, "its pixel aspect", item.raw.pixelAspect, read.pixel_aspect.num / read.pixel_aspect.den);
        if (wanted.kind === "sequence") {
            near(where, "its rate", source.raw.conformFrameRate, read.conform_fps);
        }
        const { AlphaMode, FieldSeparationType } = host.constants;
        if (!source.still) {
            const fields = read.interlace.type === 0 ? FieldSeparationType.OFF
                : read.interlace.order === 0 ? FieldSeparationType.UPPER_FIELD_FIRST : FieldSeparationType.LOWER_FIELD_FIRST;
            same(where, "its fields", source.raw.fieldSeparationType, fields);
        }
        if (source.alpha && wanted.has_alpha) {
            const flags = read.alpha.flags;
            same(where, "its alpha", source.raw.alphaMode,
                flags & 4 ? AlphaMode.IGNORE : flags & 1 ? AlphaMode.PREMULTIPLIED : AlphaMode.STRAIGHT);
            if ((flags & 5) === 1) {
                same(where, "its premultiplied colour", source.raw.premulColor.map((one) => Math.round(one * 255)),
                    [read.alpha.red, read.alpha.green, read.alpha.blue]);
            }
        }
    }

    function compareComposition(where, item, wanted) {
        same(where, "its size", [item.raw.width, item.raw.height], [wanted.width, wanted.height]);
        near(where, "its pixel aspect", item.raw.pixelAspect, wanted.pixel_aspect.num / wanted.pixel_aspect.den);
        near(where, "its length", item.raw.duration, seconds(wanted.duration));
        near(where, "its rate", item.raw.frameRate, wanted.frame_rate.num / wanted.frame_rate.den);
        same(where, "the number of its layers", item.layers.length, wanted.layers.length);
        for (let i = 0; i < Math.min(item.layers.length, wanted.layers.length); ++i) {
            compareLayer(`${where}, layer ${i + 1}`, item.layers[i], wanted.layers[i]);
        }
    }

    function compareLayer(where, layer, wanted) {
        const { BlendingMode, LightType, AutoOrientType } = host.constants;
        same(where, "its kind", layer.kind, wanted.kind);
        if (layer.kind !== wanted.kind) {
            return;
        }
        same(where, "its name", layer.raw.name, wanted.name);
        near(where, "its start", layer.start, seconds(wanted.offset));
        if (wanted.timing_set) {
            const start = wanted.time_mode === "layer" ? seconds(wanted.offset) : 0;
            near(where, "its in-point", layer.inPoint, start + seconds(wanted.in_point));
            near(where, "its out-point", layer.outPoint, start + seconds(wanted.in_point) + seconds(wanted.duration));
        }
        const light = { parallel: LightType.PARALLEL, spot: LightType.SPOT, point: LightType.POINT }[wanted.light_type];
        if (layer.kind === "light") {
            same(where, "its kind of light", layer.light, light);
        }
        const placed = layer.kind === "camera" || layer.kind === "light";
        if (placed) {
            same(where, "its centre", layer.center, [wanted.center.x, wanted.center.y]);
            if (light !== LightType.POINT) {
                same(where, "its aim", layer.raw.autoOrient === AutoOrientType.CAMERA_OR_POINT_OF_INTEREST,
                    wanted.looks_at_point_of_interest);
            }
        } else {
            same(where, "being in space", layer.raw.threeDLayer, wanted.is_3d);
            same(where, "its blend mode", layer.raw.blendingMode,
                { 2: BlendingMode.NORMAL, 4: BlendingMode.ADD, 5: BlendingMode.MULTIPLY }[wanted.transfer.mode]);
        }
        same(where, "what it shows", layer.kind === "null" ? -1 : items.indexOf(layer.source),
            wantedItems.findIndex((one) => one.id === wanted.source_item));
        for (const stream of wanted.streams) {
            compareStream(`${where}, ${stream.name}`, layer, stream, light === LightType.POINT);
        }
    }

    function components(value) {
        return typeof value !== "object" ? [value]
            : "alpha" in value ? [value.red, value.green, value.blue, value.alpha] : [value.x, value.y, value.z].filter((one) => one !== undefined);
    }

    function compareStream(where, layer, stream, point) {
        const [group, name] = STREAMS[stream.name] || [];
        if (!group || (point && (stream.name === "anchor_point" || stream.name === "orientation"))) {
            return;
        }
        const property = layer.groups[group].list[name].record;
        const keys = stream.keyframes.filter((key) => key.every((one) => Number.isFinite(one)));
        if (keys.length > 0) {
            same(where, "the number of its keys", property.keys.length, keys.length);
            property.keys.slice(0, keys.length).forEach((key, i) => {
                near(`${where}, key ${i + 1}`, "its time", key.time - layer.start, keys[i][0] / keys[i][1]);
                same(`${where}, key ${i + 1}`, "its value", [].concat(key.value), keys[i].slice(2));
            });
        } else {
            same(where, "the number of its keys", property.keys.length, 0);
            if (stream.value_set && stream.name !== "zoom" && stream.keyframes.length === 0) {
                const wanted = components(stream.value);
                same(where, "its value", [].concat(property.value).slice(0, wanted.length), wanted);
            }
        }
    }
}

module.exports = { differences };
