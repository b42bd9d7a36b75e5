// The worker: it has the program and the files, and does one task after the other.
import { encode } from "fast-png";
import { decodeImage, type Image } from "./images.ts";
import { mountFiles } from "./dropped_files.ts";
import {
    BUNDLE,
    FOLDER,
    LOOKS,
    type Composition,
    type Diagnostic,
    type Kind,
    type Looked,
    type PlacedFile,
    type Reply,
    type Request,
    type Results,
    type Task,
} from "./messages.ts";
import { bytesOf, messagesOf, terminated, textOf, withBytes, type CreateProgram, type Program } from "./program.ts";
import madeByEmscripten from "vxr_viewer";

const createProgram = madeByEmscripten as CreateProgram;

/** Enough of a file to know its kind. */
const BEGINNING_BYTES = 64;
/** Names of images that are worth trying to show. */
const IMAGES = /\.(png|jpe?g|jfif|gif|webp|bmp|avif|ico|svg|tga|tiff?|rla|rpf|sgi|rgb|pic|iff|tdi|exr|hdr|psd|dpx|cin|dds)$/i;

let program: Program | null = null;
/** The scene whose frames are open in the program. */
let openScene = "";
const NOTHING = { width: 0, height: 0 };
/** The size of the picture that is open. */
let shown = NOTHING;
const placed: PlacedFile[] = [];
const files = new Map<string, File>();

function running(): Program {
    if (program === null) {
        throw new Error("nothing is open");
    }
    return program;
}

function indexOfLook(look: (typeof LOOKS)[number]): number {
    return LOOKS.indexOf(look);
}

/** What a file is by its first bytes, whatever its name. */
async function kindByContent(file: File): Promise<Kind> {
    try {
        const bytes = new Uint8Array(await file.slice(0, BEGINNING_BYTES).arrayBuffer());
        const number = withBytes(running(), bytes, (place) => running()._viewer_kind(place, bytes.length));
        return (["other", "texture", "scene"] as const)[number] ?? "other";
    } catch {
        return "other";
    }
}

/** For the list. Footage comes in thousands of files, of which none is opened for that. */
async function kindOf(file: File, path: string): Promise<Kind> {
    if (IMAGES.test(path)) {
        return "image";
    }
    const known = await kindByContent(file);
    if (known !== "other") {
        return known;
    }
    return /\.txl$/i.test(path) ? "texture" : /\.aec$/i.test(path) ? "scene" : "other";
}

async function open(module: WebAssembly.Module, tell: (done: number, of: number) => void): Promise<readonly Kind[]> {
    const made = await createProgram({
        instantiateWasm: (imports: WebAssembly.Imports, ready: (instance: WebAssembly.Instance) => void) => {
            void WebAssembly.instantiate(module, imports).then(ready);
            return {};
        },
        // A program that stops says so by an exception, too.
        print: () => undefined,
        printErr: () => undefined,
    });
    program = made;
    mountFiles(made.FS, placed, FOLDER);
    made.FS.chdir(FOLDER);
    const kinds: Kind[] = [];
    for (const { path, file } of placed) {
        kinds.push(await kindOf(file, path));
        if (kinds.length % 100 === 0) {
            tell(kinds.length, placed.length);
        }
    }
    return kinds;
}

function run(list: readonly string[], output: string | undefined): Results["run"] {
    const { FS } = running();
    openScene = "";
    const code = withBytes(running(), terminated(list), (place) => running()._viewer_run(place, list.length));
    const ran = { code, text: textOf(running()), messages: messagesOf(running()) };
    if (output === undefined || !FS.analyzePath(output).exists) {
        return ran;
    }
    const bytes = new Uint8Array(FS.readFile(output));
    FS.unlink(output);
    return { ...ran, output: bytes };
}

interface TextureFacts {
    readonly diagnostics: readonly Diagnostic[];
    readonly width_px: number;
    readonly height_px: number;
    readonly channels: number;
    readonly alphas: readonly (string | { readonly bytes: string })[];
}

