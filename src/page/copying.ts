/** Gives every command a button that copies it. */
export function offerToCopy(root: ParentNode): void {
    for (const block of root.querySelectorAll<HTMLElement>("[data-copy]")) {
        const button = document.createElement("button");
        button.type = "button";
        button.className = "copy";
        button.textContent = "Copy";
        button.addEventListener("click", () => {
            copy(block.querySelector("code") ?? block).then(
                () => {
                    button.textContent = "Copied";
                },
                () => {
                    button.textContent = "Select and copy";
                },
            );
        });
        button.addEventListener("blur", () => {
            button.textContent = "Copy";
        });
        block.before(button);
    }
}

/** A page that was opened from a disk may not reach the clipboard; then the browser copies what is selected. */
async function copy(element: HTMLElement): Promise<void> {
    try {
        await navigator.clipboard.writeText(element.textContent);
    } catch {
        const selection = window.getSelection();
        selection?.selectAllChildren(element);
        // eslint-disable-next-line @typescript-eslint/no-deprecated -- the only other way that browsers have
        if (!document.execCommand("copy")) {
            throw new Error("the browser does not copy");
        }
    }
}
