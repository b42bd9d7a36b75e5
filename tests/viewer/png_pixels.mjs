import assert from "node:assert/strict";
import { inflateSync } from "node:zlib";

/** The pixels of a PNG of 8 bits a channel, by the format's description: neither program's own reader. */
export function pixelsOf(png) {
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
