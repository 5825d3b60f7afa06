// SPDX-License-Identifier: Apache-2.0

// What the paths of the wallet protocol do, in the words of the people who use it.

export const operations = [
  ["/vello/session/new/TALU", "Session start"],
  ["/vello/sms/send", "Send an SMS"],
  ["/vello/sms/activateSession", "Enrol by SMS code"],
  ["/vello/profile/updateTC", "Accept the terms"],
  ["/vello/lookup/query/v2/TALU", "Look up a code"],
  ["/vello/purchase/TALU", "Purchase"],
  ["/vello/auth3Ds/TALU", "Authenticate a card"],
  ["/vello/receipt/poll/TALU", "Poll the receipt"],
  ["/vello/card/list/TALU", "List the cards"],
  ["/vello/card/bin/TALU", "Ask what a BIN needs"],
  ["/vello/card/link/TALU", "Add a card"],
  ["/vello/card/delink/TALU", "Remove a card"],
  ["/vello/card/validate/TALU", "Validate a card"],
  ["/vello/card/scUrl/TALU", "3-D Secure page, purchase"],
  ["/vello/card/get3dsValidateUrl/TALU", "3-D Secure page, card"],
  ["/issuer/acs", "Issuer's page"],
  ["/issuer/otp", "Issuer's one-time code"],
  ["/vello/secure_code.jsp", "Return from the issuer"],
  ["/terms/tavlo.html", "Terms"],
];

const names = new Map(operations);
export const operationOf = (path) => names.get(path) ?? path;
