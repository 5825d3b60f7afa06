#pragma once

#include <cstddef>
#include <vector>

#include <boost/json/memory_resource.hpp>

#include "orlixkit/security/WipingResource.h"

namespace orlix {

/// Memory for one decoded answer: taken in blocks, given back as a whole, and overwritten as far as
/// it was used. That its end is known is what it has over the JSON library's own resource of this
/// kind. Every object of the answer names it as its storage, so it also keeps the count of what is
/// made from the answer.
class AnswerPool final : public boost::json::memory_resource {
 public:
  /// The blocks come from `heap`, which must outlive the pool and sets the limit. `recordLimit`:
  /// bytes that the records filled from the answer may take.
  AnswerPool(WipingResource& heap, std::size_t recordLimit)
      : heap_(heap), leftForRecords_(recordLimit) {}
  ~AnswerPool() override;
  AnswerPool(const AnswerPool&) = delete;
  AnswerPool& operator=(const AnswerPool&) = delete;

  std::size_t leftForRecords() const { return leftForRecords_; }
  /// Throws NetworkException (`unreadableAnswer`) when no more than that is left.
  void countForRecords(std::size_t bytes);

 private:
  struct Block {
    void* memory;
    std::size_t size;
    std::size_t used;
  };

  void* do_allocate(std::size_t size, std::size_t alignment) override;
  void do_deallocate(void* /*memory*/, std::size_t /*size*/, std::size_t /*alignment*/) override {}
  bool do_is_equal(const memory_resource& other) const noexcept override { return this == &other; }
  void addBlock(std::size_t size);

  WipingResource& heap_;
  std::vector<Block> blocks_;
  std::size_t leftForRecords_;
};

}  // namespace orlix

/// Lets the JSON library release a value without walking through it.
template <>
struct boost::json::is_deallocate_trivial<orlix::AnswerPool> {
  static constexpr bool value = true;
};
