// SPDX-License-Identifier: Apache-2.0

// The live table of requests: of thousands only those that can be seen are drawn.

import { byId, change, clock, copy, get, make, shortDevice } from "./dom.js";
import { drawn, parse, shellWord } from "./json.js";
import { operationOf } from "./operations.js";

const rowHeight = 34;
const mostDrawn = 120;

const all = new Map();   // By number, in the order of arrival.
let shown = [];          // Numbers that pass the filter, the latest first.
let chosen = 0;
let place = { base: "", anchor: "" };
let drawing = false;
const pool = [];

const rows = byId("rows");
const space = byId("space");
const detail = byId("detail");

const isProblem = (row) => row.status >= 400 || Boolean(row.faults) || Boolean(row.reason);

function prepared(row) {
  row.operation = operationOf(row.path);
  row.words = [row.operation, row.path, row.method, row.status, `status:${row.status}`, row.device,
    `device:${row.device}`, `session:${row.session}`, row.reason ?? "", row.faults ?? "",
    row.faults ? "is:fault" : "", row.underWay ? "is:open" : ""].join(" ").toLowerCase();
  return row;
}

export function receive({ oldest, rows: changed }) {
  for (const row of changed) all.set(row.number, prepared(row));
  for (const number of all.keys()) {
    if (number >= oldest) break;
    all.delete(number);
  }
  byId("count-requests").textContent = all.size || "";
  if (changed.some((row) => row.number === chosen)) openDetail(chosen);
  sift(true);
}

/// Applies the filter. What a reader looks at stays where it is when rows come above it.
function sift(keepPlace) {
  const words = byId("filter").value.toLowerCase().split(/\s+/).filter(Boolean);
  const problems = byId("problems").checked;
  const before = shown.length;
  shown = [];
  for (const row of all.values()) {
    if (problems && !isProblem(row)) continue;
    if (words.every((word) => row.words.includes(word))) shown.push(row.number);
  }
  shown.reverse();
  if (keepPlace && rows.scrollTop > 0) rows.scrollTop += (shown.length - before) * rowHeight;
  if (!keepPlace) rows.scrollTop = 0;
  space.style.height = `${shown.length * rowHeight}px`;
  byId("no-requests").hidden = all.size > 0;
  byId("shown").textContent = shown.length === all.size ? "" : `${shown.length} of ${all.size}`;
  plan();
}

function plan() {
  if (drawing) return;
  drawing = true;
  requestAnimationFrame(() => {
    drawing = false;
    draw();
  });
}

function newRow() {
  const cell = (name) => make("span", { className: name });
  const element = make("div", { className: "row", role: "option" }, cell("time"), cell("operation"), cell("status"), cell("took end"), cell("device"));
  element.addEventListener("click", () => choose(element.number));
  space.append(element);
  return element;
}

function draw() {
  const first = Math.max(0, Math.floor(rows.scrollTop / rowHeight) - 5);
  const count = Math.min(shown.length - first, Math.ceil(rows.clientHeight / rowHeight) + 10, mostDrawn);
  while (pool.length < count) pool.push(newRow());
  pool.forEach((element, index) => {
    element.hidden = index >= count;
    if (!element.hidden) fill(element, all.get(shown[first + index]), first + index);
  });
  const active = pool.find((element) => !element.hidden && element.number === chosen);
  if (active) rows.setAttribute("aria-activedescendant", active.id);
  else rows.removeAttribute("aria-activedescendant");
}

const tookText = (row) => {
  if (row.underWay) return "open";
  return row.milliseconds < 1 ? "< 1 ms" : row.milliseconds < 10000 ? `${row.milliseconds} ms` : `${(row.milliseconds / 1000).toFixed(1)} s`;
};

function fill(element, row, index) {
  element.number = row.number;
  element.id = `request-${row.number}`;
  element.style.transform = `translateY(${index * rowHeight}px)`;
  element.setAttribute("aria-selected", row.number === chosen);
  element.setAttribute("aria-posinset", index + 1);
  element.setAttribute("aria-setsize", shown.length);
  const [time, operation, status, took, device] = element.children;
  const at = clock(row.time);
  time.replaceChildren(at.slice(0, 8), make("i", { textContent: at.slice(8) }));
  operation.replaceChildren(row.operation, ...(row.reason ? [make("small", { textContent: row.reason })] : []));
  operation.title = `${row.method} ${row.path}${row.reason ? `\n${row.reason}` : ""}`;
  operation.dataset.fault = row.faults ?? "";
  status.textContent = row.status || "...";
  status.dataset.kind = statusKind(row);
  took.textContent = tookText(row);
  device.textContent = shortDevice(row.device) || "-";
  device.title = row.device;
}

function statusKind(row) {
  if (!row.status) return "open";
  if (row.status >= 500) return "bad";
  if (row.status >= 400) return "warn";
  return row.reason || row.faults ? "odd" : "good";
}

function choose(number) {
  chosen = number;
  draw();
  openDetail(number);
}

