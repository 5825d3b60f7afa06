// SPDX-License-Identifier: Apache-2.0

// Every code as a picture to scan and a text to paste, and a form to make more.

import { byId, change, copy, get, make, note, replace } from "./dom.js";

const flagNames = { requestTip: "tip", requestBilling: "billing", requestShipping: "shipping", requestPartialPayment: "partial payment", requestContact: "contact", orlixData: "more data" };

const picture = (code) => `qr?code=${encodeURIComponent(code)}`;

function enlarge(code) {
  byId("large-code-name").textContent = code;
  byId("large-code-picture").src = picture(code);
  byId("large-code-picture").alt = `The code ${code} to scan`;
  byId("large-code").showModal();
}

function drawn(code) {
  const price = code.amount ? `${code.currency} ${code.amount}` : "amount by the user";
  return make("article", { className: "card code", "data-code": code.code },
    make("button", { type: "button", className: "qr", "aria-label": `Enlarge ${code.code}`, "data-key": `qr-${code.code}`, onclick: () => enlarge(code.code) },
      make("img", { src: picture(code.code), alt: "", loading: "lazy", width: 104, height: 104 })),
    make("div", {},
      make("h3", { textContent: code.code }),
      make("p", { textContent: code.behaviour }),
      make("small", { textContent: [code.merchant, price, ...code.flags.map((flag) => flagNames[flag])].join(", ") }),
      make("div", { className: "buttons" },
        make("button", { type: "button", textContent: "Copy", "data-key": `copy-${code.code}`, onclick: () => copy(code.code, "Code") }),
        code.made ? make("button", { type: "button", textContent: "Remove", "data-key": `remove-${code.code}`, onclick: async () => { await change("DELETE", "codes", { code: code.code }); refresh(); } }) : null)));
}

export async function refresh() {
  const { codes } = await get("data/codes");
  const wanted = byId("filter-codes").value.toLowerCase();
  const list = codes.filter((code) => `${code.code} ${code.behaviour} ${code.merchant}`.toLowerCase().includes(wanted)).slice(0, 150).map(drawn);
  if (!list.length) list.push(make("p", { className: "empty", textContent: "No code has these words." }));
  return replace(byId("codes"), list);
}

export function status() {}
export const filter = () => byId("filter-codes").focus();

export function begin() {
  byId("filter-codes").addEventListener("input", refresh);
  byId("make-code").addEventListener("submit", async (event) => {
    event.preventDefault();
    const wish = {};
    for (const field of event.target.elements) {
      if (field.type === "checkbox") wish[field.name] = field.checked;
      else if (field.name && field.value.trim()) wish[field.name] = field.value.trim();
    }
    const made = await change("POST", "codes", wish);
    if (!made) return;
    event.target.reset();
    note(`The code ${made.code} is made`);
    document.activeElement?.blur();
    refresh();
  });
}
