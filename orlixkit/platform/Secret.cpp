#include "orlixkit/platform/Secret.h"

#include <cstring>

namespace orlix {

void wipe(void* memory, std::size_t size) noexcept {
  if (size != 0) {
    explicit_bzero(memory, size);
  }
}

}  // namespace orlix
