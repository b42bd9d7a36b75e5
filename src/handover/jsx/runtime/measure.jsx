// After Effects itself is asked where points land and what colours come out. It answers by the expressions of text
// layers; the answers go into a table beside the script. docs/handover.md describes the table.

/**
 * @typedef {{target: string, camera: number, item: number, layer: number, root: number, shownBy: number}} View
 * @typedef {{frame: number, points: number[]}} Moment
 */

/** What is asked for, as the calls after the runtime say. */
var QUESTIONS = {scene: "", sum: ""};
/** @type {View[]} */
var views = [];
/** For each camera. @type {Moment[][]} */
var moments = [];
/** The lines of the table. @type {string[]} */
var table = [];
/** Points that were measured. */
var landed = 0;

/** @param {View} what */
function view(what) {
    views[views.length] = what;
}

/**
 * @param {number} camera
 * @param {number} frame
 * @param {number[]} points three numbers each, in the axes of After Effects
 */
function moment(camera, frame, points) {
    if (!moments[camera]) {
        moments[camera] = [];
    }
    moments[camera].push({frame: frame, points: points});
}

/**
 * A line of the table. Texts have no tabs and line ends.
 * @param {any[]} cells
 */
function row(cells) {
    var texts = [];
    for (var i = 0; i < cells.length; ++i) {
        texts[i] = String(cells[i]).replace(/[^ -~]/g, "?");
    }
    table[table.length] = texts.join("\t");
}

/**
 * @param {any} number
 * @returns {string} "-" for what is no finite number
 */
function cell(number) {
    return typeof number === "number" && isFinite(number) ? String(number) : "-";
}

/**
 * What an expression says in a composition, as the numbers between "|" and blanks.
 * @param {any} text a text layer
 * @param {string} expression
 * @param {number} time
 * @returns {number[][]}
 */
function answer(text, expression, time) {
    var property = text.property("ADBE Text Properties").property("ADBE Text Document");
    property.expression = expression;
    var said = String(property.valueAtTime(time, false).text);
    if (property.expressionError) {
        throw new Error(property.expressionError);
    }
    var lists = [];
    var parts = said.split("|");
    for (var i = 0; i < parts.length; ++i) {
        var words = parts[i].split(" ");
        var numbers = [];
        for (var k = 0; k < words.length; ++k) {
            numbers[k] = words[k] === "" ? NaN : Number(words[k]);
        }
        lists[i] = numbers;
    }
    return lists;
}

/**
 * A text layer that shows nothing.
 * @param {any} composition
 */
function addAsker(composition) {
    var text = composition.layers.addText("0");
    text.name = "asks";
    text.startTime = 0;
    text.enabled = false;
    return text;
}

/**
 * Nulls in space, as many as points of any moment.
 * @param {any} composition
 * @param {number} count
 * @returns {any[]}
 */
function addPoints(composition, count) {
    var points = [];
    for (var i = 0; i < count; ++i) {
        // Copies share what they show: one item of the project.
        var point = i === 0 ? composition.layers.addNull() : points[0].duplicate();
        if (i === 0) {
            point.startTime = 0;
            point.threeDLayer = true;
            propertyOf(point, PROPERTIES.anchor.matchNames).setValue([0, 0, 0]);
        }
        points[i] = point;
    }
    return points;
}

/**
 * Where points are seen, by the camera that is active.
 * @param {any} text
 * @param {any[]} nulls
 * @param {number[]} points three numbers each
 * @param {number} time
 * @returns {number[][]}
 */
function landings(text, nulls, points, time) {
    var numbers = [];
    for (var i = 0; i < points.length / 3; ++i) {
        propertyOf(nulls[i], PROPERTIES.position.matchNames)
            .setValue([points[3 * i], points[3 * i + 1], points[3 * i + 2]]);
        numbers[i] = nulls[i].index;
    }
    return answer(text, "var i = [" + numbers.join(",") + "]; var s = \"\"; for (var k = 0; k < i.length; k++) { " +
        "var p = thisComp.layer(i[k]).toComp([0, 0, 0]); s += (k ? \"|\" : \"\") + p[0] + \" \" + p[1]; } s;", time);
}

/**
 * The same places in the composition that shows this one as a layer without three dimensions.
 * @param {any} text
 * @param {any} shown the layer
 * @param {number[][]} places
 * @param {number} time
 * @returns {number[][]}
 */
