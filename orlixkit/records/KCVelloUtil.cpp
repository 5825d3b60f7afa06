// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/records/KCVelloUtil.h"

#include <new>
#include <stdexcept>

#include "orlixkit/records/Failures.h"

namespace orlix {

JsonObject KCVelloUtil::getJson(ByteView data) {
  try {
    return JsonObject(data);
  } catch (const std::bad_alloc&) {
    throw unreadableAnswer();
  } catch (const std::length_error&) {
    throw unreadableAnswer();
  }
}

}  // namespace orlix
