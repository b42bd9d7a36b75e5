// From what was dropped or chosen to files with places.
import type { PlacedFile } from "./messages.ts";

export interface Dropped {
    readonly files: readonly PlacedFile[];
    /** Sentences about what was left out. */
    readonly notes: readonly string[];
}

/** More than a folder of footage has; beyond it a page only keeps the reader waiting. */
const MOST_FILES = 50_000;

function fileOf(entry: FileSystemFileEntry): Promise<File> {
    return new Promise((resolve, reject) => {
        entry.file(resolve, reject);
    });
}

/** A browser gives the content of a folder in parts. */
async function entriesOf(folder: FileSystemDirectoryEntry): Promise<FileSystemEntry[]> {
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
    const entries = [...data.items]
        .filter((item) => item.kind === "file")
        .map((item) => ({ entry: item.webkitGetAsEntry(), file: item.getAsFile() }));
    return collect(entries, tell);
}

async function collect(
    entries: readonly { entry: FileSystemEntry | null; file: File | null }[],
    tell: (found: number) => void,
): Promise<Dropped> {
    const notes: string[] = [];
    const found: PlacedFile[] = [];
    let unreadable = 0;
    const walk = async (entry: FileSystemEntry): Promise<void> => {
        if (found.length > MOST_FILES) {
            return;
        }
        try {
            if (entry.isDirectory) {
                for (const inside of await entriesOf(entry as FileSystemDirectoryEntry)) {
                    await walk(inside);
                }
            } else {
                found.push({ path: entry.fullPath, file: await fileOf(entry as FileSystemFileEntry) });
                if (found.length % 100 === 0) {
                    tell(found.length);
                }
            }
        } catch {
            unreadable += 1;
        }
    };
    for (const { entry, file } of entries) {
        if (entry !== null) {
            await walk(entry);
        } else if (file !== null) {
            found.push({ path: file.name, file });
        }
    }
    if (unreadable > 0) {
        notes.push(`The browser could not read ${unreadable === 1 ? "one file or folder" : `${unreadable} files or folders`}.`);
    }
    return place(limited(found, notes), notes);
}
