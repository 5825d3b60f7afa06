#pragma once

#include <cstddef>

#include <boost/json/value.hpp>

#include "orlixkit/platform/Bytes.h"
#include "orlixkit/security/AnswerMemory.h"

namespace orlix {

/// Decodes a JSON text with numbers as `keptNumber` keeps them.
/// `memory`: where the value goes. Throws NetworkException (`unreadableAnswer`) when `data` is no
/// JSON text or nested beyond `depthLimit`, and what `memory` throws.
boost::json::value decodeJson(ByteView data, std::size_t depthLimit, AnswerMemory& memory);

}  // namespace orlix
