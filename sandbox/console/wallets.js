// SPDX-License-Identifier: Apache-2.0

// Devices, their wallets, and the fate of each card.

import { byId, change, get, make, note, replace, shortDevice } from "./dom.js";

const methods = { AMT: "PIN", CNP: "no PIN", SECURE_CODE: "3-D Secure", WALLET: "WALLET, which cannot pay" };
const pages = { pass: "its page lets the right code pass", notEnrolled: "does not take part", error: "answers with an error text", html: "sends the page itself", htmlPresentFalse: "sends it with htmlPresent false", neverReturns: "never returns after a code", twice: "returns to a page that loads twice", largePage: "returns to a page of 5 MB" };
const starts = { normal: "as normal", terms: "changed terms", notice: "a notice", refused: "refused", refusedEmpty: "refused, empty message", refusedAbsent: "refused, no message", enrol: "must enrol" };

const mostDrawn = 40;

const choice = (name, options, present) =>
  make("select", { name }, ...Object.entries(options).map(([value, textContent]) => make("option", { value, textContent, selected: value === present })));

const button = (textContent, key, onclick) => make("button", { type: "button", textContent, "data-key": key, onclick });

function rules(card) {
  const form = make("form", { className: "rules", autocomplete: "off" },
    make("label", {}, "New PIN ", make("input", { name: "pin", inputMode: "numeric", pattern: "[0-9]{4,12}", placeholder: "unchanged" })),
    make("label", {}, "Pays by ", choice("method", methods, card.method)),
    make("label", { className: "check" }, make("input", { type: "checkbox", name: "needCvv", checked: card.needCvv }), " needs the CVV"),
    make("label", { className: "check" }, make("input", { type: "checkbox", name: "declines", checked: card.declines }), " its bank declines"),
    make("label", {}, "3-D Secure: the issuer ", choice("authentication", pages, card.authentication)),
    make("button", { type: "submit", className: "main", textContent: "Apply to every card of this BIN" }));
  form.addEventListener("submit", async (event) => {
    event.preventDefault();
    const fields = form.elements;
    const rule = { bin: card.bin, method: fields.method.value, needCvv: fields.needCvv.checked, authentication: fields.authentication.value, purchase: fields.declines.checked ? "ERROR" : "SUCCESS" };
    if (fields.pin.value) rule.pin = fields.pin.value;
    if (!(await change("POST", "cards", rule))) return;
    document.activeElement?.blur();
    note(`Cards of the BIN ${card.bin} follow the new rule`);
  });
  return make("details", { className: "fold" }, make("summary", { textContent: "Rule", "data-key": `rule-${card.cardId}` }), form);
}

function cardOf(wallet, card) {
  const set = (more) => change("PATCH", "wallets/cards", { wallet, cardId: card.cardId, ...more });
  const facts = [methods[card.method] ?? card.method];
  if (card.needCvv) facts.push("CVV");
  if (card.validation) facts.push(card.validated ? "validated" : `not validated (${card.validation})`);
  if (card.authenticated) facts.push("authenticated");
  if (card.declines) facts.push("its bank declines");
  return make("li", { className: "bankcard", "data-card": card.hint },
    make("b", { textContent: `${card.cardType} .... ${card.hint}` }),
    make("span", { className: "quiet", textContent: facts.join(", ") }),
    make("div", { className: "buttons" },
      card.validation ? button(card.validated ? "Not validated" : "Validate", `validate-${card.cardId}`, () => set({ validated: !card.validated })) : null,
      card.method === "SECURE_CODE" ? button(card.authenticated ? "Not authenticated" : "Authenticate", `authenticate-${card.cardId}`, () => set({ authenticated: !card.authenticated })) : null,
      button("Remove", `remove-${card.cardId}`, () => change("DELETE", "wallets/cards", { wallet, cardId: card.cardId }))),
    rules(card));
}

