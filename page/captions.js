"use strict";
// Every caption with its times, text, picture and findings. Pictures are put in as they come near to being seen.
Zyr.CaptionList = class {
    // captions: {number, name, start, end, until, className, language, lines, picture, findings, box, boxLines}
    constructor(root, captions, pictures, onPick) {
        Object.assign(this, { captions, pictures, onPick });
        this.loader = new IntersectionObserver((entries) => {
            for (const entry of entries) if (entry.isIntersecting) this.load(entry.target);
        }, { rootMargin: "600px" });
        this.rows = captions.map((caption) => this.makeRow(caption));
        this.status = Zyr.make("p", { id: "status", role: "status" });
        this.list = Zyr.make("ol", {}, this.rows);
        this.list.addEventListener("click", (event) => this.click(event));
        root.append(Zyr.make("h2", { textContent: Zyr.say("Captions") }), this.status, this.list);
        this.reload();
    }

    makeRow(caption) {
        const times = Zyr.say("%1 to %2", Zyr.formatTime(caption.start), caption.end === null ? Zyr.say("open") : Zyr.formatTime(caption.end));
        const severest = Zyr.SEVERITIES.find((severity) => caption.findings.some((finding) => finding.severity === severity));
        const row = Zyr.make("li", { className: `caption ${severest || ""}`, id: `caption-${caption.name}` },
            Zyr.make("button", { type: "button", className: "pick" },
                Zyr.make("span", { className: "number", textContent: `${caption.name}` }), " ",
                Zyr.make("span", { className: "times", textContent: times }),
                caption.className && [" ", Zyr.make("span", { className: "class", textContent: caption.className })]),
            Zyr.CaptionList.makeText(caption, caption.lines),
            this.makeShot(caption),
            Zyr.CaptionList.makeBox(caption),
            caption.findings.length > 0 && Zyr.make("ul", { className: "told" }, caption.findings.map(Zyr.Findings.makeItem)));
        row.caption = caption;
        return row;
    }

    static makeText(caption, lines) {
        const text = Zyr.make("p", { className: "text", dir: "auto", lang: caption.language || "" });
        if (lines.length === 0) text.append(Zyr.make("em", { textContent: Zyr.say("(no text)"), lang: document.documentElement.lang }));
        lines.forEach((line, at) => text.append(...(at > 0 ? [document.createElement("br")] : []), line));
        return text;
    }

    makeShot(caption) {
        if (!this.pictures.has(caption.picture)) return null;
        return Zyr.make("div", { className: "shot" }, Zyr.make("img", { alt: "" }));
    }

    // What the box makes of it where that is something else and no finding says so.
    static makeBox(caption) {
        const told = caption.box === "missing" && caption.findings.some((finding) => finding.severity === "lost");
        if (caption.box === "same" || told) return null;
        if (caption.box === "missing") return Zyr.make("p", { className: "box", textContent: Zyr.say("Not shown on the box, which reads only CR LF as a line end.") });
        return Zyr.make("div", { className: "box" }, Zyr.make("p", { textContent: Zyr.say("On the box, which reads only CR LF as a line end:") }),
            Zyr.CaptionList.makeText(caption, caption.boxLines));
    }

    async load(row) {
        this.loader.unobserve(row);
        const { output } = this.pictures;
        const image = row.querySelector(".shot img");
        const picture = image && (await this.pictures.load(row.caption.picture));
        if (!picture || output !== this.pictures.output) return;
        Zyr.Pictures.fill(image, picture);
        image.alt = Zyr.say("Caption %1 on %2", row.caption.name, output.name);
    }

    // After a change of the output: the room that pictures take first, and each when it comes into view.
    reload() {
        for (const row of this.rows) {
            const image = row.querySelector(".shot img");
            if (!image) continue;
            const size = this.pictures.getSize(row.caption.picture);
            image.removeAttribute("src");
            if (size) Zyr.set(image, { width: size.width, height: size.height });
            this.loader.unobserve(row);
            this.loader.observe(row);
        }
    }

    click(event) {
        const row = event.target.closest("li.caption");
        if (row && getSelection().isCollapsed) this.onPick(row.caption.number);
    }

    // Hides what a filter does not let through.
    filter(passes) {
        let shown = 0;
        this.rows.forEach((row) => {
            row.caption.hidden = !passes(row.caption);
            row.hidden = row.caption.hidden;
            shown += row.hidden ? 0 : 1;
        });
        const all = Zyr.count(this.rows.length, "caption");
        this.status.textContent = shown === this.rows.length ? all : Zyr.say("%1 of %2", shown.toLocaleString("en"), all);
    }

    choose(number, scroll) {
        this.list.querySelector("[aria-current]")?.removeAttribute("aria-current");
        const row = this.rows[number];
        if (!row) return;
        row.querySelector(".pick").setAttribute("aria-current", "true");
        if (!scroll) return;
        row.scrollIntoView({ block: "center" });
        // Rows get their real heights as they come into view.
        requestAnimationFrame(() => row.scrollIntoView({ block: row.offsetHeight > innerHeight / 3 ? "start" : "center" }));
    }

    // The next row that is shown, by a step of 1 or -1, and perhaps only such as pass; -1: there is none.
    next(from, by, passes = () => true) {
        for (let at = from + by; at >= 0 && at < this.rows.length; at += by) {
            if (!this.rows[at].hidden && passes(this.captions[at])) return at;
        }
        return -1;
    }
};
