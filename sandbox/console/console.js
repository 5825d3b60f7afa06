// SPDX-License-Identifier: Apache-2.0

// The page as a whole: its views, keys, colours, and the stream that keeps it up to date.

import * as codes from "./codes.js";
import { byId, copy, get, note } from "./dom.js";
import * as faults from "./faults.js";
import { follow } from "./live.js";
import * as messages from "./messages.js";
import * as payments from "./payments.js";
import * as requests from "./requests.js";
import * as wallets from "./wallets.js";

const views = { requests, payments, messages, codes, wallets, faults };
const names = Object.keys(views);
const refreshEvery = 400;

let current = "";
let stale = false;
let refreshing = false;

/// Reads the current view again: at most one reading at a time, and no more than a few a second.
async function refresh() {
  stale = true;
  if (refreshing || !views[current].refresh) return;
  refreshing = true;
  while (stale) {
    stale = false;
    try {
      await views[current].refresh?.();
    } catch (failure) {
      note(failure.message, true);
    }
    await new Promise((done) => setTimeout(done, refreshEvery));
  }
  refreshing = false;
}

function show(name) {
  current = views[name] ? name : "requests";
  for (const other of names) {
    const isCurrent = other === current;
    byId(`view-${other}`).hidden = !isCurrent;
    byId(`tab-${other}`).setAttribute("aria-selected", isCurrent);
    byId(`tab-${other}`).tabIndex = isCurrent ? 0 : -1;
  }
  history.replaceState(null, "", `#${current}`);
  views[current].show?.();
  views[current].refresh?.();
}

function beginTabs() {
  names.forEach((name, index) => {
    const tab = byId(`tab-${name}`);
    tab.addEventListener("click", () => show(name));
    tab.addEventListener("keydown", (event) => {
      const step = { ArrowRight: 1, ArrowLeft: -1 }[event.key];
      if (!step) return;
      event.preventDefault();
      const next = names[(index + step + names.length) % names.length];
      show(next);
      byId(`tab-${next}`).focus();
    });
  });
  window.addEventListener("hashchange", () => show(location.hash.slice(1)));
  show(location.hash.slice(1));
}

function setTheme(theme) {
  if (theme === "system") delete document.documentElement.dataset.theme;
  else document.documentElement.dataset.theme = theme;
  byId("theme").textContent = { system: "Theme: system", light: "Theme: light", dark: "Theme: dark" }[theme];
  localStorage.setItem("theme", theme);
}

function nextTheme() {
  const order = ["system", "light", "dark"];
  setTheme(order[(order.indexOf(localStorage.getItem("theme") ?? "system") + 1) % order.length]);
}

const pageKeys = {
  "/": () => views[current].filter?.(),
  "?": () => byId("keys").showModal(),
  t: nextTheme,
  x: () => faults.clearAll(),
};

function beginKeys() {
  document.addEventListener("keydown", (event) => {
    if (event.ctrlKey || event.metaKey || event.altKey || document.querySelector("dialog[open]")) return;
    if (event.target.matches("input, select, textarea")) {
      if (event.key === "Escape") event.target.blur();
      return;
    }
    const number = Number(event.key);
    if (number >= 1 && number <= names.length) show(names[number - 1]);
    else if (pageKeys[event.key]) pageKeys[event.key]();
    else if (current !== "requests" || event.target.closest?.("[role=tablist]") || !requests.key(event)) return;
    event.preventDefault();
  });
}

async function begin() {
  setTheme(localStorage.getItem("theme") ?? "system");
  byId("theme").addEventListener("click", nextTheme);
  byId("help").addEventListener("click", () => byId("keys").showModal());
  const place = await get("place");
  byId("base").textContent = place.base;
  byId("base").addEventListener("click", () => copy(place.base, "Address"));
  for (const view of Object.values(views)) view.begin(place);
  beginTabs();
  beginKeys();
  follow({
    requests: requests.receive,
    status: (now) => {
      for (const view of Object.values(views)) view.status?.(now);
      refresh();
    },
  });
}

begin();
