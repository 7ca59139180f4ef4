"use strict";
// Keeps the page for when there is no network. The name of the store changes with the page, and the old one goes.
const STORE = "zyr-@VERSION@";
const FILES = @FILES@;

addEventListener("install", (event) => {
    event.waitUntil(caches.open(STORE).then((store) => store.addAll(FILES.map((file) => new Request(file, { cache: "reload" })))).then(() => skipWaiting()));
});

addEventListener("activate", (event) => {
    event.waitUntil(caches.keys().then((names) => Promise.all(names.filter((name) => name !== STORE).map((name) => caches.delete(name)))).then(() => clients.claim()));
});

addEventListener("fetch", (event) => {
    if (event.request.method !== "GET" || new URL(event.request.url).origin !== location.origin) return;
    event.respondWith(caches.open(STORE).then((store) => store.match(event.request, { ignoreSearch: true })).then((kept) => kept || fetch(event.request)));
});
