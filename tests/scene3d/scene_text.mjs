// The cameras of a scene from its text alone, for the test in the browser.
//
// Between two keys every number changes linearly. From one frame to the next, angles take the short way, and a turn of the
// view or of the bank of more than 60 degrees is a cut: the numbers stay until the next key.

const CUT_DEGREES = 60;
const ANGLES = ["heading", "pitch", "bank"];
const FIELDS = ["x", "y", "z", ...ANGLES, "angle"];

/** Words, names and braces. A path goes up to the last quote of its line, and a name may have quotes after dollar signs. */
function* tokens(text) {
  const word = /\s*(?:\/[^\r\n]*|"((?:\$"|[^"])*)"|([{}])|([^\s{}"]+))/gy;
  const path = /[ \t]*"([^\r\n]*)"/y;
  let before = [];
  while (word.lastIndex < text.length) {
    path.lastIndex = word.lastIndex;
    const isPath = ["FILE", "FSEQ"].includes(before.at(-3)) && path.test(text);
    const at = word.lastIndex;
    if (isPath) {
      word.lastIndex = path.lastIndex;
      before = [];
      continue;
    }
    const found = word.exec(text);
    if (!found) {
      if (text.slice(at).trim() === "") return;
      throw new Error(`the scene cannot be read from character ${at}`);
    }
    if (found[1] !== undefined) {
      yield { name: found[1] };
    } else if (found[2] || found[3]) {
      before = [...before.slice(-2), found[2] ?? found[3]];
      yield { word: before.at(-1) };
    }
  }
}

/** Size, frames, rate, aspect, and the keys of every camera in the order of the file. */
export function readScene(text) {
  const scene = { width: 0, height: 0, from: 0, to: 0, rate: 0, aspect: 1, cameras: [] };
  const all = [...tokens(text)];
  const number = (i) => Number(all[i].word);
  // The settings end before the first composition; the first two words and that one are the header.
  for (let i = 3; i < all.length && all[i].word !== "COMPOSITION"; i++) {
    const setting = { FROM: "from", TO: "to" }[all[i].word];
    if (setting) scene[setting] = Math.trunc(number(i + 1));
    if (all[i].word === "FPS") scene.rate = Math.trunc(number(i + 1));
    if (all[i].word === "ASPECT") scene.aspect = Math.fround(number(i + 1));
    if (all[i].word === "RESOLUTION") [scene.width, scene.height] = [number(i + 1), number(i + 2)];
  }
  let keys = null;
  for (let i = 3; i < all.length; i++) {
    if (["CAMERA", "LIGHT", "NULL"].includes(all[i].word) && all[i + 1]?.name !== undefined) {
      keys = [];
      if (all[i].word === "CAMERA") scene.cameras.push(keys);
    } else if (keys && all[i].word === "KEY") {
      const key = Object.fromEntries(FIELDS.map((field, at) => [field, Math.fround(number(i + 2 + at))]));
      keys.push({ frame: Math.trunc(number(i + 1)), ...key });
    }
  }
  // Of several keys at one frame the one written last counts.
  scene.cameras = scene.cameras.map((found) =>
    [...new Map(found.map((key) => [key.frame, key])).values()].sort((a, b) => a.frame - b.frame));
  return scene;
}

/** Right, up and view: x to the right, y up, z away from the viewer. */
export function axesOf(pose) {
  const [h, p, b] = ANGLES.map((name) => (pose[name] * Math.PI) / 180);
  const view = [-Math.cos(p) * Math.sin(h), Math.sin(p), Math.cos(p) * Math.cos(h)];
  const right = [Math.cos(h), 0, Math.sin(h)];
  const up = [Math.sin(p) * Math.sin(h), Math.cos(p), -Math.sin(p) * Math.cos(h)];
  const mixed = (a, x, c, y) => a.map((one, i) => one * x + c[i] * y);
  return { right: mixed(right, Math.cos(b), up, -Math.sin(b)), up: mixed(up, Math.cos(b), right, Math.sin(b)), view };
}

export function poseAt(keys, frame) {
  const next = keys.findIndex((key) => key.frame > frame);
  if (next === 0) return keys[0];
  if (next < 0) return keys.at(-1);
  const [a, b] = [keys[next - 1], keys[next]];
  const part = (frame - a.frame) / (b.frame - a.frame);
  const way = Object.fromEntries(FIELDS.map((name) => [name, b[name] - a[name]]));
  if (b.frame - a.frame === 1) {
    for (const name of ANGLES) way[name] -= 360 * Math.round(way[name] / 360);
    const [one, other] = [axesOf(a).view, axesOf(b).view];
    const cosine = one.reduce((sum, value, i) => sum + value * other[i], 0);
    const turn = (Math.acos(Math.max(-1, Math.min(1, cosine))) * 180) / Math.PI;
    if (turn > CUT_DEGREES || Math.abs(way.bank) > CUT_DEGREES) return a;
  }
  return Object.fromEntries(FIELDS.map((name) => [name, a[name] + part * way[name]]));
}

/** Keys, FROM, TO and moments between them, at most about `most`, none before FROM. */
export function momentsOf(keys, scene, most) {
  const step = Math.max(1, Math.ceil((4 * keys.length) / most));
  const frames = new Set([scene.from, scene.to]);
  for (let i = 0; i < keys.length; i += step) {
    frames.add(keys[i].frame);
    if (i + 1 < keys.length) {
      // In parts of a frame that few decimals say exactly.
      for (const part of [0.21, 0.5, 0.77]) {
        frames.add(Math.round(256 * (keys[i].frame + part * (keys[i + 1].frame - keys[i].frame))) / 256);
      }
    }
  }
  if (keys.length) frames.add(keys.at(-1).frame);
  return [...frames].filter((frame) => frame >= scene.from).sort((a, b) => a - b);
}
