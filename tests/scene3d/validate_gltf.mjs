// Validates glTF files: validate_gltf.mjs NODE_MODULES FILE... One JSON array of {"file", "errors", "warnings"} with the
// codes of the messages on standard output.

import fs from "node:fs";
import path from "node:path";
import { createRequire } from "node:module";

const [folder, ...files] = process.argv.slice(2);
const validator = createRequire(import.meta.url)(path.join(folder, "gltf-validator"));

const read = [];
for (const file of files) {
  const report = await validator.validateBytes(new Uint8Array(fs.readFileSync(file)), {
    uri: path.basename(file),
    maxIssues: 0,
    externalResourceFunction: () => Promise.reject(new Error("the file is not complete in itself")),
  });
  const codes = (severity) => report.issues.messages.filter((one) => one.severity === severity).map((one) => `${one.code} ${one.pointer}`);
  read.push({ file, errors: codes(0), warnings: codes(1) });
}
console.log(JSON.stringify(read));
