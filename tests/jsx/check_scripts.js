// Runs every script of a folder in the stand-in for After Effects, twice: check_scripts.js NODE_MODULES FOLDER. FOLDER has a list
// "scenes.txt" of the scenes' files, a line each, and for each SCENE.aec
//     imported/SCENE.jsx    is compared with the project of the embedded host,
//     projects/SCENE.json   of `vxr import --json`;
//     corrected/SCENE.jsx   builds what is written to corrected/SCENE.json, for corrected_project.py.
"use strict";

const fs = require("fs");
const path = require("path");
const { makeHost } = require("./ae_mock.js");
const { builtProject } = require("./built_project.js");
const { differences } = require("./imported_project.js");

const [modules, folder] = process.argv.slice(2).map((one) => path.resolve(one));
const acorn = require(path.join(modules, "acorn"));

const uri = (file) => file.split("/").map((part) => encodeURIComponent(part).replace(/[!'()*]/g, (c) => "%" + c.charCodeAt(0).toString(16).toUpperCase())).join("/");

// What is on the disk around the scene; sizes and alpha are those that the embedded host read from the files.
function filesAround(scene, project) {
    const files = {};
    const walk = (at) => {
        for (const entry of fs.readdirSync(at, { withFileTypes: true })) {
            const full = path.join(at, entry.name);
            if (entry.isDirectory()) {
                walk(full);
            } else {
                files[uri(full)] = { width: 64, height: 48, alpha: false };
            }
        }
    };
    walk(path.dirname(scene));
    for (const footage of project.footage) {
        if (footage.kind !== "placeholder" && typeof footage.path === "string") {
            files[uri(footage.path)] = { width: footage.width, height: footage.height, alpha: footage.has_alpha };
        }
    }
    return files;
}

// Runs one script twice. `compare` adds what is wrong with the project after the first run.
function runTwice(scene, project, name, compare) {
    const text = fs.readFileSync(path.join(folder, name), "latin1");
    const failures = [];
    if (/[^\n\x20-\x7e]/.test(text)) {
        failures.push("the script is not printable ASCII");
    }
    acorn.parse(text, { ecmaVersion: 3, allowReserved: false });
    const host = makeHost({ files: filesAround(scene, project), script: uri(path.join(folder, name)), startAtTime: 1.5 });
    host.run(text);
    compare(host, failures);
    if (host.state.undo.length !== 1 || host.state.alerts.length !== 1) {
        failures.push(`${host.state.undo.length} undo groups and ${host.state.alerts.length} summaries, not one of each`);
    }
    const refused = host.state.alerts[0].split("\n").filter((line) => /After Effects error|has no member|is not a|hidden/.test(line));
    failures.push(...refused.map((line) => "refused: " + line));
    const before = host.state.changes;
    host.run(text);
    if (host.state.changes !== before || !/has not changed: 0 of/.test(host.state.alerts[1])) {
        failures.push(`the second run made ${host.state.changes - before} changes: ${host.state.alerts[1]}`);
    }
    return failures.map((failure) => `${name}: ${failure}`);
}

function check(scene) {
    const stem = path.basename(scene, ".aec");
    const project = JSON.parse(fs.readFileSync(path.join(folder, "projects", stem + ".json"), "utf8"));
    return [
        ...runTwice(scene, project, `imported/${stem}.jsx`, (host, failures) => failures.push(...differences(host, project).slice(0, 10))),
        ...runTwice(scene, project, `corrected/${stem}.jsx`, (host) =>
            fs.writeFileSync(path.join(folder, "corrected", stem + ".json"), JSON.stringify(builtProject(host)))),
    ];
}

const scenes = fs.readFileSync(path.join(folder, "scenes.txt"), "utf8").split("\n").filter(Boolean);
let failed = 0;
for (const scene of scenes) {
    let failures;
    try {
        failures = check(scene);
    } catch (error) {
        failures = [String(error.stack)];
    }
    if (failures.length > 0) {
        ++failed;
        console.error([scene, ...failures].join("\n    "));
    }
}
console.log(`${scenes.length - failed} of ${scenes.length} scripts built the project that the plug-in builds`);
process.exit(failed > 0 || scenes.length === 0 ? 1 : 0);
