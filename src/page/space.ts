// Cameras, lights and nulls in three dimensions: from around, and through each camera.
import { Box3, Sphere, Vector3, type PerspectiveCamera } from "three";
import { Pen, type Frame } from "./canvas_pen.ts";
import { inWords, numberOf, shown, type Scene, type SceneObject, type Shot } from "./data.ts";
import { button, choice, element, toggle } from "./elements.ts";
import { cameraAt, pictureAspect, positionAt, turnAt } from "./lens.ts";
import { Orbit } from "./orbit.ts";
import type { Timeline } from "./timeline.ts";

/** More names than these are a heap of letters. */
const MOST_NAMES = 60;
/** Of a path, so many keys are marked. */
const MOST_KEYS = 400;
/** Rows of the table of positions. */
const MOST_ROWS = 100;

const AROUND = "around";

/** A key's position, if its numbers are sound. */
function keyPositions(object: SceneObject): Vector3[] {
    const { x, y, z } = object.keys;
    return object.keys.frame
        .map((_, i) => new Vector3(numberOf(x[i]), numberOf(y[i]), -numberOf(z[i])))
        .filter((at) => [at.x, at.y, at.z].every((number) => Number.isFinite(number)));
}

/** A number like 1, 2, 5, 10, 20 near another one. */
function roundStep(size: number): number {
    const power = 10 ** Math.floor(Math.log10(size));
    const digit = size / power;
    return power * (digit < 1.5 ? 1 : digit < 3.5 ? 2 : digit < 7.5 ? 5 : 10);
}

class SpaceView {
    private readonly canvas = element("canvas", { tabindex: "0", role: "img" });
    private readonly rows = element("tbody");
    private readonly objects: readonly { readonly object: SceneObject; readonly path: readonly Vector3[] }[];
    private readonly orbit: Orbit;
    private readonly ball: Sphere;
    private through: SceneObject | undefined;
    private names = true;
    private paths = true;
    private grid = true;
    private waiting = false;

    constructor(
        scene: Scene,
        private readonly shot: Shot,
        private readonly timeline: Timeline,
    ) {
        this.objects = scene.objects.map((object) => ({ object, path: keyPositions(object) }));
        const box = new Box3();
        for (const { path } of this.objects) {
            for (const at of path) {
                box.expandByPoint(at);
            }
        }
        this.ball = box.isEmpty() ? new Sphere(new Vector3(), 100) : box.getBoundingSphere(new Sphere());
        this.ball.radius = Math.max(this.ball.radius, 1);
        this.orbit = new Orbit(this.ball.center, this.ball.radius, () => {
            this.draw();
        });
    }

    build(place: HTMLElement, id: string): void {
        const cameras = this.objects.filter(({ object }) => object.kind === "camera");
        const hint = element(
            "p",
            { class: "hint", id: `${id}-hint` },
            "Drag to turn, with Shift to move. Keys: arrows turn, Shift and arrows move, + and - zoom, 0 resets.",
        );
        const zoom = element(
            "span",
            { class: "group" },
            button("Closer", () => {
                this.orbit.zoom(0.8);
            }),
            button("Farther", () => {
                this.orbit.zoom(1.25);
            }),
            button("Reset view", () => {
                this.orbit.reset();
            }),
        );
        const view = choice(
            "View",
            [
                [AROUND, "From around"],
                ...cameras.map(({ object }, i) => [String(i), `Through ${shown(object.name)}`] as const),
            ],
            (value) => {
                this.through = value === AROUND ? undefined : cameras[Number(value)]?.object;
                zoom.hidden = this.through !== undefined;
                hint.hidden = this.through !== undefined;
                this.draw();
            },
        );
        const switches = element(
            "span",
            { class: "group" },
            toggle("Names", this.names, (on) => {
                this.names = on;
                this.draw();
            }),
            toggle("Paths", this.paths, (on) => {
                this.paths = on;
                this.draw();
            }),
            toggle("Grid", this.grid, (on) => {
                this.grid = on;
                this.draw();
            }),
        );
        this.canvas.setAttribute("aria-describedby", hint.id);
        this.canvas.style.aspectRatio = String(Math.min(2.4, Math.max(1.2, pictureAspect(this.shot))));
        place.replaceChildren(
            element("div", { class: "tools" }, view, switches, zoom),
            this.canvas,
            this.timeline.controls,
            hint,
            this.table(),
        );
        this.orbit.control(this.canvas, () => this.through === undefined);
        new ResizeObserver(() => {
            this.draw();
        }).observe(this.canvas);
        matchMedia("(prefers-color-scheme: dark)").addEventListener("change", () => {
            this.draw();
        });
        this.timeline.follow(() => {
            this.draw();
        });
    }

