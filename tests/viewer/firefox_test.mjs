#!/usr/bin/env node
// Opens the viewer in headless Firefox, by its own remote protocol, and compares what it shows with the native program.
//
// firefox_test.mjs PAGE VXR FIREFOX PROJECT
import assert from "node:assert/strict";
import { spawn, spawnSync } from "node:child_process";
import { mkdtempSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import { connect } from "node:net";
import { tmpdir } from "node:os";
import { join, resolve } from "node:path";
import { pixelsOf } from "./png_pixels.mjs";

const [viewer, vxr, firefox, project] = process.argv.slice(2).map((one) => resolve(one));
const PORT = 28_281;
const folder = mkdtempSync(join(tmpdir(), "vxr-firefox-"));

/** A browser that is driven by Marionette: messages are "LENGTH:[0,NUMBER,COMMAND,PARAMETERS]". */
class Browser {
    constructor() {
        writeFileSync(join(folder, "user.js"), `user_pref("marionette.port", ${PORT});\n`);
        this.process = spawn(firefox, ["--headless", "--marionette", "--no-remote", "--profile", folder], { stdio: "ignore" });
        this.waiting = new Map();
        this.received = Buffer.alloc(0);
        this.number = 0;
    }

    async start() {
        for (let i = 0; i < 300; i += 1) {
            try {
                this.socket = await new Promise((done, failed) => {
                    const socket = connect(PORT, "127.0.0.1", () => done(socket));
                    socket.on("error", failed);
                });
                break;
            } catch {
                await new Promise((done) => setTimeout(done, 200));
            }
        }
        assert.ok(this.socket !== undefined, "Firefox does not answer");
        this.socket.on("data", (bytes) => this.receive(bytes));
        await this.ask("WebDriver:NewSession", { capabilities: {} });
        await this.ask("WebDriver:SetTimeouts", { script: 60_000 });
    }

    receive(bytes) {
        this.received = Buffer.concat([this.received, bytes]);
        for (;;) {
            const colon = this.received.indexOf(":");
            const length = Number(this.received.toString("latin1", 0, Math.max(colon, 0)));
            if (colon < 0 || this.received.length < colon + 1 + length) {
                return;
            }
            const message = JSON.parse(this.received.toString("utf8", colon + 1, colon + 1 + length));
            this.received = this.received.subarray(colon + 1 + length);
            if (Array.isArray(message)) {
                const [, number, error, result] = message;
                const { done, failed } = this.waiting.get(number);
                this.waiting.delete(number);
                error === null ? done(result) : failed(new Error(`${error.error}: ${error.message}`));
            }
        }
    }

    ask(command, parameters) {
        this.number += 1;
        const text = JSON.stringify([0, this.number, command, parameters]);
        return new Promise((done, failed) => {
            this.waiting.set(this.number, { done, failed });
            this.socket.write(`${Buffer.byteLength(text)}:${text}`);
        });
    }

    /** The value of a function in the page. */
    async evaluate(work, ...args) {
        const script = `const done = arguments[arguments.length - 1]; const [args] = arguments;
            Promise.resolve((${work})(...args)).then((value) => done({ value }), (error) => done({ error: String(error) }));`;
        const { value } = await this.ask("WebDriver:ExecuteAsyncScript", { script, args: [args] });
        assert.equal(value.error, undefined);
        return value.value;
    }

    async until(condition, ...args) {
        for (let i = 0; i < 300; i += 1) {
            if (await this.evaluate(condition, ...args)) {
                return;
            }
            await new Promise((done) => setTimeout(done, 100));
        }
        assert.fail(`${condition} did not come true; the page says: ${await this.evaluate(() => document.body.innerText.slice(0, 2000))}`);
    }

    async stop() {
        this.socket?.destroy();
        const ended = new Promise((done) => this.process.on("exit", done));
        this.process.kill("SIGKILL");
        await ended;
    }
}

async function choose(browser, name) {
    await browser.evaluate((wanted) => [...document.querySelectorAll("#list button")].find((one) => one.textContent === wanted).click(), name);
    await browser.until((wanted) => document.querySelector(".item h2")?.textContent === wanted && document.getElementById("working").hidden, name);
}

/** The picture that is shown, saved by the page. */
async function saved(browser) {
    const text = await browser.evaluate(async () => {
        const create = URL.createObjectURL;
        const blob = new Promise((done) => {
            URL.createObjectURL = (one) => {
                done(one);
                return create.call(URL, one);
            };
        });
        [...document.querySelectorAll("button")].find((one) => one.textContent === "Save as PNG").click();
        const bytes = new Uint8Array(await (await blob).arrayBuffer());
        return btoa(bytes.reduce((all, byte) => all + String.fromCharCode(byte), ""));
    });
    return pixelsOf(Buffer.from(text, "base64"));
}

function native(...list) {
    const run = spawnSync(vxr, list, { encoding: "utf8" });
    assert.notEqual(run.status, null, `vxr ${list.join(" ")}: ${run.error}`);
}

const browser = new Browser();
try {
    await browser.start();
    await browser.ask("WebDriver:Navigate", { url: `file://${viewer}` });
    const { value: input } = await browser.ask("WebDriver:FindElement", { using: "css selector", value: "#files" });
    const names = ["textures/photo_rgb_alpha.txl", "keyframes/orbit_030.aec", "keyframes/stage.tif", "square/grey_card.jpg", "README.md"];
    const text = names.map((name) => join(project, "examples", name)).join("\n");
    await browser.ask("WebDriver:ElementSendKeys", { id: Object.values(input)[0], text });
    await browser.until((count) => document.querySelectorAll("#list li").length === count, names.length);

    const wanted = join(folder, "wanted.png");
    await choose(browser, "photo_rgb_alpha.txl");
    native("texture", "convert", join(project, "examples", names[0]), "--alpha", "none", "-o", wanted);
    assert.deepEqual(await saved(browser), pixelsOf(readFileSync(wanted)), "the colours of a texture");

    await choose(browser, "orbit_030.aec");
    assert.match(await browser.evaluate(() => document.querySelector(".verdict").innerText), /^It imports/);
    await browser.until(() => document.querySelector(".frames")?.dataset.drawn === "0 0");
    native("preview", join(project, "examples", names[1]), "--frame", "0", "-o", wanted);
    assert.deepEqual(await saved(browser), pixelsOf(readFileSync(wanted)), "a frame of a scene");

    await choose(browser, "grey_card.jpg");
    assert.match(await browser.evaluate(() => document.getElementById("detail").innerText), /640 × 360 pixels/);
    await choose(browser, "README.md");
    assert.match(await browser.evaluate(() => document.getElementById("detail").innerText), /neither a composition file nor a texture/);
    console.log("Firefox shows a texture, a scene, a frame and an image as the native program does");
} finally {
    await browser.stop();
    rmSync(folder, { recursive: true, force: true, maxRetries: 5 });
}