function move(to) {
  if (!shown.length) return;
  const index = Math.min(Math.max(to, 0), shown.length - 1);
  const top = index * rowHeight;
  if (top < rows.scrollTop) rows.scrollTop = top;
  const bottom = top + rowHeight - rows.clientHeight;
  if (bottom > rows.scrollTop) rows.scrollTop = bottom;
  choose(shown[index]);
}

function closeDetail() {
  chosen = 0;
  detail.hidden = true;
  byId("split").classList.remove("open");
  draw();
  rows.focus();
}

async function openDetail(number) {
  let whole;
  try {
    whole = prepared(await get(`requests/${number}`));
  } catch (failure) {
    whole = null;
    detail.replaceChildren(make("p", { className: "empty", textContent: failure.message }));
  }
  if (number !== chosen) return;
  if (whole) detail.replaceChildren(...parts(whole));
  detail.hidden = false;
  byId("split").classList.add("open");
}

const fact = (name, value) => (value === "" || value === undefined ? [] : [make("dt", { textContent: name }), make("dd", { textContent: value })]);

function bodyPart(title, body, dropped) {
  const section = make("details", { open: true, className: "body" }, make("summary", { textContent: title }));
  if (dropped) section.append(make("p", { className: "quiet", textContent: "Not kept any more: newer bodies took its place." }));
  else if (body.json) section.append(drawn(parse(body.text), body.masked));
  else if (body.text) section.append(make("p", { className: "quiet", textContent: body.text + (body.cut ? "... (cut after 64 kB)" : "") }));
  else section.append(make("p", { className: "quiet", textContent: "Empty" }));
  return section;
}

export function curl(whole) {
  const variables = new Set();
  const lines = [`curl --cacert '${place.anchor.replace(/'/g, "'\\''")}' -X ${whole.method}`];
  if (whole.contentType) lines.push(`-H 'Content-Type: ${whole.contentType.replace(/'/g, "'\\''")}'`);
  for (const [number, token] of [[1, whole.token1], [2, whole.token2]]) {
    if (!token) continue;
    variables.add(`TOKEN${number}`);
    lines.push(`-H "x-session-token${number}: $TOKEN${number}"`);
  }
  if (whole.asked.json) lines.push(`--data-binary ${shellWord(parse(whole.asked.text), whole.asked.masked, variables)}`);
  lines.push(`'${(place.base.replace(/\/vello$/, "") + whole.path).replace(/'/g, "'\\''")}'`);
  const first = variables.size ? `# Set these first: ${[...variables].join(", ")}\n` : "";
  return first + lines.join(" \\\n  ");
}

function parts(whole) {
  const command = curl(whole);
  const status = make("span", { className: "chip", textContent: whole.status || "open", "data-kind": statusKind(whole) });
  return [
    make("header", {},
      make("h2", { textContent: whole.operation }), status, make("span", { className: "gap" }),
      make("button", { type: "button", id: "copy-curl", textContent: "Copy as curl", title: "c", onclick: () => copy(command, "curl command") }),
      make("button", { type: "button", className: "plain", textContent: "Close", title: "Esc", onclick: closeDetail })),
    whole.reason ? make("p", { className: "reason", textContent: whole.reason }) : null,
    whole.faults ? make("p", { className: "reason fault", textContent: `Met the fault: ${whole.faults}` }) : null,
    make("dl", { className: "facts" },
      ...fact("Request", `${whole.number}, ${whole.method} ${whole.path}`), ...fact("Time", clock(whole.time)),
      ...fact("Took", tookText(whole)), ...fact("Device", whole.device),
      ...fact("Session", whole.session ? `${whole.session}` : "none"),
      ...fact("Session tokens", [whole.token1, whole.token2].filter(Boolean).join(", "))),
    bodyPart("Request", whole.asked, whole.bodiesDropped),
    bodyPart("Answer", whole.answered, whole.bodiesDropped),
    make("details", { className: "body" }, make("summary", { textContent: "As a curl command" }), make("pre", { className: "json", id: "curl", tabIndex: 0, textContent: command })),
  ].filter(Boolean);
}

/// True when the key was meant for this view.
export function key(event) {
  const index = shown.indexOf(chosen);
  const page = Math.max(1, Math.floor(rows.clientHeight / rowHeight) - 1);
  const moves = { j: index + 1, ArrowDown: index + 1, k: index - 1, ArrowUp: index - 1, Home: 0, End: shown.length - 1, PageDown: index + page, PageUp: index - page };
  const inDetail = detail.contains(document.activeElement);
  if (event.key in moves && !(inDetail && event.key.length > 1)) move(moves[event.key]);
  else if (event.key === "Enter" && document.activeElement === rows) detail.focus();
  else if (event.key === "Escape" && !detail.hidden) closeDetail();
  else if (event.key === "c" && !detail.hidden) byId("copy-curl")?.click();
  else return false;
  return true;
}

export const filter = () => byId("filter").focus();

export function begin(where) {
  place = where;
  byId("filter").addEventListener("input", () => sift(false));
  byId("problems").addEventListener("change", () => sift(false));
  byId("clear-requests").addEventListener("click", () => change("DELETE", "requests"));
  rows.addEventListener("scroll", plan, { passive: true });
  new ResizeObserver(plan).observe(rows);
}

export const show = plan;
