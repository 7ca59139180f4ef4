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

    get(number) {
        return number === null ? null : this.output.pictures[number];
    }

    static fill(image, picture) {
        Zyr.set(image, { width: picture.width, height: picture.height, src: `data:image/png;base64,${picture.png}` });
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

    show(caption, words) {
        const { output } = this.pictures;
        const picture = caption ? this.pictures.get(caption.picture) : null;
        this.screen.style.aspectRatio = `${output.width} / ${output.height}`;
        this.image.hidden = !picture;
        this.words.textContent = words;
        if (!picture) return;
        Zyr.Pictures.fill(this.image, picture);
        this.image.alt = `Caption ${caption.number + 1} on ${output.name}`;
        const percent = (part, whole) => `${(part / whole) * 100}%`;
        Object.assign(this.image.style, {
            left: percent(picture.x, output.width), top: percent(picture.y, output.height),
            width: percent(picture.width, output.width), height: percent(picture.height, output.height),
        });
    }
};
