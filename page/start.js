"use strict";
// The page of zyrsub report: its one file.
(() => {
    const data = JSON.parse(document.getElementById("data").textContent);
    const state = new Zyr.State({ ...Zyr.Report.CHOICES, output: data.outputs[0].name });
    Zyr.Report.show(data, new Zyr.Pictures(data.outputs), state);
    if (data.watch) Zyr.watch(data.watch, state);
    document.documentElement.dataset.ready = "true";
})();
