// What the scene says. The calls after the runtime fill this; nothing here touches the project.

/**
 * @typedef {{matchNames: string[], size: number, transform: boolean}} PropertyKind
 * @typedef {{width: number, height: number, frames: number, rate: number, aspect: number, alpha: string,
 *     premultipliedWith: number[], fields: string, name: string, near: string, path: string,
 *     first: number, last: number, whole: boolean}} FootageFacts
 * @typedef {{width: number, height: number, aspect: number, frames: number, rate: number}} CompositionFacts
 * @typedef {{id: string, kind: string, name: string, folder: number, footage?: FootageFacts,
 *     composition?: CompositionFacts, layers: SceneLayer[], made?: any, found?: any,
 *     marks?: Object<string, string>, changes?: string[], shift?: number}} SceneItem
 * @typedef {{id: string, kind: string, name: string, item?: number, blend?: string, threeD?: boolean,
 *     aimed?: boolean, light?: string, center?: number[], start: number, inFrame: number, length: number,
 *     timed: boolean, marks: string[], read: function(): void, found?: any, changes?: string[]}} SceneLayer
 * @typedef {{property: string, interpolation: string, frames: number[], values: number[], holds: number[]}} Track
 */

/** @type {SceneItem[]} */
var items = [];
/** Everything that the import leaves out or replaces, a sentence each. @type {string[]} */
var problems = [];
/** Tracks of the layer that is being read. @type {Track[]} */
var tracks = [];

/** @type {Object<string, PropertyKind>} */
var PROPERTIES = {
    anchor: {matchNames: ["ADBE Transform Group", "ADBE Anchor Point"], size: 3, transform: true},
    position: {matchNames: ["ADBE Transform Group", "ADBE Position"], size: 3, transform: true},
    scale: {matchNames: ["ADBE Transform Group", "ADBE Scale"], size: 3, transform: true},
    orientation: {matchNames: ["ADBE Transform Group", "ADBE Orientation"], size: 3, transform: true},
    rotateX: {matchNames: ["ADBE Transform Group", "ADBE Rotate X"], size: 1, transform: true},
    rotateY: {matchNames: ["ADBE Transform Group", "ADBE Rotate Y"], size: 1, transform: true},
    rotateZ: {matchNames: ["ADBE Transform Group", "ADBE Rotate Z"], size: 1, transform: true},
    zoom: {matchNames: ["ADBE Camera Options Group", "ADBE Camera Zoom"], size: 1, transform: false},
    intensity: {matchNames: ["ADBE Light Options Group", "ADBE Light Intensity"], size: 1, transform: false},
    color: {matchNames: ["ADBE Light Options Group", "ADBE Light Color"], size: 3, transform: false},
    coneAngle: {matchNames: ["ADBE Light Options Group", "ADBE Light Cone Angle"], size: 1, transform: false},
    coneFeather: {matchNames: ["ADBE Light Options Group", "ADBE Light Cone Feather 2"], size: 1, transform: false},
    castsShadows: {matchNames: ["ADBE Light Options Group", "ADBE Casts Shadows"], size: 1, transform: false}
};

/** @param {SceneItem} what */
function item(what) {
    items[items.length] = what;
}

/**
 * @param {number} composition the item's index
 * @param {SceneLayer} what
 */
function layer(composition, what) {
    var layers = items[composition].layers;
    layers[layers.length] = what;
}

/**
 * @param {string} property
 * @param {string} interpolation
 */
function track(property, interpolation) {
    tracks[tracks.length] =
        {property: property, interpolation: interpolation, frames: [], values: [], holds: []};
}

/** @param {number[]} list */
function frames(list) {
    append(tracks[tracks.length - 1].frames, list);
}

/**
 * @param {number} first
 * @param {number} count
 */
function run(first, count) {
    appendRun(tracks[tracks.length - 1].frames, first, count);
}

/** The frames of the track before. */
function same() {
    tracks[tracks.length - 1].frames = tracks[tracks.length - 2].frames;
}

/** @param {number[]} list */
function values(list) {
    append(tracks[tracks.length - 1].values, list);
}

/**
 * Numbers of 24 bits in no more digits than tell them apart: of each, the nearest one of 24 bits is meant.
 * Deliberate: x = s - (s - x) holds on paper only. Rounding drops the lower 29 of the 53 bits.
 * @param {number[]} list
 */
function floats(list) {
    var into = tracks[tracks.length - 1].values;
    for (var i = 0; i < list.length; ++i) {
        var spread = list[i] * 536870913; // 2^29 + 1
        into[into.length] = spread - (spread - list[i]);
    }
}

/** @param {number[]} list */
function holds(list) {
    append(tracks[tracks.length - 1].holds, list);
}

/**
 * @param {number} first
 * @param {number} count
 */
function holdRun(first, count) {
    appendRun(tracks[tracks.length - 1].holds, first, count);
}

/**
 * @param {number[]} into
 * @param {number} first
 * @param {number} count
 */
function appendRun(into, first, count) {
    for (var i = 0; i < count; ++i) {
        into[into.length] = first + i;
    }
}

/**
 * @param {number[]} into
 * @param {number[]} list
 */
function append(into, list) {
    for (var i = 0; i < list.length; ++i) {
        into[into.length] = list[i];
    }
}
