"use strict";
// While zyrsub watches the file, it keeps a small script beside the page that says which writing of it is the last. The
// page asks for that script, and is loaded anew at the same place when another writing is there.
Zyr.watch = ({ script, writing }, state) => {
    Zyr.written = (last) => {
        if (last === writing) return;
        state.write();
        location.reload();
    };
    let asked = 0;
    setInterval(() => {
        const element = Zyr.make("script", { src: `${script}?${(asked += 1)}` });
        for (const name of ["load", "error"]) element.addEventListener(name, () => element.remove());
        document.head.append(element);
    }, 500);
};
