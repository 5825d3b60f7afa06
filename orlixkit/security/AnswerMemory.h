#pragma once

#include <cstddef>
#include <vector>

#include <boost/json/memory_resource.hpp>

namespace orlix {

/// Memory for one decoded JSON text and what is made from it. It is taken in blocks and released as
/// a whole, overwritten as far as it was used, because the text may hold a key or a token. It is
/// limited, because whoever sent the text decides how much it takes.
///
/// Must outlive every value in it. Used by one thread at a time.
class AnswerMemory final : public boost::json::memory_resource {
 public:
  /// `limit`: bytes of values; beyond them an allocation throws std::bad_alloc. `recordLimit`:
  /// bytes that the records filled from the values may take.
  explicit AnswerMemory(std::size_t limit, std::size_t recordLimit = 0)
      : left_(limit), leftForRecords_(recordLimit) {}
  ~AnswerMemory() override;
  AnswerMemory(const AnswerMemory&) = delete;
  AnswerMemory& operator=(const AnswerMemory&) = delete;

  /// Bytes handed out so far.
  std::size_t used() const { return used_; }
  std::size_t leftForRecords() const { return leftForRecords_; }
  /// False, and nothing is counted, when no more than that is left.
  [[nodiscard]] bool countForRecords(std::size_t bytes);

 private:
  struct Block {
    std::byte* memory;
    std::size_t size;
    std::size_t used;
  };

  void* do_allocate(std::size_t size, std::size_t alignment) override;
  void do_deallocate(void* /*memory*/, std::size_t /*size*/, std::size_t /*alignment*/) override {}
  bool do_is_equal(const memory_resource& other) const noexcept override { return this == &other; }
  void* placeInLastBlock(std::size_t size, std::size_t alignment);
  void addBlock(std::size_t size);

  std::vector<Block> blocks_;
  std::size_t left_;
  std::size_t used_ = 0;
  std::size_t leftForRecords_;
};

}  // namespace orlix

/// Lets the JSON library release a value without walking through it.
template <>
struct boost::json::is_deallocate_trivial<orlix::AnswerMemory> {
  static constexpr bool value = true;
};
