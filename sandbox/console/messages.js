// SPDX-License-Identifier: Apache-2.0

// The SMS, as they are sent.

import { byId, clock, copy, get, make, replace, shortDevice } from "./dom.js";

export function status(now) {
  byId("count-messages").textContent = now.messages || "";
}

export async function refresh() {
  const { messages } = await get("data/messages");
  const list = messages.slice(0, 150).map((message) =>
    make("article", { className: "item message" },
      make("code", { className: "sms", textContent: message.code }),
      make("button", { type: "button", textContent: "Copy", "data-key": `copy-${message.number}`, "aria-label": `Copy the code ${message.code}`, onclick: () => copy(message.code, "Code") }),
      make("div", {}, make("b", { textContent: `+${message.msisdn}` }), make("small", { textContent: `${clock(message.time)}, asked by ${shortDevice(message.device)}` }))));
  if (!list.length) list.push(make("p", { className: "empty", textContent: "No SMS has been sent. A device that enrols asks for one." }));
  return replace(byId("messages"), list);
}

export function begin() {}
