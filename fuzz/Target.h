// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string_view>

#include "orlixkit/ports/Bytes.h"

namespace orlix::fuzz {

/// A fuzz target, run with arbitrary bytes. It propagates failures that its subject must not have,
/// and checks rules that hold for every input; in both cases the process ends, and the caller keeps
/// the input.
struct Target {
  std::string_view name;
  void (*run)(ByteView input);
};

/// None when there is no such target.
const Target* findTarget(std::string_view name);

/// Ends the process, naming the rule, when it does not hold.
void check(bool holds, std::string_view rule);

inline std::string_view textOf(ByteView bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

/// Takes the first line off the text, without its end. A text without a line end is one line.
std::string_view takeLine(std::string_view& text);

void records(ByteView input);
void store(ByteView input);
void pares(ByteView input);
void amount(ByteView input);
void numbers(ByteView input);
void hex(ByteView input);
void script(ByteView input);
void transport(ByteView input);
void list(ByteView input);
void certificate(ByteView input);
void separated(ByteView input);
void dates(ByteView input);

}  // namespace orlix::fuzz
