// Reads USD files with an independent reader and prints each as that reader understood it: read_usd.mjs NODE_MODULES FILE...
// One JSON array of {"file", "text"} on standard output.

import fs from "node:fs";
import path from "node:path";
import { pathToFileURL } from "node:url";

const [folder, ...files] = process.argv.slice(2);
const reader = path.join(folder, "tinyusdz");

// The reader is made for browsers. It asks only whether it runs in one.
globalThis.window = globalThis;
const node = globalThis.process;
globalThis.process = undefined;
const log = console.log;
console.log = () => {};
const open = (await import(pathToFileURL(path.join(reader, "tinyusdz.js")))).default;
const usd = await open({ wasmBinary: fs.readFileSync(path.join(reader, "tinyusdz.wasm")) });
globalThis.process = node;

const read = files.map((file) => {
  const loader = new usd.TinyUSDZLoaderNative();
  if (!loader.loadAsLayerFromBinary(fs.readFileSync(file), path.basename(file))) {
    return { file, error: loader.error() };
  }
  return { file, text: loader.layerToString() };
});
log(JSON.stringify(read));
