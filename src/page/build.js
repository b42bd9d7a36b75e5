// Builds the page: style and script, each one line, into page.html, with the hashes by which browsers know them.
// node build.js PACKAGES OUT
import { createHash } from "node:crypto";
import { readFileSync, writeFileSync } from "node:fs";
import { createRequire } from "node:module";
import { join } from "node:path";

const [packages, out] = process.argv.slice(2);
const esbuild = createRequire(join(packages, "..", "package.json"))("esbuild");
const here = import.meta.dirname;

/** The licence stays with the code that it is about. */
const licence = readFileSync(join(packages, "three/LICENSE"), "utf8").trim().replaceAll("\u00a9", "(c)");

function bundle(entry, more) {
    const result = esbuild.buildSync({
        entryPoints: [join(here, entry)],
        bundle: true,
        minify: true,
        write: false,
        charset: "ascii",
        target: ["chrome100", "firefox100", "safari15.4"],
        nodePaths: [packages],
        legalComments: "none",
        logLevel: "warning",
        ...more,
    });
    return result.outputFiles[0].text.trim();
}

const hash = (text) => "sha256-" + createHash("sha256").update(text).digest("base64");

const style = bundle("page.css", {});
const script = bundle("main.ts", {
    format: "iife",
    banner: { js: `/*!\nthree.js\n${licence}\n*/` },
});
const filled = { STYLE: style, STYLE_HASH: hash(style), SCRIPT: script, SCRIPT_HASH: hash(script) };
const page = readFileSync(join(here, "page.html"), "utf8").replace(/@([A-Z_]+)@/g, (_, name) => filled[name]);

for (const [fault, found] of [
    ["a script or style that ends its own element", /<\/(script|style)/i.test(style + script)],
    ["something other than ASCII", /[^\x00-\x7f]/.test(page)],
    ["the end of the literal that holds it", page.includes(')page"')],
    ["a mark of the page in a script", /<!--/.test(style + script)],
]) {
    if (found) {
        throw new Error(`the page has ${fault}`);
    }
}
writeFileSync(out, page);
