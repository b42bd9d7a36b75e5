// The JSON in the page; docs/schema/report.json describes it.

/** A text that is not UTF-8 comes as its bytes. */
export type Text = string | { readonly bytes: string };
/** JSON has no word for some numbers. */
export type Numeric = number | "nan" | "inf" | "-inf";

export interface Keys {
    readonly frame: readonly number[];
    readonly holds: readonly boolean[];
    readonly x: readonly Numeric[];
    readonly y: readonly Numeric[];
    readonly z: readonly Numeric[];
    readonly heading: readonly Numeric[];
    readonly pitch: readonly Numeric[];
    readonly bank: readonly Numeric[];
    readonly view_angle: readonly Numeric[];
    readonly target_distance: readonly Numeric[];
}

export type Column = Exclude<keyof Keys, "frame" | "holds">;

export interface SceneObject {
    readonly kind: "camera" | "light" | "null";
    readonly name: Text;
    readonly keys_in_scene: number;
    readonly keys: Keys;
    readonly light?: Text;
}

export interface Shot {
    readonly width_px: number;
    readonly height_px: number;
    readonly pixel_aspect: Numeric;
    readonly from: number;
    readonly to: number;
    readonly rate_fps: Numeric;
}

export interface Scene {
    readonly scene: Text;
    readonly shot: Shot | null;
    readonly objects: readonly SceneObject[];
    readonly objects_in_scene: number;
    readonly pictures: { readonly frames: readonly { readonly frame: number; readonly url: string }[] };
}

interface Report {
    readonly schema: 1;
    readonly scenes: readonly Scene[];
}

export function scenesOfPage(page: Document = document): readonly Scene[] {
    const element = page.getElementById("data");
    return element === null ? [] : (JSON.parse(element.textContent) as Report).scenes;
}

export function shown(text: Text): string {
    return typeof text === "string" ? text : `bytes ${text.bytes}`;
}

export function numberOf(value: Numeric | undefined): number {
    return typeof value === "number" ? value : NaN;
}

/** The numbers of an object at a frame, as the scene means them: straight from key to key, and still where a key holds. */
export function valueAt(keys: Keys, column: Column, frame: number): number {
    const frames = keys.frame;
    const values = keys[column];
    let low = 0;
    let high = frames.length;
    while (low < high) {
        const middle = (low + high) >> 1;
        if ((frames[middle] ?? 0) <= frame) {
            low = middle + 1;
        } else {
            high = middle;
        }
    }
    const after = frames[low];
    const before = frames[low - 1];
    if (before === undefined) {
        return numberOf(values[0]);
    }
    const value = numberOf(values[low - 1]);
    if (after === undefined || keys.holds[low - 1] === true) {
        return value;
    }
    return value + (numberOf(values[low]) - value) * ((frame - before) / (after - before));
}

/** A number for people. */
export function inWords(value: number): string {
    if (!Number.isFinite(value)) {
        return "none";
    }
    const digits = Math.abs(value) >= 1000 ? 0 : Math.abs(value) >= 10 ? 1 : 3;
    return String(Number(value.toFixed(digits)));
}
