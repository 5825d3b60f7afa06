// SPDX-License-Identifier: Apache-2.0

// The network broken on purpose, and the banner that tells so in every view.

import { byId, change, make, note, replace } from "./dom.js";
import { operationOf, operations } from "./operations.js";

const words = {
  "delay": (fault) => `Answers ${fault.milliseconds / 1000} s late`,
  "hang-up": (fault) => (fault.carriedOut ? "Hang-up instead of the answer" : "Hang-up before the request is carried out"),
  "last-answer": () => "Hang-up after the answer",
  "cut-in-body": () => "Truncated body",
  "status": (fault) => `Status ${fault.status}`,
  "forget-session": () => "403, lost session",
};
const starts = { terms: "changed terms", notice: "a notice of an outdated version", refused: "refusal of an outdated version", refusedEmpty: "refusal with an empty message", refusedAbsent: "refusal without a message", enrol: "must enrol" };
const kinds = {
  "hang-up-before": { kind: "hang-up", carriedOut: false },
  "hang-up": { kind: "hang-up", carriedOut: true },
  "status-500": { kind: "status", status: 500, body: '{"error":"broken on purpose"}' },
};

const isSpent = (fault) => fault.count >= 0 && fault.hits >= fault.count;
const where = (fault) => (fault.path === "*" ? "every request" : operationOf(fault.path));
const often = (fault) => (fault.count < 0 ? `until cleared, ${fault.hits} so far` : `${fault.hits} of ${fault.count} met`);
const told = (fault) => words[fault.kind]?.(fault) ?? fault.kind;

const clear = (fault) => change("DELETE", "faults", { id: fault.id });
export const clearAll = async () => (await change("DELETE", "faults")) && note("No fault is switched on");

let latest = null;

function draw() {
  const list = [...latest.faults].reverse().map((fault) =>
    make("article", { className: `item fault${isSpent(fault) ? " spent" : ""}` },
      make("div", {}, make("b", { textContent: told(fault) }), make("small", { textContent: `${where(fault)}; ${isSpent(fault) ? "spent" : often(fault)}` })),
      make("button", { type: "button", textContent: isSpent(fault) ? "Remove" : "Clear", "data-key": `fault-${fault.id}`, onclick: () => clear(fault) })));
  if (list.length > 1) list.push(make("button", { type: "button", textContent: "Clear all", "data-key": "clear-all", onclick: clearAll }));
  if (!list.length) list.push(make("p", { className: "empty", textContent: "The network works." }));
  replace(byId("faults"), list);
  const once = latest.nextSessionStart && latest.nextSessionStart !== "normal";
  byId("start-now").textContent = once ? `Next start: ${starts[latest.nextSessionStart]}` : latest.sessionStart === "normal" ? "Starts are answered as normal." : `Every start: ${starts[latest.sessionStart]}`;
}

function banner(now) {
  const active = now.faults.filter((fault) => !isSpent(fault));
  const parts = active.slice(0, 4).map((fault) =>
    make("span", { className: "active" }, `${told(fault)}: ${where(fault)} (${often(fault)})`,
      make("button", { type: "button", textContent: "Clear", "data-key": `banner-${fault.id}`, "aria-label": `Clear: ${told(fault)}`, onclick: () => clear(fault) })));
  if (active.length > 4) parts.push(make("span", { className: "active", textContent: `and ${active.length - 4} more` }));
  const start = (text) => make("span", { className: "active" }, text, make("button", { type: "button", textContent: "As normal", "data-key": "banner-start", onclick: () => change("POST", "start", { answer: "normal" }) }));
  if (now.sessionStart !== "normal") parts.push(start(`Every session start: ${starts[now.sessionStart]}`));
  if (now.nextSessionStart && now.nextSessionStart !== "normal") parts.push(start(`Next session start: ${starts[now.nextSessionStart]}`));
  if (now.holds) parts.push(make("span", { className: "active" }, `New payments are held${now.held ? `, ${now.held} wait` : ""}`, make("button", { type: "button", textContent: "Stop", "data-key": "banner-hold", onclick: () => change("POST", "payments", { hold: false }) })));
  byId("count-faults").textContent = active.length || "";
  byId("banner").hidden = parts.length === 0;
  replace(byId("banner"), parts);
}

export function status(now) {
  latest = now;
  banner(now);
  draw();
}

export async function refresh() { return true; }

function wishOf(form) {
  const fields = form.elements;
  const chosen = fields.fault.value;
  const kind = chosen === "other" ? { kind: fields.kind.value } : kinds[chosen] ?? { kind: chosen };
  const wish = { ...kind, path: fields.path.value, count: Number(fields.count.value) };
  if (chosen === "delay") wish.milliseconds = Number(fields.milliseconds.value);
  return wish;
}

export function begin() {
  byId("fault-path").append(make("option", { value: "*", textContent: "every request" }),
    make("option", { value: "/vello/card/*", textContent: "every request about cards" }),
    ...operations.map(([value, textContent]) => make("option", { value, textContent })));
  const form = byId("add-fault");
  form.addEventListener("change", () => {
    for (const label of form.querySelectorAll("[data-for]")) label.hidden = label.dataset.for !== form.elements.fault.value;
  });
  form.addEventListener("submit", async (event) => {
    event.preventDefault();
    if (await change("POST", "faults", wishOf(form))) note("Switched on");
  });
  const start = (more) => change("POST", "start", { answer: byId("start-answer").value, ...more });
  byId("start-next").addEventListener("click", () => start({ once: true }));
  byId("start-every").addEventListener("click", () => start({}));
  byId("start-normal").addEventListener("click", () => change("POST", "start", { answer: "normal" }));
  byId("new-terms").addEventListener("click", async () => (await change("POST", "terms")) && note("New terms are published"));
  byId("forget-sessions").addEventListener("click", async () => (await change("DELETE", "sessions")) && note("Every session is forgotten"));
  byId("drop-connections").addEventListener("click", async () => (await change("DELETE", "connections")) && note("Every connection is closed"));
}
