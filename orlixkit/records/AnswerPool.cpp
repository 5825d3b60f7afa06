#include "orlixkit/records/AnswerPool.h"

#include <algorithm>
#include <memory>

#include "orlixkit/records/Failures.h"

namespace orlix {

namespace {

constexpr std::size_t firstBlock = std::size_t{8} * 1024;  // holds most answers
constexpr std::size_t largestBlock = std::size_t{4} * 1024 * 1024;

}  // namespace

AnswerPool::~AnswerPool() {
  for (const Block& block : blocks_) {
    heap_.giveBack(block.memory, block.size, block.used);
  }
}

void AnswerPool::countForRecords(std::size_t bytes) {
  if (bytes > leftForRecords_) {
    throw unreadableAnswer();
  }
  leftForRecords_ -= bytes;
}

void* AnswerPool::do_allocate(std::size_t size, std::size_t alignment) {
  const auto placed = [&]() -> void* {
    if (blocks_.empty()) {
      return nullptr;
    }
    Block& block = blocks_.back();
    void* place = static_cast<std::byte*>(block.memory) + block.used;
    std::size_t space = block.size - block.used;
    if (std::align(alignment, size, place, space) == nullptr) {
      return nullptr;
    }
    block.used = block.size - space + size;
    return place;
  };
  if (void* place = placed()) {
    return place;
  }
  addBlock(size + alignment);
  return placed();
}

void AnswerPool::addBlock(std::size_t size) {
  const std::size_t usual =
      blocks_.empty() ? firstBlock : std::min(blocks_.back().size * 2, largestBlock);
  const std::size_t taken = std::max(usual, size);
  blocks_.reserve(blocks_.size() + 1);
  blocks_.push_back({heap_.allocate(taken), taken, 0});
}

}  // namespace orlix
