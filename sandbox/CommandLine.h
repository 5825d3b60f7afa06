// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <span>
#include <string>
#include <variant>

#include "sandbox/Sandbox.h"

namespace orlix::sandbox {

struct UsageError {
  std::string message;
};

struct HelpWanted {};

/// Reads the arguments after the program's name.
std::variant<Options, HelpWanted, UsageError> readCommandLine(
    std::span<const char* const> arguments);

/// What --help prints.
std::string usage();

}  // namespace orlix::sandbox
