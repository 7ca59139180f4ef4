"use strict";
// Reads, draws, mends and writes subtitle files, away from the page. A call is {id, name, args}, its answer {id, result} or
// {id, error}. Where the module stops, the next call begins with a new one: files are kept here.
importScripts("zyrpage.js");

const PART = 2000; // captions that the page gets at once
const files = new Map(); // key: {name, bytes, codePage, page}
let module = null;
let font = null; // bytes, once they have been asked for
let fontBytes = null;
let shown = null; // key of the file that the module has read last
let told = []; // lines on standard error

const loadFont = () => {
    font ||= fetch("font.ttc").then(async (answer) => {
        if (!answer.ok) throw new Error("the font cannot be loaded");
        fontBytes = new Uint8Array(await answer.arrayBuffer());
    });
    font.catch(() => { font = null; });
    return font;
};

const getModule = async () => {
    if (module) return module;
    shown = null;
    module = await ZyrModule({ print: () => {}, printErr: (line) => told.push(line) });
    module.FS.mkdir("/in");
    module.FS.mkdir("/out");
    return module;
};

const call = (name, result, ...args) => module.ccall(`page_${name}`, result, args.map((arg) => (typeof arg === "number" ? "number" : "string")), args);
const ask = (name, ...args) => JSON.parse(call(name, "string", ...args));

const useFont = () => {
    if (!fontBytes || module.FS.analyzePath("/font.ttc").exists) return;
    module.FS.writeFile("/font.ttc", fontBytes);
    call("setFont", null, "/font.ttc");
};

const put = (key) => {
    const folder = `/in/${key}`;
    if (!module.FS.analyzePath(folder).exists) module.FS.mkdir(folder);
    const path = `${folder}/${files.get(key).name}`;
    if (!module.FS.analyzePath(path).exists) module.FS.writeFile(path, files.get(key).bytes);
    return path;
};

const ENDINGS = { SAMI: ".smi", SubRip: ".srt", SubViewer: ".sub", SSA: ".ssa" };
const KNOWN = /\.(smi|sami|srt|sub|ssa|ass|vtt)$/i;

// A name without an ending of a subtitle gets the one that its text asks for.
const nameFile = (key) => {
    const file = files.get(key);
    if (KNOWN.test(file.name)) return;
    const ending = ENDINGS[ask("tellFormat", put(key))];
    module.FS.unlink(put(key));
    file.name += ending || "";
};

const read = (key, output) => {
    const file = files.get(key);
    call("closeScreen", null);
    useFont();
    const answer = ask("describe", put(key), file.codePage, fontBytes ? output : -1);
    shown = key;
    file.answer = answer;
    file.whole = fontBytes !== null;
    return answer;
};

// The captions from one on, with what is found in them; findings of no caption stand with the first part.
const cut = (key, first) => {
    const { answer, whole, name, codePage } = files.get(key);
    if (answer.error !== undefined) return { error: answer.error, name };
    const { page, ...rest } = answer;
    const captions = page.captions.slice(first, first + PART);
    const inPart = (finding) => (finding.caption === null ? first === 0 : finding.caption >= first && finding.caption < first + PART);
    const findings = page.findings.filter(inPart).map((finding) => ({ ...finding, caption: finding.caption === null ? null : finding.caption - first }));
    const starts = [...new Set(page.captions.map((caption) => caption.source))].sort((a, b) => a - b);
    const next = new Map(starts.map((source, at) => [source, starts[at + 1] ?? files.get(key).bytes.length]));
    return {
        ...rest, whole, name, codePage, count: page.captions.length, part: PART, outputs: ask("listOutputs"),
        page: { ...page, captions: captions.map((caption) => ({ ...caption, sourceEnd: next.get(caption.source) })), findings, first },
    };
};

