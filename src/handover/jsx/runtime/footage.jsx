// Footage: where it is, how it gets into the project, how it is read.

/** @type {Object<string, number>} After Effects' own label colours, as for what a person imports. */
var LABELS = {
    folder: 2, composition: 15, still: 5, sequence: 3, texture: 5, placeholder: 11,
    footage: 3, camera: 4, light: 6, "null": 1
};

/**
 * A number within what After Effects takes.
 * @param {string} what
 * @param {number} value
 * @param {number} least
 * @param {number} most
 */
function within(what, value, least, most) {
    if (value >= least && value <= most) {
        return value;
    }
    var taken = value < least ? least : most;
    problem(what + " is " + value + ", and After Effects takes " + least + " to " + most + "; " + taken + " is used.");
    return taken;
}

/**
 * The footage's file: beside the script, in the same place relative to it, or where it was.
 * @param {FootageFacts} facts
 * @returns {File | null}
 */
function findFile(facts) {
    var here = scriptFile().parent.absoluteURI + "/";
    var places = [];
    if (facts.name) {
        places.push(here + facts.name);
    }
    if (facts.near) {
        places.push(here + facts.near);
    }
    if (facts.path) {
        places.push(facts.path);
    }
    for (var i = 0; i < places.length; ++i) {
        var file = new File(places[i]);
        if (file.exists) {
            return file;
        }
    }
    return null;
}

/**
 * @param {SceneItem} one
 * @param {File} file
 * @returns {any} the item
 */
function importFile(one, file) {
    var options = new ImportOptions(file);
    if (one.kind === "sequence") {
        options.sequence = true;
        options.forceAlphabetical = false;
        if (!one.footage.whole) {
            askForRange(options, one.footage);
        }
    } else {
        options.sequence = false;
    }
    return app.project.importFile(options);
}

/**
 * Older versions do not know these; how many frames they took is seen afterwards.
 * @param {any} options
 * @param {FootageFacts} facts
 */
function askForRange(options, facts) {
    try {
        options.rangeStart = facts.first;
        options.rangeEnd = facts.last;
    } catch (error) {
        return;
    }
}

/**
 * @param {SceneItem} one
 * @returns {{name: string, width: number, height: number, rate: number, seconds: number}}
 */
function placeholderSize(one) {
    var facts = one.footage;
    var rate = within("The rate of '" + one.name + "'", facts.rate > 0 ? facts.rate : SCENE.rate, 1, 99);
    var count = facts.frames > 0 ? facts.frames : SCENE.to - SCENE.from + 1;
    return {
        name: one.name,
        width: within("The width of '" + one.name + "'", facts.width, 4, 30000),
        height: within("The height of '" + one.name + "'", facts.height, 4, 30000),
        rate: rate,
        seconds: within("The length of '" + one.name + "' in seconds", Math.max(count, 1) / rate, 0, 10800)
    };
}

/**
 * @param {SceneItem} one
 * @returns {any} the item
 */
function importPlaceholder(one) {
    var size = placeholderSize(one);
    try {
        return app.project.importPlaceholder(size.name, size.width, size.height, size.rate, size.seconds);
    } catch (error) {
        // Some versions limit the length of this name, but not of the item's.
        var made =
            app.project.importPlaceholder(size.name.substr(0, 31), size.width, size.height, size.rate, size.seconds);
        made.name = size.name;
        return made;
    }
}

/**
 * @param {SceneItem} one
 * @returns {any} the item
 */
function importFootage(one) {
    var file = one.kind === "placeholder" ? findFile(one.footage) : requireFile(one);
    if (file) {
        try {
            return importFile(one, file);
        } catch (error) {
            problem("'" + one.name + "' cannot be read: " + reason(error) + " A placeholder stands in.");
        }
    }
    return importPlaceholder(one);
}

/** @param {SceneItem} one */
function requireFile(one) {
    var file = findFile(one.footage);
    if (!file) {
        problem("'" + one.name + "' is neither beside the script nor where it was. A placeholder stands in.");
    }
    return file;
}

/**
 * Swaps the file of an item that an earlier run made. Layers, effects and masks stay as they are.
 * @param {SceneItem} one
 */
function replaceFootage(one) {
    var item = one.made;
    var file = one.kind === "placeholder" ? findFile(one.footage) : requireFile(one);
    if (!file) {
        if (!(item.mainSource instanceof FileSource)) {
            var size = placeholderSize(one);
            item.replaceWithPlaceholder(size.name.substr(0, 31), size.width, size.height, size.rate, size.seconds);
        }
        return;
    }
    if (one.kind === "sequence") {
        item.replaceWithSequence(file, false);
    } else {
        item.replace(file);
    }
}

/**
 * Whether footage that an earlier run did not find is there now.
 * @param {SceneItem} one
 */
function footageAppeared(one) {
    var item = one.found;
    return Boolean((item.footageMissing || !(item.mainSource instanceof FileSource)) && findFile(one.footage));
}

/**
 * By how many frames the host's first file is later than the one that the scene asked for: hosts that do not
 * know ranges take every file that is there. Their names for sequences have the numbers, "shot.[0017-0024].png".
 * @param {SceneItem} one
 */
function firstFileShift(one) {
    var facts = one.footage;
    if (!facts || one.kind !== "sequence" || facts.whole || !(one.made.mainSource instanceof FileSource)) {
        return 0;
    }
    var count = Math.round(one.made.duration * one.made.frameRate);
    if (count === facts.last - facts.first + 1) {
        return 0;
    }
    var match = /\[(\d+)-(\d+)\]/.exec(one.made.name);
    if (!match) {
        problem("'" + one.name + "' has " + count + " frames instead of " + (facts.last - facts.first + 1) +
            "; check at which frame it starts.");
        return 0;
    }
    return Number(match[1]) - facts.first;
}

/** @param {SceneItem} one */
function interpret(one) {
    var facts = one.footage;
    var item = one.made;
    var source = item.mainSource;
    var name = "'" + one.name + "'";
    if (source.hasAlpha) {
        attempt("The alpha of " + name, function () {
            if (facts.alpha === "ignored") {
                source.alphaMode = AlphaMode.IGNORE;
            } else if (facts.alpha === "straight") {
                source.alphaMode = AlphaMode.STRAIGHT;
            } else if (facts.alpha === "premultiplied") {
                source.alphaMode = AlphaMode.PREMULTIPLIED;
                source.premulColor =
                    [facts.premultipliedWith[0], facts.premultipliedWith[1], facts.premultipliedWith[2]];
            }
        });
    }
    // Stills refuse these two.
    if (!source.isStill) {
        attempt("The fields of " + name, function () {
            source.fieldSeparationType = facts.fields === "upper" ? FieldSeparationType.UPPER_FIELD_FIRST
                : facts.fields === "lower" ? FieldSeparationType.LOWER_FIELD_FIRST : FieldSeparationType.OFF;
        });
        if (one.kind === "sequence" && facts.rate > 0) {
            attempt("The rate of " + name, function () {
                source.conformFrameRate = facts.rate;
            });
        }
    }
    attempt("The pixel aspect of " + name, function () {
        item.pixelAspect = facts.aspect;
    });
}
