"use strict";
// Captions as an output draws them: PNGs in base64, each cut to its box on the display.
Zyr.Pictures = class {
    // outputs: {name, width, height, pictures: [{x, y, width, height, png}]}
    constructor(outputs) {
        this.outputs = outputs;
        this.use(outputs[0].name);
    }

    use(name) {
        this.output = this.outputs.find((output) => output.name === name) || this.outputs[0];
    }

    has(number) {
        return number !== null && this.output.pictures[number] !== null;
    }

    // Its width and height, where they are known before it is there.
    getSize(number) {
        return this.output.pictures[number];
    }

    // With its place on the display and src; null where nothing is shown.
    async load(number) {
        const picture = this.output.pictures[number];
        return picture && { ...picture, src: `data:image/png;base64,${picture.png}` };
    }

    static fill(image, { width, height, src }) {
        Zyr.set(image, { width, height, src });
    }
};

// The display itself, with the chosen caption in its place.
Zyr.Stage = class {
    constructor(root, pictures, buttons) {
        this.pictures = pictures;
        this.image = Zyr.make("img", { alt: "" });
        this.screen = Zyr.make("div", { className: "screen" }, this.image);
        this.words = Zyr.make("figcaption");
        root.append(Zyr.make("figure", {}, this.screen, this.words), Zyr.make("div", { className: "steps" }, buttons));
    }

    async show(caption, words) {
        const { output } = this.pictures;
        this.shown = [caption, output];
        const asked = this.shown;
        this.screen.style.aspectRatio = `${output.width} / ${output.height}`;
        this.words.textContent = words;
        const picture = caption && this.pictures.has(caption.picture) ? await this.pictures.load(caption.picture) : null;
        if (this.shown !== asked) return;
        this.image.hidden = !picture;
        if (!picture) return;
        Zyr.Stage.place(this.image, picture, output);
        this.image.alt = Zyr.say("Caption %1 on %2", caption.name, output.name);
    }

    static place(image, picture, output) {
        Zyr.Pictures.fill(image, picture);
        const percent = (part, whole) => `${(part / whole) * 100}%`;
        Object.assign(image.style, {
            left: percent(picture.x, output.width), top: percent(picture.y, output.height),
            width: percent(picture.width, output.width), height: percent(picture.height, output.height),
        });
    }
};
