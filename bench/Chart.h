// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <vector>

#include "bench/Table.h"

namespace orlix::bench {

/// The rows as a picture in SVG: a bar for each ratio, with the spread of its rounds and its
/// target.
std::string chartOf(const std::vector<Row>& rows);

}  // namespace orlix::bench
