#include "orlixkit/records/KCVelloUtil.h"

#include <memory>
#include <new>
#include <stdexcept>
#include <utility>

#include <boost/json.hpp>

#include "orlixkit/records/Failures.h"
#include "orlixkit/records/JsonMemory.h"

namespace orlix {

namespace {

NetworkException unreadable() {
  return NetworkException("Parse data", "Something went wrong with the data");
}

boost::json::value parsed(ByteView data, boost::json::memory_resource& heap,
                          boost::json::memory_resource& pool) {
  boost::json::parse_options options;
  options.max_depth = KCVelloUtil::depthLimit;
  // What the parser keeps while it works comes from the heap, where it can be given back.
  boost::json::parser parser{boost::json::storage_ptr(&heap), options};
  parser.reset(boost::json::storage_ptr(&pool));
  boost::json::error_code error;
  parser.write(reinterpret_cast<const char*>(data.data()), data.size(), error);
  if (error) {
    throw unreadable();
  }
  return parser.release();
}

}  // namespace

JsonObject KCVelloUtil::getJson(ByteView data) {
  try {
    auto memory = std::make_unique<JsonObject::Memory>(memoryLimit);
    memory->root = parsed(data, memory->heap, memory->pool);
    if (!memory->root.is_object()) {
      throw unreadable();
    }
    return JsonObject(std::move(memory));
  } catch (const std::bad_alloc&) {
    throw unreadable();
  } catch (const std::length_error&) {
    throw unreadable();
  }
}

}  // namespace orlix
