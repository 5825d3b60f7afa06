#pragma once

#include <cstddef>

#include <boost/json/monotonic_resource.hpp>
#include <boost/json/value.hpp>

#include "orlixkit/records/JsonObject.h"
#include "orlixkit/security/WipingResource.h"

namespace orlix {

/// Where a decoded answer lies: released as a whole, in the order opposite to the declarations.
struct JsonObject::Memory {
  explicit Memory(std::size_t limit) : heap(limit) {}

  /// Holds most answers; each further block is twice as large.
  static constexpr std::size_t firstBlock = 8192;

  WipingResource heap;
  boost::json::monotonic_resource pool{firstBlock, boost::json::storage_ptr(&heap)};
  boost::json::value root = boost::json::value(boost::json::storage_ptr(&pool));
};

}  // namespace orlix
