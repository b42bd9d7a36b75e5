// What the page and its worker say to each other. Every request has a number, which its reply repeats.

/** A dropped file at the place that it has among the others: "shot/render/glow0017.tif". */
export interface PlacedFile {
    readonly path: string;
    readonly file: File;
}

/** The folder of the program's file system that has the dropped files. */
export const FOLDER = "/dropped";

/** The plug-in is part of the program: it is there under any name. */
export const BUNDLE = "/VORTANXR_AE";

export type Kind = "texture" | "scene" | "image" | "other";

/** As in src/viewer/texture_view.h. */
export const LOOKS = ["colour", "alpha", "straight", "premultiplied"] as const;
export type Look = (typeof LOOKS)[number];

export interface Window {
    readonly left: number;
    readonly top: number;
    readonly step: number;
    readonly width: number;
    readonly height: number;
    readonly look: Look;
    readonly alpha: number;
}

export type Task =
    | { readonly kind: "add"; readonly files: readonly PlacedFile[] }
    | { readonly kind: "open"; readonly program: WebAssembly.Module }
    | { readonly kind: "run"; readonly arguments: readonly string[]; readonly output?: string }
    | { readonly kind: "look"; readonly path: string; readonly as: Kind }
    | { readonly kind: "scene"; readonly path: string; readonly search: boolean }
    | {
          readonly kind: "frame";
          readonly path: string;
          readonly search: boolean;
          readonly composition: number;
          readonly frame: number;
      }
    | { readonly kind: "draw"; readonly window: Window }
    | { readonly kind: "values"; readonly x: number; readonly y: number }
    | { readonly kind: "save"; readonly look: Look; readonly alpha: number };

/** One object of "diagnostics" in the JSON of `vxr check`, as far as the page uses it. */
export interface Diagnostic {
    readonly code: string;
    readonly severity: string;
    readonly reason?: string;
    readonly message?: string;
    readonly at?: { readonly file?: unknown };
}

export interface Picture {
    readonly width: number;
    readonly height: number;
    readonly channels: number;
    readonly alphas: readonly string[];
}

/** A composition of a scene. */
export interface Composition {
    readonly name: string;
    readonly frames: number;
}

/** What there is to see of a file, which is open from then on. */
export interface Looked {
    readonly picture: Picture | null;
    readonly diagnostics: readonly Diagnostic[];
    readonly problem: string;
}

export interface Ran {
    readonly code: number;
    readonly text: string;
    readonly messages: string;
    /** The file that the program wrote, if one was asked for and it did. */
    readonly output?: Uint8Array<ArrayBuffer>;
}

/** What became of a task, in the order of `Task`. */
export interface Results {
    add: null;
    /** Of the files that were added, in their order. */
    open: readonly Kind[];
    run: Ran;
    look: Looked;
    /** From the outermost one on; none if the scene is not imported. */
    scene: readonly Composition[];
    frame: Looked;
    draw: Uint8ClampedArray<ArrayBuffer>;
    values: readonly number[];
    save: Uint8Array<ArrayBuffer>;
}

export interface Request {
    readonly id: number;
    readonly task: Task;
}

export type Reply =
    | { readonly id: number; readonly result: Results[keyof Results] }
    /** `broken`: the program cannot be used any more. */
    | { readonly id: number; readonly error: string; readonly broken: boolean }
    | { readonly id: number; readonly done: number; readonly of: number };
