"use strict";
// The captions against a clock, or over a film of one's own: at each moment what the box has on its display.
Zyr.Film = class {
    // getText gives a promise of the text at a time
    constructor(root, pictures, end, getText) {
        Object.assign(this, { pictures, end, getText, at: 0, since: null, text: "" });
        this.video = Zyr.make("video", { hidden: true, controls: true, playsInline: true, "aria-label": Zyr.say("Film") });
        this.image = Zyr.make("img", { alt: "" });
        this.screen = Zyr.make("div", { className: "screen", id: "film-screen" }, this.video, this.image);
        this.clock = Zyr.make("output", { id: "film-clock", textContent: Zyr.formatTime(0) });
        this.button = Zyr.make("button", { type: "button", id: "film-play", textContent: Zyr.say("Play"), onclick: () => this.toggle() });
        this.seek = Zyr.make("input", { type: "range", id: "film-seek", min: 0, max: Math.max(end, 1), value: 0, "aria-label": Zyr.say("Time in the film"), oninput: () => this.set(Number(this.seek.value)) });
        const file = Zyr.make("input", { type: "file", accept: "video/*,audio/*", id: "film-file", onchange: () => this.open(file.files[0]) });
        root.append(this.screen, Zyr.make("div", { className: "film-bar" }, this.button, this.seek, this.clock),
            Zyr.make("label", { className: "film-choose" }, `${Zyr.say("A film of this computer")} `, file));
        this.problem = Zyr.make("p", { role: "status" });
        root.append(this.problem);
        this.video.addEventListener("error", () => { this.problem.textContent = Zyr.say("The browser cannot play this film."); });
        this.video.addEventListener("loadedmetadata", () => this.resize());
        this.resize();
        this.timer = setInterval(() => this.step(), 40);
        this.step();
    }

    get hasVideo() {
        return !this.video.hidden;
    }

    open(file) {
        if (!file) return;
        this.file = file;
        this.problem.textContent = "";
        if (this.source) URL.revokeObjectURL(this.source);
        this.source = URL.createObjectURL(file);
        this.since = null;
        this.video.hidden = false;
        this.video.src = this.source;
        this.seek.hidden = true;
        this.button.hidden = true;
    }

    // The display has the output's own shape; a film stands in it as a box shows it, whole.
    resize() {
        const { output } = this.pictures;
        this.screen.style.aspectRatio = `${output.width} / ${output.height}`;
        this.text = null;
    }

    now() {
        if (this.hasVideo) return Math.round(this.video.currentTime * 1000);
        return this.since === null ? this.at : Math.min(this.at + performance.now() - this.since, this.end);
    }

    set(ms) {
        if (this.hasVideo) this.video.currentTime = ms / 1000;
        this.at = ms;
        if (this.since !== null) this.since = performance.now();
    }

    jump(ms) {
        this.set(ms);
        this.seek.value = ms;
    }

    toggle() {
        if (this.since === null) {
            if (this.at >= this.end) this.at = 0;
            this.since = performance.now();
        } else {
            this.at = this.now();
            this.since = null;
        }
        this.button.textContent = Zyr.say(this.since === null ? "Play" : "Pause");
    }

    async step() {
        if (this.busy) return;
        this.busy = true;
        try {
            const ms = Math.round(this.now());
            this.clock.textContent = Zyr.formatTime(ms);
            if (this.since !== null) this.seek.value = ms;
            if (this.since !== null && ms >= this.end) this.toggle();
            if (ms !== this.asked || this.text === null) await this.show(ms);
        } catch (error) {
            this.problem.textContent = error.message;
        }
        this.busy = false;
    }

    async show(ms) {
        const text = await this.getText(ms);
        this.asked = ms;
        this.screen.dataset.at = ms;
        if (text === this.text) return;
        this.text = text;
        const picture = text.trim() === "" ? null : await this.pictures.draw(text);
        this.image.hidden = !picture;
        if (!picture) return;
        Zyr.Stage.place(this.image, picture, this.pictures.output);
        this.image.alt = text;
    }

    close() {
        clearInterval(this.timer);
        if (this.source) URL.revokeObjectURL(this.source);
    }
};
