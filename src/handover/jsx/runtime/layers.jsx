// Layers: made, put in their place, and set.

/**
 * @param {SceneLayer} one
 * @param {any} composition
 * @returns {any} the layer
 */
function makeLayer(one, composition) {
    var layers = composition.layers;
    if (one.kind === "camera") {
        return layers.addCamera(one.name, one.center);
    }
    if (one.kind === "light") {
        return layers.addLight(one.name, one.center);
    }
    if (one.kind === "null") {
        return layers.addNull();
    }
    if (!items[one.item].made) {
        throw new Error("what it shows could not be made.");
    }
    return layers.add(items[one.item].made);
}

/**
 * @param {SceneLayer} one
 * @returns {any}
 */
function blendOf(one) {
    return one.blend === "add" ? BlendingMode.ADD
        : one.blend === "multiply" ? BlendingMode.MULTIPLY : BlendingMode.NORMAL;
}

/**
 * @param {SceneLayer} one
 * @returns {any}
 */
function lightTypeOf(one) {
    /** @type {any} CS3 to CS5 do not have it. */
    var types = $.global.LightType;
    if (!types) {
        throw new Error("scripts cannot choose it in this version of After Effects.");
    }
    return one.light === "spot" ? types.SPOT : one.light === "parallel" ? types.PARALLEL : types.POINT;
}

/**
 * What decides which properties the layer shows comes before its values.
 * @param {SceneLayer} one
 * @param {any} layer
 */
function setKind(one, layer) {
    if (one.kind === "light") {
        attempt("The kind of the light '" + one.name + "'", function () {
            layer.lightType = lightTypeOf(one);
        });
    }
    if (one.kind === "camera" || (one.kind === "light" && one.light !== "point")) {
        var orient = one.aimed ? AutoOrientType.CAMERA_OR_POINT_OF_INTEREST : AutoOrientType.NO_AUTO_ORIENT;
        if (layer.autoOrient !== orient) {
            layer.autoOrient = orient;
        }
    }
    if (one.kind !== "camera" && one.kind !== "light") {
        if (layer.threeDLayer !== Boolean(one.threeD)) {
            layer.threeDLayer = Boolean(one.threeD);
        }
        if (one.kind !== "null" && layer.blendingMode !== blendOf(one)) {
            layer.blendingMode = blendOf(one);
        }
    }
}

/**
 * @param {SceneLayer} one
 * @returns {number} the frame at which layer time begins
 */
function startOf(one) {
    var shift = one.item === undefined ? 0 : items[one.item].shift || 0;
    return one.start + shift;
}

/**
 * Whether this run gave the layer's footage another first file than the scene asked for.
 * @param {SceneLayer} one
 */
function hasOtherFirstFile(one) {
    var shown = one.item === undefined ? null : items[one.item];
    return Boolean(shown && shown.shift && (!shown.found || contains(shown.changes, "file")));
}

/**
 * @param {SceneLayer} one
 * @param {any} layer
 * @param {number} rate
 */
function setTimes(one, layer, rate) {
    layer.startTime = startOf(one) / rate;
    if (one.timed) {
        layer.inPoint = one.inFrame / rate;
        layer.outPoint = (one.inFrame + one.length) / rate;
    }
}

/**
 * @param {string[]} list
 * @param {string} name
 */
function contains(list, name) {
    for (var i = 0; i < list.length; ++i) {
        if (list[i] === name) {
            return true;
        }
    }
    return false;
}

/**
 * The marks of a layer. Those of its properties come with the scene, because their keys are many.
 * @param {SceneLayer} one
 * @returns {Object<string, string>}
 */
function layerMarks(one) {
    /** @type {Object<string, string>} */
    var marks = {
        name: sum(one.name),
        settings: sum([one.blend, one.threeD, one.aimed, one.light].join("|")),
        time: sum([one.start, one.inFrame, one.length, one.timed].join("|"))
    };
    for (var i = 0; i < one.marks.length; i += 2) {
        marks[one.marks[i]] = one.marks[i + 1];
    }
    return marks;
}

/**
 * Sets the properties that the last run did not set to the same.
 * @param {SceneLayer} one
 * @param {any} layer
 * @param {string[]} changes names of marks
 */
function setProperties(one, layer, changes) {
    var composition = layer.containingComp;
    var what = "'" + one.name + "'";
    tracks = [];
    one.read();
    // A parent's place is in every value. Without the parent the values are the scene's; put back, it leaves
    // the layer where it is.
    var parent = layer.parent;
    if (parent) {
        layer.parent = null;
        problem(what + " has a parent. It stays, and the layer is where the scene says at the current time.");
    }
    for (var i = 0; i < tracks.length; ++i) {
        var kind = PROPERTIES[tracks[i].property];
        if (!isShown(one, tracks[i].property) ||
            (!contains(changes, tracks[i].property) && !(parent && kind.transform))) {
            continue;
        }
        setOneProperty(one, layer, tracks[i], composition);
    }
    if (parent) {
        layer.parent = parent;
    }
    tracks = [];
}

/**
 * @param {SceneLayer} one
 * @param {any} layer
 * @param {Track} track
 * @param {any} composition
 */
function setOneProperty(one, layer, track, composition) {
    var what = "The " + track.property + " of '" + one.name + "'";
    attempt(what, function () {
        var property = propertyOf(layer, PROPERTIES[track.property].matchNames);
        if (!property) {
            throw new Error("this version of After Effects does not show it.");
        }
        setTrack(track, property, composition, one.start, what);
    });
}

/**
 * Makes the layer, or sets what the scene says otherwise than in the last run.
 * @param {SceneLayer} one
 * @param {any} composition
 * @param {any} below the layer below it, of the scene's; null for the lowest
 */
function buildLayer(one, composition, below) {
    var layer = one.found;
    var marks = layerMarks(one);
    var token = layer ? tokenIn(String(layer.comment)) : null;
    var isNew = !layer;
    if (isNew) {
        layer = makeLayer(one, composition);
        // Found by the next run, even if a later step breaks off.
        keepToken(layer, one.id, {});
        one.found = layer;
        if (below && below.containingComp.id === composition.id) {
            if (layer.index !== below.index - 1) {
                layer.moveBefore(below);
            }
        } else if (layer.index !== composition.numLayers) {
            layer.moveToEnd();
        }
        layer.label = LABELS[one.kind];
    }
    var changes = one.changes;
    // A layer with a source is called after it, as long as nobody names it otherwise.
    if (one.item === undefined && (isNew || contains(changes, "name"))) {
        rename(layer, one.name, token);
    }
    if (isNew || contains(changes, "settings")) {
        setKind(one, layer);
    }
    if (isNew || contains(changes, "time") || hasOtherFirstFile(one)) {
        setTimes(one, layer, layer.containingComp.frameRate);
    }
    var properties = propertyChanges(one, changes, isNew);
    if (properties.length > 0) {
        setProperties(one, layer, properties);
    }
    marks.named = sum(layer.name);
    keepToken(layer, one.id, marks);
}

/**
 * @param {SceneLayer} one
 * @param {string[]} changes
 * @param {boolean} all
 * @returns {string[]} names of properties
 */
function propertyChanges(one, changes, all) {
    var names = [];
    for (var i = 0; i < one.marks.length; i += 2) {
        // Another kind of light or camera shows other properties, which the last run may not have set.
        if (all || contains(changes, one.marks[i]) || contains(changes, "settings")) {
            names[names.length] = one.marks[i];
        }
    }
    return names;
}
