"use strict";
// What is wrong with the file: groups by code, the worst first; a group is filled when it is opened.
Zyr.Findings = class {
    // findings: {code, severity, title, sentence, line, text, shown}; shown is the caption that it stands with, or null.
    // open: the first group is; onPick gets one of them.
    constructor(root, findings, open, onPick) {
        this.onPick = onPick;
        root.append(Zyr.make("h2", { textContent: Zyr.say("Findings") }));
        if (findings.length === 0) root.append(Zyr.make("p", { className: "none", textContent: Zyr.say("Nothing was found.") }));
        this.groups = Zyr.Findings.group(findings).map((group, at) => this.makeGroup(group, open && at === 0));
        root.append(...this.groups);
    }

    static group(findings) {
        const groups = new Map();
        const rank = (finding) => Zyr.SEVERITIES.indexOf(finding.severity);
        for (const finding of [...findings].sort((a, b) => rank(a) - rank(b) || a.code.localeCompare(b.code) || a.line - b.line)) {
            const key = `${finding.severity} ${finding.code}`;
            groups.set(key, [...(groups.get(key) || []), finding]);
        }
        return [...groups.values()];
    }

    makeGroup(group, open) {
        const [first] = group;
        const details = Zyr.make("details", { className: `group ${first.severity}` },
            Zyr.make("summary", {}, Zyr.Findings.makeBadge(first), " ", Zyr.make("b", { textContent: Zyr.say(first.title) }), " ",
                Zyr.make("span", { className: "code", textContent: first.code }), " ",
                Zyr.make("span", { className: "many", textContent: Zyr.count(group.length, "time") })));
        details.group = group;
        details.addEventListener("toggle", () => this.fill(details));
        details.open = open;
        return details;
    }

    fill(details) {
        if (!details.open || details.querySelector("ul")) return;
        const items = details.group.map((finding) => {
            const item = Zyr.Findings.makeItem(finding);
            const place = Zyr.Findings.namePlace(finding);
            if (finding.shown !== null) item.querySelector(".place").replaceWith(Zyr.make("button", { type: "button", className: "go", textContent: place, onclick: () => this.onPick(finding) }));
            return item;
        });
        details.append(Zyr.make("ul", { className: "told" }, items));
    }

    static namePlace(finding) {
        return finding.line === 0 ? Zyr.say("the file") : Zyr.say("line %1", finding.line);
    }

    static makeBadge(finding) {
        return Zyr.make("span", { className: `badge ${finding.severity}`, textContent: Zyr.say(finding.severity) });
    }

    static makeItem(finding) {
        return Zyr.make("li", { className: finding.severity },
            Zyr.Findings.makeBadge(finding), " ",
            Zyr.make("span", { className: "place", textContent: Zyr.Findings.namePlace(finding) }), " ",
            Zyr.make("span", { className: "code", textContent: finding.code }), " ",
            Zyr.make("span", { className: "sentence", lang: "en", textContent: finding.sentence }),
            finding.text.trim() !== "" && Zyr.make("code", { className: "source", dir: "auto", textContent: finding.text }));
    }
};