function lookAtTexture(path: string): Looked {
    const opened = withBytes(running(), terminated([path]), (place) => running()._viewer_open_texture(place));
    const text = textOf(running());
    if (text === "") {
        return { picture: null, diagnostics: [], problem: messagesOf(running()) };
    }
    const facts = JSON.parse(text) as TextureFacts;
    const picture = {
        width: facts.width_px,
        height: facts.height_px,
        channels: facts.channels,
        alphas: opened === 0 ? [] : facts.alphas.map((name) => (typeof name === "string" ? name : name.bytes)),
    };
    return { picture: opened === 0 ? null : picture, diagnostics: facts.diagnostics, problem: "" };
}

/** Hands the program a picture. False when there is no memory for it. */
function openPicture({ width, height, rgba, hasAlpha }: Image): boolean {
    const colour = running()._viewer_new_picture(width, height, 3, hasAlpha ? 1 : 0);
    if (colour === 0) {
        return false;
    }
    const heap = running().HEAPU8;
    const alpha = running()._viewer_alpha(0);
    for (let pixel = 0; pixel < width * height; pixel += 1) {
        heap[colour + 3 * pixel] = rgba[4 * pixel] ?? 0;
        heap[colour + 3 * pixel + 1] = rgba[4 * pixel + 1] ?? 0;
        heap[colour + 3 * pixel + 2] = rgba[4 * pixel + 2] ?? 0;
        if (hasAlpha) {
            heap[alpha + pixel] = rgba[4 * pixel + 3] ?? 0;
        }
    }
    return true;
}

async function lookAtImage(path: string): Promise<Looked> {
    const file = files.get(path);
    if (file === undefined) {
        return { picture: null, diagnostics: [], problem: "the file is not there any more" };
    }
    if ((await kindByContent(file)) === "texture") {
        return lookAtTexture(path);
    }
    let image;
    try {
        image = await decodeImage(file, path);
    } catch (error) {
        return { picture: null, diagnostics: [], problem: error instanceof Error ? error.message : String(error) };
    }
    const { width, height, hasAlpha } = image;
    if (!openPicture(image)) {
        return { picture: null, diagnostics: [], problem: "there is not enough memory for the picture" };
    }
    return {
        picture: { width, height, channels: 3, alphas: hasAlpha ? ["Alpha"] : [] },
        diagnostics: [],
        problem: image.note,
    };
}

/** Calls `use` with texts in the program's memory. */
function withTexts<Result>(texts: readonly string[], use: (...places: readonly number[]) => Result): Result {
    let offset = 0;
    const offsets = texts.map((text) => {
        const own = offset;
        offset += terminated([text]).length;
        return own;
    });
    return withBytes(running(), terminated(texts), (place) => use(...offsets.map((own) => place + own)));
}

function openFrames(path: string, search: boolean): readonly Composition[] {
    openScene = "";
    const opened = withTexts([path, search ? FOLDER : "", BUNDLE], (name = 0, folder = 0, bundle = 0) =>
        running()._viewer_open_scene(name, folder, bundle),
    );
    if (opened === 0) {
        throw new Error(messagesOf(running()));
    }
    openScene = `${search} ${path}`;
    return JSON.parse(textOf(running())) as readonly Composition[];
}

/** Decodes a file for the program, which draws colour bars for what cannot be decoded. */
async function decodeFor(path: string): Promise<void> {
    let problem = "";
    try {
        const name = path.startsWith(`${FOLDER}/`) ? path.slice(FOLDER.length + 1) : path;
        const file = files.get(name);
        if (file === undefined) {
            problem = "it is not among what was dropped";
        } else if (!openPicture(await decodeImage(file, name))) {
            problem = "there is not enough memory for it";
        }
    } catch (error) {
        problem = error instanceof Error ? error.message : String(error);
    }
    if (withTexts([path, problem], (name = 0, why = 0) => running()._viewer_keep_decoded(name, why)) === 0) {
        throw new Error(messagesOf(running()));
    }
}

