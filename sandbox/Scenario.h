// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>

#include "sandbox/State.h"

namespace orlix::sandbox {

/// Reads the codes and cards that `file` defines and puts them into the state, which no other
/// thread uses yet; see README.md for the form of the file.
///
/// Throws std::runtime_error with the file, the place in it and what is wrong there; then no card
/// has been put.
void loadScenario(const std::string& file, State& state);

}  // namespace orlix::sandbox
