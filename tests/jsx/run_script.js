// Runs one script in the stand-in for After Effects and prints what it built: run_script.js NODE_MODULES SCRIPT [FILES]. FILES is
// JSON, what is on the disk by URI. The script must be printable ASCII in the grammar of ECMAScript 3. Lone surrogates, which JSON
// texts cannot have, are printed as \udxxx with two backslashes.
"use strict";

const fs = require("fs");
const path = require("path");
const { makeHost } = require("./ae_mock.js");
const { builtProject } = require("./built_project.js");

const [modules, script, files] = process.argv.slice(2);
const acorn = require(path.join(path.resolve(modules), "acorn"));
const text = fs.readFileSync(script, "latin1");
if (/[^\n\x20-\x7e]/.test(text)) {
    throw new Error("the script is not printable ASCII");
}
acorn.parse(text, { ecmaVersion: 3, allowReserved: false });
const host = makeHost({ files: JSON.parse(files || "{}"), script: "/scripts/scene.jsx" });
host.run(text);
const changes = host.state.changes;
host.run(text);
const built = { ...builtProject(host), summary: host.state.alerts[0].split("\n"), changesOfSecondRun: host.state.changes - changes };
console.log(JSON.stringify(built).replace(/\\(?=ud[89a-f])/g, "\\\\"));