function adder(wallet, kinds) {
  const form = make("form", { className: "adder" },
    make("label", {}, "Add a card ", make("input", { name: "number", inputMode: "numeric", required: true, pattern: "[0-9]{13,19}", placeholder: "number, or choose one" })),
    make("label", {}, make("span", { className: "aside", textContent: "Documented cards" }),
      make("select", { name: "known" }, make("option", { value: "", textContent: "documented cards" }),
        ...kinds.map((kind) => make("option", { value: kind.number, textContent: `${kind.number}: ${kind.cardType}, ${kind.validation ? `validation ${kind.validation}` : methods[kind.method] ?? kind.method}` })))),
    make("button", { type: "submit", textContent: "Add" }));
  form.elements.known.addEventListener("change", () => { form.elements.number.value = form.elements.known.value; });
  form.addEventListener("submit", async (event) => {
    event.preventDefault();
    if (await change("POST", "wallets/cards", { wallet, number: form.elements.number.value })) {
      document.activeElement?.blur();
      form.reset();
    }
  });
  return form;
}

function deviceOf(device) {
  const start = choice("start", starts, device.nextStart || "normal");
  start.addEventListener("change", () => change("POST", "devices", { device: device.device, nextStart: start.value }));
  return make("li", { className: "device" }, make("code", { textContent: shortDevice(device.device), title: device.device }), make("label", {}, " next session start ", start),
    button("Remove device", `device-${device.device}`, () => change("DELETE", "devices", { device: device.device })));
}

function drawn(entry, devices, kinds) {
  return make("article", { className: "panel wallet" },
    make("h2", { textContent: entry.wallet.replace(/\[.*\]/, (serial) => shortDevice(serial)), title: entry.wallet }),
    entry.acceptsTerms ? null : make("span", { className: "chip", "data-kind": "warn", textContent: "has not accepted the terms" }),
    make("ul", { className: "plainlist" }, ...devices.map(deviceOf)),
    make("ul", { className: "plainlist cardlist" }, ...entry.cards.map((card) => cardOf(entry.wallet, card))),
    adder(entry.wallet, kinds));
}

export async function refresh() {
  const open = byId("wallets").querySelector("details[open] form");
  if (open) return false;  // A rule is being changed.
  const { wallets, devices, kinds } = await get("data/wallets");
  const wanted = byId("filter-wallets").value.toLowerCase();
  const list = [];
  for (const entry of wallets) {
    const own = devices.filter((device) => device.wallet === entry.wallet);
    if (`${entry.wallet} ${own.map((device) => device.device)}`.toLowerCase().includes(wanted)) list.push([entry, own]);
  }
  const articles = list.slice(0, mostDrawn).map(([entry, own]) => drawn(entry, own, kinds));
  const strangers = devices.filter((device) => !device.wallet).slice(0, mostDrawn);
  if (strangers.length) articles.push(make("article", { className: "panel wallet" }, make("h2", { textContent: "Not enrolled" }), make("ul", { className: "plainlist" }, ...strangers.map(deviceOf))));
  if (!articles.length) articles.push(make("p", { className: "empty", textContent: "There is no wallet yet. A device that enrols gets one." }));
  if (list.length > mostDrawn) articles.push(make("p", { className: "quiet", textContent: `${mostDrawn} of ${list.length} wallets are shown; the filter finds the others.` }));
  return replace(byId("wallets"), articles);
}

export function status(now) {
  byId("enrolled").checked = now.everyDeviceEnrolled;
}

export const filter = () => byId("filter-wallets").focus();

export function begin() {
  byId("filter-wallets").addEventListener("input", async () => {
    const field = document.activeElement;
    await refresh();
    field?.focus();
  });
  byId("enrolled").addEventListener("change", (event) => change("POST", "enrolled", { everyDevice: event.target.checked }));
  // A rule that is folded up again shows what has changed meanwhile.
  byId("wallets").addEventListener("toggle", (event) => event.target.open || refresh(), true);
}