function placesInRoot(text, shown, places, time) {
    var list = [];
    /** @type {boolean[]} */
    var known = [];
    for (var i = 0; i < places.length; ++i) {
        known[i] = cell(places[i][0]) !== "-" && cell(places[i][1]) !== "-";
        list[i] = "[" + (known[i] ? places[i][0] + "," + places[i][1] : "0,0") + "]";
    }
    var seen = answer(text, "var q = [" + list.join(",") + "]; var s = \"\"; for (var k = 0; k < q.length; k++) { " +
        "var p = thisComp.layer(" + shown.index + ").toComp(q[k]); s += (k ? \"|\" : \"\") + p[0] + \" \" + p[1]; } s;",
        time);
    for (var k = 0; k < places.length; ++k) {
        if (!known[k]) {
            seen[k] = [NaN, NaN];
        }
    }
    return seen;
}

/**
 * The most points of one moment.
 * @param {Moment[]} list
 */
function mostPoints(list) {
    var most = 0;
    for (var i = 0; i < list.length; ++i) {
        most = Math.max(most, list[i].points.length / 3);
    }
    return most;
}

/**
 * Leaves one camera of a composition on.
 * @param {SceneItem} composition
 * @param {number} camera index of the layer
 */
function useCamera(composition, camera) {
    for (var i = 0; i < composition.layers.length; ++i) {
        if (composition.layers[i].kind === "camera" && composition.layers[i].found) {
            composition.layers[i].found.enabled = i === camera;
        }
    }
}

/** @param {View} one */
function measureView(one) {
    var composition = items[one.item];
    var root = items[one.root];
    if (!composition.made || !root.made || !composition.layers[one.layer].found) {
        throw new Error("the camera could not be made.");
    }
    useCamera(composition, one.layer);
    var list = moments[one.camera] || [];
    var nulls = addPoints(composition.made, mostPoints(list));
    var text = addAsker(composition.made);
    var shown = one.shownBy < 0 ? null : root.layers[one.shownBy].found;
    var rootText = shown ? addAsker(root.made) : null;
    for (var i = 0; i < list.length; ++i) {
        var rootTime = (SCENE.start + list[i].frame - SCENE.from) / root.made.frameRate;
        var places = landings(text, nulls, list[i].points, shown ? rootTime - shown.startTime : rootTime);
        if (shown) {
            places = placesInRoot(rootText, shown, places, rootTime);
        }
        for (var k = 0; k < places.length; ++k) {
            row(["point", one.target, one.camera, i, k, cell(places[k][0]), cell(places[k][1])]);
            ++landed;
        }
    }
}

/** @param {View} one */
function measureViewAnyhow(one) {
    attempt("Camera " + (one.camera + 1) + " of the " + one.target + " project", function () {
        measureView(one);
    });
}

/** What happens to the project: everything new lies in one folder, and nothing else is touched. */
function askAll() {
    buildAll(makePlan());
    for (var i = 0; i < views.length; ++i) {
        measureViewAnyhow(views[i]);
    }
    var folder = items[0].made.items.addFolder("trials");
    for (var k = 0; k < CAMERA_TRIALS.length; ++k) {
        cameraTrialAnyhow(CAMERA_TRIALS[k], folder);
    }
    attempt("The trials of colours", function () {
        colorTrials(folder);
    });
    if (TEXTURE.name) {
        attempt("The trial of a texture", function () {
            textureTrial(folder);
        });
    }
}

/** @returns {string} of a setting that a version may not have */
function linearBlending() {
    try {
        return app.project.linearBlending ? "1" : "0";
    } catch (error) {
        return "-";
    }
}

function measure() {
    if (!app.project) {
        app.newProject();
    }
    // What an earlier run measured stays as it is, and nothing of it is found again.
    var run = new Date().getTime().toString(36);
    for (var i = 0; i < items.length; ++i) {
        items[i].id += "-" + run;
        for (var k = 0; k < items[i].layers.length; ++k) {
            items[i].layers[k].id += "-" + run;
        }
    }
    row(["vxr-measured", 1]);
    row(["scene", QUESTIONS.scene]);
    row(["asked", QUESTIONS.sum]);
    row(["host", app.version, app.project.bitsPerChannel, linearBlending()]);
    app.beginUndoGroup("Measure " + SCENE.name);
    app.beginSuppressDialogs();
    try {
        askAll();
    } catch (error) {
        problem("The measuring broke off: " + reason(error));
    } finally {
        app.endSuppressDialogs(false);
        app.endUndoGroup();
    }
    for (var n = 0; n < problems.length; ++n) {
        row(["note", problems[n]]);
    }
    row(["end", table.length]);
    var file = writeBeside("-measured.tsv", table);
    var lines = file
        ? [landed + " places of points were measured. The table is " + file,
            "What was made for it is in one folder of the project, '" + items[0].name + "'; Undo takes it away."]
        : ["The table cannot be written beside the script. Allow scripts to write files (Preferences, Scripting & " +
            "Expressions, or General in older versions), undo, and run the script again."];
    if (problems.length > 0) {
        lines = lines.concat([""], problems);
    }
    tell(lines);
}