    /** What the picture shows, for who does not see it. */
    private table(): HTMLElement {
        const header = element("tr");
        for (const [title, number] of [
            ["name", false],
            ["kind", false],
            ["x", true],
            ["y", true],
            ["z", true],
            ["pixel x", true],
            ["pixel y", true],
        ] as const) {
            header.append(element("th", { scope: "col", ...(number && { class: "number" }) }, title));
        }
        const table = element("table", { class: "positions" }, element("thead", {}, header), this.rows);
        const details = element(
            "details",
            {},
            element("summary", {}, "Positions at this frame"),
            element("div", { class: "wide", tabindex: "0", role: "group", "aria-label": "Positions" }, table),
        );
        details.addEventListener("toggle", () => {
            this.draw();
        });
        return details;
    }

    private fillTable(): void {
        if (!(this.rows.closest("details")?.open ?? false)) {
            return;
        }
        const frame = this.timeline.frame;
        const camera = this.lookedThrough();
        this.rows.replaceChildren(
            ...this.objects.slice(0, MOST_ROWS).map(({ object }) => {
                const at = positionAt(object.keys, frame);
                const cells = [at.x, at.y, -at.z].map(inWords);
                const seen = object === this.through ? undefined : pixelOf(at, camera, this.shot);
                cells.push(...(seen?.map((number) => number.toFixed(2)) ?? ["", ""]));
                return element(
                    "tr",
                    {},
                    element("th", { scope: "row" }, element("bdi", {}, shown(object.name))),
                    element("td", {}, object.kind),
                    ...cells.map((text) => element("td", { class: "number" }, text)),
                );
            }),
        );
    }

    private lookedThrough(): PerspectiveCamera | undefined {
        return this.through === undefined ? undefined : cameraAt(this.through.keys, this.timeline.frame, this.shot);
    }

    /** Draws once, at the next picture of the screen. */
    private draw(): void {
        if (this.waiting) {
            return;
        }
        this.waiting = true;
        requestAnimationFrame(() => {
            this.waiting = false;
            this.drawNow();
            this.fillTable();
        });
    }

    private drawNow(): void {
        const { canvas } = this;
        const context = canvas.getContext("2d");
        const width = canvas.clientWidth;
        const height = canvas.clientHeight;
        if (context === null || width === 0 || height === 0) {
            return;
        }
        const density = Math.min(window.devicePixelRatio, 3);
        canvas.width = Math.round(width * density);
        canvas.height = Math.round(height * density);
        context.setTransform(canvas.width / width, 0, 0, canvas.height / height, 0, 0);
        const styles = getComputedStyle(canvas);
        const ink = (name: string): string => styles.getPropertyValue(`--${name}`);
        context.lineJoin = "round";
        context.font = `12px ${styles.fontFamily}`;
        const what = this.through === undefined ? "from around" : `through the camera ${shown(this.through.name)}`;
        canvas.setAttribute(
            "aria-label",
            `${this.objects.length} cameras, lights and nulls ${what} at frame ${this.timeline.frame}`,
        );
        if (this.through === undefined) {
            this.drawSpace(new Pen(context, this.orbit.camera(width / height), whole(width, height), this.ball.radius), ink);
            return;
        }
        const frame = fitted(pictureAspect(this.shot), width, height);
        const camera = this.lookedThrough();
        if (camera === undefined) {
            context.fillStyle = ink("faint");
            context.fillText("The camera has no picture at this frame.", 16, 28);
            return;
        }
        this.drawSpace(new Pen(context, camera, frame, this.ball.radius), ink);
        drawFrame(context, frame, width, height, ink);
    }

    private drawSpace(pen: Pen, ink: (name: string) => string): void {
        const { context } = pen;
        if (this.grid) {
            this.drawGrid(pen, ink);
        }
        const named = this.names && this.objects.length <= MOST_NAMES;
        for (const { object, path } of this.objects) {
            if (object === this.through) {
                continue;
            }
            const colour = ink(`space-${object.kind}`);
            context.strokeStyle = colour;
            context.fillStyle = colour;
            if (this.paths && path.length > 1) {
                context.lineWidth = 1.5;
                pen.line(path);
                if (path.length <= MOST_KEYS) {
                    for (const at of path) {
                        pen.dot(at, 2.2);
                    }
                }
            }
            const at = positionAt(object.keys, this.timeline.frame);
            this.drawObject(pen, object, at);
            if (named) {
                context.fillStyle = ink("ink");
                pen.name(at, shown(object.name));
            }
        }
    }

    private drawObject(pen: Pen, object: SceneObject, at: Vector3): void {
        const { context } = pen;
        context.lineWidth = 1.75;
        if (object.kind === "camera") {
            this.drawCamera(pen, object, at);
        } else if (object.kind === "light") {
            this.drawLight(pen, object, at);
        } else {
            pen.ring(at, 6);
            pen.dot(at, 2.5);
        }
    }