async function drawFrame(task: Extract<Task, { kind: "frame" }>, tell: (done: number, of: number) => void): Promise<Looked> {
    const { path, search, composition, frame } = task;
    // Decoding takes the place of the picture that was open.
    shown = NOTHING;
    if (openScene !== `${search} ${path}`) {
        openFrames(path, search);
    }
    if (running()._viewer_files_to_decode(composition, frame) === 0) {
        throw new Error(messagesOf(running()));
    }
    const wanted = JSON.parse(textOf(running())) as readonly string[];
    for (const [done, file] of wanted.entries()) {
        tell(done, wanted.length);
        await decodeFor(file);
    }
    const drawn = running()._viewer_draw_frame(composition, frame);
    const text = textOf(running());
    if (text === "") {
        return { picture: null, diagnostics: [], problem: messagesOf(running()) };
    }
    const { diagnostics, width_px: width, height_px: height } = JSON.parse(text) as TextureFacts;
    return { picture: drawn === 0 ? null : { width, height, channels: 3, alphas: ["alpha"] }, diagnostics, problem: "" };
}

/** What is open from now on. */
function seen(looked: Looked): Looked {
    shown = looked.picture ?? NOTHING;
    return looked;
}

function save(lookIndex: number, alpha: number): Uint8Array<ArrayBuffer> {
    const channels = running()._viewer_plane(lookIndex, alpha);
    const messages = messagesOf(running());
    if (channels === 0 || messages !== "") {
        throw new Error("there is not enough memory to save the picture");
    }
    const data = bytesOf(running());
    return new Uint8Array(encode({ ...shown, data, channels, depth: 8 }));
}

async function perform(task: Task, tell: (done: number, of: number) => void): Promise<Results[keyof Results]> {
    switch (task.kind) {
        case "add":
            for (const one of task.files) {
                placed.push(one);
                files.set(one.path, one.file);
            }
            return null;
        case "open":
            return open(task.program, tell);
        case "run":
            return run(task.arguments, task.output);
        case "look":
            return seen(task.as === "texture" ? lookAtTexture(task.path) : await lookAtImage(task.path));
        case "scene":
            return openFrames(task.path, task.search);
        case "frame":
            return seen(await drawFrame(task, tell));
        case "draw": {
            const { left, top, step, width, height } = task.window;
            const drawn = running()._viewer_draw(left, top, step, width, height, indexOfLook(task.window.look), task.window.alpha);
            if (drawn === 0) {
                throw new Error(messagesOf(running()));
            }
            return new Uint8ClampedArray(bytesOf(running()).buffer);
        }
        case "values":
            return running()._viewer_values(task.x, task.y) === 0 ? [] : [...bytesOf(running())];
        case "save":
            return save(indexOfLook(task.look), task.alpha);
    }
}

function bulkOf(result: Results[keyof Results]): Transferable[] {
    if (result instanceof Uint8Array || result instanceof Uint8ClampedArray) {
        return [result.buffer];
    }
    return result !== null && "output" in result ? [result.output.buffer] : [];
}

const say = (reply: Reply, transfer: Transferable[] = []): void => {
    postMessage(reply, { transfer });
};

// One after the other: a task may wait for the browser.
let last: Promise<void> = Promise.resolve();
addEventListener("message", (event: MessageEvent<Request>) => {
    const { id, task } = event.data;
    last = last.then(async () => {
        try {
            const result = await perform(task, (done, of) => {
                say({ id, done, of });
            });
            say({ id, result }, bulkOf(result));
        } catch (error) {
            // What the readers refuse is a result; an error of the machine leaves a program that cannot go on.
            const broken = error instanceof WebAssembly.RuntimeError || error instanceof RangeError;
            say({ id, error: error instanceof Error ? error.message : String(error), broken });
        }
    });
});
