// Dropped files as a file system of the program: read when they are asked for, a piece at a time, and never written.
import type { PlacedFile } from "./messages.ts";
import type { FileNode, FileSystem } from "./program.ts";

/** Browsers have it in workers only. */
declare class FileReaderSync {
    readAsArrayBuffer(blob: Blob): ArrayBuffer;
}

const FOLDER = 0o040555;
const FILE = 0o100444;
const NO_ENTRY = 44;
const NOT_PERMITTED = 63;
const NOT_VALID = 28;
const NOT_READABLE = 29;

/** The program reads kilobytes; asking the browser for each of them would take longer than anything else. */
const PIECE_BYTES = 1 << 23;

interface Stream {
    node: FileNode;
    position: number;
    piece?: { from: number; bytes: Uint8Array };
}

/** Mounts the files at `at`, each at its path below it. */
export function mountFiles(system: FileSystem, files: readonly PlacedFile[], at: string): void {
    const reader = new FileReaderSync();
    const fail = (code: number): never => {
        throw new system.ErrnoError(code);
    };
    const refuse = (): never => fail(NOT_PERMITTED);

    const onNodes = {
        getattr: (node: FileNode) => ({
            dev: 2,
            ino: node.id,
            mode: node.mode,
            nlink: 1,
            uid: 0,
            gid: 0,
            rdev: 0,
            size: node.size,
            atime: new Date(0),
            mtime: new Date(0),
            ctime: new Date(0),
            blksize: 4096,
            blocks: Math.ceil(node.size / 4096),
        }),
        setattr: refuse,
        lookup: () => fail(NO_ENTRY),
        mknod: refuse,
        rename: refuse,
        unlink: refuse,
        rmdir: refuse,
        readdir: (node: FileNode) => [".", "..", ...node.inside.keys()],
        symlink: refuse,
        readlink: () => fail(NOT_VALID),
    };
    const pieceAt = (stream: Stream, position: number): { from: number; bytes: Uint8Array } => {
        const from = position - (position % PIECE_BYTES);
        if (stream.piece?.from !== from) {
            const part = stream.node.file?.slice(from, from + PIECE_BYTES) ?? new Blob();
            try {
                stream.piece = { from, bytes: new Uint8Array(reader.readAsArrayBuffer(part)) };
            } catch {
                // Moved or changed since it was dropped.
                return fail(NOT_READABLE);
            }
        }
        return stream.piece;
    };
    const onStreams = {
        read: (stream: Stream, into: Uint8Array, offset: number, length: number, position: number) => {
            let done = 0;
            while (done < length && position + done < stream.node.size) {
                const piece = pieceAt(stream, position + done);
                const begin = position + done - piece.from;
                const count = Math.min(length - done, piece.bytes.length - begin);
                if (count <= 0) {
                    break;
                }
                into.set(piece.bytes.subarray(begin, begin + count), offset + done);
                done += count;
            }
            return done;
        },
        write: refuse,
        llseek: (stream: Stream, offset: number, whence: number) => {
            const from = [0, stream.position, stream.node.size][whence] ?? fail(NOT_VALID);
            return from + offset < 0 ? fail(NOT_VALID) : from + offset;
        },
    };

    const make = (parent: FileNode | null, name: string, file: File | null): FileNode => {
        const node = system.createNode(parent, name, file === null ? FOLDER : FILE, 0);
        node.node_ops = onNodes;
        node.stream_ops = onStreams;
        node.file = file;
        node.size = file === null ? 4096 : file.size;
        node.inside = new Map();
        parent?.inside.set(name, node);
        return node;
    };
    const mount = (): FileNode => {
        const root = make(null, "/", null);
        for (const { path, file } of files) {
            const names = path.split("/");
            const last = names.pop() ?? "";
            let folder = root;
            for (const name of names) {
                folder = folder.inside.get(name) ?? make(folder, name, null);
            }
            make(folder, last, file);
        }
        return root;
    };
    system.mkdir(at);
    system.mount({ mount }, {}, at);
}
