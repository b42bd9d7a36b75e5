/** A new element with attributes and children; texts are texts, never HTML. */
export function element<Tag extends keyof HTMLElementTagNameMap>(
    tag: Tag,
    attributes: Readonly<Record<string, string>> = {},
    ...children: readonly (Node | string)[]
): HTMLElementTagNameMap[Tag] {
    const made = document.createElement(tag);
    for (const [name, value] of Object.entries(attributes)) {
        made.setAttribute(name, value);
    }
    made.append(...children);
    return made;
}

/** The same for drawings. */
export function drawing<Tag extends keyof SVGElementTagNameMap>(
    tag: Tag,
    attributes: Readonly<Record<string, string | number>> = {},
    ...children: readonly (Node | string)[]
): SVGElementTagNameMap[Tag] {
    const made = document.createElementNS("http://www.w3.org/2000/svg", tag);
    for (const [name, value] of Object.entries(attributes)) {
        made.setAttribute(name, String(value));
    }
    made.append(...children);
    return made;
}

export function button(text: string, pressed: () => void): HTMLButtonElement {
    const made = element("button", { type: "button" }, text);
    made.addEventListener("click", pressed);
    return made;
}

/** A switch with its label. */
export function toggle(text: string, on: boolean, changed: (on: boolean) => void): HTMLLabelElement {
    const box = element("input", { type: "checkbox" });
    box.checked = on;
    box.addEventListener("change", () => {
        changed(box.checked);
    });
    return element("label", { class: "toggle" }, box, text);
}

/** A choice with its label. */
export function choice(
    text: string,
    options: readonly (readonly [value: string, title: string])[],
    changed: (value: string) => void,
): HTMLLabelElement {
    const select = element("select");
    for (const [value, title] of options) {
        select.append(element("option", { value }, title));
    }
    select.addEventListener("change", () => {
        changed(select.value);
    });
    return element("label", { class: "choice" }, element("span", {}, text), select);
}
