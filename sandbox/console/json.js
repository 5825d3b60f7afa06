// SPDX-License-Identifier: Apache-2.0

// JSON as it came: numbers keep their digits, which a script's own numbers would lose from 2^53 on.

import { make } from "./dom.js";

/// A tree of {kind, value}; objects are arrays of [key, tree]. The text is valid JSON.
export function parse(text) {
  const tokens = text.match(/"(?:[^"\\]|\\.)*"|[{}[\]:,]|[^\s{}[\]:,"]+/g) ?? [];
  let at = 0;
  const value = () => {
    const token = tokens[at++];
    if (token === "{") {
      const pairs = [];
      while (tokens[at] !== "}") {
        const key = JSON.parse(tokens[at]);
        at += 2;
        pairs.push([key, value()]);
        if (tokens[at] === ",") at += 1;
      }
      at += 1;
      return { kind: "object", value: pairs };
    }
    if (token === "[") {
      const items = [];
      while (tokens[at] !== "]") {
        items.push(value());
        if (tokens[at] === ",") at += 1;
      }
      at += 1;
      return { kind: "array", value: items };
    }
    if (token[0] === '"') return { kind: "text", value: JSON.parse(token) };
    return { kind: /^[-\d]/.test(token) ? "number" : "word", value: token };
  };
  return value();
}

const step = (pointer, key) => `${pointer}/${String(key).replace(/~/g, "~0").replace(/\//g, "~1")}`;

/// The tree as indented text in an element, what is masked set apart.
export function drawn(tree, masked) {
  const secrets = new Set(masked);
  const out = make("pre", { className: "json", tabIndex: 0 });
  const put = (text, name) => out.append(name ? make("span", { className: name, textContent: text }) : text);
  const draw = (node, pointer, indent) => {
    const inner = `${indent}  `;
    if (node.kind === "object" || node.kind === "array") {
      const [open, end] = node.kind === "object" ? "{}" : "[]";
      if (node.value.length === 0) return put(open + end);
      put(open);
      node.value.forEach((entry, index) => {
        put(`${index ? "," : ""}\n${inner}`);
        if (node.kind === "object") {
          put(JSON.stringify(entry[0]), "key");
          put(": ");
          draw(entry[1], step(pointer, entry[0]), inner);
        } else {
          draw(entry, step(pointer, index), inner);
        }
      });
      return put(`\n${indent}${end}`);
    }
    if (secrets.has(pointer)) return put(node.value, "secret");
    put(node.kind === "text" ? JSON.stringify(node.value) : node.value, node.kind);
  };
  draw(tree, "", "");
  return out;
}

const quoted = (text) => text.replace(/'/g, "'\\''");

/// The tree as a single-quoted word of a shell; what is masked becomes a variable, whose name goes
/// to `variables`.
export function shellWord(tree, masked, variables) {
  const secrets = new Set(masked);
  const write = (node, pointer, key) => {
    if (node.kind === "object") {
      return `{${node.value
        .map(([name, child]) => `${quoted(JSON.stringify(name))}:${write(child, step(pointer, name), name)}`)
        .join(",")}}`;
    }
    if (node.kind === "array") {
      return `[${node.value.map((child, index) => write(child, step(pointer, index), key)).join(",")}]`;
    }
    if (secrets.has(pointer)) {
      const name = key.replace(/([a-z])([A-Z])/g, "$1_$2").replace(/\W/g, "_").toUpperCase();
      variables.add(name);
      return `"'"$${name}"'"`;
    }
    return quoted(node.kind === "text" ? JSON.stringify(node.value) : node.value);
  };
  return `'${write(tree, "", "BODY")}'`;
}
