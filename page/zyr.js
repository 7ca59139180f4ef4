"use strict";
// What the parts of a page share. Text from a file reaches the page as text alone, never as markup.
const Zyr = {};

// An element with properties, attributes (those with a dash, and role) and children; false and null are left out.
Zyr.make = (tag, properties = {}, ...children) => {
    const element = document.createElement(tag);
    Zyr.set(element, properties);
    element.append(...children.flat().filter((child) => child !== null && child !== false));
    return element;
};

Zyr.set = (element, properties) => {
    for (const [name, value] of Object.entries(properties)) {
        if (value === null || value === undefined) continue;
        if (name.includes("-") || name === "role" || name === "for") element.setAttribute(name, value);
        else element[name] = value;
    }
};

Zyr.draw = (tag, attributes = {}, text = "") => {
    const element = document.createElementNS("http://www.w3.org/2000/svg", tag);
    for (const [name, value] of Object.entries(attributes)) element.setAttribute(name, value);
    element.textContent = text;
    return element;
};

// What the page says in another language: the English text, and the other; %1 and so on stand for values.
Zyr.words = {};
Zyr.say = (text, ...values) => values.reduce((said, value, at) => said.replace(`%${at + 1}`, () => value), Zyr.words[text] ?? text);

const pad = (number, digits) => String(number).padStart(digits, "0");

// 90500 is 0:01:30.500
Zyr.formatTime = (ms) => {
    const whole = Math.abs(Math.round(ms));
    const seconds = Math.floor(whole / 1000);
    const clock = `${Math.floor(seconds / 3600)}:${pad(Math.floor(seconds / 60) % 60, 2)}:${pad(seconds % 60, 2)}`;
    return `${ms < 0 ? "-" : ""}${clock}.${pad(whole % 1000, 3)}`;
};

// What a person types: 1:30, 0:01:30.5, 90s. Null is no time.
Zyr.parseTime = (text) => {
    const seconds = /^\s*(\d+(?:\.\d+)?)\s*s\s*$/.exec(text);
    if (seconds) return Math.round(Number(seconds[1]) * 1000);
    const parts = /^\s*(?:(\d+):)?(\d{1,2}):(\d{2}(?:\.\d+)?)\s*$/.exec(text);
    if (!parts) return null;
    return Math.round(((Number(parts[1] || 0) * 60 + Number(parts[2])) * 60 + Number(parts[3])) * 1000);
};

Zyr.count = (number, one, many = `${one}s`) => Zyr.say(`%1 ${number === 1 ? one : many}`, number.toLocaleString("en"));

// Letter case and the two spellings of an accented letter make no difference to a search.
Zyr.fold = (text) => text.normalize("NFC").toLowerCase();

Zyr.SEVERITIES = ["lost", "changed", "doubtful"];

// What is chosen on the page, and who wants to hear of it. It stands in the address of a page that shows one file, so that
// it can be left and come back to, and told to somebody else.
Zyr.State = class {
    constructor(defaults, inAddress = true) {
        this.defaults = defaults;
        this.values = { ...defaults };
        this.listeners = [];
        this.inAddress = inAddress;
        if (!inAddress) return;
        const asked = new URLSearchParams(location.hash.slice(1));
        for (const name of Object.keys(defaults)) {
            if (!asked.has(name)) continue;
            const number = Number(asked.get(name));
            if (typeof defaults[name] === "string") this.values[name] = asked.get(name);
            else if (Number.isFinite(number)) this.values[name] = number;
        }
    }

    get(name) {
        return this.values[name];
    }

    listen(listener) {
        this.listeners.push(listener);
    }

    set(changes) {
        const changed = Object.keys(changes).filter((name) => this.values[name] !== changes[name]);
        Object.assign(this.values, changes);
        if (changed.length === 0) return;
        for (const listener of this.listeners) listener(changed);
        if (!this.inAddress) return;
        clearTimeout(this.timer);
        this.timer = setTimeout(() => this.write(), 100);
    }

    write() {
        const told = new URLSearchParams();
        for (const [name, value] of Object.entries(this.values)) {
            if (value !== this.defaults[name]) told.set(name, value);
        }
        history.replaceState(null, "", `#${told}`);
    }
};
