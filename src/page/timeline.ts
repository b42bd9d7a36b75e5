import { button, element } from "./elements.ts";
import { numberOf, type Shot } from "./data.ts";

type Listener = (frame: number) => void;

/** The frame that all parts of a scene show: a slider, and a button that plays. */
export class Timeline {
    readonly controls: HTMLElement;
    frame: number;
    private readonly slider: HTMLInputElement;
    private readonly output: HTMLOutputElement;
    private readonly play: HTMLButtonElement;
    private readonly listeners: Listener[] = [];
    private readonly fps: number;
    private playing: number | undefined;

    constructor(shot: Shot, name: string) {
        const first = Math.min(shot.from, shot.to);
        const last = Math.max(shot.from, shot.to);
        const fps = numberOf(shot.rate_fps);
        this.fps = fps > 0 ? fps : 25;
        this.frame = first;
        this.slider = element("input", {
            type: "range",
            min: String(first),
            max: String(last),
            step: "1",
            value: String(first),
            "aria-label": `Frame of ${name}`,
        });
        this.output = element("output");
        this.play = button("Play", () => {
            this.toggle();
        });
        this.slider.addEventListener("input", () => {
            this.stop();
            this.show(Number(this.slider.value));
        });
        this.controls = element("div", { class: "timeline" }, this.play, this.slider, this.output);
        this.show(first);
    }

    follow(listener: Listener): void {
        this.listeners.push(listener);
        listener(this.frame);
    }

    private show(frame: number): void {
        this.frame = frame;
        this.slider.value = String(frame);
        this.output.textContent = `frame ${frame}`;
        for (const listener of this.listeners) {
            listener(frame);
        }
    }

    private toggle(): void {
        if (this.playing !== undefined) {
            this.stop();
            return;
        }
        this.play.textContent = "Pause";
        const first = Number(this.slider.min);
        const count = Number(this.slider.max) - first + 1;
        const began = performance.now();
        const start = this.frame - first;
        const step = (now: number): void => {
            const frame = first + ((start + Math.floor(((now - began) / 1000) * this.fps)) % count);
            if (frame !== this.frame) {
                this.show(frame);
            }
            this.playing = requestAnimationFrame(step);
        };
        this.playing = requestAnimationFrame(step);
    }

    private stop(): void {
        if (this.playing !== undefined) {
            cancelAnimationFrame(this.playing);
            this.playing = undefined;
            this.play.textContent = "Play";
        }
    }
}
