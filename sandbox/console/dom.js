// SPDX-License-Identifier: Apache-2.0

// The few things that every view needs of the page. Texts reach it as text nodes only, so that
// nothing a client sends can become markup.

export const byId = (id) => document.getElementById(id);

/// An element: properties by name, "data-", "aria-" and "role" as attributes, on… as listeners.
export function make(tag, properties = {}, ...children) {
  const element = document.createElement(tag);
  for (const [name, value] of Object.entries(properties)) {
    if (value === undefined || value === null) continue;
    if (name.startsWith("on")) element.addEventListener(name.slice(2), value);
    else if (name.includes("-") || name === "role") element.setAttribute(name, value);
    else element[name] = value;
  }
  element.append(...children.filter((child) => child !== null && child !== undefined));
  return element;
}

/// Replaces the children. The focus stays on what has the same "data-key"; a field that is being
/// filled in is not taken away: false then.
export function replace(container, children) {
  const active = document.activeElement;
  const inside = active && container.contains(active);
  if (inside && active.matches("input, select, textarea")) return false;
  const key = inside ? active.dataset.key : undefined;
  container.replaceChildren(...children);
  if (key) container.querySelector(`[data-key="${CSS.escape(key)}"]`)?.focus();
  return true;
}

let noteTimer = 0;
export function note(text, isError = false) {
  const element = byId("note");
  element.textContent = text;
  element.dataset.error = isError;
  element.classList.add("seen");
  clearTimeout(noteTimer);
  noteTimer = setTimeout(() => element.classList.remove("seen"), isError ? 6000 : 2000);
}

export async function copy(text, what) {
  try {
    await navigator.clipboard.writeText(text);
  } catch {
    const field = make("textarea", { value: text, className: "aside" });
    document.body.append(field);
    field.select();
    document.execCommand("copy");
    field.remove();
  }
  note(`${what} copied`);
}

export async function get(path) {
  const answer = await fetch(path);
  const body = await answer.json();
  if (!answer.ok) throw new Error(body.error ?? answer.statusText);
  return body;
}

/// Asks the server to change something; tells what it says against it.
export async function change(method, path, body = {}) {
  try {
    const answer = await fetch("control", {
      method: "POST",
      headers: { "Content-Type": "application/json" },
      body: JSON.stringify({ method, path: `/control/${path}`, body }),
    });
    const told = await answer.json();
    if (!answer.ok) throw new Error(told.error ?? answer.statusText);
    return told;
  } catch (failure) {
    note(failure.message, true);
    return null;
  }
}

export function clock(milliseconds) {
  const at = new Date(milliseconds);
  const two = (number) => String(number).padStart(2, "0");
  return `${two(at.getHours())}:${two(at.getMinutes())}:${two(at.getSeconds())}.${String(at.getMilliseconds()).padStart(3, "0")}`;
}

/// The end of a device's serial, by which people tell devices apart.
export function shortDevice(serial) {
  const bare = serial.replace(/[[\]]/g, "").replace(/^[a-z]:/, "");
  return bare.length > 10 ? `...${bare.slice(-8)}` : bare;
}
