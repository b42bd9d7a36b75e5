// The keys of an object as curves over time, as drawings with selectable text.
import { inWords, numberOf, shown, type Column, type Scene, type SceneObject } from "./data.ts";
import { choice, drawing, element } from "./elements.ts";
import type { Timeline } from "./timeline.ts";

const WIDTH = 720;
const HEIGHT = 190;
const LEFT = 64;
const RIGHT = 96;
const TOP = 14;
const BOTTOM = 30;
/** More keys than these are a line of dots. */
const MOST_DOTS = 200;

interface Chart {
    readonly title: string;
    readonly columns: readonly (readonly [Column, string])[];
}

const CHARTS: readonly Chart[] = [
    { title: "Position", columns: [["x", "x"], ["y", "y"], ["z", "z"]] },
    { title: "Turn, in degrees", columns: [["heading", "heading"], ["pitch", "pitch"], ["bank", "bank"]] },
];
const CAMERA_CHARTS: readonly Chart[] = [
    { title: "Angle of view, in degrees", columns: [["view_angle", "angle"]] },
];

interface Line {
    readonly name: string;
    readonly points: readonly { readonly frame: number; readonly value: number; readonly holds: boolean }[];
}

function linesOf(object: SceneObject, chart: Chart): Line[] {
    return chart.columns.map(([column, name]) => ({
        name,
        points: object.keys.frame
            .map((frame, i) => ({
                frame,
                value: numberOf(object.keys[column][i]),
                holds: object.keys.holds[i] === true,
            }))
            .filter((point) => Number.isFinite(point.value)),
    }));
}

/** In words, for who does not see it. */
function described(title: string, lines: readonly Line[]): string {
    const parts = lines.map(({ name, points }) => {
        const values = points.map((point) => point.value);
        const least = values.reduce((a, b) => Math.min(a, b), Infinity);
        const most = values.reduce((a, b) => Math.max(a, b), -Infinity);
        return least === most ? `${name} stays ${inWords(least)}` : `${name} from ${inWords(least)} to ${inWords(most)}`;
    });
    return `${title}: ${parts.join(", ")}`;
}

/** A chart, and what moves its line to a frame. */
function draw(object: SceneObject, chart: Chart, first: number, last: number): [Element, (frame: number) => void] {
    const lines = linesOf(object, chart);
    const points = lines.flatMap((line) => line.points);
    const frames = points.map((point) => point.frame);
    const from = frames.reduce((a, b) => Math.min(a, b), first);
    const to = Math.max(frames.reduce((a, b) => Math.max(a, b), last), from + 1);
    let least = points.reduce((a, point) => Math.min(a, point.value), Infinity);
    let most = points.reduce((a, point) => Math.max(a, point.value), -Infinity);
    if (!(most > least)) {
        const middle = Number.isFinite(least) ? least : 0;
        const room = Math.max(Math.abs(middle) * 0.1, 1);
        least = middle - room;
        most = middle + room;
    }
    const x = (frame: number): number => LEFT + ((frame - from) / (to - from)) * (WIDTH - LEFT - RIGHT);
    const y = (value: number): number => TOP + ((most - value) / (most - least)) * (HEIGHT - TOP - BOTTOM);
    const svg = drawing("svg", {
        viewBox: `0 0 ${WIDTH} ${HEIGHT}`,
        role: "img",
        "aria-label": described(chart.title, lines),
        class: "chart",
    });
    for (const value of [least, (least + most) / 2, most]) {
        svg.append(
            drawing("line", { x1: LEFT, x2: WIDTH - RIGHT, y1: y(value), y2: y(value), class: "rule" }),
            drawing("text", { x: LEFT - 8, y: y(value) + 4, class: "end" }, inWords(value)),
        );
    }
    svg.append(
        drawing("text", { x: x(from), y: HEIGHT - 8 }, `frame ${from}`),
        drawing("text", { x: x(to), y: HEIGHT - 8, class: "end" }, String(to)),
    );
    const now = drawing("line", { y1: TOP, y2: HEIGHT - BOTTOM, class: "now" });
    svg.append(now);
    /** Where names stand at the end of their lines, each below the one before. */
    const taken: number[] = [];
    lines.forEach((line, i) => {
        const end = line.points.at(-1);
        const start = line.points[0];
        if (end === undefined || start === undefined) {
            return;
        }
        let path = `M${x(from)} ${y(start.value)}`;
        let before = start;
        for (const point of line.points) {
            path += before.holds ? `L${x(point.frame)} ${y(before.value)}` : "";
            path += `L${x(point.frame)} ${y(point.value)}`;
            before = point;
        }
        svg.append(drawing("path", { d: `${path}L${x(to)} ${y(end.value)}`, class: `curve c${i}` }));
        if (line.points.length <= MOST_DOTS) {
            for (const point of line.points) {
                svg.append(drawing("circle", { cx: x(point.frame), cy: y(point.value), r: 3, class: `key c${i}` }));
            }
        }
        let at = y(end.value) + 4;
        while (taken.some((other) => Math.abs(other - at) < 14)) {
            at += 14;
        }
        taken.push(at);
        svg.append(drawing("text", { x: WIDTH - RIGHT + 8, y: at, class: `name c${i}` }, line.name));
    });
    return [
        element("figure", { tabindex: "0" }, element("figcaption", {}, chart.title), svg),
        (frame) => {
            now.setAttribute("x1", String(x(frame)));
            now.setAttribute("x2", String(x(frame)));
        },
    ];
}

/** Puts the curves of one object at a time where the page has a place for them. */
export function showCurves(place: HTMLElement, scene: Scene, timeline: Timeline): void {
    const { shot, objects } = scene;
    const first = objects[0];
    if (shot === null || first === undefined) {
        return;
    }
    let moves: ((frame: number) => void)[] = [];
    const charts = element("div", { class: "charts" });
    const show = (object: SceneObject): void => {
        const drawn = [...CHARTS, ...(object.kind === "camera" ? CAMERA_CHARTS : [])].map((chart) =>
            draw(object, chart, Math.min(shot.from, shot.to), Math.max(shot.from, shot.to)),
        );
        const kept = object.keys.frame.length;
        const note =
            kept < object.keys_in_scene
                ? [element("p", { class: "where" }, `${kept} of ${object.keys_in_scene} keys, evenly spaced, are drawn.`)]
                : [];
        charts.replaceChildren(...note, ...drawn.map(([figure]) => figure));
        moves = drawn.map(([, move]) => move);
        for (const move of moves) {
            move(timeline.frame);
        }
    };
    const chosen = choice(
        "Curves of",
        objects.map((object, i) => [String(i), `${object.kind} ${shown(object.name)}`] as const),
        (value) => {
            show(objects[Number(value)] ?? first);
        },
    );
    place.replaceChildren(element("div", { class: "tools" }, chosen), charts);
    show(first);
    timeline.follow((frame) => {
        for (const move of moves) {
            move(frame);
        }
    });
}
