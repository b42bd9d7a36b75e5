// Cameras of the scene as cameras of three.js. The scene's axes are left-handed, y up and z away from the viewer; those of
// three.js are right-handed with z towards the viewer, so z changes its sign.
import { Matrix4, PerspectiveCamera, Vector3 } from "three";
import { numberOf, valueAt, type Keys, type Shot } from "./data.ts";

const NEAR = 1e-3;
const FAR = 1e9;

/** Where an object is at a frame. */
export function positionAt(keys: Keys, frame: number): Vector3 {
    return new Vector3(valueAt(keys, "x", frame), valueAt(keys, "y", frame), -valueAt(keys, "z", frame));
}

/** How it is turned: right, up and backwards as the columns. */
export function turnAt(keys: Keys, frame: number): Matrix4 {
    const radians = Math.PI / 180;
    const heading = valueAt(keys, "heading", frame) * radians;
    const pitch = valueAt(keys, "pitch", frame) * radians;
    const bank = valueAt(keys, "bank", frame) * radians;
    const back = new Vector3(
        Math.cos(pitch) * Math.sin(heading),
        -Math.sin(pitch),
        Math.cos(pitch) * Math.cos(heading),
    );
    const right = new Vector3(Math.cos(heading), 0, -Math.sin(heading));
    const up = new Vector3(
        Math.sin(pitch) * Math.sin(heading),
        Math.cos(pitch),
        Math.sin(pitch) * Math.cos(heading),
    );
    // A bank turns clockwise as the camera sees it.
    const banked = right
        .clone()
        .multiplyScalar(Math.cos(bank))
        .addScaledVector(up, -Math.sin(bank));
    up.multiplyScalar(Math.cos(bank)).addScaledVector(right, Math.sin(bank));
    return new Matrix4().makeBasis(banked, up, back);
}

/** Width over height of the picture as it is seen. */
export function pictureAspect(shot: Shot): number {
    const aspect = (shot.width_px * numberOf(shot.pixel_aspect)) / shot.height_px;
    return Number.isFinite(aspect) && aspect > 0 ? aspect : 16 / 9;
}

/** The camera at a frame; undefined where it has no sound numbers. The scene's angle of view is horizontal. */
export function cameraAt(keys: Keys, frame: number, shot: Shot): PerspectiveCamera | undefined {
    const half = Math.tan((valueAt(keys, "view_angle", frame) * Math.PI) / 360);
    const position = positionAt(keys, frame);
    const aspect = pictureAspect(shot);
    const camera = new PerspectiveCamera((Math.atan(half / aspect) * 360) / Math.PI, aspect, NEAR, FAR);
    camera.matrixAutoUpdate = false;
    camera.matrix.copy(turnAt(keys, frame)).setPosition(position);
    camera.updateMatrixWorld(true);
    camera.updateProjectionMatrix();
    const sound = half > 0 && [...camera.matrix.elements, ...camera.projectionMatrix.elements].every(Number.isFinite);
    return sound ? camera : undefined;
}
