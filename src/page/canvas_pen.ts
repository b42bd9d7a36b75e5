// Draws what a camera of three.js sees onto a canvas: lines, marks and names. There is no surface to hide anything, so
// no graphics processor is needed, and the page looks the same everywhere.
import { Vector3, type PerspectiveCamera } from "three";

/** Where the camera's picture lies on the canvas, in its pixels. */
export interface Frame {
    readonly left: number;
    readonly top: number;
    readonly width: number;
    readonly height: number;
}

export class Pen {
    /** Lines end this far before the camera, in the scene's units. */
    private readonly near: number;

    constructor(
        readonly context: CanvasRenderingContext2D,
        private readonly camera: PerspectiveCamera,
        private readonly frame: Frame,
        scale: number,
    ) {
        this.near = scale * 1e-4;
    }

    /** The place of a point on the canvas; undefined behind the camera. */
    place(point: Vector3): readonly [number, number] | undefined {
        const seen = point.clone().applyMatrix4(this.camera.matrixWorldInverse);
        return seen.z < -this.near ? this.projected(seen) : undefined;
    }

    /** A row of straight lines; what is behind the camera is cut off. */
    line(points: readonly Vector3[]): void {
        const { context, near } = this;
        const seen = points.map((point) => point.clone().applyMatrix4(this.camera.matrixWorldInverse));
        context.beginPath();
        for (let i = 1; i < seen.length; i += 1) {
            let a = seen[i - 1];
            let b = seen[i];
            if (a === undefined || b === undefined || (a.z > -near && b.z > -near)) {
                continue;
            }
            if (a.z > -near) {
                a = a.clone().lerp(b, (-near - a.z) / (b.z - a.z));
            } else if (b.z > -near) {
                b = b.clone().lerp(a, (-near - b.z) / (a.z - b.z));
            }
            const from = this.projected(a);
            const to = this.projected(b);
            if ([...from, ...to].every((number) => Math.abs(number) < 1e7)) {
                context.moveTo(...from);
                context.lineTo(...to);
            }
        }
        context.stroke();
    }

    dot(point: Vector3, radius: number): void {
        const at = this.place(point);
        if (at !== undefined) {
            this.context.beginPath();
            this.context.arc(at[0], at[1], radius, 0, 2 * Math.PI);
            this.context.fill();
        }
    }

    ring(point: Vector3, radius: number): void {
        const at = this.place(point);
        if (at !== undefined) {
            this.context.beginPath();
            this.context.arc(at[0], at[1], radius, 0, 2 * Math.PI);
            this.context.stroke();
        }
    }

    name(point: Vector3, text: string): void {
        const at = this.place(point);
        if (at !== undefined) {
            this.context.fillText(text, at[0] + 9, at[1] - 7);
        }
    }

    private projected(seen: Vector3): [number, number] {
        const { left, top, width, height } = this.frame;
        const at = seen.clone().applyMatrix4(this.camera.projectionMatrix);
        return [left + ((at.x + 1) / 2) * width, top + ((1 - at.y) / 2) * height];
    }
}
