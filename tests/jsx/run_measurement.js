// Runs a script of `vxr proof --for-after-effects` in the stand-in for After Effects and writes its table:
// run_measurement.js NODE_MODULES SCRIPT RUNS, where RUNS is a JSON list of [TABLE, RULES]: the ways of ae_expressions.js,
// and for the stand-in "host" and "files". An artist's project is there before; it must be the same afterwards.
"use strict";

const fs = require("fs");
const path = require("path");
const { makeHost } = require("./ae_mock.js");
const { makeExpressions } = require("./ae_expressions.js");

const [modules, script] = process.argv.slice(2, 4);
const acorn = require(path.resolve(modules, "acorn"));
const text = fs.readFileSync(script, "latin1");

const failures = [];
function expect(what, holds) {
    if (!holds) {
        failures.push(what);
    }
}

expect("the script is printable ASCII", !/[^\n\x20-\x7e]/.test(text));
acorn.parse(text, { ecmaVersion: 3, allowReserved: false });

const ARTIST = `app.beginUndoGroup("artist"); var mine = app.project.rootFolder.items.addComp("mine", 64, 64, 1, 1, 25);
    mine.layers.addCamera("mine too", [32, 32]); mine.comment = "keep"; app.endUndoGroup();`;
const state = (items) => JSON.stringify(items.map((item) => [item.id, item.raw.name, item.raw.comment, item.parent.id,
    (item.layers || []).map((layer) => [layer.id, layer.raw.name, layer.raw.enabled])]));

function measure(table, rules, again) {
    const host = makeHost({ script: "/scripts/measure%20it.jsx", startAtTime: 1.5, files: rules.files || {}, ...rules.host,
        expressions: makeExpressions({ add: "mixed", multiply: "mixed", bank: "clockwise", textureAlpha: "premultiplied", ...rules }) });
    host.run(ARTIST);
    const before = state(host.state.items);
    host.run(text);
    expect("the artist's items are as before", state(host.state.items.slice(0, 1)) === before);
    const parents = host.state.items.slice(1).filter((item) => item.parent === host.root && !item.solid);
    expect("everything new is in one folder", parents.length === 1 && /^Measured: /.test(parents[0].raw.name));
    expect("one undo group and one summary", host.state.undo.length === 2 && host.state.alerts.length === 1);
    const written = Object.keys(host.state.written);
    if (rules.host && rules.host.writingForbidden) {
        expect("a table that cannot be written is said so", /Allow scripts to write files/.test(host.state.alerts[0]));
        return;
    }
    expect("one table beside the script", written.length === 1 && written[0] === "/scripts/measure%20it-measured.tsv");
    fs.writeFileSync(table, host.state.written[written[0]] || "");
    if (again) {
        const kept = state(host.state.items);
        host.run(text);
        expect("a second run leaves the first one's items as they are", state(host.state.items.slice(0, JSON.parse(kept).length)) === kept);
        expect("a second run gives the same table", fs.readFileSync(table, "utf8") === host.state.written[written[0]]);
    }
}

JSON.parse(process.argv[4]).forEach(([table, rules], index) => measure(table, rules, index === 0));
for (const failure of failures) {
    console.error(`${path.basename(script)}: not so: ${failure}`);
}
process.exit(failures.length > 0 ? 1 : 0);
