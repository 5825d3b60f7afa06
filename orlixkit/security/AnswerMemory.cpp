// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/security/AnswerMemory.h"

#include <algorithm>
#include <memory>
#include <new>

#include "orlixkit/ports/Secret.h"

namespace orlix {

namespace {

constexpr std::size_t kFirstBlock = std::size_t{8} * 1024;  // holds most answers
constexpr std::size_t kLargestBlock = std::size_t{4} * 1024 * 1024;

}  // namespace

AnswerMemory::~AnswerMemory() {
  for (const Block& block : blocks_) {
    // Overwrite only the used part: touching the rest would make the system allocate pages for it.
    wipe(block.memory, block.used);
    std::allocator<std::byte>().deallocate(block.memory, block.size);
  }
}

bool AnswerMemory::countForRecords(std::size_t bytes) {
  if (bytes > leftForRecords_) {
    return false;
  }
  leftForRecords_ -= bytes;
  return true;
}

void* AnswerMemory::do_allocate(std::size_t size, std::size_t alignment) {
  if (size > left_) {
    throw std::bad_alloc();
  }
  void* place = placeInLastBlock(size, alignment);
  if (place == nullptr) {
    addBlock(size + alignment);
    place = placeInLastBlock(size, alignment);
  }
  left_ -= size;
  used_ += size;
  return place;
}

void* AnswerMemory::placeInLastBlock(std::size_t size, std::size_t alignment) {
  if (blocks_.empty()) {
    return nullptr;
  }
  Block& block = blocks_.back();
  void* place = block.memory + block.used;
  std::size_t space = block.size - block.used;
  if (std::align(alignment, size, place, space) == nullptr) {
    return nullptr;
  }
  block.used = block.size - space + size;
  return place;
}

void AnswerMemory::addBlock(std::size_t size) {
  const std::size_t usual =
      blocks_.empty() ? kFirstBlock : std::min(blocks_.back().size * 2, kLargestBlock);
  const std::size_t taken = std::max(usual, size);
  blocks_.reserve(blocks_.size() + 1);
  blocks_.push_back({std::allocator<std::byte>().allocate(taken), taken, 0});
}

}  // namespace orlix
