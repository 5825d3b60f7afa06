// SPDX-License-Identifier: Apache-2.0

// The stream of events, and what to do when it breaks.

import { byId } from "./dom.js";

const retryAfter = 1500;

/// Calls the handlers as events come, for ever. The page says which revision it knows, so that a
/// connection that was lost brings only what is missing.
export function follow(handlers) {
  let source = null;
  let known = 0;
  let timer = 0;

  const show = (state, text) => {
    byId("connection").dataset.state = state;
    byId("connection").textContent = text;
  };

  const close = () => {
    clearTimeout(timer);
    source?.close();
    source = null;
  };

  const open = () => {
    close();
    source = new EventSource(`events?since=${known}`);
    source.addEventListener("open", () => show("live", "Live"));
    source.addEventListener("error", () => {
      show("lost", "Connection lost, trying again");
      close();
      timer = setTimeout(open, retryAfter);
    });
    for (const [name, handler] of Object.entries(handlers)) {
      source.addEventListener(name, (event) => {
        known = Number(event.lastEventId);
        handler(JSON.parse(event.data));
      });
    }
  };

  // A browser opens six connections to one address: consoles in hidden tabs leave them to others.
  document.addEventListener("visibilitychange", () => {
    if (document.hidden) {
      close();
      show("waiting", "Resting while hidden");
    } else if (!source) {
      open();
    }
  });
  open();
}
