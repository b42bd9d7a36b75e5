// What the viewer uses of packages without types of their own, or whose types need others.

declare module "utif2" {
    export interface Page {
        width: number;
        height: number;
        readonly [tag: string]: unknown;
    }
    export function decode(bytes: ArrayBuffer): Page[];
    export function decodeImage(bytes: ArrayBuffer, page: Page): void;
    export function toRGBA8(page: Page): Uint8Array;
}

declare module "@lunapaint/tga-codec" {
    export function decodeTga(
        bytes: Uint8Array,
        options?: { readonly detectAmbiguousAlphaChannel?: boolean },
    ): Promise<{ readonly image: { readonly width: number; readonly height: number; readonly data: Uint8Array } }>;
}

declare module "fast-png" {
    export interface Decoded {
        readonly width: number;
        readonly height: number;
        readonly data: Uint8Array | Uint8ClampedArray | Uint16Array;
        readonly depth: number;
        readonly channels: number;
        readonly palette?: readonly (readonly number[])[];
    }
    export function decode(bytes: Uint8Array): Decoded;
    export function encode(image: {
        readonly width: number;
        readonly height: number;
        readonly data: Uint8Array;
        readonly channels: number;
        readonly depth: number;
    }): Uint8Array;
}

// What Emscripten makes; build.js puts it in.
declare module "vxr_viewer" {
    const createProgram: unknown;
    export default createProgram;
}
