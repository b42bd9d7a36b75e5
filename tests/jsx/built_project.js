// What a script built in the stand-in for After Effects, as plain data: names of constants in place of their numbers, seconds as
// the script gave them, items and layers by their place.
"use strict";

// As the URI if it is not UTF-8.
function pathOf(uri) {
    try {
        return decodeURIComponent(uri);
    } catch (error) {
        return uri;
    }
}

function builtProject(host) {
    const { constants, state } = host;
    const items = state.items.filter((item) => !item.solid);
    const nameOf = (table, value) => Object.keys(table).find((name) => table[name] === value) || null;

    function footage(item) {
        const { source, raw } = item;
        const numbered = source.kind === "sequence";
        return {
            source: source.kind, file: source.uri ? pathOf(source.uri) : null, numbers: numbered ? [source.first, source.last] : null,
            size: [source.width, source.height], seconds: source.kind === "placeholder" ? source.seconds : null,
            rate: source.kind === "placeholder" ? source.rate : numbered ? source.raw.conformFrameRate : null, aspect: raw.pixelAspect,
            alpha: source.alpha ? nameOf(constants.AlphaMode, source.raw.alphaMode) : null, over: source.raw.premulColor,
            fields: source.still ? null : nameOf(constants.FieldSeparationType, source.raw.fieldSeparationType),
        };
    }

    function property(record) {
        return {
            value: record.set ? record.value : null,
            keys: record.keys.map((key) => ({
                time: key.time, value: key.value, into: nameOf(constants.KeyType, key.into), out: nameOf(constants.KeyType, key.out),
                straight: !record.definition.spatial || (!key.auto && !key.continuous && key.tangents.every((side) => side.every((one) => one === 0))),
            })),
        };
    }

    function layer(one) {
        const properties = {};
        for (const group of Object.values(one.groups)) {
            for (const [name, held] of Object.entries(group.list)) {
                if (held.record.set || held.record.keys.length > 0) {
                    properties[name] = property(held.record);
                }
            }
        }
        const placed = one.kind === "camera" || one.kind === "light";
        return {
            kind: one.kind, name: one.raw.name, comment: one.raw.comment, start: one.start, in: one.inPoint, out: one.outPoint,
            item: one.source && !one.source.solid ? items.indexOf(one.source) : null, center: placed ? one.center : null,
            aimed: placed ? one.raw.autoOrient === constants.AutoOrientType.CAMERA_OR_POINT_OF_INTEREST : null,
            light: one.kind === "light" ? nameOf(constants.LightType, one.light) : null, threeD: placed ? null : one.raw.threeDLayer,
            blend: placed ? null : nameOf(constants.BlendingMode, one.raw.blendingMode), properties,
        };
    }

    function composition(item) {
        const { raw } = item;
        const markers = [];
        for (let i = 1; raw.markerProperty && i <= raw.markerProperty.numKeys; ++i) {
            markers.push([raw.markerProperty.keyTime(i), raw.markerProperty.keyValue(i).comment]);
        }
        return { size: [raw.width, raw.height], aspect: raw.pixelAspect, seconds: raw.duration, rate: raw.frameRate, markers, layers: item.layers.map(layer) };
    }

    return {
        items: items.map((item) => ({
            kind: item.kind, name: item.raw.name, comment: item.raw.comment, folder: items.indexOf(item.parent),
            footage: item.kind === "footage" ? footage(item) : null, composition: item.kind === "composition" ? composition(item) : null,
        })),
    };
}

module.exports = { builtProject };
