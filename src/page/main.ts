import { offerToCopy } from "./copying.ts";
import { showCurves } from "./curves.ts";
import { scenesOfPage, shown, type Scene } from "./data.ts";
import { showPictures } from "./pictures.ts";
import { arrangeTable, chooseScenes } from "./scenes.ts";
import { showSpace } from "./space.ts";
import { Timeline } from "./timeline.ts";

const scenes = scenesOfPage();
const open = new Set<HTMLElement>();

/** Makes a scene's pictures when it is first shown: a page may have hundreds of scenes. */
function show(article: HTMLElement): void {
    const scene: Scene | undefined = scenes[Number(article.dataset["scene"])];
    if (scene === undefined || open.has(article)) {
        return;
    }
    open.add(article);
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

const front = document.getElementById("front");
if (front === null) {
    document.querySelectorAll<HTMLElement>("article.scene").forEach(show);
} else {
    arrangeTable(front);
    chooseScenes(front, show);
}
