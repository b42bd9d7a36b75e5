// The run: look what is there, ask if that is wanted, then make and change.

/** Facts of the scene as a whole; set by the calls after the runtime. */
var SCENE = {name: "", from: 0, to: 0, start: 0, rate: 25, undoSafe: false};

/**
 * @param {SceneItem} one
 * @returns {Object<string, string>}
 */
function itemMarks(one) {
    /** @type {Object<string, string>} */
    var marks = {name: sum(one.name)};
    if (one.footage) {
        var facts = one.footage;
        marks.file = sum([one.kind, facts.name, facts.near, facts.path, facts.first, facts.last, facts.whole,
            facts.width, facts.height, facts.frames].join("|"));
        marks.settings = sum([facts.alpha, facts.premultipliedWith.join(), facts.fields, facts.rate,
            facts.aspect].join("|"));
    }
    if (one.composition) {
        var size = one.composition;
        marks.settings = sum([size.width, size.height, size.aspect, size.frames, size.rate].join("|"));
        marks.range = sum([SCENE.start, SCENE.from, SCENE.to].join("|"));
    }
    return marks;
}

/** @typedef {{layers: number, newLayers: number, changedLayers: number, newItems: number, changedItems: number,
 *     touched: string[]}} Plan */

/**
 * Compares the scene with what is there, and changes nothing.
 * @returns {Plan}
 */
function makePlan() {
    var made = findMade();
    /** @type {Plan} */
    var plan = {layers: 0, newLayers: 0, changedLayers: 0, newItems: 0, changedItems: 0, touched: []};
    for (var i = 0; i < items.length; ++i) {
        planItem(items[i], made, plan);
    }
    for (var k = 0; k < items.length; ++k) {
        for (var n = 0; n < items[k].layers.length; ++n) {
            planLayer(items[k].layers[n], items[k], made, plan);
        }
    }
    return plan;
}

/**
 * @param {SceneItem} one
 * @param {Made} made
 * @param {Plan} plan
 */
function planItem(one, made, plan) {
    one.found = made.items[one.id] || null;
    one.marks = itemMarks(one);
    one.changes = [];
    if (!one.found) {
        ++plan.newItems;
        plan.touched.push("new: '" + one.name + "' in the project window");
        return;
    }
    one.changes = differences(one.marks, tokenIn(String(one.found.comment)));
    if (one.footage && !contains(one.changes, "file") && footageAppeared(one)) {
        one.changes.push("file");
    }
    if (one.changes.length > 0) {
        ++plan.changedItems;
        plan.touched.push("changed: '" + one.found.name + "' in the project window (" + one.changes.join(", ") + ")");
    }
}

/**
 * @param {SceneLayer} one
 * @param {SceneItem} composition
 * @param {Made} made
 * @param {Plan} plan
 */
function planLayer(one, composition, made, plan) {
    ++plan.layers;
    one.found = madeLayer(made, one.id, composition.found);
    one.changes = [];
    if (!one.found) {
        ++plan.newLayers;
        plan.touched.push("new: the layer '" + one.name + "' in '" + composition.name + "'");
        return;
    }
    one.changes = differences(layerMarks(one), tokenIn(String(one.found.comment)));
    if (one.changes.length > 0) {
        ++plan.changedLayers;
        plan.touched.push("changed: the layer '" + one.found.name + "' in '" + one.found.containingComp.name + "' (" +
            one.changes.join(", ") + ")");
    }
}

/**
 * @param {SceneItem} one
 * @returns {any} the project's item for the folder around it
 */
function folderOf(one) {
    return one.folder >= 0 && items[one.folder].made ? items[one.folder].made : app.project.rootFolder;
}

/** @param {SceneItem} one */
function makeComposition(one) {
    var size = one.composition;
    var name = "'" + one.name + "'";
    var rate = within("The rate of " + name, size.rate, 1, 99);
    return folderOf(one).items.addComp(one.name, within("The width of " + name, size.width, 4, 30000),
        within("The height of " + name, size.height, 4, 30000),
        within("The pixel aspect of " + name, size.aspect, 0.01, 100),
        within("The length of " + name + " in seconds", size.frames / rate, 0, 10800), rate);
}

/** @param {SceneItem} one */
function changeComposition(one) {
    var size = one.composition;
    var item = one.made;
    attempt("The settings of '" + one.name + "'", function () {
        item.width = size.width;
        item.height = size.height;
        item.pixelAspect = size.aspect;
        item.frameRate = size.rate;
        item.duration = size.frames / size.rate;
    });
}

/**
 * Marks FROM and TO, where the host's compositions have markers.
 * @param {SceneItem} one
 */
function markRange(one) {
    var markers = one.made.markerProperty;
    if (!markers) {
        return;
    }
    for (var old = markers.numKeys; old >= 1; --old) {
        if (/^(FROM|TO) -?\d+$/.test(markers.keyValue(old).comment)) {
            markers.removeKey(old);
        }
    }
    var rate = one.made.frameRate;
    if (SCENE.from === SCENE.to) {
        // One frame holds one marker.
        markers.setValueAtTime(SCENE.start / rate, new MarkerValue("FROM " + SCENE.from));
        return;
    }
    markers.setValueAtTime(SCENE.start / rate, new MarkerValue("FROM " + SCENE.from));
    markers.setValueAtTime((SCENE.start + SCENE.to - SCENE.from) / rate, new MarkerValue("TO " + SCENE.to));
}

