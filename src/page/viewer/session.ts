// The worker from the page's side. A worker that is stopped, or whose program broke, is replaced by a new one with the same
// files; memory goes back with the old one.
import type { Kind, PlacedFile, Reply, Results, Task } from "./messages.ts";

const FILES_AT_A_TIME = 500;

export class Stopped extends Error {}

interface Waiting {
    readonly resolve: (result: Results[keyof Results]) => void;
    readonly reject: (error: Error) => void;
    readonly tell: (done: number, of: number) => void;
}

function contentOf(id: string): string {
    return document.getElementById(id)?.textContent ?? "";
}

let compiled: Promise<WebAssembly.Module> | null = null;

/** Unpacks and compiles the program once in the life of the page. */
function program(): Promise<WebAssembly.Module> {
    compiled ??= (async () => {
        const packed = Uint8Array.from(atob(contentOf("program")), (one) => one.charCodeAt(0));
        const unpacked = new Blob([packed]).stream().pipeThrough(new DecompressionStream("gzip"));
        return WebAssembly.compile(await new Response(unpacked).arrayBuffer());
    })();
    return compiled;
}

export class Session {
    private worker: Worker | null = null;
    private readonly waiting = new Map<number, Waiting>();
    private next = 1;
    private opened: Promise<readonly Kind[]> | null = null;
    private tellOpening: (done: number, of: number) => void = () => undefined;

    constructor(private readonly files: readonly PlacedFile[]) {}

    /** The kinds of the files, in their order. */
    open(tell: (done: number, of: number) => void): Promise<readonly Kind[]> {
        this.tellOpening = tell;
        this.opened ??= this.start();
        return this.opened;
    }

    async ask<Name extends Task["kind"]>(task: Extract<Task, { kind: Name }>): Promise<Results[Name]> {
        await this.open(this.tellOpening);
        return this.send(task);
    }

    /** Ends whatever is being done; what waits for it is rejected. */
    stop(reason = "stopped"): void {
        this.worker?.terminate();
        this.worker = null;
        this.opened = null;
        const waiting = [...this.waiting.values()];
        this.waiting.clear();
        for (const one of waiting) {
            one.reject(new Stopped(reason));
        }
    }

    private async start(): Promise<readonly Kind[]> {
        const module = await program();
        const url = URL.createObjectURL(new Blob([contentOf("worker")], { type: "text/javascript" }));
        const worker = new Worker(url);
        URL.revokeObjectURL(url);
        this.worker = worker;
        worker.addEventListener("message", (event: MessageEvent<Reply>) => {
            this.receive(event.data);
        });
        worker.addEventListener("error", (event) => {
            event.preventDefault();
            this.stop(event.message === "" ? "the worker of this page failed" : event.message);
        });
        // In parts: thousands of files in one message stop the page.
        for (let from = 0; from < this.files.length; from += FILES_AT_A_TIME) {
            await this.send({ kind: "add", files: this.files.slice(from, from + FILES_AT_A_TIME) });
        }
        return this.send({ kind: "open", program: module });
    }

    private send<Name extends Task["kind"]>(task: Extract<Task, { kind: Name }>): Promise<Results[Name]> {
        const id = this.next++;
        const tell = task.kind === "open" ? this.tellOpening : () => undefined;
        const result = new Promise<Results[keyof Results]>((resolve, reject) => {
            this.waiting.set(id, { resolve, reject, tell });
        });
        this.worker?.postMessage({ id, task });
        return result as Promise<Results[Name]>;
    }

    private receive(reply: Reply): void {
        const waiting = this.waiting.get(reply.id);
        if (waiting === undefined) {
            return;
        }
        if ("done" in reply) {
            waiting.tell(reply.done, reply.of);
            return;
        }
        this.waiting.delete(reply.id);
        if ("result" in reply) {
            waiting.resolve(reply.result);
            return;
        }
        waiting.reject(new Error(reply.error));
        if (reply.broken) {
            this.stop(reply.error);
        }
    }
}