    /** What it sees, as a pyramid; the triangle is on top. */
    private drawCamera(pen: Pen, object: SceneObject, at: Vector3): void {
        const frame = this.timeline.frame;
        const camera = cameraAt(object.keys, frame, this.shot);
        pen.dot(at, 3.5);
        if (camera === undefined) {
            return;
        }
        const depth = this.ball.radius * 0.35;
        const up = depth * Math.tan((camera.fov * Math.PI) / 360);
        const right = up * camera.aspect;
        const corner = (x: number, y: number): Vector3 => new Vector3(x, y, -depth).applyMatrix4(camera.matrixWorld);
        const corners = [corner(-right, up), corner(right, up), corner(right, -up), corner(-right, -up)];
        for (const one of corners) {
            pen.line([at, one]);
        }
        pen.line([...corners, ...corners.slice(0, 1)]);
        pen.line([corner(-right * 0.5, up * 1.12), corner(0, up * 1.45), corner(right * 0.5, up * 1.12), corner(-right * 0.5, up * 1.12)]);
    }

    private drawLight(pen: Pen, object: SceneObject, at: Vector3): void {
        pen.dot(at, 4);
        const place = pen.place(at);
        if (place !== undefined) {
            pen.context.beginPath();
            for (let i = 0; i < 8; i += 1) {
                const x = Math.cos((i * Math.PI) / 4);
                const y = Math.sin((i * Math.PI) / 4);
                pen.context.moveTo(place[0] + x * 6.5, place[1] + y * 6.5);
                pen.context.lineTo(place[0] + x * 9.5, place[1] + y * 9.5);
            }
            pen.context.stroke();
        }
        if (object.light !== "OMNI") {
            const back = new Vector3().setFromMatrixColumn(turnAt(object.keys, this.timeline.frame), 2);
            pen.line([at, at.clone().addScaledVector(back, -this.ball.radius * 0.3)]);
        }
    }

    /** The ground, and the scene's axes. */
    private drawGrid(pen: Pen, ink: (name: string) => string): void {
        const { context } = pen;
        const step = roundStep(this.ball.radius / 5);
        const middle = [this.ball.center.x, this.ball.center.z].map((number) => Math.round(number / step) * step);
        const [x = 0, z = 0] = middle;
        const reach = step * 8;
        context.lineWidth = 1;
        context.strokeStyle = ink("space-grid");
        for (let i = -8; i <= 8; i += 1) {
            pen.line([new Vector3(x + i * step, 0, z - reach), new Vector3(x + i * step, 0, z + reach)]);
            pen.line([new Vector3(x - reach, 0, z + i * step), new Vector3(x + reach, 0, z + i * step)]);
        }
        const origin = new Vector3();
        context.strokeStyle = ink("faint");
        context.fillStyle = ink("faint");
        for (const [name, end] of [
            ["x", new Vector3(step, 0, 0)],
            ["y", new Vector3(0, step, 0)],
            ["z", new Vector3(0, 0, -step)],
        ] as const) {
            pen.line([origin, end]);
            pen.name(end, name);
        }
    }
}

/** Where the camera sees a point, in pixels of the scene's picture; undefined behind it. */
function pixelOf(at: Vector3, camera: PerspectiveCamera | undefined, shot: Shot): number[] | undefined {
    const seen = at.clone();
    if (camera === undefined || seen.applyMatrix4(camera.matrixWorldInverse).z >= 0) {
        return undefined;
    }
    seen.applyMatrix4(camera.projectionMatrix);
    return [((seen.x + 1) / 2) * shot.width_px, ((1 - seen.y) / 2) * shot.height_px];
}

function whole(width: number, height: number): Frame {
    return { left: 0, top: 0, width, height };
}

/** The largest frame of this shape with a margin around it. */
function fitted(aspect: number, width: number, height: number): Frame {
    const margin = 0.9;
    const across = Math.min(width * margin, height * margin * aspect);
    const down = across / aspect;
    return { left: (width - across) / 2, top: (height - down) / 2, width: across, height: down };
}

/** What is outside the picture is seen only faintly. */
function drawFrame(
    context: CanvasRenderingContext2D,
    frame: Frame,
    width: number,
    height: number,
    ink: (name: string) => string,
): void {
    context.save();
    context.globalAlpha = 0.72;
    context.fillStyle = ink("inset");
    context.beginPath();
    context.rect(0, 0, width, height);
    context.rect(frame.left, frame.top, frame.width, frame.height);
    context.fill("evenodd");
    context.restore();
    context.lineWidth = 1.5;
    context.strokeStyle = ink("faint");
    context.strokeRect(frame.left, frame.top, frame.width, frame.height);
}

/** Puts the view where the page has a place for it. */
export function showSpace(place: HTMLElement, id: string, scene: Scene, timeline: Timeline): void {
    if (scene.shot !== null && scene.objects.length > 0) {
        new SpaceView(scene, scene.shot, timeline).build(place, id);
    }
}
