#include "orlixkit/security/WipingResource.h"

#include <memory_resource>
#include <new>

#include "orlixkit/platform/Secret.h"

namespace orlix {

void* WipingResource::do_allocate(std::size_t size, std::size_t alignment) {
  if (size > left_) {
    throw std::bad_alloc();
  }
  void* memory = std::pmr::new_delete_resource()->allocate(size, alignment);
  left_ -= size;
  return memory;
}

void WipingResource::do_deallocate(void* memory, std::size_t size, std::size_t alignment) {
  giveBack(memory, size, size, alignment);
}

void WipingResource::giveBack(void* memory, std::size_t size, std::size_t used,
                              std::size_t alignment) {
  wipe(memory, used);
  std::pmr::new_delete_resource()->deallocate(memory, size, alignment);
  left_ += size;
}

}  // namespace orlix
