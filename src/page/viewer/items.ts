// What is shown of one file.
import { button, element } from "../elements.ts";
import { BUNDLE, FOLDER, type Kind, type PlacedFile } from "./messages.ts";
import { findings, grouped } from "./findings.ts";
import { showFrames } from "./frames.ts";
import { offer, showPicture } from "./picture_view.ts";
import type { Session } from "./session.ts";
import { showScene } from "../article.ts";
import { scenesOfPage } from "../data.ts";

const REPORT_FILE = "/report.html";
const REPORT = (path: string, search: boolean): readonly string[] => {
    const more = search ? ["--search", FOLDER] : [];
    return ["report", "--bundle", BUNDLE, "--pictures", "0", ...more, "-o", REPORT_FILE, "--", path];
};
const CHECK = (path: string): readonly string[] => ["check", "--json", "--", path];
const IMPORT = (path: string): readonly string[] => ["import", "--json", "--bundle", BUNDLE, "--", path];

function problem(text: string): HTMLElement {
    return element("p", { class: "problem" }, text);
}

function sizeOf(file: File): string {
    return file.size < 10_000 ? `${grouped(file.size)} bytes` : `${grouped(Math.round(file.size / 1024))} KiB`;
}

/** A button that saves what the program says about a file. */
function saveDocument(place: HTMLElement, session: Session, path: string, what: string, list: readonly string[]): HTMLElement {
    const name = `${(path.split("/").pop() ?? "file").replace(/\.[^.]*$/, "")}.${what}.json`;
    return button(`Save the ${what} as JSON`, () => {
        session.ask({ kind: "run", arguments: list }).then(
            ({ text, messages }) => {
                if (text === "") {
                    place.append(problem(messages));
                } else {
                    offer(text, name, "application/json");
                }
            },
            (error: unknown) => {
                place.append(problem(String(error)));
            },
        );
    });
}

async function showPixels(place: HTMLElement, session: Session, { path, file }: PlacedFile, kind: Kind): Promise<void> {
    const { picture, diagnostics, problem: why } = await session.ask({ kind: "look", path, as: kind });
    const facts = [sizeOf(file)];
    if (picture !== null) {
        facts.unshift(
            `${grouped(picture.width)} × ${grouped(picture.height)} pixels`,
            picture.channels === 1 ? "grey" : "RGB",
            picture.alphas.length === 1 ? "1 alpha channel" : `${picture.alphas.length} alpha channels`,
        );
    }
    place.append(element("ul", { class: "facts" }, ...facts.map((fact) => element("li", {}, fact))));
    if (why !== "") {
        place.append(picture === null ? problem(why) : element("p", { class: "under" }, why));
    }
    if (diagnostics.length > 0) {
        place.append(findings(diagnostics));
    }
    if (kind === "texture") {
        place.append(
            element("div", { class: "controls" }, saveDocument(place, session, path, "check", ["texture", ...CHECK(path)])),
        );
    }
    if (picture === null) {
        return;
    }
    showPicture(place, session, picture, {
        path: () => path,
        failed: (reason) => {
            place.append(problem(`The picture cannot be drawn: ${reason}`));
        },
    });
}

/** The report as a document, without its style, which this page has and its policy would refuse. */
function parsed(report: string): Document {
    return new DOMParser().parseFromString(report.replace(/<style>[^]*?<\/style>/, ""), "text/html");
}

/** The program sees the files in a folder of its own, which nobody else has. */
function nameFilesAsDropped(article: HTMLElement): void {
    const texts = document.createTreeWalker(article, NodeFilter.SHOW_TEXT);
    for (let text = texts.nextNode(); text !== null; text = texts.nextNode()) {
        if (text.nodeValue?.includes(`${FOLDER}/`) === true) {
            text.nodeValue = text.nodeValue.replaceAll(`${FOLDER}/`, "");
        }
    }
}

/** What `vxr report` says, with its views, and the documents of the program to keep. */
async function showComposition(place: HTMLElement, session: Session, file: PlacedFile, search = false): Promise<void> {
    const { path } = file;
    const task = { kind: "run", arguments: REPORT(path, search), output: REPORT_FILE } as const;
    const { messages, output: report } = await session.ask(task);
    if (report === undefined) {
        place.append(problem(messages === "" ? "The scene cannot be read." : messages));
        return;
    }
    const page = parsed(new TextDecoder().decode(report));
    const article = page.querySelector<HTMLElement>("article");
    const [scene] = scenesOfPage(page);
    if (article === null || scene === undefined) {
        place.append(problem("The report of the scene is not complete."));
        return;
    }
    place.append(
        element(
            "div",
            { class: "controls" },
            button("Save the report", () => {
                offer(report, `${(path.split("/").pop() ?? "scene").replace(/\.[^.]*$/, "")}.html`, "text/html");
            }),
            saveDocument(place, session, path, "check", CHECK(path)),
            saveDocument(place, session, path, "project", IMPORT(path)),
        ),
    );
    const adopted = document.importNode(article, true);
    // The name is above it already.
    adopted.querySelectorAll("h1, header > .path").forEach((one) => {
        one.remove();
    });
    nameFilesAsDropped(adopted);
    if (!search && adopted.querySelector(".verdict.incomplete") !== null) {
        const again = button("Look for footage in everything that was dropped", () => {
            const found = element("article", { class: "item" }, element("h2", {}, path));
            place.replaceWith(found);
            showComposition(found, session, file, true).catch((error: unknown) => {
                found.append(problem(String(error)));
            });
        });
        adopted.querySelector(".verdict")?.after(element("p", {}, again));
    }
    place.append(adopted);
    showScene(adopted, scene);
    // The report was made without pictures.
    const none = adopted.querySelector('[id$="-pictures"]')?.nextElementSibling;
    if (none !== null && none !== undefined) {
        const frames = element("div", { class: "frames" });
        none.replaceWith(frames);
        await showFrames(frames, session, path, search);
        if (!frames.hasChildNodes()) {
            frames.replaceWith(none);
        }
    }
}

/** Fills `place`. Rejects when the worker stopped. */
export async function showItem(place: HTMLElement, session: Session, file: PlacedFile, kind: Kind): Promise<void> {
    place.append(element("h2", {}, file.path));
    switch (kind) {
        case "texture":
        case "image":
            await showPixels(place, session, file, kind);
            return;
        case "scene":
            await showComposition(place, session, file);
            return;
        case "other":
            place.append(
                element("ul", { class: "facts" }, element("li", {}, sizeOf(file.file))),
                problem(
                    file.file.size === 0
                        ? "The file is empty."
                        : "This is neither a composition file nor a texture, nor an image that this page knows.",
                ),
            );
    }
}
