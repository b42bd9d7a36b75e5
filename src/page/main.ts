import { showScene } from "./article.ts";
import { scenesOfPage, type Scene } from "./data.ts";
import { arrangeTable, chooseScenes } from "./scenes.ts";

const scenes = scenesOfPage();
const open = new Set<HTMLElement>();

/** Makes a scene's pictures when it is first shown: a page may have hundreds of scenes. */
function show(article: HTMLElement): void {
    const scene: Scene | undefined = scenes[Number(article.dataset["scene"])];
    if (scene === undefined || open.has(article)) {
        return;
    }
    open.add(article);
    showScene(article, scene);
}

const front = document.getElementById("front");
if (front === null) {
    document.querySelectorAll<HTMLElement>("article.scene").forEach(show);
} else {
    arrangeTable(front);
    chooseScenes(front, show);
}
