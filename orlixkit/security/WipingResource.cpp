#include "orlixkit/security/WipingResource.h"

#include <cstddef>
#include <memory>
#include <new>

#include "orlixkit/platform/Secret.h"

namespace orlix {

void* WipingResource::do_allocate(std::size_t size, std::size_t alignment) {
  if (size > left_ || alignment > alignof(std::max_align_t)) {
    throw std::bad_alloc();
  }
  void* memory = std::allocator<std::byte>().allocate(size);
  left_ -= size;
  return memory;
}

void WipingResource::do_deallocate(void* memory, std::size_t size, std::size_t /*alignment*/) {
  giveBack(memory, size, size);
}

void WipingResource::giveBack(void* memory, std::size_t size, std::size_t used) {
  wipe(memory, used);
  // The library gives keys back with another alignment than it asked for, so none is passed on.
  std::allocator<std::byte>().deallocate(static_cast<std::byte*>(memory), size);
  left_ += size;
}

}  // namespace orlix
