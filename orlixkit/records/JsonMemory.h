#pragma once

#include <cstddef>

#include <boost/json/value.hpp>

#include "orlixkit/records/AnswerPool.h"
#include "orlixkit/records/JsonObject.h"
#include "orlixkit/security/WipingResource.h"

namespace orlix {

/// Where a decoded answer lies. Released in the order opposite to the declarations.
struct JsonObject::Memory {
  explicit Memory(std::size_t limit) : heap(limit) {}

  WipingResource heap;
  AnswerPool pool{heap};
  boost::json::value root = boost::json::value(boost::json::storage_ptr(&pool));
};

}  // namespace orlix
