// From what was dropped or chosen to files with places.
import type { PlacedFile } from "./messages.ts";

export interface Dropped {
    readonly files: readonly PlacedFile[];
    /** Sentences about what was left out. */
    readonly notes: readonly string[];
}

/** More than a folder of footage has; beyond it a page only keeps the reader waiting. */
const MOST_FILES = 50_000;

/** Something that was dropped: a file, or a folder with things inside. */
type Thing = { readonly path: string } & ({ readonly file: () => Promise<File> } | { readonly inside: () => Promise<readonly Thing[]> });

/** Of the File System Access API, what a drop needs. Not every browser has it. */
interface Handle {
    readonly kind: "file" | "directory";
    readonly name: string;
    readonly getFile?: () => Promise<File>;
    readonly values?: () => AsyncIterable<Handle>;
}
interface ItemWithHandle {
    readonly getAsFileSystemHandle?: () => Promise<Handle | null>;
}

function thingOfHandle(handle: Handle, above: string): Thing {
    const path = `${above}/${handle.name}`;
    const { getFile, values } = handle;
    if (values === undefined) {
        return { path, file: () => (getFile === undefined ? Promise.reject(new Error("no file")) : getFile.call(handle)) };
    }
    return {
        path,
        inside: async () => {
            const all: Thing[] = [];
            for await (const one of values.call(handle)) {
                all.push(thingOfHandle(one, path));
            }
            return all;
        },
    };
}

/** A browser gives the content of a folder in parts. */
async function entriesOf(folder: FileSystemDirectoryEntry): Promise<readonly FileSystemEntry[]> {
    const reader = folder.createReader();
    const all: FileSystemEntry[] = [];
    for (;;) {
        const part = await new Promise<FileSystemEntry[]>((resolve, reject) => {
            reader.readEntries(resolve, reject);
        });
        if (part.length === 0) {
            return all;
        }
        all.push(...part);
    }
}

function thingOfEntry(entry: FileSystemEntry): Thing {
    const path = entry.fullPath;
    return entry.isDirectory
        ? { path, inside: async () => (await entriesOf(entry as FileSystemDirectoryEntry)).map(thingOfEntry) }
        : {
              path,
              file: () =>
                  new Promise((resolve, reject) => {
                      (entry as FileSystemFileEntry).file(resolve, reject);
                  }),
          };
}

/**
 * Must be called while the drop is handled. Entries are the older way, and the only one of some browsers; Chromium refuses
 * to read them in a page that was opened from a disk.
 */
async function thingOf(item: DataTransferItem & ItemWithHandle): Promise<Thing | null> {
    const file = item.getAsFile();
    const entry = item.webkitGetAsEntry();
    if (entry?.isDirectory !== true) {
        return file === null ? null : { path: file.name, file: () => Promise.resolve(file) };
    }
    const handle = await item.getAsFileSystemHandle?.().catch(() => null);
    return handle?.kind === "directory" ? thingOfHandle(handle, "") : thingOfEntry(entry);
}

/** Without a slash in front, "." or "..", which the program would take for something else. */
function cleanPath(path: string): string {
    const names = path.split("/").filter((name) => name !== "" && name !== "." && name !== "..");
    return names.map((name) => name.replaceAll("\0", "")).join("/");
}

/** Every file at a place of its own; of two at one place the first stays. */
function place(found: readonly PlacedFile[], notes: string[]): Dropped {
    const places = new Map<string, PlacedFile>();
    const folders = new Set<string>();
    const twice: string[] = [];
    for (const one of found) {
        const path = cleanPath(one.path);
        const above = path.split("/").map((_, i, names) => names.slice(0, i).join("/"));
        if (path === "" || places.has(path) || folders.has(path) || above.some((folder) => places.has(folder))) {
            twice.push(path);
            continue;
        }
        above.forEach((folder) => folders.add(folder));
        places.set(path, { path, file: one.file });
    }
    if (twice.length > 0) {
        const [first = ""] = twice;
        notes.push(
            twice.length === 1
                ? `Two files are called ${first}; only the first is shown. Drop their folders to see both.`
                : `${twice.length} files have the name of another one, ${first} among them; only the first of each is shown. Drop their folders to see all.`,
        );
    }
    return { files: [...places.values()], notes };
}

export function chosenFiles(list: FileList): Dropped {
    const notes: string[] = [];
    const found = [...list].map((file) => ({ path: file.webkitRelativePath === "" ? file.name : file.webkitRelativePath, file }));
    return place(limited(found, notes), notes);
}

function limited(found: readonly PlacedFile[], notes: string[]): readonly PlacedFile[] {
    if (found.length > MOST_FILES) {
        notes.push(`There are more than ${MOST_FILES} files; the first ${MOST_FILES} are looked at.`);
    }
    return found.slice(0, MOST_FILES);
}

/** Must be called while the drop is handled; the folders are read afterwards. */
export function droppedFiles(data: DataTransfer, tell: (found: number) => void): Promise<Dropped> {
    const items = [...data.items].filter((item) => item.kind === "file");
    return collect(items.map(thingOf), tell);
}

async function collect(things: readonly Promise<Thing | null>[], tell: (found: number) => void): Promise<Dropped> {
    const notes: string[] = [];
    const found: PlacedFile[] = [];
    let unreadable = 0;
    const walk = async (thing: Thing): Promise<void> => {
        if (found.length > MOST_FILES) {
            return;
        }
        try {
            if ("inside" in thing) {
                for (const one of await thing.inside()) {
                    await walk(one);
                }
            } else {
                found.push({ path: thing.path, file: await thing.file() });
                if (found.length % 100 === 0) {
                    tell(found.length);
                }
            }
        } catch {
            unreadable += 1;
        }
    };
    for (const thing of things) {
        const dropped = await thing;
        if (dropped !== null) {
            await walk(dropped);
        }
    }
    if (unreadable > 0) {
        const what = unreadable === 1 ? "one file or folder" : `${unreadable} files or folders`;
        notes.push(`The browser could not read ${what}. The buttons “Choose files” and “Choose a folder” may.`);
    }
    return place(limited(found, notes), notes);
}
