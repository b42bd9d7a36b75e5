// Lets three.js in a browser read glTF files and draw test points, and compares a screenshot with `vxr proof`:
// three_test.mjs VXR NODE_MODULES PROJECT COUNT|quick
//
// Two cameras of three.js look at the points of `vxr proof`: that of the .glb file, played by three.js itself, which is to
// show them where `vxr proof` says that glTF does and where the scene does; and one that is made here from the text of the
// scene, which is to show them where `vxr proof` says that the scene does. three.js ignores KHR_animation_pointer, so an angle of
// view that changes is read from the file by hand. Then three mistakes are planted, each of which has to show.
//
// With COUNT the examples and so many generated scenes, with `quick` a few frames of one example.

import { execFileSync, spawnSync } from "node:child_process";
import fs from "node:fs";
import { createRequire } from "node:module";
import os from "node:os";
import path from "node:path";
import { fileURLToPath } from "node:url";
import { axesOf, momentsOf, poseAt, readScene } from "./scene_text.mjs";

const GOAL_px = 0.05;
const WINDOW_px = 24;
const PAGE_px = [1584, 1200];
const WINDOWS = (PAGE_px[0] / WINDOW_px) * (PAGE_px[1] / WINDOW_px);

const [vxr, modules, project] = process.argv.slice(2, 5).map((word) => path.resolve(word));
const quick = process.argv[5] === "quick";
const here = path.dirname(fileURLToPath(import.meta.url));
const folder = fs.mkdtempSync(path.join(os.tmpdir(), "three-"));

function fail(text) {
  throw new Error(text);
}

function run(words, codes) {
  const done = spawnSync(vxr, words, { encoding: "utf8", maxBuffer: 1 << 30 });
  if (!codes.includes(done.status)) fail(`vxr ${words.join(" ")} ended with ${done.status}: ${done.stderr}`);
  return done.stdout;
}

function scenes() {
  if (quick) return [path.join(project, "examples/square/courtyard_020.aec")];
  const made = path.join(folder, "scenes");
  execFileSync("python3", ["-B", path.join(project, "tests/support/generated_scenes.py"), made, process.argv[5]]);
  const within = (parent) => fs.readdirSync(parent).sort().flatMap((name) => {
    const inner = path.join(parent, name);
    return fs.statSync(inner).isDirectory() ? fs.readdirSync(inner).filter((file) => file.endsWith(".aec")).map((file) => path.join(inner, file)) : [];
  });
  return [...within(path.join(project, "examples")), ...within(made)];
}

/** Every point of a scene that counts, with where `vxr proof` says that the scene and glTF show it. */
function proved(file) {
  const scene = readScene(fs.readFileSync(file, "latin1"));
  const most = quick ? 12 : 24;
  const moments = scene.cameras.map((keys) => momentsOf(keys, scene, most));
  const frames = [...new Set(moments.flat())];
  // Footage of some scenes is missing on purpose. Turns that are too fast between frames, and files whose digits are too few
  // for how close or fast a camera is, are named.
  const losses = JSON.parse(run(["export", file, "--to", "glb", "--out-dir", folder, "--json"], [0, 4])).scenes[0].losses;
  const proof = JSON.parse(run(["proof", file, "--json", "--points", "8", ...frames.flatMap((frame) => ["--at", `${frame}`])], [0, 5]));
  const gltf = proof.targets.indexOf("glTF");
  if (proof.cameras.length !== scene.cameras.length) fail(`${file}: ${proof.cameras.length} cameras in the proof`);
  const glb = fs.readFileSync(path.join(folder, `${path.basename(file, ".aec")}.glb`)).toString("base64");
  const shots = [];
  for (const [camera, keys] of scene.cameras.entries()) {
    for (const { frame, points } of proof.cameras[camera].frames ?? []) {
      if (!keys.length || !moments[camera].includes(frame)) continue;
      const counted = points.filter((point) => point.truth);
      const where = `${path.basename(file)}, camera ${camera}, frame ${frame}`;
      if (counted.some((point) => !point.landed[gltf])) fail(`${where}: glTF loses a point`);
      shots.push({ where, camera, frame, pose: poseAt(keys, frame), points: counted, gltf });
    }
  }
  const lost = (code) => losses.some((loss) => loss.code === code);
  return { scene, glb, shots, tooFast: lost("handover-turn-too-fast"), rounded: lost("handover-rounded") };
}

/** Both shots of one moment. A window begins at a whole pixel, so that the point is about in its middle. */
function shotsOf({ scene, shots }, index, planted) {
  const { width, height, aspect, from, rate } = scene;
  const cut = (point, at) => {
    const corner = at.map((one) => Math.floor(one) - WINDOW_px / 2);
    return { point: point.place, corner: planted === "half a pixel" ? [corner[0] + 0.5, corner[1]] : corner, believed: corner };
  };
  return shots.map((shot) => {
    const pose = { ...shot.pose, bank: (planted === "bank" ? -1 : 1) * shot.pose.bank };
    const seconds = (shot.frame + (planted === "a frame" ? 1 : 0) - from) / rate;
    return [
      { gltf: index, camera: shot.camera, seconds, width, height, windows: shot.points.map((point) => cut(point, point.landed[shot.gltf])) },
      { pose: { axes: axesOf(pose), place: [pose.x, pose.y, pose.z], angle: pose.angle, width, height, aspect }, width, height, windows: shot.points.map((point) => cut(point, point.truth)) },
    ];
  });
}

class Worst {
  constructor() {
    this.px = 0;
    this.where = "";
    this.points = 0;
  }
  add(measured, wanted, where) {
    const px = measured ? Math.hypot(measured[0] - wanted[0], measured[1] - wanted[1]) : Infinity;
    this.points++;
    if (!(px <= this.px)) [this.px, this.where] = [px, where];
  }
}

