#!/usr/bin/env node
// Opens the viewer in headless Chromium, drops files on it, and compares what it shows with the native program.
//
// viewer_test.mjs PAGE VXR BUNDLE CHROMIUM PROJECT [FOLDER]
//
// FOLDER takes pictures of what was looked at.
import assert from "node:assert/strict";
import { spawnSync } from "node:child_process";
import { copyFileSync, existsSync, mkdirSync, mkdtempSync, readdirSync, readFileSync, rmSync, truncateSync, writeFileSync } from "node:fs";
import { createRequire } from "node:module";
import { tmpdir } from "node:os";
import { basename, dirname, join, relative, resolve } from "node:path";
import { pixelsOf } from "./png_pixels.mjs";

const [viewer, vxr, bundle, chromium, project, pictures] = process.argv.slice(2).map((one) => resolve(one));
const require = createRequire(join(project, "build/npm/package.json"));
const playwright = require("playwright-core");
const axe = readFileSync(require.resolve("axe-core/axe.min.js"), "utf8");

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
    // Of hundreds of downloads the browser refuses some; the pictures below are really downloaded.
    await page.addInitScript(() => {
        const create = URL.createObjectURL;
        URL.createObjectURL = (blob) => {
            globalThis.lastSaved = blob;
            return create.call(URL, blob);
        };
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

/** Drags files and folders of this machine over the page and lets them go, as a file manager does. */
async function dragAndDrop(page, paths) {
    const session = await page.context().newCDPSession(page);
    const data = { items: [], files: paths, dragOperationsMask: 1 };
    for (const type of ["dragEnter", "dragOver", "drop"]) {
        await session.send("Input.dispatchDragEvent", { type, x: 300, y: 300, data });
    }
    await session.detach();
}

/** Paths of this machine, or files that the test makes up, which only a file input takes. */
async function drop(page, paths) {
    await page.evaluate(() => {
        document.getElementById("status").textContent = "";
    });
    if (paths.every((one) => typeof one === "string")) {
        await dragAndDrop(page, paths);
    } else {
        await page.locator("#files").setInputFiles(paths);
    }
    await settled(page);
}

async function dropFolder(page, path) {
    await page.evaluate(() => {
        document.getElementById("status").textContent = "";
    });
    await dragAndDrop(page, [path]);
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

/** Fails with what the page says. */
async function told(page, what, error) {
    const [status, problems] = [await page.locator("#status").textContent(), await page.locator(".item > .problem").allTextContents()];
    assert.fail(`${what}: ${error}\nThe page says: ${[status, ...problems, ...page.said].join(" | ")}`);
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
    await page.evaluate(() => {
        globalThis.lastSaved = null;
    });
    await page.getByRole("button", { name: `Save the ${what} as JSON` }).click();
    await page.waitForFunction(() => globalThis.lastSaved !== null);
    return page.evaluate(() => globalThis.lastSaved.text());
}

/** Whether the texture that is shown has a picture; if so, its colours are the native program's. */
async function sameColour(page, file) {
    const wanted = join(folder, "colour.png");
    rmSync(wanted, { force: true });
    native("texture", "convert", file, "--alpha", "none", "-o", wanted);
    const save = page.getByRole("button", { name: "Save as PNG" });
    assert.equal((await save.count()) > 0, existsSync(wanted), `whether ${file} has a picture`);
    if (!existsSync(wanted)) {
        return 0;
    }
    await page.evaluate(() => {
        globalThis.lastSaved = null;
    });
    await save.click();
    await page.waitForFunction(() => globalThis.lastSaved !== null);
    const text = await page.evaluate(async () => {
        const bytes = new Uint8Array(await globalThis.lastSaved.arrayBuffer());
        return btoa(bytes.reduce((all, byte) => all + String.fromCharCode(byte), ""));
    });
    const [mine, theirs] = [pixelsOf(Buffer.from(text, "base64")), pixelsOf(readFileSync(wanted))];
    assert.deepEqual(mine, theirs, `the colours of ${file}`);
    return 1;
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
    let shown = 0;
    const compare = async (path, what, list) => {
        const mine = await savedDocument(page, what).catch((error) => told(page, `${what} of ${path}`, error));
        const theirs = said(list);
        compared += 1;
        if (path.includes("large_claim")) {
            // 3 GiB, which the native program has and a page has not.
            assert.match(mine, /"no memory for \d+ bytes/, path);
            return;
        }
        if (mine !== theirs) {
            const [a, b] = [mine.split("\n"), theirs.split("\n")];
            const at = a.findIndex((line, i) => line !== b[i]);
            different.push(`${what} of ${path}, line ${at + 1}: the page says ${a[at]}, the native program ${b[at]}`);
        }
    };
    for (const file of inFolder(dropped, /\.(aec|txl)$/)) {
        const path = relative(above, file);
        await choose(page, path).catch((error) => told(page, path, error));
        if (path.endsWith(".txl")) {
            await compare(path, "check", ["texture", "check", "--json", "--", path]);
            // One claims 3 GiB, as below.
            shown += path.includes("large_claim") ? 0 : await sameColour(page, file);
        } else {
            await compare(path, "check", ["check", "--json", "--", path]);
            await compare(path, "project", ["import", "--json", "--bundle", bundle, "--", path]);
        }
    }
    console.log(`${compared - different.length} of ${compared} documents about ${basename(dropped)} are the native program's`);
    console.log(`${shown} textures of them have a picture, with the native program's colours`);
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

/** What is not ours, damaged beyond reading, or too much: a plain sentence each, and the page goes on. */
async function badFiles(browser) {
    const into = join(folder, "bad");
    mkdirSync(into);
    const file = (name, bytes) => {
        const path = join(into, name);
        mkdirSync(dirname(path), { recursive: true });
        if (typeof bytes === "number") {
            writeFileSync(path, "");
            truncateSync(path, bytes);
        } else {
            writeFileSync(path, bytes);
        }
        return path;
    };
    const texture = readFileSync(join(project, "examples/textures/photo_rgb_alpha.txl"));
    const scene = readFileSync(join(project, "examples/keyframes/orbit_030.aec"));
    const png = readFileSync(join(project, "examples/square/flare.png"));
    const CASES = [
        ["empty.txl", "", /cannot|ends|empty|not|no /i],
        ["empty.aec", "", /nothing from this scene/],
        ["empty.bin", "", /The file is empty\./],
        ["letter.txt", "Dear sir", /neither a composition file nor a texture/],
        ["letter.txl", "Dear sir", /error/],
        ["letter.aec", "Dear sir", /nothing from this scene/],
        ["letter.png", "Dear sir", /cannot show the picture/],
        ["letter.tif", "Dear sir", /cannot show the picture/],
        ["letter.tga", "Dear sir", /cannot show the picture/],
        ["street.rla", readFileSync(join(project, "examples/interlaced/street.rla")), /nor the browser reads this RLA file/],
        ["cut.png", png.subarray(0, 400), /cannot show the picture/],
        ["cut.txl", texture.subarray(0, 200), /error|loss/],
        ["cut.aec", scene.subarray(0, 100), /nothing from this scene/],
        ["texture_in_disguise.png", texture, /1 alpha channel/],
        ["scene_in_disguise.txl", scene, /It imports|this scene/],
        ["huge.txl", 5 * 2 ** 30, /error/],
        ["huge.aec", 5 * 2 ** 30, /nothing from this scene/],
        ["huge.png", 5 * 2 ** 30, /too large for this page/],
        ["<img src=x onerror=globalThis.ran=1>.txl", texture, /1 alpha channel/],
    ];
    const page = await open(browser);
    await drop(page, CASES.map(([name, bytes]) => file(name, bytes)));
    for (const [name, , says] of CASES) {
        await choose(page, name).catch((error) => told(page, name, error));
        assert.match(await page.locator("#detail").innerText(), says, name);
    }
    assert.equal(await page.evaluate(() => globalThis.ran), undefined);
    await check("two files of one name", async () => {
        const both = [file("a/same.txl", texture), file("b/same.txl", scene)];
        // Chromium gives the second one another name.
        await drop(page, both);
        assert.equal(await page.getByRole("button", { name: /^same.*\.txl$/ }).count(), 2);
        await choose(page, "same.txl");
        await page.locator("#files").setInputFiles(both);
        await page.locator("#notes p").waitFor();
        await settled(page);
        assert.match(await page.locator("#notes").innerText(), /Two files are called same\.txl; only the first is shown/);
        assert.match(await page.locator("#detail").innerText(), /1 alpha channel/);
    });
    await check("a folder in which two files have one name", async () => {
        await dropFolder(page, join(into));
        assert.equal(await page.getByRole("button", { name: /same\.txl$/ }).count(), 2);
    });
    await close(page);
}

async function manyFiles(browser) {
    const into = join(folder, "many");
    mkdirSync(into);
    for (let i = 0; i < 10_000; i += 1) {
        writeFileSync(join(into, `frame${String(i).padStart(5, "0")}.tga`), "x");
    }
    const page = await open(browser);
    await dragAndDrop(page, [into]);
    await page.waitForFunction(() => document.querySelectorAll("#list li").length > 0, undefined, { timeout: 60_000 });
    await settled(page);
    assert.equal(await page.locator("#list .count").innerText(), "10000");
    assert.equal(await page.locator("#list li").count(), 200);
    await close(page);
}

/** Kilobytes of memory in use by the processes that show pages. */
async function memoryOfPages(browser) {
    const session = await browser.newBrowserCDPSession();
    const { processInfo } = await session.send("SystemInfo.getProcessInfo");
    await session.detach();
    return processInfo
        .filter(({ type }) => type === "renderer")
        .reduce((sum, { id }) => sum + Number(/VmRSS:\s+(\d+)/.exec(readFileSync(`/proc/${id}/status`, "utf8"))?.[1] ?? 0), 0);
}

async function largeTexture(browser) {
    const image = join(folder, "large.png");
    const large = join(folder, "large.txl");
    const made = spawnSync("oiiotool", ["--pattern", "noise", "4096x4096", "4", "-d", "uint8", "-o", image], { encoding: "utf8" });
    assert.equal(made.status, 0, made.stderr);
    assert.equal(native("texture", "convert", image, "-o", large).status, 0);
    const small = join(project, "examples/textures/tiny.txl");
    const page = await open(browser);
    await drop(page, [small, large]);
    await check("cancelling", async () => {
        await choose(page, "tiny.txl");
        await page.getByRole("button", { name: "large.txl", exact: true }).click();
        await page.getByRole("button", { name: "Cancel" }).click({ timeout: 5000 });
        assert.match(await page.locator("#status").innerText(), /^Cancelled/);
        for (let i = 0; i < 50 && page.workers().length > 0; i += 1) {
            await page.waitForTimeout(100);
        }
        assert.equal(page.workers().length, 0);
        await choose(page, "tiny.txl");
        assert.match(await page.locator("#detail").innerText(), /pixels/);
    });
    await check("memory goes back with the next drop", async () => {
        await choose(page, "large.txl");
        const full = await memoryOfPages(browser);
        await drop(page, [small]);
        assert.equal(page.workers().length, 1);
        let after = full;
        for (let i = 0; i < 50 && after > full - 60_000; i += 1) {
            await new Promise((done) => setTimeout(done, 200));
            after = await memoryOfPages(browser);
        }
        console.log(`with the texture open ${Math.round(full / 1024)} MiB, after the next drop ${Math.round(after / 1024)} MiB`);
        assert.ok(after < full - 60_000, `${full} kB, then ${after} kB`);
    });
    await close(page);
    await check("a tab closed midway", async () => {
        const closing = await open(browser);
        await drop(closing, [large]);
        await closing.locator("#files").setInputFiles([large, small]);
        await closing.close();
        const next = await open(browser);
        await drop(next, [small]);
        assert.match(await next.locator("#detail").innerText(), /pixels/);
        await close(next);
    });
}

/** Both themes, a telephone and a large window, judged by axe-core. */
async function judge(browser, theme, width, height) {
    const page = await open(browser, { theme, width, height });
    const faults = async (what) => {
        await page.evaluate(axe);
        const { violations } = await page.evaluate(() => globalThis.axe.run());
        assert.deepEqual(violations.flatMap(({ id, nodes }) => nodes.map((node) => `${what}: ${id}: ${node.target.join(" ")}`)), []);
        const wide = await page.evaluate(() => document.documentElement.scrollWidth);
        assert.ok(wide <= width, `${what}: the page is ${wide} wide in a window of ${width}`);
        if (pictures !== undefined) {
            await page.screenshot({ path: join(pictures, `${what}_${theme}_${width}.png`) });
        }
    };
    await faults("empty");
    await drop(page, [join(project, "examples/textures/photo_rgb_three_alphas.txl"), join(project, "examples/keyframes/orbit_030.aec")]);
    await choose(page, "photo_rgb_three_alphas.txl");
    await faults("texture");
    await choose(page, "orbit_030.aec");
    await faults("scene");
    await close(page);
}

/** Mouse and keyboard move the picture, and the values of a pixel are the file's. */
async function usePicture(browser) {
    const page = await open(browser);
    await drop(page, [join(project, "examples/textures/every_flag.txl")]);
    const drawn = () => page.evaluate(() => document.querySelector("canvas").toDataURL());
    const changes = async (what, act) => {
        const before = await drawn();
        await act();
        await page.waitForTimeout(200);
        assert.notEqual(await drawn(), before, what);
    };
    await page.waitForFunction(() => document.querySelector("canvas")?.dataset.drawn);
    for (const name of ["Closer", "Farther", "Pixel for pixel", "All of it"]) {
        await changes(name, () => page.getByRole("button", { name }).click());
    }
    await page.locator("canvas").focus();
    for (const key of ["ArrowLeft", "ArrowDown", "+", "-", "1", "0"]) {
        await changes(key, () => page.keyboard.press(key));
    }
    // The picture is 16 pixels wide and fills the window in whole steps: its middle is the corner of pixel 8, 4.
    const box = await page.locator("canvas").boundingBox();
    await page.mouse.move(box.x + box.width / 2 + 5, box.y + box.height / 2 + 5);
    await page.waitForFunction(() => document.querySelector(".values").textContent.startsWith("x 8, y 4:"));
    const wanted = join(folder, "every_flag.png");
    assert.equal(native("texture", "convert", join(project, "examples/textures/every_flag.txl"), "--alpha", "2", "-o", wanted).status, 0);
    const { pixels } = pixelsOf(readFileSync(wanted));
    const [red, green, blue, alpha] = pixels.subarray(4 * (4 * 16 + 8));
    assert.match(
        await page.locator(".values").innerText(),
        new RegExp(`^x 8, y 4: red ${red}, green ${green}, blue ${blue}, alpha 1 \\d+, alpha 2 ${alpha}$`),
    );
    await changes("the wheel", () => page.mouse.wheel(0, -240));
    await close(page);
}

/** Footage has the pixels that OpenImageIO reads, as far as a library keeps every byte. */
async function sameFootage(browser) {
    const page = await open(browser);
    const names = ["square/flare.png", "square/contact.png", "square/haze.tga", "square/plate.tif", "square/pot0001.tif", "interlaced/glow0017.tif"];
    await drop(page, names.map((name) => join(project, "examples", name)));
    for (const name of names) {
        const wanted = join(folder, `${basename(name)}.png`);
        const texture = join(folder, `${basename(name)}.txl`);
        assert.equal(native("texture", "convert", join(project, "examples", name), "-o", texture).status, 0, name);
        const facts = JSON.parse(native("texture", "info", "--json", texture).stdout).files[0];
        assert.equal(native("texture", "convert", texture, "-o", wanted).status, 0, name);
        await choose(page, basename(name));
        if (facts.alphas.length > 0) {
            await page.locator(".controls select").selectOption({ index: 2 });
        }
        const [mine, theirs] = [await saved(page), pixelsOf(readFileSync(wanted))];
        assert.deepEqual([mine.width, mine.height, mine.channels], [theirs.width, theirs.height, theirs.channels], name);
        assert.ok(mine.pixels.equals(theirs.pixels), `the pixels of ${name}`);
    }
    await drop(page, [join(project, "examples/square/grey_card.jpg")]);
    assert.match(await page.locator("#detail").innerText(), /640 × 360 pixels/);
    await close(page);
}

/** The largest difference of two pictures in any value of a pixel; colour that nothing shows of does not count. */
function difference(one, other) {
    assert.deepEqual([one.width, one.height, one.channels], [other.width, other.height, 4]);
    let most = 0;
    for (let at = 0; at < one.pixels.length; at += 4) {
        const hidden = one.pixels[at + 3] === 0 && other.pixels[at + 3] === 0;
        for (let i = at; !hidden && i < at + 4; i += 1) {
            most = Math.max(most, Math.abs(one.pixels[i] - other.pixels[i]));
        }
    }
    return most;
}

/** What the page shows of a frame, saved, beside what `vxr preview` draws. */
async function frameDifference(page, ...list) {
    const wanted = join(folder, "frame.png");
    native("preview", ...list, "-o", wanted);
    return difference(await saved(page), pixelsOf(readFileSync(wanted)));
}

/** Frames of every composition of every example are those of `vxr preview`. */
async function sameFrames(browser) {
    // The two frames with an RLA file, which nothing in a page decodes.
    const UNDECODED = /^Lantern 010 2[45]$/;
    const dropped = join(project, "examples");
    const page = await open(browser);
    await dropFolder(page, dropped);
    let compared = 0;
    for (const scene of inFolder(dropped, /\.aec$/)) {
        const path = relative(dirname(dropped), scene);
        await choose(page, path).catch((error) => told(page, path, error));
        const { compositions, items } = JSON.parse(native("import", "--json", scene).stdout);
        for (const [index, composition] of compositions.entries()) {
            if (compositions.length > 1) {
                await page.locator(".frames > .choice select").selectOption({ index });
            }
            const slider = page.locator(".frames .timeline input");
            const last = Number(await slider.getAttribute("max"));
            const { name } = items.find(({ id }) => id === composition.item);
            for (const frame of new Set([0, Math.floor(last / 2), last])) {
                if (last > 0) {
                    await slider.fill(String(frame));
                }
                await page.waitForFunction((drawn) => document.querySelector(".frames")?.dataset.drawn === drawn, `${index} ${frame}`);
                const different = await frameDifference(page, scene, "--comp", name, "--frame", String(frame));
                if (UNDECODED.test(`${name} ${frame}`)) {
                    assert.match(await page.locator(".frames .findings").innerText(), /street\.rla.*nor the browser reads this RLA file/);
                } else {
                    assert.equal(different, 0, `frame ${frame} of ${name} in ${path}`);
                }
                compared += 1;
            }
        }
    }
    assert.ok(compared > 40, `${compared} frames`);
    console.log(`${compared} frames of the examples are those of the native program, where the page decodes their footage`);
    await close(page);
}

/** A scene still works on its frames when another file is chosen: the picture that is open is the other file's. */
async function chooseMeanwhile(browser) {
    const page = await open(browser);
    const texture = join(project, "examples/textures/photo_rgb_alpha.txl");
    await drop(page, [texture, join(project, "examples/keyframes/orbit_030.aec"), join(project, "examples/keyframes/stage.tif")]);
    const wanted = join(folder, "meanwhile.png");
    native("texture", "convert", texture, "--alpha", "none", "-o", wanted);
    for (let i = 0; i < 5; i += 1) {
        await choose(page, "stage.tif");
        await page.evaluate(() => {
            for (const name of ["orbit_030.aec", "photo_rgb_alpha.txl"]) {
                [...document.querySelectorAll("#list button")].find((one) => one.textContent === name).click();
            }
        });
        await page.waitForFunction(() => document.querySelector("canvas")?.dataset.drawn);
        await page.waitForTimeout(300);
        assert.deepEqual(await saved(page), pixelsOf(readFileSync(wanted)));
    }
    await close(page);
}

/** Footage that lies elsewhere is found when asked for. */
async function searchFootage(browser) {
    const into = join(folder, "job");
    for (const [to, from] of [["scenes/orbit_030.aec", "orbit_030.aec"], ["renders/old/stage.tif", "stage.tif"]]) {
        mkdirSync(dirname(join(into, to)), { recursive: true });
        copyFileSync(join(project, "examples/keyframes", from), join(into, to));
    }
    const page = await open(browser);
    await dropFolder(page, into);
    await choose(page, "job/scenes/orbit_030.aec");
    assert.match(await page.locator(".verdict").innerText(), /one footage file is missing/);
    await page.getByRole("button", { name: "Look for footage in everything" }).click();
    await page.waitForFunction(() => !/missing/.test(document.querySelector(".verdict")?.textContent ?? "missing"));
    assert.match(await page.locator(".verdict").innerText(), /^It imports/);
    assert.match(await page.locator(".footage").innerText(), /job\/renders\/old\/stage\.tif/);
    await page.waitForFunction(() => document.querySelector(".frames")?.dataset.drawn === "0 0");
    assert.equal(await frameDifference(page, join(into, "scenes/orbit_030.aec"), "--search", into), 0, "the frame with the footage that was found");
    await close(page);
}

/** The buttons for those who do not drag. */
async function chooseByButtons(browser) {
    const page = await open(browser);
    const chosen = async (name, path) => {
        const [chooser] = await Promise.all([page.waitForEvent("filechooser"), page.getByRole("button", { name }).click()]);
        await chooser.setFiles(path);
        await settled(page);
    };
    await chosen("Choose files", join(project, "examples/textures/tiny.txl"));
    assert.match(await page.locator("#detail").innerText(), /pixels/);
    await chosen("Choose a folder", join(project, "examples/keyframes"));
    await choose(page, "keyframes/orbit_030.aec");
    assert.match(await page.locator(".verdict").innerText(), /^It imports/);
    await close(page);
}

/** The policy refuses every way out. */
async function nothingGetsOut(browser) {
    const page = await open(browser);
    const refused = await page.evaluate(async () => {
        const rules = [];
        addEventListener("securitypolicyviolation", (event) => rules.push(event.effectiveDirective));
        await fetch("https://example.invalid/").catch(() => {});
        navigator.sendBeacon("https://example.invalid/", "x");
        document.body.append(Object.assign(new Image(), { src: "https://example.invalid/x.png" }));
        await new Promise((done) => setTimeout(done, 100));
        return rules;
    });
    assert.deepEqual(refused.sort(), ["connect-src", "connect-src", "img-src"]);
    await page.context().close();
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
    await check("mouse and keyboard", () => usePicture(browser));
    await check("bad files", () => badFiles(browser));
    await check("10,000 files", () => manyFiles(browser));
    await check("a large texture", () => largeTexture(browser));
    await check("frames", () => sameFrames(browser));
    await check("another file chosen meanwhile", () => chooseMeanwhile(browser));
    await check("footage elsewhere", () => searchFootage(browser));
    await check("the buttons", () => chooseByButtons(browser));
    await check("footage", () => sameFootage(browser));
    await check("the policy", () => nothingGetsOut(browser));
    for (const theme of ["light", "dark"]) {
        for (const [width, height] of [[1200, 900], [360, 740], [2560, 1440]]) {
            await check(`axe-core, ${theme}, ${width}`, () => judge(browser, theme, width, height));
        }
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
