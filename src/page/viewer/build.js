// Builds the viewer: style, script, the worker's script and the program into viewer.html, with the hashes by which browsers
// know them.
// node build.js PACKAGES PROGRAM VERSION OUT, where PROGRAM.js and PROGRAM.wasm are what Emscripten made
import { createHash } from "node:crypto";
import { readFileSync, writeFileSync } from "node:fs";
import { createRequire } from "node:module";
import { join, resolve } from "node:path";
import { gzipSync } from "node:zlib";

const [packages, program, version, out] = process.argv.slice(2);
const esbuild = createRequire(join(packages, "..", "package.json"))("esbuild");
const here = import.meta.dirname;

function bundle(entry, more) {
    const result = esbuild.buildSync({
        entryPoints: [join(here, entry)],
        bundle: true,
        minify: true,
        write: false,
        charset: "ascii",
        target: ["chrome100", "firefox113", "safari16.4"],
        nodePaths: [packages],
        alias: { vxr_viewer: `${resolve(program)}.js` },
        // Emscripten's script asks for files of node where it runs in node.
        external: ["fs", "path"],
        legalComments: "none",
        logLevel: "error",
        ...more,
    });
    return result.outputFiles[0].text.trim();
}

const hash = (text) => "sha256-" + createHash("sha256").update(text).digest("base64");
/** Licences stay with the code that they are about. */
const licences = (names) =>
    `/*!\n${names.map((name) => `${name}\n${readFileSync(join(packages, name, "LICENSE"), "utf8").trim()}`).join("\n\n")}\n*/`
        .replaceAll("\u00a9", "(c)")
        .replace(/[^\x00-\x7f]/g, "?");

/** Of the libraries in the program, which come from Debian's packages. */
const programLicences = ["libcli11-dev", "nlohmann-json3-dev", "libtomlplusplus-dev", "libpugixml-dev", "libfmt-dev", "libfast-float-dev"]
    .map((name) => `${name}\n${readFileSync(`/usr/share/doc/${name}/copyright`, "utf8").trim()}`)
    .join("\n\n");
const inComment = (text) => `/*!\n${text.replaceAll("*/", "* /")}\n*/`.replace(/[^\x00-\x7f]/g, "?");

const style = bundle("viewer.css", {});
const script = bundle("main.ts", { format: "iife", banner: { js: licences(["three"]) } });
const worker = bundle("worker.ts", {
    format: "iife",
    banner: { js: `${inComment(programLicences)}\n${licences(["@lunapaint/tga-codec", "fast-png", "fflate", "iobuffer", "pako", "utif2"])}` },
}).replaceAll(/<(\/script|!--)/gi, "\\x3c$1");
const filled = {
    STYLE: style,
    STYLE_HASH: hash(style),
    SCRIPT: script,
    SCRIPT_HASH: hash(script),
    WORKER: worker,
    PROGRAM: gzipSync(readFileSync(`${program}.wasm`), { level: 9 }).toString("base64"),
    VERSION: version,
};
const page = readFileSync(join(here, "viewer.html"), "utf8").replace(/@([A-Z_]+)@/g, (_, name) => filled[name]);
for (const [fault, found] of [
    ["a script or style that ends its own element", /<\/(script|style)/i.test(style + script + worker)],
    ["a mark of the page in a script", /<!--/.test(style + script + worker)],
    ["something other than ASCII", /[^\x00-\x7f]/.test(page)],
]) {
    if (found) {
        throw new Error(`the viewer has ${fault}`);
    }
}
writeFileSync(out, page);
