// What a person is told: progress while it runs, and one summary at the end.

/** Layers, from which on a palette shows the progress. */
var PALETTE_FROM = 200;
/** Lines that fit into a dialog. */
var DIALOG_LINES = 30;

/** @param {string} text */
function problem(text) {
    problems[problems.length] = text;
}

/** @param {any} error */
function reason(error) {
    return error && error.message ? String(error.message) : String(error);
}

/**
 * Runs a step of which the rest does not depend; what it throws becomes a line of the summary.
 * @param {string} what
 * @param {function(): void} step
 * @returns {boolean} whether it went well
 */
function attempt(what, step) {
    try {
        step();
        return true;
    } catch (error) {
        problem(what + ": " + reason(error));
        return false;
    }
}

/** The script's own file. */
function scriptFile() {
    return new File($.fileName);
}

/** Whether somebody sits before a window. */
function hasWindow() {
    return !app.isRenderEngine;
}

/**
 * Writes a text beside the script.
 * @param {string} ending of the file's name
 * @param {string[]} lines
 * @returns {string} the file's path; empty if it cannot be written, as scripts may be forbidden to
 */
function writeBeside(ending, lines) {
    try {
        var own = scriptFile();
        var file = new File(own.parent.absoluteURI + "/" + own.name.replace(/\.jsx$/i, "") + ending);
        file.encoding = "UTF-8";
        if (!file.open("w")) {
            return "";
        }
        var written = file.write(lines.join("\n") + "\n");
        return file.close() && written ? file.fsName : "";
    } catch (error) {
        return "";
    }
}

/**
 * The lines that fit into a dialog. All of them go into a file beside the script if they do not.
 * @param {string[]} lines
 * @param {string} ending of that file's name
 */
function forDialog(lines, ending) {
    if (lines.length <= DIALOG_LINES) {
        return lines.join("\n");
    }
    var file = writeBeside(ending, lines);
    return lines.slice(0, DIALOG_LINES).join("\n") + "\n... and " + (lines.length - DIALOG_LINES) + " more lines" +
        (file ? ", in " + file : "");
}

/** @param {string[]} lines */
function tell(lines) {
    if (!hasWindow()) {
        if (!writeBeside("-summary.txt", lines)) {
            $.writeln(lines.join("\n"));
        }
        return;
    }
    alert(forDialog(lines, "-summary.txt"), SCENE.name);
}

/** @typedef {{step: function(number): void, close: function(): void}} Progress */

/**
 * @param {number} count of the layers
 * @returns {Progress}
 */
function showProgress(count) {
    /** @type {any} */
    var palette = null;
    /** @type {any} */
    var bar = null;
    if (count > PALETTE_FROM && hasWindow()) {
        try {
            palette = new Window("palette", SCENE.name);
            bar = palette.add("progressbar", undefined, 0, count);
            palette.show();
        } catch (error) {
            palette = null;  // a host without palettes imports all the same
        }
    }
    return {
        step: function (done) {
            if (palette && done % 20 === 0) {
                bar.value = done;
                palette.update();
            }
        },
        close: function () {
            if (palette) {
                palette.close();
            }
        }
    };
}
