// A window onto the picture that the worker has open: any part at any scale, any alpha, the values of a pixel.
import { button, choice, element } from "../elements.ts";
import { LOOKS, type Look, type Picture } from "./messages.ts";
import { Stopped, type Session } from "./session.ts";

const CLOSEST_STEP = 1 / 64;
const ZOOM = 2;

interface Choice {
    readonly title: string;
    readonly look: Look;
    readonly alpha: number;
}

export interface PictureUse {
    /** What a saved picture is named after, at that time. */
    readonly path: () => string;
    readonly failed: (reason: string) => void;
    /** What can be shown of it; everything if it is not said. */
    readonly looks?: readonly Look[];
    /** What is shown at first. */
    readonly first?: Look;
    /** Other names for what can be shown. */
    readonly titles?: Readonly<Partial<Record<Look, string>>>;
}

function choicesOf(picture: Picture, { looks = LOOKS, titles = {} }: PictureUse): readonly Choice[] {
    const all: Choice[] = [{ title: "Colour", look: "colour", alpha: 0 }];
    picture.alphas.forEach((name, alpha) => {
        const number = picture.alphas.length > 1 ? ` ${alpha + 1}` : "";
        const title = `alpha${number}, “${name}”`;
        all.push({ title: `Only ${title}`, look: "alpha", alpha });
        all.push({ title: `Cut out by ${title} (premultiplied)`, look: "premultiplied", alpha });
        all.push({ title: `Cut out by ${title} (straight)`, look: "straight", alpha });
    });
    return all.filter((one) => looks.includes(one.look)).map((one) => ({ ...one, title: titles[one.look] ?? one.title }));
}

/** "photo_rgb_alpha.png", "photo_rgb_alpha_alpha2.png" */
function fileName(path: string, chosen: Choice): string {
    const stem = (path.split("/").pop() ?? "picture").replace(/\.[^.]*$/, "");
    const part = chosen.look === "colour" ? "" : chosen.look === "alpha" ? `_alpha${chosen.alpha + 1}` : `_with_alpha${chosen.alpha + 1}`;
    return `${stem}${part}.png`;
}

export function offer(bytes: BlobPart, name: string, type: string): void {
    const url = URL.createObjectURL(new Blob([bytes], { type }));
    element("a", { href: url, download: name }).click();
    // The browser has begun to save by then.
    setTimeout(() => {
        URL.revokeObjectURL(url);
    }, 60_000);
}

