"use strict";
// The page: files in tabs, what can be done with the one that is shown, and its report.
(() => {
    const byId = (id) => document.getElementById(id);
    const engine = new Zyr.Engine();
    const FORMATS = [["srt", "SubRip"], ["smi", "SAMI"], ["ssa", "SSA"], ["vtt", "WebVTT"], ["json", "JSON"], ["txt", "TXT"]];
    const ENCODINGS = ["UTF-8", "UTF-16LE", "UTF-16BE", "CP949", "CP1252"];
    const PAGES = ["CP949", "CP932", "GB18030", "CP950", "CP1250", "CP1251", "CP1252", "CP1253", "CP1254", "CP1255", "CP1256", "CP1258"];
    const LARGEST = 200e6; // bytes
    const tabs = []; // {key, name, bytes, codePage, answer, state, past}
    let current = null;
    let shown = null; // the report, its pictures and its film

    const tell = (text, bad = false) => {
        byId("message").textContent = text;
        byId("message").classList.toggle("bad", bad);
    };

    function say() {
        for (const element of document.querySelectorAll("[data-say]")) element.textContent = Zyr.say(element.dataset.say);
    }

    // ------------------------------------------------------------------------------------------ reading

    async function addFiles(list) {
        let first = null;
        for (const file of list) {
            if (file.size > LARGEST) {
                tell(Zyr.say("%1 is too large for a subtitle.", file.name), true);
                continue;
            }
            const bytes = new Uint8Array(await file.arrayBuffer());
            const tab = addTab(file.name, bytes);
            first ||= tab;
        }
        if (first) await choose(first);
    }

    function addTab(name, bytes) {
        const state = new Zyr.State({ ...Zyr.Report.CHOICES, output: "lcd" }, false);
        const tab = { key: `f${(addTab.last = (addTab.last || 0) + 1)}`, name, bytes, codePage: "auto", state, past: [], first: 0 };
        tabs.push(tab);
        return tab;
    }

    const getOutput = (tab) => Math.max((tab.answer?.outputs || []).findIndex((output) => output.name === tab.state.get("output")), 0);

    const openFile = (tab, whole) => engine.call("open", { key: tab.key, name: tab.name, bytes: tab.bytes, codePage: tab.codePage, output: getOutput(tab), whole });

    // First what needs no font, which may be long on its way; then what tells how captions fit.
    async function readTab(tab) {
        tell(Zyr.say("Reading %1 …", tab.name));
        document.documentElement.dataset.ready = "false";
        try {
            tab.answer = await openFile(tab, false);
            if (tab !== current) return;
            showTab(tab);
            if (tab.answer.error === undefined && !tab.answer.whole) {
                tab.answer = await openFile(tab, true);
                if (tab === current) showTab(tab);
            }
        } catch (error) {
            if (tab.answer?.page) tell(Zyr.say(error.message), true);
            else tab.answer = { error: error.message };
            if (tab === current && !tab.answer.page) showTab(tab);
        }
        document.documentElement.dataset.ready = "true";
    }

    async function choose(tab) {
        current = tab;
        fillTabs();
        if (!tab) return clear();
        if (tab.answer) {
            showTab(tab);
            document.documentElement.dataset.ready = "true";
            return undefined;
        }
        return readTab(tab);
    }

    async function closeTab(tab) {
        tabs.splice(tabs.indexOf(tab), 1);
        engine.call("close", { key: tab.key }).catch(() => {});
        await choose(tab === current ? tabs.at(-1) || null : current);
    }

    function fillTabs() {
        byId("tabs").hidden = tabs.length === 0;
        byId("tabs").replaceChildren(...tabs.map((tab) => Zyr.make("span", { className: "tab", role: "presentation" },
            Zyr.make("button", {
                type: "button", role: "tab", "aria-selected": String(tab === current), "aria-controls": "shown", tabIndex: tab === current ? 0 : -1,
                textContent: tab.name, title: tab.name, onclick: () => choose(tab), onkeydown: (event) => pressTab(event, tab),
            }))));
    }

    function pressTab(event, tab) {
        const by = { ArrowLeft: -1, ArrowRight: 1 }[event.key];
        if (event.key === "Delete") closeTab(tab);
        if (!by) return;
        event.preventDefault();
        event.stopPropagation();
        choose(tabs[(tabs.indexOf(tab) + by + tabs.length) % tabs.length]);
        byId("tabs").querySelector("[aria-selected='true']").focus();
    }

    // ------------------------------------------------------------------------------------------ showing

    function clear() {
        if (shown) {
            shown.report.close();
            setTimeout((pictures) => pictures.close(), 5000, shown.pictures); // some may still be on their way into the page
            shown.film?.close();
        }
        shown = null;
        byId("shown").replaceChildren();
        document.body.classList.remove("bare");
        document.title = Zyr.say("Subtitles on the box");
    }

    // What is open of the same file stays open, with its film at its place.
    function showTab(tab) {
        const opened = tab === shown?.tab ? ["film-panel", "edit"].filter((id) => byId(id)?.open) : [];
        if (shown?.film) shown.tab.film = { file: shown.film.file, at: shown.film.now() };
        clear();
        const { answer } = tab;
        if (answer.error !== undefined) {
            tell(`${tab.name}: ${answer.error}`, true);
            byId("shown").append(makeClose(tab));
            return;
        }
        tab.name = answer.name;
        fillTabs();
        tell(answer.problem ? `${tab.name}: ${answer.problem}` : "", answer.problem !== "");
        byId("shown").append(byId("report").content.cloneNode(true));
        nameParts();
        const texts = new Map();
        for (const caption of answer.page.captions) if (caption.picture !== null) texts.set(caption.picture, caption.lines.join("\n"));
        const pictures = new Zyr.DrawnPictures(engine, answer.outputs, texts);
        tab.state.listeners.length = 0;
        const report = Zyr.Report.show(answer.page, pictures, tab.state, false);
        shown = { tab, report, pictures, film: null };
        fillWork(tab);
        fillPages(tab);
        fillFilm(tab);
        fillEdit(tab);
        for (const id of opened) byId(id).open = true;
        tab.state.listen((changed) => {
            if (changed.includes("output")) {
                shown.film?.resize();
                readTab(tab);
            }
            if (changed.includes("caption") && byId("edit").open) fillEdit(tab);
        });
    }

    // What the elements of the template are called, in the page's language.
    function nameParts() {
        const labels = { time: "Timeline", filters: "Captions", side: "The chosen caption and the findings", stage: "Display", findings: "Findings", captions: "Captions" };
        for (const [id, label] of Object.entries(labels)) byId(id).setAttribute("aria-label", Zyr.say(label));
        const summaries = { keys: "Keys", "film-panel": "Play, also over a film", edit: "Edit this caption" };
        for (const [id, text] of Object.entries(summaries)) byId(id).firstElementChild.textContent = Zyr.say(text);
    }

    const makeButton = (id, text, onclick) => Zyr.make("button", { type: "button", id, textContent: Zyr.say(text), onclick });
    const makeClose = (tab) => makeButton("close", "Close this file", () => closeTab(tab));
    const makeSelect = (id, label, options, value, onchange) => {
        const select = Zyr.make("select", { id }, options.map(([name, text]) => Zyr.make("option", { value: name, textContent: text })));
        select.value = value;
        if (onchange) select.onchange = () => onchange(select.value);
        return Zyr.make("label", {}, Zyr.make("span", { textContent: Zyr.say(label) }), select);
    };

    function fillWork(tab) {
        const { answer } = tab;
        const parts = [...Array(Math.ceil(answer.count / answer.part)).keys()].map((at) => [String(at * answer.part), `${at * answer.part + 1} – ${Math.min((at + 1) * answer.part, answer.count)}`]);
        byId("work").append(Zyr.make("div", { className: "row" },
            parts.length > 1 && makeSelect("part", "Captions", parts, String(answer.page.first), (first) => showPart(tab, Number(first))),
            makeButton("fix", "Fix all", () => fix(tab)),
            tab.past.length > 0 && makeButton("undo", "Undo", () => undo(tab)),
            makeButton("save-same", "Save as it is", () => download(tab.name, tab.bytes)),
            makeSelect("format", "Format", FORMATS, "srt"),
            makeSelect("encoding", "Encoding", ENCODINGS.map((name) => [name, name]), "UTF-8"),
            makeButton("save", "Save as", () => save(tab)),
            makeClose(tab)),
        Zyr.make("ul", { id: "changes", className: "told", hidden: true, tabIndex: 0, "aria-label": Zyr.say("What was done") }));
    }

    async function showPart(tab, first) {
        tab.answer = await engine.call("part", { key: tab.key, first });
        tab.state.set({ caption: -1, at: 0, from: 0, to: 0 });
        showTab(tab);
        byId("part").focus();
    }

    // Only files in a code page have a choice: the likely ones with a line of the file, and the others by name.
    function fillPages(tab) {
        const { answer } = tab;
        const likely = answer.codePages.map((page) => page.name);
        byId("pages").hidden = answer.codePages.length === 0;
        if (answer.codePages.length === 0) return;
        const pick = (name) => {
            tab.codePage = name;
            readTab(tab);
        };
        byId("pages").open = answer.codePages.length > 1;
        byId("pages").append(Zyr.make("summary", { textContent: Zyr.say("Code page: %1", answer.encoding) }),
            Zyr.make("fieldset", {}, Zyr.make("legend", { textContent: Zyr.say("In which of them can it be read?") }),
                answer.codePages.map((page) => Zyr.make("label", { className: "page-choice" },
                    Zyr.make("input", { type: "radio", name: "codepage", value: page.name, checked: page.inUse, onchange: () => pick(page.name) }),
                    Zyr.make("b", { textContent: page.name }), Zyr.make("span", { dir: "auto", lang: "", textContent: page.preview })))),
            makeSelect("other-page", "Another one", [["", "–"], ...PAGES.filter((name) => !likely.includes(name)).map((name) => [name, name])], "", (name) => name && pick(name)));
    }

    function fillFilm(tab) {
        byId("film-panel").addEventListener("toggle", () => {
            if (shown.film || !byId("film-panel").open) return;
            const getText = (ms) => engine.call("textAt", { key: tab.key, ms });
            shown.film = new Zyr.Film(byId("film"), shown.pictures, tab.answer.page.file.end, getText);
            const caption = shown.report.captions[tab.state.get("caption")];
            if (tab.film?.file) shown.film.open(tab.film.file);
            if (tab.film) shown.film.jump(tab.film.at);
            else if (caption) shown.film.jump(caption.start);
        });
    }

    // ------------------------------------------------------------------------------------------ changing

    const setBytes = (tab, bytes) => {
        tab.past.push(tab.bytes);
        tab.bytes = bytes;
        return readTab(tab);
    };

    async function undo(tab) {
        tab.bytes = tab.past.pop();
        await readTab(tab);
        byId("fix")?.focus();
    }

    async function fillEdit(tab) {
        const panel = byId("edit-panel");
        if (!byId("edit").open) {
            byId("edit").ontoggle = () => byId("edit").open && fillEdit(tab);
            return;
        }
        const caption = shown.report.captions[tab.state.get("caption")];
        if (!caption) return panel.replaceChildren(Zyr.say("Choose a caption first."));
        const place = { key: tab.key, encoding: tab.answer.encoding, from: caption.source, to: caption.sourceEnd };
        const text = await engine.call("readPart", place);
        const area = Zyr.make("textarea", { id: "edit-text", rows: 8, spellcheck: false, dir: "auto", value: text, "aria-label": Zyr.say("Caption %1 as it stands in the file, with its times", caption.name) });
        panel.replaceChildren(area, makeButton("edit-go", "Put it in", () => putIn(tab, place, area.value)));
        return undefined;
    }

    async function putIn(tab, place, text) {
        const { error, bytes } = await engine.call("writePart", { ...place, text });
        if (error !== "") return tell(error, true);
        await setBytes(tab, bytes);
        byId("edit").open = true;
        return undefined;
    }

    async function fix(tab) {
        const before = tab.answer.page.findings.length;
        const answer = await engine.call("fix", { key: tab.key });
        if (answer.error !== undefined) return tell(`${tab.name}: ${answer.error}`, true);
        if (answer.changes.length === 0) return tell(Zyr.say("There is nothing that can be mended."));
        tab.codePage = "auto";
        await setBytes(tab, answer.bytes);
        const list = byId("changes");
        list.hidden = false;
        list.append(...answer.changes.slice(0, 500).map((change) => Zyr.make("li", { lang: "en", textContent: `line ${change.line}: ${change.code}: ${change.what}` })));
        return tell(Zyr.say("%1; findings: %2 before, %3 now", Zyr.count(answer.changes.length, "change"), before, answer.left));
    }

    function download(name, bytes) {
        const link = Zyr.make("a", { href: URL.createObjectURL(new Blob([bytes], { type: "application/octet-stream" })), download: name });
        link.click();
        setTimeout(() => URL.revokeObjectURL(link.href), 60000);
    }

    async function save(tab) {
        const format = byId("format").value;
        const base = tab.name.replace(/\.[^.]*$/, "");
        const answer = await engine.call("save", { key: tab.key, format, encoding: byId("encoding").value, name: `${base}.${format}` });
        for (const file of answer.files) download(file.name, file.bytes);
        const lost = answer.lost.join("; ");
        tell(answer.files.length > 0 ? [Zyr.say("Saved: %1", answer.files.map((file) => file.name).join(", ")), lost].filter(Boolean).join(". ") : lost, lost !== "");
    }

    // ------------------------------------------------------------------------------------------ the page

    function speak(tongue) {
        Zyr.words = Zyr.tongues[tongue] || {};
        document.documentElement.lang = tongue;
        byId("tongues").value = tongue;
        say();
        if (current?.answer) showTab(current);
        else document.title = Zyr.say("Subtitles on the box");
    }

    function listen() {
        byId("files").onchange = () => {
            const list = [...byId("files").files];
            byId("files").value = ""; // the same file may be chosen again
            addFiles(list);
        };
        byId("tongues").onchange = () => {
            localStorage.setItem("tongue", byId("tongues").value);
            speak(byId("tongues").value);
        };
        byId("pasted-go").onclick = async () => {
            const text = byId("pasted").value;
            if (text.trim() === "") return;
            byId("paste").open = false;
            await choose(addTab(Zyr.say("pasted"), new TextEncoder().encode(`\uFEFF${text.replace(/\r?\n/g, "\r\n")}`)));
        };
        addEventListener("dragover", (event) => {
            event.preventDefault();
            byId("drop").classList.add("over");
        });
        addEventListener("dragleave", (event) => event.relatedTarget === null && byId("drop").classList.remove("over"));
        addEventListener("drop", (event) => {
            event.preventDefault();
            byId("drop").classList.remove("over");
            addFiles([...event.dataTransfer.files]);
        });
    }

    listen();
    speak(localStorage.getItem("tongue") || (navigator.language.startsWith("ko") ? "ko" : "en"));
    Zyr.page = { engine, addFiles, getCurrent: () => current };
    navigator.serviceWorker?.register("service.js").catch(() => {});
    document.documentElement.dataset.ready = "true";
})();
