// A page with several scenes: the table is filtered and sorted, and one scene is shown at a time.
import { button, choice, element } from "./elements.ts";

function sortable(header: HTMLTableCellElement, column: number, body: HTMLTableSectionElement): void {
    const numbers = header.dataset["sort"] === "number";
    const title = header.textContent;
    const key = (row: HTMLTableRowElement): string => row.cells[column]?.textContent.replaceAll(",", "") ?? "";
    header.replaceChildren(
        button(title, () => {
            // Numbers begin with the largest: those are what a person looks for.
            const now = header.getAttribute("aria-sort");
            const ascending = now === null ? !numbers : now === "descending";
            for (const other of header.parentElement?.children ?? []) {
                other.removeAttribute("aria-sort");
            }
            header.setAttribute("aria-sort", ascending ? "ascending" : "descending");
            const rows = [...body.rows].sort((a, b) =>
                numbers ? Number(key(a)) - Number(key(b)) : key(a).localeCompare(key(b), "en", { numeric: true }),
            );
            body.append(...(ascending ? rows : rows.reverse()));
        }),
    );
}

export function arrangeTable(front: HTMLElement): void {
    const table = front.querySelector("table");
    const body = table?.tBodies[0];
    const tools = front.querySelector<HTMLElement>("[data-filter]");
    if (table === null || body === undefined || tools === null) {
        return;
    }
    const search = element("input", { type: "search" });
    const found = element("output");
    let state = "";
    const filter = (): void => {
        const words = search.value.toLowerCase();
        let count = 0;
        for (const row of body.rows) {
            const fits =
                (state === "" || row.dataset["state"] === state) && row.textContent.toLowerCase().includes(words);
            row.hidden = !fits;
            count += fits ? 1 : 0;
        }
        found.textContent = `${count} of ${body.rows.length} shown`;
    };
    search.addEventListener("input", filter);
    tools.replaceChildren(
        element("label", { class: "choice" }, element("span", {}, "Find"), search),
        choice(
            "Show",
            [
                ["", "all"],
                ["refused", "what does not import"],
                ["incomplete", "what lacks footage"],
                ["loss", "what has losses"],
                ["good", "what is whole"],
            ],
            (value) => {
                state = value;
                filter();
            },
        ),
        found,
    );
    filter();
    [...(table.tHead?.rows[0]?.cells ?? [])].forEach((header, i) => {
        if (header.dataset["sort"] !== undefined) {
            sortable(header, i, body);
        }
    });
}

/** Shows the scene that the address names, else the table; `opened` is called before a scene is first shown. */
export function chooseScenes(front: HTMLElement, opened: (article: HTMLElement) => void): void {
    const articles = [...document.querySelectorAll<HTMLElement>("article.scene")];
    // A scene that is shown alone has the heading of the page.
    for (const heading of document.querySelectorAll("article.scene :is(h2, h3, h4)")) {
        heading.setAttribute("aria-level", String(Number(heading.tagName.slice(1)) - 1));
    }
    const show = (moved: boolean): void => {
        const target = document.getElementById(decodeURIComponent(location.hash.slice(1)));
        const chosen = target?.closest<HTMLElement>("article.scene") ?? undefined;
        front.hidden = chosen !== undefined;
        for (const article of articles) {
            article.hidden = article !== chosen;
        }
        if (chosen !== undefined) {
            opened(chosen);
        }
        const goal = chosen === undefined ? front : target;
        if (moved && goal !== null) {
            const heading = goal.matches("article, header") ? (goal.querySelector<HTMLElement>("h1, h2") ?? goal) : goal;
            heading.tabIndex = -1;
            heading.focus({ preventScroll: true });
            goal.scrollIntoView();
        }
    };
    addEventListener("hashchange", () => {
        show(true);
    });
    show(location.hash !== "");
}
