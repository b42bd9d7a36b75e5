// Footage as pixels: by a library where it keeps every byte, else by the browser.
import { decodeTga } from "@lunapaint/tga-codec";
import { decode as decodePng } from "fast-png";
import { decode as readTiff, decodeImage as decodeTiff, toRGBA8 } from "utif2";

export interface Image {
    readonly width: number;
    readonly height: number;
    /** Not multiplied by alpha; 8 bits each. */
    readonly rgba: Uint8Array | Uint8ClampedArray;
    readonly hasAlpha: boolean;
    /** What the picture does not show, or nothing. */
    readonly note: string;
}

/** A page has no more memory than this is good for. */
const MOST_PIXELS = 1 << 26;
const MOST_BYTES = 1 << 28;

function refuseLarge(width: number, height: number): void {
    if (!(width > 0 && height > 0)) {
        throw new Error("the file says that the picture has no pixels");
    }
    if (width * height > MOST_PIXELS) {
        throw new Error(`the picture of ${width} x ${height} pixels is too large for this page, which shows footage of up to 2^26 pixels`);
    }
}

function fromPng(bytes: Uint8Array): Image {
    const header = new DataView(bytes.buffer, bytes.byteOffset, bytes.byteLength);
    refuseLarge(header.getUint32(16), header.getUint32(20));
    const png = decodePng(bytes);
    const { width, height, data, channels, palette } = png;
    const shift = png.depth === 16 ? 8 : 0;
    if (png.depth < 8 && palette === undefined) {
        throw new Error("fewer than 8 bits");
    }
    const rgba = new Uint8Array(width * height * 4);
    const hasAlpha = palette === undefined ? channels === 2 || channels === 4 : palette.some((one) => one.length === 4);
    for (let pixel = 0; pixel < width * height; pixel += 1) {
        const from = pixel * channels;
        const to = pixel * 4;
        if (palette !== undefined) {
            const colour = palette[data[from] ?? 0] ?? [0, 0, 0];
            rgba.set([colour[0] ?? 0, colour[1] ?? 0, colour[2] ?? 0, colour[3] ?? 255], to);
            continue;
        }
        const grey = channels < 3;
        rgba[to] = (data[from] ?? 0) >> shift;
        rgba[to + 1] = (data[grey ? from : from + 1] ?? 0) >> shift;
        rgba[to + 2] = (data[grey ? from : from + 2] ?? 0) >> shift;
        rgba[to + 3] = hasAlpha ? (data[from + channels - 1] ?? 0) >> shift : 255;
    }
    return { width, height, rgba, hasAlpha, note: shift === 0 ? "" : "16 bits a channel are shown as 8" };
}

async function fromTga(bytes: Uint8Array): Promise<Image> {
    const header = new DataView(bytes.buffer, bytes.byteOffset, bytes.byteLength);
    refuseLarge(header.getUint16(12, true), header.getUint16(14, true));
    const { image } = await decodeTga(bytes);
    const bits = header.getUint8(16);
    const hasAlpha = bits === 32 || (bits === 16 && (header.getUint8(17) & 15) > 0);
    return { width: image.width, height: image.height, rgba: image.data, hasAlpha, note: "" };
}

function fromTiff(bytes: Uint8Array<ArrayBuffer>): Image {
    const pages = readTiff(bytes.buffer);
    const page = pages[0];
    const side = (tag: string): number => {
        const value: unknown = page?.[tag];
        return Array.isArray(value) && typeof value[0] === "number" ? value[0] : 0;
    };
    if (page === undefined) {
        throw new Error("the file has no picture");
    }
    refuseLarge(side("t256"), side("t257"));
    decodeTiff(bytes.buffer, page);
    const { width, height } = page;
    const samples = side("t277");
    const rgba = toRGBA8(page);
    if (rgba.length !== width * height * 4) {
        throw new Error("the file does not hold the whole picture");
    }
    const hasAlpha = samples === 4 || samples === 2;
    const note = [
        samples > 4 ? "channels beyond the fourth are not shown" : "",
        side("t258") > 8 ? "more than 8 bits a channel are shown as 8" : "",
        pages.length > 1 ? "only the first picture of the file is shown" : "",
    ];
    return { width, height, rgba, hasAlpha, note: note.filter((one) => one !== "").join("; ") };
}

async function fromBrowser(file: File): Promise<Image> {
    const bitmap = await createImageBitmap(file, { colorSpaceConversion: "none", premultiplyAlpha: "none" });
    try {
        const { width, height } = bitmap;
        refuseLarge(width, height);
        const pen = new OffscreenCanvas(width, height).getContext("2d", { willReadFrequently: true });
        if (pen === null) {
            throw new Error("the browser has no room to draw it");
        }
        pen.drawImage(bitmap, 0, 0);
        const rgba = pen.getImageData(0, 0, width, height).data;
        const hasAlpha = rgba.some((value, i) => i % 4 === 3 && value !== 255);
        const note = hasAlpha ? "the browser keeps colours under a low alpha less exactly" : "";
        return { width, height, rgba, hasAlpha, note };
    } finally {
        bitmap.close();
    }
}

function beginsWith(bytes: Uint8Array, ...beginning: number[]): boolean {
    return beginning.every((value, i) => bytes[i] === value);
}

/** Rejects with a sentence about why there is no picture. */
export async function decodeImage(file: File, path: string): Promise<Image> {
    const format = /\.([^./]+)$/.exec(path)?.[1]?.toUpperCase() ?? "unknown";
    if (file.size > MOST_BYTES) {
        throw new Error("the file is too large for this page, which shows footage of up to 256 MiB");
    }
    let bytes;
    try {
        bytes = new Uint8Array(await file.arrayBuffer());
    } catch {
        throw new Error("the browser may not read the file any more; drop it again");
    }
    try {
        if (beginsWith(bytes, 0x89, 0x50, 0x4e, 0x47)) {
            try {
                return fromPng(bytes);
            } catch {
                return await fromBrowser(file);
            }
        }
        if (beginsWith(bytes, 0x49, 0x49, 0x2a, 0) || beginsWith(bytes, 0x4d, 0x4d, 0, 0x2a)) {
            return fromTiff(bytes);
        }
        return await (format === "TGA" ? fromTga(bytes) : fromBrowser(file));
    } catch (error) {
        const reason = error instanceof Error && error.message !== "" && !(error instanceof DOMException) ? error.message : "";
        throw new Error(
            `this page cannot show the picture: ${reason === "" ? `neither it nor the browser reads this ${format} file` : reason}`,
        );
    }
}
