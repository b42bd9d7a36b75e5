// What was found about a file, as a list.
import { element } from "../elements.ts";
import type { Diagnostic } from "./messages.ts";

const MOST_FINDINGS = 200;

export function grouped(value: number): string {
    return value.toLocaleString("en-US");
}

function finding(one: Diagnostic): HTMLElement {
    return element(
        "li",
        {},
        element("span", { class: `mark ${one.severity}` }, one.severity),
        ` ${one.reason ?? one.message ?? ""} `,
        element("span", { class: "code" }, one.code),
    );
}

export function findings(all: readonly Diagnostic[]): HTMLElement {
    const place = element("ul", { class: "findings" }, ...all.slice(0, MOST_FINDINGS).map(finding));
    if (all.length > MOST_FINDINGS) {
        place.append(element("li", {}, `and ${grouped(all.length - MOST_FINDINGS)} more`));
    }
    return place;
}

