// Values and keys of one property.

/**
 * The property by its match names: those that are displayed are translated.
 * @param {any} layer
 * @param {string[]} matchNames
 * @returns {any} null if this kind of layer does not show it
 */
function propertyOf(layer, matchNames) {
    var at = layer;
    for (var i = 0; i < matchNames.length && at; ++i) {
        at = at.property(matchNames[i]);
    }
    return at;
}

/**
 * Whether After Effects shows the property for a layer of this kind. It refuses hidden ones.
 * @param {SceneLayer} one
 * @param {string} name
 */
function isShown(one, name) {
    if (one.kind === "camera") {
        return name !== "anchor" || Boolean(one.aimed);
    }
    if (one.kind !== "light") {
        return true;
    }
    if (one.light === "point" && (name === "anchor" || name === "orientation")) {
        return false;
    }
    if (name === "anchor") {
        return Boolean(one.aimed);
    }
    return one.light === "spot" || (name !== "coneAngle" && name !== "coneFeather");
}

/**
 * The value as the property takes it.
 * @param {Track} track
 * @param {number} index of the key
 * @param {any} property
 * @returns {any}
 */
function valueAt(track, index, property) {
    var list = track.values;
    if (PROPERTIES[track.property].size === 1) {
        return list[index];
    }
    var at = index * 3;
    if (track.property === "color") {
        return [list[at], list[at + 1], list[at + 2], 1];
    }
    var type = property.propertyValueType;
    return type === PropertyValueType.TwoD || type === PropertyValueType.TwoD_SPATIAL
        ? [list[at], list[at + 1]] : [list[at], list[at + 1], list[at + 2]];
}

/**
 * The value within the property's own limits.
 * @param {any} property
 * @param {any} value
 */
function limited(property, value) {
    if (typeof value !== "number") {
        return value;
    }
    if (property.hasMin && value < property.minValue) {
        return property.minValue;
    }
    return property.hasMax && value > property.maxValue ? property.maxValue : value;
}

/**
 * @param {Track} track
 * @param {any} property
 * @param {any} composition
 * @param {number} start the layer's, in frames of the composition
 * @param {string} what for the summary
 */
function setTrack(track, property, composition, start, what) {
    for (var old = property.numKeys; old >= 1; --old) {
        property.removeKey(old);
    }
    var count = track.frames.length;
    var changed = 0;
    if (count === 0) {
        if (track.values.length > 0) {
            var value = valueAt(track, 0, property);
            var taken = limited(property, value);
            property.setValue(taken);
            changed = taken === value ? 0 : 1;
        }
    } else {
        var rate = composition.frameRate;
        /** @type {number[]} */
        var times = [];
        /** @type {any[]} */
        var keyValues = [];
        for (var i = 0; i < count; ++i) {
            // Composition time, also for a layer that starts later.
            times[i] = (start + track.frames[i]) / rate;
            var wanted = valueAt(track, i, property);
            keyValues[i] = limited(property, wanted);
            changed += keyValues[i] === wanted ? 0 : 1;
        }
        property.setValuesAtTimes(times, keyValues);
        setInterpolation(track, property);
    }
    if (changed > 0) {
        problem(what + " has " + changed + " values that After Effects does not take; the nearest are used.");
    }
}

/**
 * @param {Track} track
 * @param {any} property
 */
function setInterpolation(track, property) {
    var LINEAR = KeyframeInterpolationType.LINEAR;
    var HOLD = KeyframeInterpolationType.HOLD;
    var zero = property.propertyValueType === PropertyValueType.TwoD_SPATIAL ? [0, 0] : [0, 0, 0];
    var count = property.numKeys;
    var next = 0;
    for (var key = 1; key <= count; ++key) {
        var holds = track.interpolation === "hold";
        if (next < track.holds.length && track.holds[next] === key - 1) {
            holds = true;
            ++next;
        }
        if (track.interpolation === "linear") {
            property.setInterpolationTypeAtKey(key, LINEAR, holds ? HOLD : LINEAR);
            if (property.isSpatial) {
                property.setSpatialAutoBezierAtKey(key, false);
                property.setSpatialContinuousAtKey(key, false);
                property.setSpatialTangentsAtKey(key, zero, zero);
            }
        } else if (holds) {
            property.setInterpolationTypeAtKey(
                key, track.interpolation === "hold" ? HOLD : property.keyInInterpolationType(key), HOLD);
        }
    }
}
