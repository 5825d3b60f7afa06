#pragma once

#include <string_view>

#include "orlixkit/platform/Bytes.h"

namespace orlix::fuzz {

/// Something that is fed with bytes which nobody has chosen. It lets a failure through that its
/// subject must not end in, and checks the rules that hold whatever the input; either way the
/// process ends, and whoever feeds it keeps the input.
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
