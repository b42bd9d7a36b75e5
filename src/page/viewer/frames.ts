// The frames of a scene's compositions, composited by the program from footage that the worker decodes.
import { choice, element } from "../elements.ts";
import { findings } from "./findings.ts";
import { FOLDER, type Composition, type Diagnostic, type Looked, type Picture } from "./messages.ts";
import { showPicture } from "./picture_view.ts";
import { Stopped, type Session } from "./session.ts";

/** With the name of the file in front, as the program's messages have it. */
function named(one: Diagnostic): Diagnostic {
    const file = one.at?.file;
    const reason = one.reason ?? one.message ?? "";
    return typeof file === "string" && file !== "" ? { ...one, reason: `${file.replace(`${FOLDER}/`, "")}: ${reason}` } : one;
}

/**
 * Fills `place`, which is in the page; leaves it empty if the scene has no composition. Asks for nothing once it was taken out
 * of the page: the worker has one picture open, and by then that is another one.
 */
export async function showFrames(place: HTMLElement, session: Session, path: string, search: boolean): Promise<void> {
    if (!place.isConnected) {
        return;
    }
    const compositions = await session.ask({ kind: "scene", path, search });
    const [outermost] = compositions;
    if (outermost === undefined) {
        return;
    }
    let composition: Composition = outermost;
    let frame = 0;
    let open: { readonly picture: Picture; readonly draw: () => void } | null = null;

    const slider = element("input", { type: "range", min: "0", value: "0", "aria-label": "Frame" });
    const output = element("output");
    const timeline = element("div", { class: "timeline" }, slider, output);
    const window = element("div", {});
    const notes = element("div", { "aria-live": "polite" });
    /** Of all frames so far: the program tells each of them once. */
    const found = new Map<string, Diagnostic>();

    const report = (error: unknown): void => {
        if (!(error instanceof Stopped)) {
            notes.replaceChildren(
                element("p", { class: "problem" }, `The frame cannot be drawn: ${error instanceof Error ? error.message : String(error)}`),
            );
        }
    };
    const show = ({ picture, diagnostics, problem }: Looked): void => {
        for (const one of diagnostics.map(named)) {
            found.set(`${one.code} ${one.reason ?? ""}`, one);
        }
        notes.replaceChildren(...(found.size > 0 ? [findings([...found.values()])] : []));
        if (picture === null) {
            open = null;
            window.replaceChildren();
            notes.append(element("p", { class: "problem" }, `The frame cannot be drawn${problem === "" ? "." : `: ${problem}`}`));
            return;
        }
        if (open?.picture.width === picture.width && open.picture.height === picture.height) {
            open.draw();
            return;
        }
        window.replaceChildren();
        const draw = showPicture(window, session, picture, {
            path: () => `${path.replace(/\.[^./]*$/, "")}_${composition.name.replaceAll("/", "_")}_${frame}.aec`,
            failed: report,
            looks: ["colour", "alpha", "straight"],
            first: "straight",
            titles: { colour: "Colour without alpha", alpha: "Only alpha", straight: "As composited" },
        });
        open = { picture, draw };
    };
    let busy = false;
    let wanted = 0;
    /** Only the last of what was asked for while another frame was drawn. */
    const draw = async (): Promise<void> => {
        wanted += 1;
        if (busy) {
            return;
        }
        busy = true;
        try {
            for (let done = 0; done !== wanted && place.isConnected; ) {
                done = wanted;
                const drawn = { kind: "frame", path, search, composition: compositions.indexOf(composition), frame } as const;
                show(await session.ask(drawn));
                place.dataset["drawn"] = `${drawn.composition} ${drawn.frame}`;
            }
        } catch (error) {
            report(error);
        } finally {
            busy = false;
        }
    };
    const choose = (one: Composition): void => {
        composition = one;
        frame = Math.min(frame, one.frames - 1);
        slider.max = String(one.frames - 1);
        slider.value = String(frame);
        output.textContent = `frame ${frame}`;
        timeline.hidden = one.frames < 2;
    };
    slider.addEventListener("input", () => {
        frame = Number(slider.value);
        output.textContent = `frame ${frame}`;
        slider.setAttribute("aria-valuetext", output.textContent);
        void draw();
    });
    choose(outermost);
    if (compositions.length > 1) {
        place.append(
            choice(
                "Composition",
                compositions.map(({ name }, i) => [String(i), name] as const),
                (value) => {
                    choose(compositions[Number(value)] ?? outermost);
                    void draw();
                },
            ),
        );
    }
    place.append(
        timeline,
        window,
        notes,
        element(
            "p",
            { class: "legend" },
            "Computed without After Effects: layers from bottom to top, with the footage that was dropped. Missing footage is shown as colour bars.",
        ),
    );
    await draw();
}
