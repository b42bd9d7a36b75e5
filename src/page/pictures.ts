import type { Scene } from "./data.ts";
import { element } from "./elements.ts";

/** A slider over the frames of a scene; the first one stands in the page. */
export function showPictures(figure: HTMLElement, scene: Scene): void {
    const { frames } = scene.pictures;
    const image = figure.querySelector("img");
    const caption = figure.querySelector("figcaption");
    const first = frames[0];
    if (image === null || caption === null || first === undefined || frames.length < 2) {
        return;
    }
    const slider = element("input", {
        type: "range",
        min: "0",
        max: String(frames.length - 1),
        value: "0",
        "aria-label": "Picture",
    });
    const output = element("output");
    const show = (): void => {
        const chosen = frames[Number(slider.value)] ?? first;
        image.src = chosen.url;
        image.alt = image.alt.replace(/^Frame \S+/, `Frame ${chosen.frame}`);
        output.textContent = `frame ${chosen.frame}`;
        slider.setAttribute("aria-valuetext", output.textContent);
    };
    slider.addEventListener("input", show);
    caption.lastChild?.remove();
    figure.append(element("div", { class: "timeline" }, slider, output));
    show();
}
