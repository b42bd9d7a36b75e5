import { offerToCopy } from "./copying.ts";
import { showCurves } from "./curves.ts";
import { shown, type Scene } from "./data.ts";
import { showPictures } from "./pictures.ts";
import { showSpace } from "./space.ts";
import { Timeline } from "./timeline.ts";

/** Adds to the text about a scene what needs a script: pictures, the view in three dimensions, curves, copying. */
export function showScene(article: HTMLElement, scene: Scene): void {
    offerToCopy(article);
    const pictures = article.querySelector<HTMLElement>("[data-pictures]");
    if (pictures !== null) {
        showPictures(pictures, scene);
    }
    if (scene.shot === null) {
        return;
    }
    const timeline = new Timeline(scene.shot, shown(scene.scene));
    const space = article.querySelector<HTMLElement>("[data-space]");
    if (space !== null) {
        showSpace(space, article.id, scene, timeline);
    }
    const curves = article.querySelector<HTMLElement>("[data-curves]");
    if (curves !== null) {
        showCurves(curves, scene, timeline);
    }
}
