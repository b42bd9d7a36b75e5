// Trials that do not depend on the scene: in each, one thing that After Effects may do differs from another by many
// pixels, or by a tenth of the colour's range. src/handover/proof/open_questions.cpp has what each gives.

/**
 * The places by which answers are told from each other do not depend on the scene. aim, orientation and rotateZ
 * are set where they are given; a camera that is "new" is turned as After Effects has it.
 */
var CAMERA_TRIALS = [
    {name: "aspect", width: 400, height: 400, aspect: 2, orient: "aim", position: [0, 0, 0], aim: [1000, 0, 1000],
        zoom: 1000, points: [1000, 0, 500, 1000, 300, 500]},
    {name: "bank-aimed", width: 400, height: 300, aspect: 1, orient: "aim", position: [200, 150, -1000],
        aim: [200, 150, 0], orientation: [0, 0, 30], zoom: 1000, points: [300, 150, 0, 200, 50, 0]},
    {name: "bank-one-node", width: 400, height: 300, aspect: 1, orient: "none", position: [200, 150, -1000],
        rotateZ: 30, zoom: 1000, points: [300, 150, 0, 200, 50, 0]},
    {name: "new-camera", width: 400, height: 300, aspect: 1, orient: "new", position: [200, 150, -1000],
        aim: [1200, 150, 0], zoom: 1000, points: [1200, 150, 0, 1200, 50, 0]}
];

/**
 * @param {any} one of CAMERA_TRIALS
 * @param {any} folder
 */
function cameraTrial(one, folder) {
    var composition = folder.items.addComp(one.name, one.width, one.height, one.aspect, 1, 25);
    var camera = composition.layers.addCamera(one.name, [one.width / 2, one.height / 2]);
    camera.startTime = 0;
    if (one.orient !== "new") {
        camera.autoOrient =
            one.orient === "aim" ? AutoOrientType.CAMERA_OR_POINT_OF_INTEREST : AutoOrientType.NO_AUTO_ORIENT;
    }
    propertyOf(camera, PROPERTIES.position.matchNames).setValue(one.position);
    propertyOf(camera, PROPERTIES.zoom.matchNames).setValue(one.zoom);
    if (one.aim) {
        try {
            propertyOf(camera, PROPERTIES.anchor.matchNames).setValue(one.aim);
        } catch (error) {
            // A new camera without a point of interest refuses it, and that is an answer.
            row(["note", "the camera of " + one.name + " has no point of interest"]);
        }
    }
    if (one.orientation) {
        propertyOf(camera, PROPERTIES.orientation.matchNames).setValue(one.orientation);
    }
    if (one.rotateZ) {
        propertyOf(camera, PROPERTIES.rotateZ.matchNames).setValue(one.rotateZ);
    }
    var nulls = addPoints(composition, one.points.length / 3);
    var places = landings(addAsker(composition), nulls, one.points, 0);
    for (var i = 0; i < places.length; ++i) {
        row(["trial", one.name, i, cell(places[i][0]), cell(places[i][1])]);
    }
}

/** Half of a source lies on something below it, opaque or half itself. */
var COLOR_TRIALS = [
    {name: "normal-partial", blend: "normal", below: 50},
    {name: "add-opaque", blend: "add", below: 100},
    {name: "add-partial", blend: "add", below: 50},
    {name: "multiply-partial", blend: "multiply", below: 50}
];
/** Eight bits hold each of these. */
var SOURCE_COLOR = [0.8, 0.4, 0];
var BELOW_COLOR = [0.6, 0.2, 1];
var TRIAL_SIZE = 64;

/**
 * @param {any} composition
 * @param {number[]} color
 * @param {number} coverage percent
 */
function addCoverage(composition, color, coverage) {
    var solid = composition.layers.addSolid(color, "color", composition.width, composition.height, 1, 1);
    solid.startTime = 0;
    solid.property("ADBE Transform Group").property("ADBE Opacity").setValue(coverage);
    return solid;
}

/**
 * Lays something over black and over white, and reads the opaque pictures: what is read is then premultiplied, and
 * the two differ by what is transparent.
 * @param {string} name
 * @param {any} item
 * @param {any} folder
 * @param {number[]} place
 */
function readColors(name, item, folder, place) {
    var grounds = [["black", [0, 0, 0]], ["white", [1, 1, 1]]];
    for (var i = 0; i < grounds.length; ++i) {
        var flat = folder.items.addComp(name + " over " + grounds[i][0], item.width, item.height, 1, 1, 25);
        addCoverage(flat, /** @type {any} */ (grounds[i][1]), 100);
        flat.layers.add(item).startTime = 0;
        var reader = folder.items.addComp(name + " over " + grounds[i][0] + ", read", item.width, item.height, 1, 1, 25);
        var layer = reader.layers.add(flat);
        layer.startTime = 0;
        var text = addAsker(reader);
        var color = answer(text, "var c = thisComp.layer(" + layer.index + ").sampleImage([" + place.join(",") +
            "], [0.5, 0.5], true, time); c[0] + \" \" + c[1] + \" \" + c[2];", 0)[0];
        row(["color", name, grounds[i][0], cell(color[0]), cell(color[1]), cell(color[2])]);
    }
}

/**
 * @param {any} one of COLOR_TRIALS
 * @param {any} source the item of the half source
 * @param {any} folder
 */
function colorTrial(one, source, folder) {
    var mixed = folder.items.addComp(one.name, TRIAL_SIZE, TRIAL_SIZE, 1, 1, 25);
    addCoverage(mixed, BELOW_COLOR, one.below);
    var layer = mixed.layers.add(source);
    layer.startTime = 0;
    layer.blendingMode = blendOf(one);
    readColors(one.name, mixed, folder, [TRIAL_SIZE / 2 + 0.5, TRIAL_SIZE / 2 + 0.5]);
}

/** @param {any} folder */
function colorTrials(folder) {
    var source = folder.items.addComp("half a source", TRIAL_SIZE, TRIAL_SIZE, 1, 1, 25);
    addCoverage(source, SOURCE_COLOR, 50);
    for (var i = 0; i < COLOR_TRIALS.length; ++i) {
        colorTrialAnyhow(COLOR_TRIALS[i], source, folder);
    }
}

/**
 * @param {any} one
 * @param {any} source
 * @param {any} folder
 */
function colorTrialAnyhow(one, source, folder) {
    attempt("The trial " + one.name, function () {
        colorTrial(one, source, folder);
    });
}

/** A texture as the plug-in's own reader brings it; its interpretation stays as it arrives. */
var TEXTURE = {name: "", path: "", x: 0, y: 0};

/** @param {any} folder */
function textureTrial(folder) {
    var places = [scriptFile().parent.absoluteURI + "/" + TEXTURE.name, TEXTURE.path];
    for (var i = 0; i < places.length; ++i) {
        var file = new File(places[i]);
        if (file.exists) {
            var item = app.project.importFile(new ImportOptions(file));
            item.parentFolder = folder;
            readColors("texture", item, folder, [TEXTURE.x, TEXTURE.y]);
            return;
        }
    }
    throw new Error("'" + TEXTURE.name + "' is neither beside the script nor where it was.");
}

/**
 * @param {any} one of CAMERA_TRIALS
 * @param {any} folder
 */
function cameraTrialAnyhow(one, folder) {
    attempt("The trial " + one.name, function () {
        cameraTrial(one, folder);
    });
}
