#!/usr/bin/env node
// Opens the viewer in headless Chromium, drops files on it, and compares what it shows with the native program.
//
// viewer_test.mjs PAGE VXR BUNDLE CHROMIUM PROJECT
import assert from "node:assert/strict";
import { spawnSync } from "node:child_process";
import { copyFileSync, mkdirSync, mkdtempSync, readdirSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import { createRequire } from "node:module";
import { tmpdir } from "node:os";
import { basename, dirname, join, relative, resolve } from "node:path";
import { inflateSync } from "node:zlib";

const [viewer, vxr, bundle, chromium, project] = process.argv.slice(2).map((one) => resolve(one));
const require = createRequire(join(project, "build/npm/package.json"));
const playwright = require("playwright-core");

const folder = mkdtempSync(join(tmpdir(), "vxr-viewer-"));
const failures = [];
let checks = 0;

async function check(name, work) {
    checks += 1;
    try {
        await work();
    } catch (error) {
        failures.push(`${name}: ${error.stack ?? error}`);
    }
}

function native(...list) {
    const run = spawnSync(vxr, list, { encoding: "utf8", maxBuffer: 1 << 28 });
    assert.notEqual(run.status, null, `vxr ${list.join(" ")}: ${run.error}`);
    return run;
}

/** The pixels of a PNG of 8 bits a channel, by the format's description: neither program's own reader. */
function pixelsOf(png) {
    const width = png.readUInt32BE(16);
    const height = png.readUInt32BE(20);
    assert.equal(png[24], 8, "8 bits");
    const channels = { 0: 1, 2: 3, 4: 2, 6: 4 }[png[25]];
    assert.equal(png[28], 0, "not interlaced");
    const parts = [];
    for (let at = 8; at < png.length; at += png.readUInt32BE(at) + 12) {
        if (png.toString("latin1", at + 4, at + 8) === "IDAT") {
            parts.push(png.subarray(at + 8, at + 8 + png.readUInt32BE(at)));
        }
    }
    const raw = inflateSync(Buffer.concat(parts));
    const row = width * channels;
    assert.equal(raw.length, (row + 1) * height, "all rows");
    const pixels = Buffer.alloc(row * height);
    for (let y = 0; y < height; y += 1) {
        const filter = raw[y * (row + 1)];
        for (let x = 0; x < row; x += 1) {
            const at = y * row + x;
            const a = x >= channels ? pixels[at - channels] : 0;
            const b = y > 0 ? pixels[at - row] : 0;
            const c = x >= channels && y > 0 ? pixels[at - row - channels] : 0;
            const p = a + b - c;
            const [pa, pb, pc] = [Math.abs(p - a), Math.abs(p - b), Math.abs(p - c)];
            const paeth = pa <= pb && pa <= pc ? a : pb <= pc ? b : c;
            pixels[at] = raw[y * (row + 1) + 1 + x] + [0, a, b, (a + b) >> 1, paeth][filter];
        }
    }
    return { width, height, channels, pixels };
}

async function open(browser, { theme = "light", width = 1200, height = 900 } = {}) {
    const context = await browser.newContext({ viewport: { width, height }, colorScheme: theme, acceptDownloads: true });
    const page = await context.newPage();
    page.said = [];
    page.asked = [];
    page.on("console", (message) => page.said.push(message.text()));
    page.on("pageerror", (error) => page.said.push(String(error)));
    page.on("request", (request) => {
        if (!/^(data|blob):/.test(request.url())) {
            page.asked.push(request.url());
        }
    });
    await page.goto(`file://${viewer}`);
    return page;
}

async function close(page) {
    assert.deepEqual(page.said, [], "the console is silent");
    assert.equal(page.asked.length, 1, `one request, for the page itself: ${page.asked.slice(1)}`);
    await page.context().close();
}

const settled = (page) => page.waitForFunction(() => document.getElementById("working").hidden && document.getElementById("status").textContent !== "");

async function drop(page, paths) {
    await page.evaluate(() => {
        document.getElementById("status").textContent = "";
    });
    await page.locator("#files").setInputFiles(paths);
    await settled(page);
}

async function dropFolder(page, path) {
    await page.evaluate(() => {
        document.getElementById("status").textContent = "";
    });
    await page.locator("#folder").setInputFiles(path);
    await settled(page);
    const more = page.getByRole("button", { name: /^Show more/ });
    while ((await more.filter({ visible: true }).count()) > 0) {
        await more.filter({ visible: true }).first().click();
    }
}

async function choose(page, name) {
    await page.getByRole("button", { name, exact: true }).click();
    await page.waitForFunction((wanted) => document.querySelector(".item h2")?.textContent === wanted, name);
    await settled(page);
}

async function saved(page) {
    const [download] = await Promise.all([page.waitForEvent("download"), page.getByRole("button", { name: "Save as PNG" }).click()]);
    return pixelsOf(readFileSync(await download.path()));
}

/** Every texture, its colour and each of its alpha channels. */
async function samePixels(browser, textures) {
    const page = await open(browser);
    await drop(page, textures);
    let compared = 0;
    for (const path of textures) {
        const name = basename(path);
        await choose(page, name);
        const facts = JSON.parse(native("texture", "info", "--json", path).stdout);
        const alphas = facts.files[0].alphas.length;
        for (let alpha = 0; alpha <= alphas; alpha += 1) {
            const wanted = join(folder, `${name}.${alpha}.png`);
            const run = native("texture", "convert", path, "--alpha", alpha === 0 ? "none" : String(alpha), "-o", wanted);
            assert.equal(run.status, 0, run.stderr);
            if (alphas > 0) {
                await page.locator(".controls select").selectOption({ index: alpha === 0 ? 0 : 3 * alpha - 1 });
            }
            const [mine, theirs] = [await saved(page), pixelsOf(readFileSync(wanted))];
            assert.deepEqual([mine.width, mine.height, mine.channels], [theirs.width, theirs.height, theirs.channels], `${name} ${alpha}`);
            assert.ok(mine.pixels.equals(theirs.pixels), `the pixels of ${name} with alpha ${alpha}`);
            compared += 1;
        }
    }
    console.log(`${compared} pictures of ${textures.length} textures have the native program's pixels`);
    await close(page);
}

/** The document behind a button of the page. */
async function savedDocument(page, what) {
    const [download] = await Promise.all([
        page.waitForEvent("download", { timeout: 8000 }),
        page.getByRole("button", { name: `Save the ${what} as JSON` }).click(),
    ]);
    return readFileSync(await download.path(), "utf8");
}

/** The page's documents about every scene and texture below a folder are the native program's, byte for byte. */
async function sameDocuments(browser, dropped) {
    const page = await open(browser);
    await dropFolder(page, dropped);
    const above = dirname(dropped);
    const said = (list) => {
        const run = spawnSync(vxr, list, { encoding: "utf8", maxBuffer: 1 << 28, cwd: above });
        assert.notEqual(run.status, null, `vxr ${list.join(" ")}: ${run.error}`);
        return run.stdout.replaceAll(`${above}/`, "/dropped/");
    };
    const different = [];
    let compared = 0;
    const compare = async (path, what, list) => {
        const mine = await savedDocument(page, what).catch((error) => assert.fail(`${what} of ${path}: ${error}`));
        const theirs = said(list);
        compared += 1;
        if (mine !== theirs) {
            const [a, b] = [mine.split("\n"), theirs.split("\n")];
            const at = a.findIndex((line, i) => line !== b[i]);
            different.push(`${what} of ${path}, line ${at + 1}: the page says ${a[at]}, the native program ${b[at]}`);
        }
    };
    for (const file of inFolder(dropped, /\.(aec|txl)$/)) {
        const path = relative(above, file);
        await choose(page, path).catch((error) => assert.fail(`${path}: ${error}`));
        if (path.endsWith(".txl")) {
            await compare(path, "check", ["texture", "check", "--json", "--", path]);
        } else {
            await compare(path, "check", ["check", "--json", "--", path]);
            await compare(path, "project", ["import", "--json", "--bundle", bundle, "--", path]);
        }
    }
    console.log(`${compared - different.length} of ${compared} documents about ${basename(dropped)} are the native program's`);
    assert.deepEqual(different, []);
    assert.ok(compared > 0);
    await close(page);
}

/** Fuzz inputs under names of scenes and textures. */
function fuzzFiles() {
    const into = join(folder, "fuzz");
    mkdirSync(into);
    const take = (target, extension, most) => {
        const from = join(project, "fuzz/corpus", target);
        for (const name of readdirSync(from).sort().slice(0, most)) {
            copyFileSync(join(from, name), join(into, `${target}_${name}${extension}`));
        }
    };
    for (const [target, most] of [["composition", 22], ["import", 37], ["handover", 9], ["tokenizer", 80]]) {
        take(target, ".aec", most);
    }
    for (const [target, most] of [["bitmap", 12], ["texture", 13], ["oiio_reader", 13], ["hyper_file", 14]]) {
        take(target, ".txl", most);
    }
    assert.equal(readdirSync(into).length, 200);
    return into;
}

/** The examples cut, with bits flipped and with pieces doubled; the same files in every run. */
function damagedFiles() {
    const into = join(folder, "damaged");
    mkdirSync(into);
    const sources = inFolder(join(project, "examples"), /\.(aec|txl)$/);
    let state = 20;
    const random = (below) => {
        state = (Math.imul(state, 1664525) + 1013904223) >>> 0;
        return Math.floor((state / 2 ** 32) * below);
    };
    for (let i = 0; i < 200; i += 1) {
        const source = sources[i % sources.length];
        let bytes = Buffer.from(readFileSync(source));
        if (i % 3 === 0) {
            bytes = bytes.subarray(0, random(bytes.length));
        } else if (i % 3 === 1) {
            for (let flips = 1 + random(8); flips > 0; flips -= 1) {
                bytes[random(Math.min(bytes.length, 4096))] ^= 1 << random(8);
            }
        } else {
            const at = random(bytes.length);
            bytes = Buffer.concat([bytes.subarray(0, at), bytes.subarray(random(at + 1))]);
        }
        writeFileSync(join(into, `${String(i).padStart(3, "0")}_${basename(source)}`), bytes);
    }
    return into;
}

const inFolder = (path, pattern) =>
    readdirSync(path, { recursive: true })
        .filter((name) => pattern.test(name))
        .map((name) => join(path, name))
        .sort();

const browser = await playwright.chromium.launch({ executablePath: chromium, args: ["--no-sandbox"] });
try {
    for (const dropped of [join(project, "examples"), fuzzFiles(), damagedFiles()]) {
        await check(`documents about ${basename(dropped)}`, () => sameDocuments(browser, dropped));
    }
    await check("pixels of textures", () => samePixels(browser, inFolder(join(project, "examples"), /\.txl$/)));
} finally {
    await browser.close();
    rmSync(folder, { recursive: true, force: true });
}
for (const failure of failures) {
    console.error(`error: ${failure}`);
}
console.log(`${checks - failures.length} of ${checks} checks passed`);
process.exitCode = failures.length === 0 && checks > 0 ? 0 : 1;
