// The program that Emscripten made of src/viewer/viewer_program.cpp.

/** Of Emscripten's file system, what a file system of one's own needs. */
export interface FileNode {
    id: number;
    mode: number;
    size: number;
    node_ops: object;
    stream_ops: object;
    file: File | null;
    inside: Map<string, FileNode>;
}

export interface FileSystem {
    createNode(parent: FileNode | null, name: string, mode: number, device: number): FileNode;
    ErrnoError: new (code: number) => Error;
    isFile(mode: number): boolean;
    mkdir(path: string): void;
    mount(type: { mount: (mount: unknown) => FileNode }, options: object, at: string): void;
    chdir(path: string): void;
    writeFile(path: string, bytes: Uint8Array): void;
    readFile(path: string): Uint8Array<ArrayBuffer>;
    unlink(path: string): void;
    analyzePath(path: string): { exists: boolean };
}

export interface Program {
    readonly FS: FileSystem;
    readonly HEAPU8: Uint8Array;
    _malloc(size: number): number;
    _free(place: number): void;
    _viewer_kind(bytes: number, size: number): number;
    _viewer_run(argumentList: number, count: number): number;
    _viewer_open_texture(path: number): number;
    _viewer_new_picture(width: number, height: number, channels: number, withAlpha: number): number;
    _viewer_alpha(alpha: number): number;
    _viewer_open_scene(path: number, search: number, bundle: number): number;
    _viewer_files_to_decode(composition: number, frame: number): number;
    _viewer_keep_decoded(path: number, problem: number): number;
    _viewer_draw_frame(composition: number, frame: number): number;
    _viewer_draw(left: number, top: number, step: number, width: number, height: number, look: number, alpha: number): number;
    _viewer_values(x: number, y: number): number;
    _viewer_plane(look: number, alpha: number): number;
    _viewer_text(): number;
    _viewer_text_size(): number;
    _viewer_messages(): number;
    _viewer_messages_size(): number;
    _viewer_bytes(): number;
    _viewer_bytes_size(): number;
}

/** What Emscripten's script gives. */
export type CreateProgram = (options: object) => Promise<Program>;

const coder = new TextEncoder();
const decoder = new TextDecoder();

/** Calls `use` with bytes in the program's memory. */
export function withBytes<Result>(program: Program, bytes: Uint8Array, use: (place: number) => Result): Result {
    const place = program._malloc(bytes.length);
    if (place === 0) {
        throw new Error("there is no memory left");
    }
    try {
        program.HEAPU8.set(bytes, place);
        return use(place);
    } finally {
        program._free(place);
    }
}

/** Texts, each with a zero behind it. */
export function terminated(texts: readonly string[]): Uint8Array {
    return coder.encode(texts.map((text) => `${text.replaceAll("\0", "")}\0`).join(""));
}

/** A copy of what the last call gave. */
export function bytesOf(program: Program): Uint8Array<ArrayBuffer> {
    const place = program._viewer_bytes();
    return new Uint8Array(program.HEAPU8.subarray(place, place + program._viewer_bytes_size()));
}

export function textOf(program: Program): string {
    const place = program._viewer_text();
    return decoder.decode(program.HEAPU8.subarray(place, place + program._viewer_text_size()));
}

export function messagesOf(program: Program): string {
    const place = program._viewer_messages();
    return decoder.decode(program.HEAPU8.subarray(place, place + program._viewer_messages_size()));
}