/** @param {SceneItem} one */
function buildItem(one) {
    var isNew = !one.found;
    var token = isNew ? null : tokenIn(String(one.found.comment));
    if (isNew) {
        if (one.kind === "folder") {
            one.made = folderOf(one).items.addFolder(one.name);
        } else if (one.composition) {
            one.made = makeComposition(one);
        } else {
            one.made = importFootage(one);
            one.made.parentFolder = folderOf(one);
        }
        keepToken(one.made, one.id, {});
        one.made.label = LABELS[one.footage && !(one.made.mainSource instanceof FileSource) ? "placeholder" : one.kind];
    } else {
        one.made = one.found;
        if (one.changes.length === 0) {
            one.shift = firstFileShift(one);
            return;
        }
    }
    if (!isNew && contains(one.changes, "name") && !one.footage) {
        rename(one.made, one.name, token);
    }
    if (!isNew && contains(one.changes, "file")) {
        replaceFootage(one);
    }
    if (one.footage && (isNew || contains(one.changes, "settings") || contains(one.changes, "file"))) {
        interpret(one);
    }
    if (one.composition && !isNew && contains(one.changes, "settings")) {
        changeComposition(one);
    }
    if (one.composition && (isNew || contains(one.changes, "range"))) {
        attempt("The markers of '" + one.name + "'", function () {
            markRange(one);
        });
    }
    one.shift = firstFileShift(one);
    one.marks.named = sum(one.made.name);
    keepToken(one.made, one.id, one.marks);
}

/** @param {SceneItem} one */
function buildItemAnyhow(one) {
    attempt("'" + one.name + "'", function () {
        buildItem(one);
    });
}

/**
 * The layers of one composition, from the lowest up: the host puts a new layer on top.
 * @param {SceneItem} one
 * @param {function(): void} step
 */
function buildLayers(one, step) {
    /** @type {any} */
    var below = null;
    for (var i = one.layers.length - 1; i >= 0; --i) {
        var layer = one.layers[i];
        step();
        if (!layer.found || layer.changes.length > 0 || hasOtherFirstFile(layer)) {
            buildLayerAnyhow(layer, one, below);
        }
        below = layer.found || below;
    }
}

/**
 * @param {SceneLayer} layer
 * @param {SceneItem} one
 * @param {any} below
 */
function buildLayerAnyhow(layer, one, below) {
    attempt("The layer '" + layer.name + "'", function () {
        if (!one.made) {
            throw new Error("its composition could not be made.");
        }
        buildLayer(layer, one.made, below);
    });
}

/** @param {Plan} plan */
function buildAll(plan) {
    var done = 0;
    var progress = showProgress(plan.layers);
    try {
        for (var i = 0; i < items.length; ++i) {
            buildItemAnyhow(items[i]);
        }
        for (var k = 0; k < items.length; ++k) {
            buildLayers(items[k], function () {
                progress.step(++done);
            });
        }
    } finally {
        progress.close();
    }
}

/**
 * @param {Plan} plan
 * @returns {string[]}
 */
function summaryLines(plan) {
    var lines = [];
    if (plan.newItems === items.length && plan.newLayers === plan.layers) {
        lines.push("'" + SCENE.name + "' has arrived: " + items.length + " items, " + plan.layers + " layers.");
    } else if (plan.touched.length === 0) {
        lines.push("'" + SCENE.name + "' has not changed: 0 of " + plan.layers + " layers.");
    } else {
        lines.push("'" + SCENE.name + "': " + plan.changedLayers + " of " + plan.layers + " layers changed, " +
            plan.newLayers + " are new; " + plan.changedItems + " of " + items.length + " items changed, " +
            plan.newItems + " are new.");
        lines = lines.concat(plan.touched);
    }
    if (problems.length > 0) {
        lines.push("");
        lines = lines.concat(problems);
    }
    return lines;
}

/**
 * Names what will be touched, and asks.
 * @param {Plan} plan
 */
function mayTouch(plan) {
    if (!SCENE.undoSafe || plan.touched.length === 0) {
        return true;
    }
    if (!hasWindow()) {
        tell(["Nothing is touched: the script was written to ask first, and nobody is there to answer. It would touch:"]
            .concat(plan.touched));
        return false;
    }
    return confirm("This will touch:\n" + forDialog(plan.touched, "-plan.txt"), false, SCENE.name);
}

function rebuild() {
    if (!app.project) {
        app.newProject();
    }
    var plan = makePlan();
    if (!mayTouch(plan)) {
        return;
    }
    app.beginUndoGroup("Import " + SCENE.name);
    app.beginSuppressDialogs();
    try {
        buildAll(plan);
    } catch (error) {
        problem("The import broke off: " + reason(error));
    } finally {
        app.endSuppressDialogs(false);
        app.endUndoGroup();
    }
    tell(summaryLines(plan));
}
