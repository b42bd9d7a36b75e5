// A camera that goes around the scene, by mouse, touch, wheel and keys.
import { PerspectiveCamera, Vector3 } from "three";

const LARGEST_ELEVATION = (89 * Math.PI) / 180;

export class Orbit {
    private azimuth = 0;
    private elevation = 0;
    private distance = 1;
    private readonly aim = new Vector3();

    constructor(
        private readonly middle: Vector3,
        /** Of a ball around everything. */
        private readonly radius: number,
        private readonly changed: () => void,
    ) {
        this.reset();
    }

    reset(): void {
        this.azimuth = (-35 * Math.PI) / 180;
        this.elevation = (24 * Math.PI) / 180;
        this.distance = this.radius * 2.7;
        this.aim.copy(this.middle);
        this.changed();
    }

    turn(azimuth: number, elevation: number): void {
        this.azimuth += azimuth;
        this.elevation = Math.min(LARGEST_ELEVATION, Math.max(-LARGEST_ELEVATION, this.elevation + elevation));
        this.changed();
    }

    zoom(factor: number): void {
        this.distance = Math.min(this.radius * 50, Math.max(this.radius * 0.05, this.distance * factor));
        this.changed();
    }

    /** To the side and up, in parts of what is seen. */
    shift(right: number, up: number): void {
        const camera = this.camera(1);
        this.aim.addScaledVector(new Vector3().setFromMatrixColumn(camera.matrixWorld, 0), right * this.distance);
        this.aim.addScaledVector(new Vector3().setFromMatrixColumn(camera.matrixWorld, 1), up * this.distance);
        this.changed();
    }

    camera(aspect: number): PerspectiveCamera {
        const camera = new PerspectiveCamera(45, aspect, this.radius * 1e-3, this.radius * 1e3);
        camera.position
            .set(
                Math.cos(this.elevation) * Math.sin(this.azimuth),
                Math.sin(this.elevation),
                Math.cos(this.elevation) * Math.cos(this.azimuth),
            )
            .multiplyScalar(this.distance)
            .add(this.aim);
        camera.lookAt(this.aim);
        camera.updateMatrixWorld(true);
        return camera;
    }

    /** Lets a person turn it on this element while `active` says so. */
    control(surface: HTMLElement, active: () => boolean): void {
        surface.addEventListener("pointerdown", (event) => {
            if (active() && event.button === 0) {
                surface.setPointerCapture(event.pointerId);
            }
        });
        surface.addEventListener("pointermove", (event) => {
            if (active() && surface.hasPointerCapture(event.pointerId)) {
                if (event.shiftKey) {
                    this.shift(-event.movementX / surface.clientHeight, event.movementY / surface.clientHeight);
                } else {
                    this.turn(-event.movementX * 0.008, event.movementY * 0.008);
                }
            }
        });
        // Only once it has been chosen: a page that does not scroll under the pointer is a trap.
        surface.addEventListener(
            "wheel",
            (event) => {
                if (active() && document.activeElement === surface) {
                    event.preventDefault();
                    this.zoom(Math.exp(Math.sign(event.deltaY) * 0.12));
                }
            },
            { passive: false },
        );
        surface.addEventListener("keydown", (event) => {
            if (active() && !event.ctrlKey && !event.altKey && !event.metaKey && this.press(event.key, event.shiftKey)) {
                event.preventDefault();
            }
        });
    }

    private press(key: string, shift: boolean): boolean {
        const step = (6 * Math.PI) / 180;
        const arrows: Readonly<Record<string, readonly [number, number]>> = {
            ArrowLeft: [-1, 0],
            ArrowRight: [1, 0],
            ArrowUp: [0, 1],
            ArrowDown: [0, -1],
        };
        const arrow = arrows[key];
        if (arrow !== undefined) {
            if (shift) {
                this.shift(arrow[0] * 0.05, arrow[1] * 0.05);
            } else {
                this.turn(arrow[0] * step, arrow[1] * step);
            }
        } else if (key === "+" || key === "=") {
            this.zoom(0.85);
        } else if (key === "-") {
            this.zoom(1 / 0.85);
        } else if (key === "0" || key === "Home") {
            this.reset();
        } else {
            return false;
        }
        return true;
    }
}