async function open() {
  const { chromium } = createRequire(path.join(modules, "here.js"))("playwright-core");
  // Without a graphics card; and where there is one, the same on every machine.
  const browser = await chromium.launch({ executablePath: "/usr/bin/chromium", args: ["--use-angle=swiftshader", "--enable-unsafe-swiftshader"] });
  const page = await browser.newPage({ deviceScaleFactor: 2, viewport: { width: PAGE_px[0], height: PAGE_px[1] } });
  const problems = [];
  page.on("pageerror", (error) => problems.push(String(error)));
  page.on("console", (message) => message.type() === "error" && problems.push(message.text()));
  // Nothing comes from a network.
  await page.route("**/*", (route) => {
    const { pathname } = new URL(route.request().url());
    if (pathname === "/") {
      const map = { imports: { three: "/three/build/three.module.js", "three/addons/": "/three/examples/jsm/" } };
      return route.fulfill({ contentType: "text/html", body: `<!doctype html><link rel="icon" href="data:,"><script type="importmap">${JSON.stringify(map)}</script><script type="module" src="/page.mjs"></script>` });
    }
    const file = pathname === "/page.mjs" ? path.join(here, "three_page.mjs") : path.join(modules, pathname);
    return route.fulfill({ contentType: "text/javascript", body: fs.readFileSync(file) });
  });
  await page.goto("http://page.invalid/");
  await page.waitForFunction(() => window.ready, null, { timeout: 30000 }).catch(() => fail(`the page does not start: ${problems.join("; ")}`));
  await page.evaluate((size) => window.start(size), PAGE_px);
  return { browser, page, problems };
}

/** Draws shots of one or more files, as many windows a page as fit, and returns the measured place of every window. */
async function look(page, files, shots) {
  const places = [];
  let byHand = 0;
  for (let first = 0; first < shots.length;) {
    const some = [];
    let count = 0;
    while (first < shots.length && count + shots[first].windows.length <= WINDOWS) {
      count += shots[first].windows.length;
      some.push(shots[first++]);
    }
    if (!some.length) fail("a moment has more points than a page has windows");
    const hand = await page.evaluate(([inner, list]) => window.draw(inner, list), [files, some]);
    byHand += hand.filter(Boolean).length;
    const shown = await page.screenshot({ type: "png" });
    const found = await page.evaluate(([png, number]) => window.measure(png, number), [shown.toString("base64"), count]);
    let at = 0;
    for (const shot of some) {
      places.push(shot.windows.map(({ believed }) => {
        const one = found[at++];
        return one && [believed[0] + one[0], believed[1] + one[1]];
      }));
    }
  }
  return { places, byHand };
}

async function compare(page, one, planted) {
  const pairs = shotsOf(one, 0, planted);
  const { places, byHand } = await look(page, [one.glb], pairs.flat());
  const worst = { "three.js with the file, from where vxr puts the file's points": new Worst(), "three.js with the file, from the scene": new Worst(), "three.js with the scene's text, from the scene": new Worst() };
  const [file, fileTruth, text] = Object.values(worst);
  one.shots.forEach((shot, index) => {
    shot.points.forEach((point, i) => {
      text.add(places[2 * index + 1][i], point.truth, shot.where);
      if (one.rounded) return;
      file.add(places[2 * index][i], point.landed[shot.gltf], shot.where);
      if (!one.tooFast || Number.isInteger(shot.frame)) fileTruth.add(places[2 * index][i], point.truth, shot.where);
    });
  });
  return { worst, byHand };
}

async function main() {
  const { browser, page, problems } = await open();
  try {
    const total = {};
    let [files, moments, byHand] = [0, 0, 0];
    const caught = {};
    for (const file of scenes()) {
      const one = proved(file);
      if (!one.shots.length) continue;
      const result = await compare(page, one, "");
      files++;
      moments += one.shots.length;
      byHand += result.byHand;
      for (const [name, worst] of Object.entries(result.worst)) {
        total[name] ??= new Worst();
        total[name].points += worst.points;
        if (worst.px > total[name].px) [total[name].px, total[name].where] = [worst.px, worst.where];
      }
      // Once each is enough, in a scene where it has to show.
      const moves = one.shots.some((shot) => shot.pose.bank !== 0 && shot.frame > one.scene.from);
      if (moves && Object.keys(caught).length === 0) {
        for (const planted of ["bank", "half a pixel", "a frame"]) {
          const { worst } = await compare(page, one, planted);
          caught[planted] = Math.max(...Object.values(worst).map((found) => found.px));
        }
      }
    }
    if (problems.length) fail(`the browser says: ${problems.join("; ")}`);
    console.log(`${files} scenes, ${moments} moments, ${byHand} of them with an angle of view that three.js does not read`);
    for (const [name, worst] of Object.entries(total)) {
      console.log(`${name}: ${worst.points} points, largest distance ${worst.px.toFixed(4)} px (${worst.where})`);
    }
    console.log(`planted mistakes: ${Object.entries(caught).map(([name, px]) => `${name} ${px < Infinity ? `${px.toFixed(2)} px` : "out of its window"}`).join(", ")}`);
    if (moments < (quick ? 5 : 50)) fail("too little was compared");
    if (Object.values(total).some((worst) => !(worst.px <= GOAL_px))) fail(`more than ${GOAL_px} pixels`);
    if (Object.keys(caught).length !== 3 || Object.values(caught).some((px) => px <= GOAL_px)) fail("a planted mistake does not show");
  } finally {
    await browser.close();
  }
}

try {
  await main();
} catch (error) {
  console.error(`error: ${error.message}`);
  process.exitCode = 1;
} finally {
  fs.rmSync(folder, { recursive: true, force: true });
}
