import { button, element } from "../elements.ts";
import { chosenFiles, droppedFiles, type Dropped } from "./dropping.ts";
import type { Kind, PlacedFile } from "./messages.ts";
import { Stopped } from "./session.ts";
import { Session } from "./session.ts";
import { showItem } from "./items.ts";

function byId(id: string): HTMLElement {
    const found = document.getElementById(id);
    if (found === null) {
        throw new Error(`the page has no ${id}`);
    }
    return found;
}

const MOST_ROWS = 200;
const TITLES: readonly (readonly [kind: Kind, title: string])[] = [
    ["scene", "Scenes"],
    ["texture", "Textures"],
    ["image", "Images"],
    ["other", "Other files"],
];

const status = byId("status");
const list = byId("list");
const detail = byId("detail");
const cancel = button("Cancel", () => {
    session?.stop();
    say("Cancelled. Drop files again, or choose one from the list.");
});
byId("working").append(cancel);

let session: Session | null = null;
let shown: HTMLElement | null = null;

function say(text: string, busy = false): void {
    status.textContent = text;
    byId("working").hidden = !busy;
}

function sayNotes(notes: readonly string[]): void {
    byId("notes").replaceChildren(...notes.map((note) => element("p", { class: "problem" }, note)));
}

async function choose(row: HTMLElement, file: PlacedFile, kind: Kind): Promise<void> {
    const used = session;
    if (used === null) {
        return;
    }
    shown?.removeAttribute("aria-current");
    shown = row;
    row.setAttribute("aria-current", "true");
    say(`Reading ${file.path}…`, true);
    const place = element("article", { class: "item" });
    detail.replaceChildren(place);
    try {
        await showItem(place, used, file, kind);
        if (shown === row && used === session) {
            say(`${file.path} is shown.`);
        }
    } catch (error) {
        if (used !== session) {
            return;
        }
        const reason = error instanceof Error ? error.message : String(error);
        if (!(error instanceof Stopped && reason === "stopped")) {
            place.replaceChildren(
                element("h2", {}, file.path),
                element("p", { class: "problem" }, `The file cannot be shown: ${inWords(reason)}`),
            );
            say(`${file.path} cannot be shown.`);
        }
    }
}

function inWords(reason: string): string {
    if (/memory|allocation|OOM|Array buffer/i.test(reason)) {
        return "it needs more memory than a page may have.";
    }
    return /unreachable|out of bounds|stack|null function/i.test(reason)
        ? `the reader stopped (${reason}). That is a mistake in this page; please report it with the file.`
        : reason;
}

/** `rows` makes the rows from one number to before another: thousands at once would stop the page. */
function section(title: string, count: number, rows: (from: number, to: number) => readonly HTMLElement[]): HTMLElement {
    const place = element("ul", {});
    let used = 0;
    const more = button("", () => {
        add();
    });
    const add = (): void => {
        const to = Math.min(used + MOST_ROWS, count);
        place.append(...rows(used, to));
        used = to;
        more.textContent = `Show more (${count - used} left)`;
        more.hidden = used === count;
    };
    add();
    return element("section", {}, element("h2", {}, `${title} `, element("span", { class: "count" }, String(count))), place, more);
}

function showList(files: readonly PlacedFile[], kinds: readonly Kind[]): HTMLElement | null {
    let first: HTMLButtonElement | null = null;
    list.replaceChildren();
    for (const [kind, title] of TITLES) {
        const those = files.filter((_, i) => kinds[i] === kind);
        const rows = (from: number, to: number): HTMLElement[] =>
            those.slice(from, to).map((file) => {
                const row = button(file.path, () => {
                    void choose(row, file, kind);
                });
                first ??= row;
                return element("li", {}, row);
            });
        if (those.length > 0) {
            list.append(section(title, those.length, rows));
        }
    }
    return first;
}

async function take(dropping: Promise<Dropped>): Promise<void> {
    // Its memory goes back before anything of the next drop is read.
    session?.stop();
    session = null;
    shown = null;
    list.replaceChildren();
    detail.replaceChildren();
    sayNotes([]);
    say("Looking at what was dropped…", true);
    const { files, notes } = await dropping;
    sayNotes(notes);
    if (files.length === 0) {
        say("There is no file in what was dropped.");
        return;
    }
    document.body.classList.add("used");
    const mine = new Session(files);
    session = mine;
    try {
        const kinds = await mine.open((done, of) => {
            say(`Sorting files: ${done} of ${of}…`, true);
        });
        if (session !== mine) {
            return;
        }
        const first = showList(files, kinds);
        say(files.length === 1 ? "One file." : `${files.length} files.`);
        first?.click();
    } catch (error) {
        if (session === mine && !(error instanceof Stopped && error.message === "stopped")) {
            say(`This page does not work in this browser: ${error instanceof Error ? error.message : String(error)}`);
        }
    }
}

let depth = 0;
const over = (change: number): void => {
    depth = Math.max(0, depth + change);
    document.body.classList.toggle("over", depth > 0);
};
addEventListener("dragenter", (event) => {
    event.preventDefault();
    over(1);
});
addEventListener("dragleave", () => {
    over(-1);
});
addEventListener("dragover", (event) => {
    event.preventDefault();
});
addEventListener("drop", (event) => {
    event.preventDefault();
    depth = 0;
    over(0);
    if (event.dataTransfer !== null) {
        void take(
            droppedFiles(event.dataTransfer, (found) => {
                say(`Found ${found} files…`, true);
            }),
        );
    }
});
for (const id of ["files", "folder"]) {
    const input = byId(id) as HTMLInputElement;
    input.addEventListener("change", () => {
        if (input.files !== null && input.files.length > 0) {
            void take(Promise.resolve(chosenFiles(input.files)));
        }
        input.value = "";
    });
    byId(`choose-${id}`).addEventListener("click", () => {
        input.click();
    });
}
