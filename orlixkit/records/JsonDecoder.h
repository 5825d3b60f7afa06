#pragma once

#include <cstddef>

#include <boost/json/value.hpp>

#include "orlixkit/platform/Bytes.h"

namespace orlix {

/// Decodes a JSON text with numbers as `keptNumber` keeps them.
/// `pool`: where the value goes. `heap`: what the decoder needs while it works, and can give back.
/// Throws NetworkException (`unreadableAnswer`) when `data` is no JSON text or nested beyond
/// `depthLimit`, and what the two resources throw.
boost::json::value decodeJson(ByteView data, std::size_t depthLimit,
                              boost::json::memory_resource& heap,
                              boost::json::memory_resource& pool);

}  // namespace orlix
