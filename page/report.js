"use strict";
// One file on a page: its parts, and what leads from one to the other. The elements that it fills are there, and empty.
Zyr.Report = {};
Zyr.Report.CHOICES = { caption: -1, at: 0, from: 0, to: 0, q: "", language: "", finding: "" };

// data: of zyrsub report; of a part of a file, first is how many captions stand before it. state: of CHOICES and an output.
// scroll: to the chosen caption, as of an address that names one. Gives what others on the page need of it, and close, for when another takes its place.
Zyr.Report.show = (data, pictures, state, scroll = state.get("caption") >= 0) => {
    const byId = (id) => document.getElementById(id);
    const ended = new AbortController();

    // Captions as the parts want them: lanes in the order of the languages, and each with its findings. A finding of no
    // caption stands with the one before it in the file.
    function prepare() {
        const lanes = new Map(data.classes.map((each, lane) => [each.index, lane]));
        const captions = data.captions.map((caption, number) => {
            const each = data.classes[lanes.get(caption.class)];
            return {
                ...caption, number, name: number + 1 + (data.first || 0), findings: [], mark: "", hidden: false, lane: lanes.get(caption.class),
                language: each.language, className: data.classes.length > 1 ? each.name : "",
                words: Zyr.fold(caption.lines.join(" ")), lines: caption.lines,
            };
        });
        const bySource = [...captions].sort((a, b) => a.source - b.source);
        for (const finding of data.findings) {
            let at = finding.caption;
            if (at === null && finding.line > 0) at = bySource.findLast((caption) => caption.source <= finding.offset)?.number ?? bySource[0]?.number ?? null;
            finding.shown = at;
            if (at !== null) captions[at].findings.push(finding);
        }
        for (const caption of captions) caption.mark = Zyr.SEVERITIES.find((severity) => caption.findings.some((finding) => finding.severity === severity)) || "";
        return captions;
    }

    const captions = prepare();
    const laneNames = data.classes.map((each) => each.name || (data.classes.length > 1 ? Zyr.say("(unnamed)") : data.file.format));

    const choose = (number) => state.set({ caption: number, at: captions[number].start });
    const stepBy = (by, passes) => {
        const at = list.next(state.get("caption"), by, passes);
        if (at >= 0) choose(at);
    };
    const hasFinding = (caption) => caption.findings.length > 0;
    const makeStep = (text, label, by, passes) => Zyr.make("button", { type: "button", textContent: text, "aria-label": label, title: label, onclick: () => stepBy(by, passes) });

    function fillHead() {
        const { file } = data;
        byId("name").textContent = file.name;
        document.title = Zyr.say("%1 on the box", file.name);
        const rows = [...data.facts];
        const counts = Zyr.SEVERITIES.map((severity) => [severity, data.findings.filter((finding) => finding.severity === severity).length]);
        const told = counts.filter(([, count]) => count > 0);
        rows.push(["findings", told.length === 0 ? Zyr.say("none") : told.map(([severity, count]) => `${count.toLocaleString("en")} ${Zyr.say(severity)}`).join(", ")]);
        byId("facts").append(...rows.map(([name, value]) => Zyr.make("div", {}, Zyr.make("dt", { textContent: Zyr.say(name) }), Zyr.make("dd", {}, Zyr.make("bdi", { textContent: value })))));
    }

    function makeSelect(name, label, options) {
        const select = Zyr.make("select", { id: `filter-${name}`, onchange: () => state.set({ [name]: select.value }) },
            options.map(([value, text]) => Zyr.make("option", { value, textContent: text })));
        select.value = state.get(name);
        if (select.selectedIndex < 0) select.selectedIndex = 0;
        return Zyr.make("label", {}, Zyr.make("span", { textContent: label }), select);
    }

    function fillFilters() {
        const search = Zyr.make("input", { type: "search", id: "search", placeholder: Zyr.say("text, or a time such as 1:30"), value: state.get("q"), oninput: () => state.set({ q: search.value }) });
        const form = byId("filters");
        form.addEventListener("submit", (event) => {
            event.preventDefault();
            jumpTo(Zyr.parseTime(search.value));
        });
        form.append(Zyr.make("label", { className: "wide" }, Zyr.make("span", { textContent: Zyr.say("Search") }), search));
        if (data.classes.length > 1) form.append(makeSelect("language", Zyr.say("Language"), [["", Zyr.say("all")], ...laneNames.map((name, lane) => [String(lane), name])]));
        const marks = [["", Zyr.say("all captions")], ["any", Zyr.say("with a finding")], ...Zyr.SEVERITIES.map((severity) => [severity, Zyr.say(severity)])];
        if (captions.some((caption) => caption.box !== "same")) marks.push(["box", Zyr.say("other on the box")]);
        form.append(makeSelect("finding", Zyr.say("Show"), marks));
        if (pictures.outputs.length > 1) form.append(makeSelect("output", Zyr.say("Output"), pictures.outputs.map((output) => [output.name, `${output.name} ${output.width}×${output.height}`])));
    }

    // To the caption that is on screen at a time, or the next one.
    function jumpTo(ms) {
        if (ms === null) return;
        const later = captions.filter((caption) => caption.until > ms && !caption.hidden);
        if (later.length > 0) choose(later.reduce((a, b) => (b.start < a.start ? b : a)).number);
    }

    function filter() {
        const words = Zyr.parseTime(state.get("q")) === null ? Zyr.fold(state.get("q")) : "";
        const lane = state.get("language");
        const finding = state.get("finding");
        const passes = {
            "": () => true, any: hasFinding, box: (caption) => caption.box !== "same",
        }[finding] || ((caption) => caption.findings.some((each) => each.severity === finding));
        list.filter((caption) => caption.words.includes(words) && (lane === "" || caption.lane === Number(lane)) && passes(caption));
        timeline.redraw();
    }

    function showChosen(scroll) {
        const caption = captions[state.get("caption")];
        const until = caption && (caption.end === null ? Zyr.say("open") : Zyr.formatTime(caption.end));
        stage.show(caption, caption ? Zyr.say("Caption %1, %2 to %3, on %4", caption.name, Zyr.formatTime(caption.start), until, pictures.output.name) : Zyr.say("%1, %2 × %3: choose a caption", pictures.output.name, pictures.output.width, pictures.output.height));
        timeline.choose(state.get("caption"));
        list.choose(state.get("caption"), scroll);
    }

    function pickFinding(finding) {
        const at = finding.shown;
        if (at === null) return;
        if (captions[at].hidden) {
            state.set({ q: "", language: "", finding: "" });
            for (const id of ["search", "filter-language", "filter-finding"]) if (byId(id)) byId(id).value = "";
        }
        choose(at);
        list.rows[at].querySelector(".pick").focus({ preventScroll: true });
    }

    function press(event) {
        const typing = event.target.closest("input, select, textarea");
        if (event.ctrlKey || event.altKey || event.metaKey || typing) return;
        const keys = {
            j: () => stepBy(1), k: () => stepBy(-1), ArrowDown: () => stepBy(1), ArrowUp: () => stepBy(-1),
            n: () => stepBy(1, hasFinding), p: () => stepBy(-1, hasFinding),
            "/": () => byId("search").focus(), "+": () => timeline.zoom(0.5), "-": () => timeline.zoom(2), 0: () => timeline.show(0, timeline.end),
        };
        const arrow = event.key.startsWith("Arrow") && !event.target.closest("#captions");
        if (arrow || !keys[event.key]) return;
        event.preventDefault();
        keys[event.key]();
        const chosen = list.rows[state.get("caption")];
        if (event.target.closest("#captions") && chosen) chosen.querySelector(".pick").focus({ preventScroll: true });
    }

    function fillKeys() {
        const rows = [["j, k", "the next caption, the one before (arrows in the list)"], ["n, p", "the next caption with a finding, the one before"], ["+, −, 0", "zoom in, out, the whole film"], ["/", "search"], ["in the timeline", "left and right go by captions, up and down zoom, page keys move, Home and End"]];
        byId("keys").append(Zyr.make("dl", {}, rows.flatMap(([key, what]) => [Zyr.make("dt", { textContent: Zyr.say(key) }), Zyr.make("dd", { textContent: Zyr.say(what) })])));
    }

    // The address may be of another writing of the file: there the caption at that time is meant. Without one the first.
    function findAgain() {
        const { caption, at } = state.values;
        if (captions.length === 0 || captions[caption]?.start === at) return;
        if (caption < 0) return choose(0);
        const off = (each) => Math.abs(each.start - at);
        return choose(captions.reduce((a, b) => (off(b) < off(a) ? b : a)).number);
    }

    document.body.classList.toggle("bare", captions.length === 0);
    pictures.use(state.get("output"));
    findAgain();
    fillHead();
    fillKeys();
    const timeline = new Zyr.Timeline(byId("time"), { captions, lanes: laneNames, end: data.file.end }, choose);
    const stage = new Zyr.Stage(byId("stage"), pictures, [
        makeStep("‹", Zyr.say("The caption before"), -1), makeStep("›", Zyr.say("The next caption"), 1),
        makeStep(Zyr.say("‹ finding"), Zyr.say("The caption with a finding before"), -1, hasFinding), makeStep(Zyr.say("finding ›"), Zyr.say("The next caption with a finding"), 1, hasFinding),
    ]);
    const list = new Zyr.CaptionList(byId("captions"), captions, pictures, choose);
    fillFilters();
    // On a narrow page the captions come below.
    const open = captions.length === 0 || matchMedia("(min-width: 901px)").matches;
    new Zyr.Findings(byId("findings"), data.findings, open, pickFinding);
    if (state.get("to") > state.get("from")) timeline.show(state.get("from"), state.get("to"));
    timeline.onRange = (from, to) => state.set({ from, to });
    filter();
    showChosen(scroll);
    state.listen((changed) => {
        if (changed.includes("output")) {
            pictures.use(state.get("output"));
            list.reload();
        }
        if (changed.some((name) => ["q", "language", "finding"].includes(name))) filter();
        if (changed.includes("caption") || changed.includes("output")) showChosen(changed.includes("caption"));
    });
    document.addEventListener("keydown", press, { signal: ended.signal });
    return { captions, choose, close: () => ended.abort() };
};
