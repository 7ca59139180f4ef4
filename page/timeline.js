"use strict";
// Captions in time, a lane for each language: zoomed by wheel, keys and buttons, moved by dragging. To those who do not
// see it, it is a slider over the film that goes from caption to caption.
Zyr.Timeline = class {
    static LANE = 40; // pixels: a name and a bar below it
    static BAR = 20;
    static AXIS = 24;
    static SHORTEST = 2000; // ms that fill the width at most zoom
    static STEPS = [100, 200, 500, 1000, 2000, 5000, 10000, 15000, 30000, 60000, 120000, 300000, 600000, 900000, 1800000, 3600000];

    // captions: {start, until, lane, mark}; mark is a severity or "". onPick gets the number of a caption.
    constructor(root, { captions, lanes, end }, onPick) {
        Object.assign(this, { captions, lanes, onPick });
        this.end = Math.max(end, Zyr.Timeline.SHORTEST);
        this.range = [0, this.end];
        this.chosen = -1;
        this.fingers = new Map();
        this.byStart = captions.map((_, at) => at).sort((a, b) => captions[a].start - captions[b].start || a - b);
        this.svg = Zyr.draw("svg", { height: Zyr.Timeline.AXIS + lanes.length * Zyr.Timeline.LANE, "aria-hidden": "true" });
        this.slider = Zyr.make("div", {
            className: "slider", tabIndex: 0, role: "slider", "aria-label": Zyr.say("Time in the film"),
            "aria-valuemin": 0, "aria-valuemax": this.end, "aria-valuenow": 0, "aria-valuetext": Zyr.say("no caption chosen"),
        });
        this.slider.append(this.svg);
        this.span = Zyr.make("output", { className: "span" });
        root.append(Zyr.make("div", { className: "lanes" }, this.slider), Zyr.make("div", { className: "zoom" },
            this.makeButton("−", Zyr.say("Zoom out"), () => this.zoom(2)),
            this.makeButton("+", Zyr.say("Zoom in"), () => this.zoom(0.5)),
            this.makeButton(Zyr.say("All"), Zyr.say("All of the film"), () => this.show(0, this.end)),
            this.span));
        this.listen();
        new ResizeObserver(() => {
            document.documentElement.style.setProperty("--time-height", `${root.offsetHeight}px`);
            this.redraw();
        }).observe(root);
    }

    makeButton(text, label, onclick) {
        return Zyr.make("button", { type: "button", textContent: text, "aria-label": label, onclick });
    }

    get width() {
        return Math.max(this.slider.clientWidth, 1);
    }

    toX(ms) {
        return ((ms - this.range[0]) / (this.range[1] - this.range[0])) * this.width;
    }

    toTime(x) {
        return this.range[0] + (x / this.width) * (this.range[1] - this.range[0]);
    }

    show(from, to) {
        const length = Math.min(Math.max(to - from, Zyr.Timeline.SHORTEST), this.end);
        const start = Math.min(Math.max(from + (to - from - length) / 2, 0), this.end - length);
        this.range = [start, start + length];
        this.redraw();
        if (this.onRange) this.onRange(Math.round(start), Math.round(start + length));
    }

    // About a time that stays where it is: that under the pointer, else the chosen caption, else the middle.
    zoom(factor, about = this.getAbout()) {
        this.show(about - (about - this.range[0]) * factor, about + (this.range[1] - about) * factor);
    }

    getAbout() {
        const caption = this.captions[this.chosen];
        const seen = caption && caption.start >= this.range[0] && caption.start <= this.range[1];
        return seen ? caption.start : (this.range[0] + this.range[1]) / 2;
    }

    move(ms) {
        this.show(this.range[0] + ms, this.range[1] + ms);
    }

    choose(at) {
        this.chosen = at;
        const caption = this.captions[at];
        if (!caption) return this.redraw();
        Zyr.set(this.slider, {
            "aria-valuenow": Math.min(Math.max(caption.start, 0), this.end),
            "aria-valuetext": Zyr.say("%1, caption %2", Zyr.formatTime(caption.start), caption.name),
        });
        const [from, to] = this.range;
        if (caption.start < from || caption.start > to) this.move(caption.start - (from + to) / 2);
        else this.redraw();
        return undefined;
    }

    // The next caption in time that the filters leave, or the one before.
    step(by) {
        const shown = this.byStart.filter((at) => !this.captions[at].hidden);
        const now = shown.indexOf(this.chosen);
        const next = now < 0 ? shown[by > 0 ? 0 : shown.length - 1] : shown[now + by];
        if (next !== undefined) this.onPick(next);
    }

    // The caption of the lane that is on screen at the time, or the nearest.
    find(ms, lane) {
        let best = -1, distance = Infinity;
        this.captions.forEach((caption, at) => {
            if (caption.lane !== lane || caption.hidden) return;
            const off = Math.max(caption.start - ms, ms - caption.until, 0);
            if (off < distance) [best, distance] = [at, off];
        });
        return best;
    }

    listen() {
        const { slider } = this;
        slider.addEventListener("wheel", (event) => {
            event.preventDefault();
            const length = this.range[1] - this.range[0];
            if (Math.abs(event.deltaX) > Math.abs(event.deltaY)) this.move((event.deltaX / this.width) * length);
            else this.zoom(Math.exp(Math.sign(event.deltaY) * Math.min(Math.abs(event.deltaY), 200) * 0.002), this.toTime(this.getX(event)));
        }, { passive: false });
        slider.addEventListener("pointerdown", (event) => this.grip(event));
        slider.addEventListener("pointermove", (event) => this.pull(event));
        slider.addEventListener("pointerup", (event) => this.release(event));
        slider.addEventListener("pointercancel", (event) => this.fingers.delete(event.pointerId));
        slider.addEventListener("keydown", (event) => this.press(event));
    }

    getX(event) {
        return event.clientX - this.slider.getBoundingClientRect().left;
    }

    // Each finger holds the time that it was put on: one moves the film, two stretch it as well.
    grip(event) {
        const x = this.getX(event);
        this.fingers.set(event.pointerId, { x, from: x, time: this.toTime(x), moved: this.fingers.size > 0 });
        this.slider.setPointerCapture(event.pointerId);
    }

    pull(event) {
        const finger = this.fingers.get(event.pointerId);
        if (!finger) return;
        finger.x = this.getX(event);
        finger.moved ||= Math.abs(finger.x - finger.from) > 4;
        if (!finger.moved) return;
        const [a, b] = this.fingers.values();
        const still = (this.range[1] - this.range[0]) / this.width;
        const pixel = b && Math.abs(b.x - a.x) > 10 ? Math.abs((b.time - a.time) / (b.x - a.x)) : still; // ms
        this.show(a.time - a.x * pixel, a.time + (this.width - a.x) * pixel);
    }

    release(event) {
        const finger = this.fingers.get(event.pointerId);
        this.fingers.delete(event.pointerId);
        for (const each of this.fingers.values()) Object.assign(each, { time: this.toTime(each.x), moved: true });
        if (!finger || finger.moved) return;
        const top = event.clientY - this.slider.getBoundingClientRect().top - Zyr.Timeline.AXIS;
        const lane = Math.min(Math.max(Math.floor(top / Zyr.Timeline.LANE), 0), this.lanes.length - 1);
        const at = this.find(this.toTime(this.getX(event)), lane);
        if (at >= 0) this.onPick(at);
    }

    press(event) {
        const length = this.range[1] - this.range[0];
        const keys = {
            ArrowRight: () => this.step(1), ArrowLeft: () => this.step(-1),
            ArrowUp: () => this.zoom(0.5), ArrowDown: () => this.zoom(2),
            "+": () => this.zoom(0.5), "=": () => this.zoom(0.5), "-": () => this.zoom(2), 0: () => this.show(0, this.end),
            PageDown: () => this.move(length), PageUp: () => this.move(-length),
            Home: () => { this.chosen = -1; this.step(1); }, End: () => { this.chosen = -1; this.step(-1); },
        };
        if (event.ctrlKey || event.altKey || event.metaKey || !keys[event.key]) return;
        event.preventDefault();
        event.stopPropagation();
        keys[event.key]();
    }

    // One drawing a frame, however often it is asked for.
    redraw() {
        if (this.waiting) return;
        this.waiting = true;
        requestAnimationFrame(() => {
            this.waiting = false;
            this.svg.setAttribute("width", this.width);
            this.svg.replaceChildren(...this.drawAxis(), ...this.lanes.flatMap((name, lane) => this.drawLane(name, lane)), ...this.drawChosen());
            this.span.textContent = this.range.map((ms) => Zyr.formatTime(ms).slice(0, -2)).join(" – ");
        });
    }

    drawAxis() {
        const length = this.range[1] - this.range[0];
        const step = Zyr.Timeline.STEPS.find((ms) => (ms / length) * this.width >= 76) || 3600000 * Math.ceil((length * 76) / this.width / 3600000);
        const marks = [];
        for (let ms = Math.ceil(this.range[0] / step) * step; ms <= this.range[1]; ms += step) {
            const x = this.toX(ms);
            marks.push(Zyr.draw("line", { class: "tick", x1: x, x2: x, y1: 0, y2: this.svg.getAttribute("height") }));
            if (x > this.width - 50) continue;
            marks.push(Zyr.draw("text", { class: "axis", x: x + 3, y: 14 }, step < 1000 ? Zyr.formatTime(ms).slice(0, -2) : Zyr.formatTime(ms).slice(0, -4)));
        }
        return marks;
    }

    drawLane(name, lane) {
        const { AXIS, LANE, BAR } = Zyr.Timeline;
        const top = AXIS + lane * LANE + (LANE - BAR - 2);
        const paths = { bar: "", faint: "", lost: "", changed: "", doubtful: "" };
        this.captions.forEach((caption) => {
            if (caption.lane !== lane || caption.until < this.range[0] || caption.start > this.range[1]) return;
            const x = this.toX(caption.start);
            const right = Math.max(this.toX(caption.until) - 0.5, x + 1);
            paths[caption.hidden ? "faint" : "bar"] += `M${x.toFixed(1)} ${top}H${right.toFixed(1)}V${top + BAR}H${x.toFixed(1)}Z`;
            if (caption.mark && !caption.hidden) paths[caption.mark] += `M${x.toFixed(1)} ${top}h${Math.max(right - x, 3).toFixed(1)}v5H${x.toFixed(1)}Z`;
        });
        const drawn = Object.entries(paths).filter(([, path]) => path).map(([kind, d]) => Zyr.draw("path", { class: kind, d }));
        return [Zyr.draw("text", { class: "lane", x: 3, y: top - 4 }, name), ...drawn];
    }

    drawChosen() {
        const caption = this.captions[this.chosen];
        if (!caption) return [];
        const { AXIS, LANE, BAR } = Zyr.Timeline;
        const x = this.toX(caption.start);
        const y = AXIS + caption.lane * LANE + (LANE - BAR - 2);
        return [
            Zyr.draw("line", { class: "now", x1: x, x2: x, y1: 0, y2: this.svg.getAttribute("height") }),
            Zyr.draw("rect", { class: "chosen", x, y, width: Math.max(this.toX(caption.until) - x, 3), height: BAR }),
        ];
    }
};
