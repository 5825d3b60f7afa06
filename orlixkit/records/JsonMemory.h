#pragma once

#include <cstddef>

#include <boost/json/value.hpp>

#include "orlixkit/records/AnswerPool.h"
#include "orlixkit/records/JsonObject.h"
#include "orlixkit/security/WipingResource.h"

namespace orlix {

/// Where a decoded answer lies. Released in the order opposite to the declarations.
struct JsonObject::Memory {
  Memory(std::size_t limit, std::size_t recordLimit) : heap(limit), pool(heap, recordLimit) {}

  WipingResource heap;
  AnswerPool pool;
  boost::json::value root = boost::json::value(boost::json::storage_ptr(&pool));
};

}  // namespace orlix
