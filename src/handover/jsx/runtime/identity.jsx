// How a later run finds what an earlier one made. The comment of every item and layer holds a token, between
// whatever the artist writes around it:
//
//     {vxr-0123456789abcdef name=1x settings=2y position=3z}
//
// After the id come marks: short sums of what the scene said when the script set it. A mark that is the same
// today means that the scene still says so, and then nothing is touched, whatever the artist has made of it.

/** @typedef {{id: string, marks: Object<string, string>, begin: number, end: number}} Token */

/**
 * @param {string} comment
 * @returns {Token | null}
 */
function tokenIn(comment) {
    var match = /\{(vxr-[0-9A-Za-z_.\-]+)((?: [A-Za-z]+=[0-9a-z\-]*)*)\}/.exec(comment);
    if (!match) {
        return null;
    }
    /** @type {Object<string, string>} */
    var marks = {};
    var words = match[2].split(" ");
    for (var i = 0; i < words.length; ++i) {
        var equals = words[i].indexOf("=");
        if (equals > 0) {
            marks[words[i].substring(0, equals)] = words[i].substring(equals + 1);
        }
    }
    return {id: match[1], marks: marks, begin: match.index, end: match.index + match[0].length};
}

/**
 * Puts the token in the place of the one in the comment, or at its end.
 * @param {any} owner an item or a layer
 * @param {string} id
 * @param {Object<string, string>} marks
 */
function keepToken(owner, id, marks) {
    var text = "{" + id;
    for (var name in marks) {
        if (marks.hasOwnProperty(name)) {
            text += " " + name + "=" + marks[name];
        }
    }
    text += "}";
    var comment = String(owner.comment);
    var old = tokenIn(comment);
    var now = old ? comment.substring(0, old.begin) + text + comment.substring(old.end)
                  : comment + (comment ? " " : "") + text;
    if (now !== comment) {
        owner.comment = now;
    }
}

/**
 * A short sum of a text. The products stay below 2 to the 53, so that they are exact.
 * @param {any} value
 * @returns {string}
 */
function sum(value) {
    var text = String(value);
    var result = 5381;
    for (var i = 0; i < text.length; ++i) {
        result = (result * 33 + text.charCodeAt(i)) % 4294967291;
    }
    return result.toString(36);
}

/**
 * The names of marks that differ from those of the token.
 * @param {Object<string, string>} marks
 * @param {Token} token
 */
function differences(marks, token) {
    var names = [];
    for (var name in marks) {
        if (marks.hasOwnProperty(name) && token.marks[name] !== marks[name]) {
            names[names.length] = name;
        }
    }
    return names;
}

/** @typedef {{items: Object<string, any>, layers: Object<string, any[]>}} Made */

/**
 * What earlier runs made, by id. Copies that the artist made have the same token; of items the oldest is
 * meant. Layers are all listed, those below first, because a copy lies above what it was made from.
 * @returns {Made}
 */
function findMade() {
    /** @type {Made} */
    var made = {items: {}, layers: {}};
    var all = app.project.items;
    for (var i = 1; i <= all.length; ++i) {
        /** @type {any} */
        var one = all[i];
        var token = tokenIn(String(one.comment));
        if (token && (!made.items[token.id] || one.id < made.items[token.id].id)) {
            made.items[token.id] = one;
        }
        if (one instanceof CompItem) {
            for (var k = one.numLayers; k >= 1; --k) {
                var layerToken = tokenIn(String(one.layer(k).comment));
                if (layerToken) {
                    if (!made.layers[layerToken.id]) {
                        made.layers[layerToken.id] = [];
                    }
                    made.layers[layerToken.id].push(one.layer(k));
                }
            }
        }
    }
    return made;
}

/**
 * The layer that was made for this id: in its own composition, or where the artist moved it.
 * @param {Made} made
 * @param {string} id
 * @param {any} composition null if it is not made yet
 */
function madeLayer(made, id, composition) {
    var candidates = made.layers[id];
    if (!candidates) {
        return null;
    }
    for (var i = 0; i < candidates.length; ++i) {
        if (composition && candidates[i].containingComp.id === composition.id) {
            return candidates[i];
        }
    }
    return candidates[0];
}

/**
 * Gives the scene's name, unless the artist gave another since the last run.
 * @param {any} owner
 * @param {string} name
 * @param {Token | null} token of the last run
 */
function rename(owner, name, token) {
    if ((!token || token.marks.named === sum(owner.name)) && owner.name !== name) {
        owner.name = name;
    }
}
