#!/usr/bin/env node
// Opens pages of `vxr report` in headless Chromium: every control by mouse and by keyboard, nothing asked of the network,
// nothing on the console, readable without scripts, 360 pixels wide, judged by axe-core in both themes, and nulls measured
// in the view through a camera.
//
// page_test.mjs VXR BUNDLE CHROMIUM PROJECT [all]
//
// Without `all` what takes longest is left out: pages of several scenes and of 500 passes, the dark theme, the keyboard.
import assert from "node:assert/strict";
import { spawnSync } from "node:child_process";
import { mkdtempSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import { createRequire } from "node:module";
import { tmpdir } from "node:os";
import { join, resolve } from "node:path";

const [vxr, bundle, chromium, projectFolder, amount] = process.argv.slice(2);
const project = resolve(projectFolder);
const require = createRequire(join(project, "build/npm/package.json"));
const playwright = require("playwright-core");
const axe = readFileSync(require.resolve("axe-core/axe.min.js"), "utf8");

const folder = mkdtempSync(join(tmpdir(), "vxr-page-"));
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

function report(name, scenes, pictures = 2) {
    const page = join(folder, `${name}.html`);
    const run = spawnSync(vxr, ["report", "--bundle", bundle, "--pictures", String(pictures), ...scenes, "-o", page], { encoding: "utf8" });
    assert.ok([0, 1, 4].includes(run.status), `vxr report ${name}: ${run.stderr}`);
    return page;
}

function scene(name, text) {
    const path = join(folder, `${name}.aec`);
    writeFileSync(path, text);
    return path;
}

const SIZE = "RESOLUTION 720 576 FROM 10 TO 30 RANGE 21 FPS 25 ASPECT 1.0667\n";
/** Frame, position, heading, pitch, bank, angle of view, distance of the target. */
const CAMERA = [
    [10, [40, 120, -700], 5, 4, -3, 48, 700],
    [30, [-160, 180, -520], -20, -8, 17, 40, 600],
];
const NULLS = { low: [0, 0, 0], high: [120, 180, 60], near: [-150, 90, -120], far: [60, 150, 500] };

const measured = scene(
    "measured",
    `VORTAN XR COMPOSITION\n${SIZE}COMPOSITION NRM "Main" { }\n` +
        `CAMERA "Lens" {\n${CAMERA.map(([frame, at, ...rest]) => `KEY ${frame} ${at.join(" ")} ${rest.join(" ")}\n`).join("")}}\n` +
        Object.entries(NULLS)
            .map(([name, at]) => `NULL "${name}" { KEY 10 ${at.join(" ")} 0 0 0 }\n`)
            .join(""),
);

/**
 * Where the scene's camera puts a point, in pixels of its picture, by the projection as it is written down: with heading h,
 * pitch p and bank b, view d = (-cos p sin h, sin p, cos p cos h), right r = (cos h, 0, sin h), up u = (sin p sin h, cos p,
 * -sin p cos h); the bank turns right into r cos b - u sin b and up into u cos b + r sin b.
 */
function truth(point, frame) {
    const part = (frame - CAMERA[0][0]) / (CAMERA[1][0] - CAMERA[0][0]);
    const mix = (a, b) => a + (b - a) * part;
    const eye = CAMERA[0][1].map((value, i) => mix(value, CAMERA[1][1][i]));
    const [h, p, b, v] = [2, 3, 4, 5].map((i) => (mix(CAMERA[0][i], CAMERA[1][i]) * Math.PI) / 180);
    const dot = (a, c) => a[0] * c[0] + a[1] * c[1] + a[2] * c[2];
    const d = [-Math.cos(p) * Math.sin(h), Math.sin(p), Math.cos(p) * Math.cos(h)];
    const r = [Math.cos(h), 0, Math.sin(h)];
    const u = [Math.sin(p) * Math.sin(h), Math.cos(p), -Math.sin(p) * Math.cos(h)];
    const right = r.map((value, i) => value * Math.cos(b) - u[i] * Math.sin(b));
    const up = u.map((value, i) => value * Math.cos(b) + r[i] * Math.sin(b));
    const q = point.map((value, i) => value - eye[i]);
    const f = 360 / Math.tan(v / 2);
    return [360 + (f * dot(q, right)) / dot(q, d), 288 - (f * 1.0667 * dot(q, up)) / dot(q, d)];
}

/** Runs in the page: the frame that is drawn, and the middle of the marks of one colour around a place, in canvas pixels. */
function measureCanvas() {
    const canvas = document.querySelector("canvas");
    const { data, width, height } = canvas.getContext("2d").getImageData(0, 0, canvas.width, canvas.height);
    const style = getComputedStyle(canvas);
    const rgb = (name) => {
        const hex = style.getPropertyValue(name).trim().slice(1);
        return [0, 2, 4].map((i) => parseInt(hex.slice(i, i + 2), 16));
    };
    const near = (x, y, colour) => {
        const i = (y * width + x) * 4;
        const distance = Math.hypot(...colour.map((value, c) => value - data[i + c]));
        return data[i + 3] === 0 ? 0 : (data[i + 3] / 255) * Math.max(0, 1 - distance / 60);
    };
    // The lines of the frame, on a row and a column that no mark is on.
    const edges = (length, at) => {
        const places = [];
        let weight = 0;
        let sum = 0;
        for (let i = 0; i <= length; i += 1) {
            const part = i < length ? at(i) : 0;
            if (part > 0.05) {
                weight += part;
                sum += part * (i + 0.5);
            } else if (weight > 0) {
                places.push(sum / weight);
                weight = sum = 0;
            }
        }
        return [places[0], places.at(-1)];
    };
    const line = rgb("--faint");
    const row = Math.round(height * 0.08);
    const [left, right] = edges(width, (x) => near(x, row, line));
    const column = Math.round((left + right) / 2 - (right - left) * 0.47);
    const [top, bottom] = edges(height, (y) => near(column, y, line));
    const colour = rgb("--space-null");
    const marks = [];
    for (let y = 0; y < height; y += 1) {
        for (let x = 0; x < width; x += 1) {
            const weight = near(x, y, colour);
            if (weight > 0.05) {
                marks.push([x + 0.5, y + 0.5, weight]);
            }
        }
    }
    return { frame: [left, top, right, bottom], marks };
}

async function open(browser, path, { theme = "light", width = 1200, scripts = true, density = 1 } = {}) {
    const context = await browser.newContext({
        viewport: { width, height: 900 },
        colorScheme: theme,
        javaScriptEnabled: scripts,
        deviceScaleFactor: density,
    });
    const page = await context.newPage();
    page.said = [];
    page.asked = [];
    page.on("console", (message) => page.said.push(message.text()));
    page.on("pageerror", (error) => page.said.push(String(error)));
    page.on("request", (request) => {
        if (!request.url().startsWith("data:")) {
            page.asked.push(request.url());
        }
    });
    await page.goto(`file://${path}`);
    return page;
}

/** Two pictures of the screen later everything is drawn. */
const drawn = (page) =>
    page.evaluate(() => new Promise((done) => requestAnimationFrame(() => requestAnimationFrame(() => done()))));

async function close(page) {
    assert.deepEqual(page.said, [], "the console is silent");
    assert.equal(page.asked.length, 1, `one request, for the page itself: ${page.asked.slice(1)}`);
    await page.context().close();
}

async function faults(page) {
    await page.evaluate(axe);
    const { violations } = await page.evaluate(() => globalThis.axe.run());
    return violations.flatMap(({ id, nodes }) => nodes.map((node) => `${id}: ${node.target.join(" ")}`));
}

const picture = (page) => page.evaluate(() => document.querySelector("canvas").toDataURL());

async function changes(page, what, act) {
    const before = await picture(page);
    await act();
    await drawn(page);
    assert.notEqual(await picture(page), before, `${what} changes the view`);
}

async function measureNulls(browser, path) {
    const page = await open(browser, path, { density: 2 });
    await page.getByLabel("View", { exact: false }).and(page.locator("select")).selectOption({ label: "Through Lens" });
    for (const label of ["Names", "Paths", "Grid"]) {
        await page.getByLabel(label).uncheck();
    }
    const slider = page.getByRole("slider", { name: /Frame of/ });
    let largest = 0;
    for (const frame of [10, 17, 30]) {
        await slider.fill(String(frame));
        await drawn(page);
        const { frame: [left, top, right, bottom], marks } = await page.evaluate(measureCanvas);
        for (const [name, point] of Object.entries(NULLS)) {
            const [x, y] = truth(point, frame);
            const wanted = [left + (x / 720) * (right - left), top + (y / 576) * (bottom - top)];
            const near = marks.filter((mark) => Math.hypot(mark[0] - wanted[0], mark[1] - wanted[1]) < 24);
            const weight = near.reduce((sum, mark) => sum + mark[2], 0);
            assert.ok(weight > 20, `${name} is drawn at frame ${frame}, at ${x}, ${y}`);
            const [dx, dy] = [0, 1].map((i) => near.reduce((sum, mark) => sum + mark[i] * mark[2], 0) / weight - wanted[i]);
            const off = Math.hypot((dx * 720) / (right - left), (dy * 576) / (bottom - top));
            largest = Math.max(largest, off);
            assert.ok(off < 0.5, `${name} at frame ${frame} is ${off} pixels off`);
        }
    }
    // It is this test that reads the canvas often, and Chromium has advice about that.
    page.said = page.said.filter((text) => !text.startsWith("Canvas2D: Multiple readback"));
    console.log(`nulls are at most ${largest.toFixed(3)} pixels of the picture from the projection`);
    await close(page);
}

async function useByMouse(browser, path) {
    const page = await open(browser, path);
    await drawn(page);
    const canvas = page.locator("canvas").first();
    await canvas.scrollIntoViewIfNeeded();
    const box = await canvas.boundingBox();
    await changes(page, "dragging", async () => {
        await page.mouse.move(box.x + 200, box.y + 200);
        await page.mouse.down();
        await page.mouse.move(box.x + 260, box.y + 230, { steps: 3 });
        await page.mouse.up();
    });
    for (const name of ["Closer", "Farther", "Reset view"]) {
        await changes(page, name, () => page.getByRole("button", { name }).click());
    }
    for (const label of ["Names", "Paths", "Grid"]) {
        await changes(page, label, () => page.getByLabel(label).click());
    }
    await page.getByText("Positions at this frame").click();
    await drawn(page);
    assert.equal(await page.locator(".positions tbody tr").count(), 5);
    await page.getByRole("button", { name: "Play" }).click();
    await page.waitForFunction(() => document.querySelector(".space output").textContent !== "frame 10");
    await page.getByRole("button", { name: "Pause" }).click();
    const copy = page.getByRole("button", { name: "Copy" }).first();
    await copy.click();
    await page.waitForFunction(() => [...document.querySelectorAll(".copy")].some((one) => one.textContent !== "Copy"));
    await page.getByLabel("Curves of").selectOption({ index: 1 });
    assert.match(await page.locator(".chart").first().getAttribute("aria-label"), /^Position: x stays 0/);
    await close(page);
}

async function useByKeyboard(browser, path) {
    const page = await open(browser, path);
    const tabTo = async (wanted) => {
        for (let i = 0; i < 200; i += 1) {
            await page.keyboard.press("Tab");
            if (await page.evaluate((selector) => document.activeElement.matches(selector), wanted)) {
                return;
            }
        }
        assert.fail(`Tab does not lead to ${wanted}`);
    };
    await tabTo(".space select");
    await tabTo(".space input[type=checkbox]");
    await changes(page, "Space on a switch", () => page.keyboard.press("Space"));
    await tabTo(".space .group button");
    await changes(page, "Enter on Closer", () => page.keyboard.press("Enter"));
    await tabTo("canvas");
    for (const key of ["ArrowLeft", "ArrowUp", "Shift+ArrowRight", "+", "-", "0"]) {
        await changes(page, key, () => page.keyboard.press(key));
    }
    await tabTo(".space input[type=range]");
    await page.keyboard.press("ArrowRight");
    assert.equal(await page.locator(".space output").textContent(), "frame 11");
    await tabTo(".space summary");
    await page.keyboard.press("Enter");
    assert.equal(await page.locator(".space details").getAttribute("open"), "");
    await tabTo(".curves select");
    await page.keyboard.press("ArrowDown");
    assert.match(await page.locator(".chart").first().getAttribute("aria-label"), /^Position: x stays/);
    await tabTo(".copy");
    await close(page);
}

async function useFrontPage(browser, path) {
    const page = await open(browser, path);
    const rows = () => page.locator(".scenes tbody tr:visible").count();
    assert.equal(await rows(), 3);
    assert.equal(await page.locator("article:visible").count(), 0);
    await page.getByLabel("Find").fill("lantern");
    assert.equal(await rows(), 1);
    await page.getByLabel("Find").fill("");
    await page.getByLabel("Show").selectOption("incomplete");
    assert.equal(await rows(), 1);
    await page.getByLabel("Show").selectOption("");
    await page.getByRole("button", { name: "losses" }).click();
    assert.match(await page.locator(".scenes tbody tr").first().textContent(), /courtyard_020/);
    await page.getByRole("button", { name: "losses" }).press("Enter");
    assert.doesNotMatch(await page.locator(".scenes tbody tr").first().textContent(), /courtyard_020/);
    await page.getByRole("link", { name: "lantern_010.aec" }).press("Enter");
    await page.locator("article:visible").waitFor();
    const image = page.locator(".pictures img:visible");
    const before = await image.getAttribute("src");
    await page.getByRole("slider", { name: "Picture" }).press("End");
    assert.notEqual(await image.getAttribute("src"), before);
    assert.equal(await page.locator(".pictures output:visible").textContent(), "frame 24");
    assert.ok(await image.evaluate((one) => one.decode().then(() => one.naturalWidth > 600)));
    await page.getByRole("link", { name: "All scenes" }).click();
    await page.locator(".scenes:visible").waitFor();
    assert.equal(await rows(), 3);
    await close(page);
}

async function withoutScripts(browser, path) {
    const page = await open(browser, path, { scripts: false });
    assert.equal(await page.locator(".verdict:visible").count(), 6);
    assert.ok(await page.getByText("Does it import, and is anything lost?").first().isVisible());
    await page.context().close();
}

async function nothingGetsOut(browser, path) {
    const page = await open(browser, path);
    const refused = await page.evaluate(async () => {
        const rules = [];
        addEventListener("securitypolicyviolation", (event) => rules.push(event.effectiveDirective));
        await fetch("https://example.invalid/").catch(() => {});
        document.body.append(Object.assign(new Image(), { src: "https://example.invalid/x.png" }));
        const script = document.createElement("script");
        script.textContent = "globalThis.ran = true";
        document.body.append(script);
        await new Promise((done) => setTimeout(done, 50));
        return [...rules, globalThis.ran];
    });
    assert.deepEqual(refused.sort(), ["connect-src", "img-src", "script-src-elem", undefined].sort());
    await page.context().close();
}

async function judge(browser, path, theme, width) {
    const page = await open(browser, path, { theme, width });
    await drawn(page);
    assert.deepEqual(await faults(page), []);
    const wide = await page.evaluate(() => document.documentElement.scrollWidth);
    assert.ok(wide <= width, `the page is ${wide} wide in a window of ${width}`);
    await close(page);
}

async function checkAll(browser, single, hostile) {
    const examples = ["interlaced/lantern_010", "square/courtyard_020", "keyframes/orbit_030"];
    const folderPage = report(
        "examples",
        examples.map((name) => join(project, "examples", `${name}.aec`)),
    );
    const passes = Array.from({ length: 500 }, (_, i) => `FILE ADD STRAIGHT "pass ${i}.tif"\n`).join("");
    const manyPasses = report("passes", [
        scene("passes", `VORTAN XR COMPOSITION\n${SIZE}COMPOSITION NRM "Main" {\n${passes}}\n`),
    ]);
    await check("by keyboard", () => useByKeyboard(browser, single));
    await check("the front page", () => useFrontPage(browser, folderPage));
    await check("without scripts", () => withoutScripts(browser, folderPage));
    await check("500 passes", async () => {
        const page = await open(browser, manyPasses);
        assert.equal(await page.locator(".footage tbody tr").count(), 500);
        await close(page);
    });
    for (const theme of ["light", "dark"]) {
        for (const width of [1200, 360]) {
            for (const [name, path] of Object.entries({ single, folderPage, hostile, manyPasses })) {
                await check(`axe-core on ${name}, ${theme}, ${width}`, () => judge(browser, path, theme, width));
            }
        }
    }
    for (const [name, part] of [["front", ""], ["one of several", "#s1"]]) {
        await check(`axe-core on ${name}`, () => judge(browser, folderPage + part, "light", 1200));
    }
}

const browser = await playwright.chromium.launch({ executablePath: chromium, args: ["--no-sandbox"] });
try {
    const single = report("measured", [measured]);
    const hostile = report("hostile", [
        scene(
            "hostile",
            `VORTAN XR COMPOSITION\n${SIZE}COMPOSITION NRM "</script><script>globalThis.ran=1</script>" { }\n` +
                'NULL "<img src=x onerror=globalThis.ran=1>" { KEY 10 0 0 0 0 0 0 }\n' +
                'LIGHT "\u05d0\u05d5\u05e8 \u05d9\u05e8\u05d7" { KEY 10 0 50 0 0 0 0 }\n',
        ),
    ]);
    await check("nulls are where the projection puts them", () => measureNulls(browser, single));
    await check("by mouse", () => useByMouse(browser, single));
    await check("the policy", () => nothingGetsOut(browser, single));
    await check("names of the scene do nothing", async () => {
        const page = await open(browser, hostile);
        assert.equal(await page.evaluate(() => globalThis.ran), undefined);
        assert.ok(await page.locator("bdi", { hasText: "\u05d0\u05d5\u05e8" }).count());
        await close(page);
    });
    await check("axe-core on a telephone, light", () => judge(browser, single, "light", 360));
    if (amount === "all") {
        await checkAll(browser, single, hostile);
    }
} finally {
    await browser.close();
    rmSync(folder, { recursive: true, force: true });
}
for (const failure of failures) {
    console.error(`error: ${failure}`);
}
console.log(`${checks - failures.length} of ${checks} checks passed`);
process.exitCode = failures.length === 0 && checks > 0 ? 0 : 1;
