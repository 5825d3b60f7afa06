// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstddef>

#include <boost/json/value.hpp>

#include "orlixkit/ports/Bytes.h"
#include "orlixkit/security/AnswerMemory.h"

namespace orlix {

/// Decodes a JSON text into `memory`; numbers as `keptNumber` represents them. Throws
/// NetworkException (`unreadableAnswer`) when `data` is not a JSON text or is nested beyond
/// `depthLimit`, and what `memory` throws.
boost::json::value decodeJson(ByteView data, std::size_t depthLimit, AnswerMemory& memory);

}  // namespace orlix