/** Shows the picture that is open in the worker. Returns what draws it again after another of its size was opened. */
export function showPicture(place: HTMLElement, session: Session, picture: Picture, use: PictureUse): () => void {
    const choices = choicesOf(picture, use);
    let chosen: Choice = choices.find((one) => one.look === use.first) ?? choices[0] ?? { title: "", look: "colour", alpha: 0 };
    let step = 1;
    let left = 0;
    let top = 0;

    const canvas = element("canvas", {
        tabindex: "0",
        role: "img",
        "aria-label": `The picture. Arrow keys move it, plus and minus change the scale, 0 shows all of it.`,
    });
    const pen = canvas.getContext("2d");
    const scale = element("output", { class: "scale" });
    const values = element("output", { class: "values", "aria-live": "off" }, "Point at a pixel to see its values.");

    const report = (error: unknown): void => {
        if (!(error instanceof Stopped)) {
            use.failed(error instanceof Error ? error.message : String(error));
        }
    };

    let drawing = false;
    let wanted = 0;
    /** The last of what was asked for while another one was drawn. */
    const draw = async (): Promise<void> => {
        wanted += 1;
        if (drawing) {
            return;
        }
        drawing = true;
        try {
            for (let done = 0; done !== wanted; ) {
                done = wanted;
                const { width, height } = canvas;
                if (width === 0 || height === 0 || pen === null) {
                    return;
                }
                const window = { left, top, step, width, height, look: chosen.look, alpha: chosen.alpha };
                const pixels = await session.ask({ kind: "draw", window });
                if (pixels.length === width * height * 4 && canvas.width === width && canvas.height === height) {
                    pen.putImageData(new ImageData(pixels, width, height), 0, 0);
                    canvas.dataset["drawn"] = `${chosen.look} ${chosen.alpha} ${step}`;
                }
            }
        } catch (error) {
            report(error);
        } finally {
            drawing = false;
        }
    };
    const show = (): void => {
        const percent = 100 / step;
        scale.textContent = `${percent >= 10 ? Math.round(percent) : percent.toPrecision(2)} %`;
        void draw();
    };
    const fit = (): void => {
        step = Math.max(picture.width / canvas.width, picture.height / canvas.height);
        // A small picture is shown in whole multiples of its pixels.
        step = step >= 1 ? step : Math.max(1 / Math.floor(1 / step), CLOSEST_STEP);
        left = (picture.width - canvas.width * step) / 2;
        top = (picture.height - canvas.height * step) / 2;
        show();
    };
    /** Around a place of the canvas, which stays where it is. */
    const zoomTo = (wanted: number, x = canvas.width / 2, y = canvas.height / 2): void => {
        const farthest = Math.max(picture.width, picture.height, 64) / 16;
        const next = Math.min(Math.max(wanted, CLOSEST_STEP), farthest);
        left += x * (step - next);
        top += y * (step - next);
        step = next;
        show();
    };
    const move = (x: number, y: number): void => {
        left += x * step;
        top += y * step;
        show();
    };
    const onCanvas = (event: MouseEvent): [number, number] => {
        const box = canvas.getBoundingClientRect();
        return [((event.clientX - box.left) / box.width) * canvas.width, ((event.clientY - box.top) / box.height) * canvas.height];
    };

    let asked = "";
    const showValues = async (x: number, y: number): Promise<void> => {
        const at = `${x} ${y}`;
        if (asked === at) {
            return;
        }
        asked = at;
        try {
            const all = await session.ask({ kind: "values", x, y });
            if (asked !== at) {
                return;
            }
            const colours = picture.channels === 1 ? ["grey"] : ["red", "green", "blue"];
            const names = [...colours, ...picture.alphas.map((_, i) => (picture.alphas.length > 1 ? `alpha ${i + 1}` : "alpha"))];
            values.textContent =
                all.length === 0 ? "Beside the picture." : `x ${x}, y ${y}: ${names.map((name, i) => `${name} ${all[i] ?? 0}`).join(", ")}`;
        } catch (error) {
            report(error);
        }
    };

    let held: [number, number] | null = null;
    canvas.addEventListener("pointerdown", (event) => {
        held = onCanvas(event);
        canvas.setPointerCapture(event.pointerId);
    });
    canvas.addEventListener("pointerup", () => {
        held = null;
    });
    canvas.addEventListener("pointermove", (event) => {
        const [x, y] = onCanvas(event);
        if (held !== null) {
            move(held[0] - x, held[1] - y);
            held = [x, y];
        }
        void showValues(Math.floor(left + x * step), Math.floor(top + y * step));
    });
    canvas.addEventListener(
        "wheel",
        (event) => {
            event.preventDefault();
            const [x, y] = onCanvas(event);
            zoomTo(step * ZOOM ** (event.deltaY / 240), x, y);
        },
        { passive: false },
    );
    const keys: Readonly<Record<string, () => void>> = {
        ArrowLeft: () => {
            move(-canvas.width / 8, 0);
        },
        ArrowRight: () => {
            move(canvas.width / 8, 0);
        },
        ArrowUp: () => {
            move(0, -canvas.height / 8);
        },
        ArrowDown: () => {
            move(0, canvas.height / 8);
        },
        "+": () => {
            zoomTo(step / ZOOM);
        },
        "-": () => {
            zoomTo(step * ZOOM);
        },
        "0": fit,
        "1": () => {
            zoomTo(1);
        },
    };
    canvas.addEventListener("keydown", (event) => {
        const act = keys[event.key];
        if (act !== undefined && !event.ctrlKey && !event.metaKey && !event.altKey) {
            event.preventDefault();
            act();
        }
    });

    const save = button("Save as PNG", () => {
        save.disabled = true;
        session
            .ask({ kind: "save", look: chosen.look, alpha: chosen.alpha })
            .then((png) => {
                offer(png, fileName(use.path(), chosen), "image/png");
            }, report)
            .finally(() => {
                save.disabled = false;
            });
    });
    const controls = element("div", { class: "controls" });
    if (choices.length > 1) {
        const looks = choice(
            "Show",
            choices.map((one, i) => [String(i), one.title] as const),
            (value) => {
                chosen = choices[Number(value)] ?? chosen;
                show();
            },
        );
        const select = looks.querySelector("select");
        if (select !== null) {
            select.value = String(choices.indexOf(chosen));
        }
        controls.append(looks);
    }
    controls.append(
        element(
            "div",
            { class: "group" },
            button("Closer", () => {
                zoomTo(step / ZOOM);
            }),
            button("Farther", () => {
                zoomTo(step * ZOOM);
            }),
            button("Pixel for pixel", () => {
                zoomTo(1);
            }),
            button("All of it", fit),
            scale,
        ),
        save,
    );
    place.append(controls, element("div", { class: "window" }, canvas), element("p", { class: "under" }, values));

    let fitted = false;
    new ResizeObserver(() => {
        const box = canvas.getBoundingClientRect();
        const width = Math.round(box.width * devicePixelRatio);
        const height = Math.round(box.height * devicePixelRatio);
        if (width === 0 || height === 0 || (width === canvas.width && height === canvas.height && fitted)) {
            return;
        }
        canvas.width = width;
        canvas.height = height;
        if (fitted) {
            show();
        } else {
            fitted = true;
            fit();
        }
    }).observe(canvas);
    return () => {
        asked = "";
        show();
    };
}
