// SPDX-License-Identifier: Apache-2.0

// Purchases with their receipts, and who decides what becomes of those that are held.

import { byId, change, clock, get, make, replace, shortDevice } from "./dom.js";

function receiptOf(payment) {
  if (payment.polls === undefined) return ["none", "no payment"];
  if (payment.held) return ["held", "held"];
  if (payment.receipt) return [payment.receipt === "SUCCESS" ? "good" : "bad", payment.receipt];
  return ["open", payment.receiptPlan ? "not polled to its end" : "never comes"];
}

function decide(payment, receipt, label) {
  return make("button", {
    type: "button", textContent: label, "data-key": `${receipt}-${payment.transactionId}`,
    "data-decide": receipt,
    onclick: () => change("POST", "payments", { transactionId: payment.transactionId, receipt }),
  });
}

function drawn(payment) {
  const [kind, words] = receiptOf(payment);
  const undecided = payment.polls !== undefined && !payment.receipt;
  return make("article", { className: "item payment", "data-transaction": payment.transactionId },
    make("div", {},
      make("b", { textContent: payment.merchant || payment.code || "Purchase" }),
      make("small", { textContent: `${clock(payment.time)}, code ${payment.code ?? "?"}, device ${shortDevice(payment.device) || "unknown"}` })),
    make("span", { className: "amount", textContent: payment.amount ? `${payment.currency ?? ""} ${payment.amount}` : "" }),
    make("div", {},
      make("span", { textContent: payment.status === 200 ? payment.outcome || "no status" : `HTTP ${payment.status}` }),
      make("small", { textContent: payment.polls === undefined ? "not paid" : `transaction ${payment.transactionId}` })),
    make("div", {},
      make("span", { className: "chip", "data-kind": kind, textContent: words }),
      make("small", { textContent: payment.polls === undefined ? "" : `${payment.polls} ${payment.polls === 1 ? "poll" : "polls"}` })),
    make("div", { className: "buttons" }, ...(undecided ? [decide(payment, "SUCCESS", "Let succeed"), decide(payment, "FAILED", "Let fail")] : [])));
}

export function status(now) {
  byId("hold").checked = now.holds;
  byId("count-payments").textContent = now.held ? `${now.held} held` : now.purchases || "";
}

export async function refresh() {
  const { payments } = await get("data/payments");
  const list = payments.slice(0, 150).map(drawn);
  if (!list.length) list.push(make("p", { className: "empty", textContent: "Nothing has been bought yet." }));
  if (payments.length > 150) list.push(make("p", { className: "quiet", textContent: "The latest 150 are shown." }));
  return replace(byId("payments"), list);
}

export function begin() {
  byId("hold").addEventListener("change", (event) => change("POST", "payments", { hold: event.target.checked }));
}