const getPicture = async (text, output) => {
    await loadFont();
    useFont();
    const error = call("draw", "number", output, text);
    if (error !== 0) throw new Error("the caption cannot be drawn");
    const [x, y, width, height] = module.HEAPU32.subarray(call("getBox", "number") / 4);
    if (width === 0 || height === 0) return null;
    const { width: all } = ask("listOutputs").find((each) => each.name === output);
    const pixels = new Uint8ClampedArray(width * height * 4);
    const from = call("getPixels", "number");
    for (let row = 0; row < height; row += 1) {
        const at = from + ((y + row) * all + x) * 4;
        pixels.set(module.HEAPU8.subarray(at, at + width * 4), row * width * 4);
    }
    return { x, y, width, height, pixels };
};

const takeOut = () => module.FS.readdir("/out").filter((name) => name[0] !== ".").map((name) => {
    const bytes = module.FS.readFile(`/out/${name}`);
    module.FS.unlink(`/out/${name}`);
    return { name, bytes };
});

const calls = {
    // The file is the worker's from now on; whole: wait for the font, so that findings tell how captions fit.
    async open({ key, name, bytes, codePage, output, whole }) {
        if (bytes) {
            if (files.has(key) && module.FS.analyzePath(`/in/${key}`).exists) module.FS.unlink(put(key));
            files.set(key, { name: name.replace(/[/\0]/g, "_").slice(-120) || "subtitle", bytes, codePage });
            nameFile(key);
        }
        files.get(key).codePage = codePage;
        const loading = loadFont();
        if (whole) await loading;
        else loading.catch(() => {});
        read(key, output);
        return cut(key, 0);
    },

    part({ key, first }) {
        return cut(key, first);
    },

    // The page's pictures are its own; a blob can stand in its address.
    async draw({ text, output }) {
        const picture = await getPicture(text, output);
        if (!picture) return null;
        const canvas = new OffscreenCanvas(picture.width, picture.height);
        canvas.getContext("2d").putImageData(new ImageData(picture.pixels, picture.width), 0, 0);
        return { ...picture, pixels: undefined, blob: await canvas.convertToBlob() };
    },

    // The pixels themselves.
    drawRaw({ text, output }) {
        return getPicture(text, output);
    },

    textAt({ key, ms }) {
        if (shown !== key) read(key, -1);
        return ask("textAt", ms);
    },

    readPart({ key, encoding, from, to }) {
        return ask("readPart", put(key), encoding, from, to);
    },

    // Gives the bytes that the file has then, or why not.
    writePart({ key, encoding, from, to, text }) {
        const path = put(key);
        const error = ask("writePart", path, encoding, from, to, text);
        if (error === "") files.get(key).bytes = module.FS.readFile(path);
        return { error, bytes: files.get(key).bytes };
    },

    fix({ key }) {
        const answer = ask("fix", put(key), files.get(key).codePage);
        const [file] = takeOut();
        return { ...answer, bytes: file ? file.bytes : null };
    },

    save({ key, format, encoding, name }) {
        told = [];
        const code = call("save", "number", put(key), files.get(key).codePage, format, encoding, name);
        return { code, lost: told.map((line) => line.replace(/^zyrsub: \/out\/[^:]*: /, "")), files: takeOut() };
    },

    close({ key }) {
        files.delete(key);
        if (shown === key) shown = null;
        const folder = `/in/${key}`;
        if (!module.FS.analyzePath(folder).exists) return;
        for (const name of module.FS.readdir(folder)) if (!/^\.\.?$/.test(name)) module.FS.unlink(`${folder}/${name}`);
        module.FS.rmdir(folder);
    },
};

// One after the other: the module has one display and one file at a time.
let last = Promise.resolve();
onmessage = ({ data: { id, name, args } }) => {
    last = last.then(async () => {
        try {
            await getModule();
            postMessage({ id, result: await calls[name](args) });
        } catch (error) {
            if (error instanceof WebAssembly.RuntimeError || error.name === "ExitStatus") module = null;
            postMessage({ id, error: String(error.message || error) });
        }
    });
};
