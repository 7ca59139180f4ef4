"use strict";
// While zyrsub watches the file, it keeps a small script beside the page that says which writing of it is the last. The
// page asks for that script, and is loaded anew at the same place when another writing is there. Where the script is gone,
// nobody watches any more.
Zyr.watch = ({ script, writing }, state) => {
    Zyr.written = (last) => {
        if (last === writing) return;
        state.write();
        location.reload();
    };
    let asked = 0;
    const asking = setInterval(() => {
        const element = Zyr.make("script", { src: `${script}?${(asked += 1)}` });
        element.addEventListener("load", () => element.remove());
        element.addEventListener("error", () => clearInterval(asking));
        document.head.append(element);
    }, 500);
};
