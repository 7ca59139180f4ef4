"use strict";
// The worker, as the page calls it. One that does not answer in time is replaced by a new one, which knows no file yet.
Zyr.Engine = class {
    static PATIENCE = 180000; // ms

    constructor() {
        this.waiting = new Map();
        this.last = 0;
        this.start();
    }

    start() {
        this.worker = new Worker("worker.js");
        this.worker.onmessage = ({ data: { id, result, error } }) => this.settle(id, error, result);
        this.worker.onerror = () => this.restart(Zyr.say("The reader cannot be started."));
    }

    settle(id, error, result) {
        const waiting = this.waiting.get(id);
        if (!waiting) return;
        this.waiting.delete(id);
        clearTimeout(waiting.timer);
        if (error === undefined) waiting.resolve(result);
        else waiting.reject(new Error(error));
    }

    restart(why) {
        this.worker.terminate();
        for (const id of [...this.waiting.keys()]) this.settle(id, why);
        this.start();
    }

    call(name, args = {}) {
        const id = (this.last += 1);
        return new Promise((resolve, reject) => {
            const timer = setTimeout(() => this.restart(Zyr.say("It took too long to read.")), Zyr.Engine.PATIENCE);
            this.waiting.set(id, { resolve, reject, timer });
            this.worker.postMessage({ id, name, args });
        });
    }
};

// Pictures that are drawn when they are wanted, each once for an output.
Zyr.DrawnPictures = class extends Zyr.Pictures {
    // texts: what the pictures say, by their numbers
    constructor(engine, outputs, texts) {
        super(outputs);
        Object.assign(this, { engine, texts, drawn: new Map() });
    }

    has(number) {
        return number !== null;
    }

    getSize() {
        return null;
    }

    load(number) {
        return this.draw(this.texts.get(number));
    }

    draw(text) {
        const key = `${this.output.name}\n${text}`;
        if (!this.drawn.has(key)) {
            const drawing = this.engine.call("draw", { text, output: this.output.name });
            this.drawn.set(key, drawing.then((picture) => picture && { ...picture, src: URL.createObjectURL(picture.blob) }, () => null));
        }
        return this.drawn.get(key);
    }

    async close() {
        for (const drawing of this.drawn.values()) {
            const picture = await drawing;
            if (picture) URL.revokeObjectURL(picture.src);
        }
    }
};
