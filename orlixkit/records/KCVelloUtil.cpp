#include "orlixkit/records/KCVelloUtil.h"

#include <memory>
#include <new>
#include <stdexcept>
#include <utility>

#include "orlixkit/records/Failures.h"
#include "orlixkit/records/JsonDecoder.h"
#include "orlixkit/records/JsonMemory.h"

namespace orlix {

JsonObject KCVelloUtil::getJson(ByteView data) {
  try {
    auto memory = std::make_unique<JsonObject::Memory>(memoryLimit, recordLimit);
    memory->root = decodeJson(data, depthLimit, memory->heap, memory->pool);
    if (!memory->root.is_object()) {
      throw unreadableAnswer();
    }
    return JsonObject(std::move(memory));
  } catch (const std::bad_alloc&) {
    throw unreadableAnswer();
  } catch (const std::length_error&) {
    throw unreadableAnswer();
  }
}

}  // namespace orlix
