// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstddef>
#include <vector>

#include <boost/json/memory_resource.hpp>

namespace orlix {

/// Memory for one decoded JSON text. Allocated in blocks and released as a whole; the used part is
/// overwritten, because the text may hold a key or a token. Limited, because the sender of the text
/// determines how much it takes.
///
/// Must outlive every value in it. One thread at a time.
class AnswerMemory final : public boost::json::memory_resource {
 public:
  /// `limit`: bytes of values; beyond them an allocation throws std::bad_alloc. `recordLimit`:
  /// bytes that the records filled from the values may take.
  explicit AnswerMemory(std::size_t limit, std::size_t recordLimit = 0)
      : left_(limit), leftForRecords_(recordLimit) {}
  ~AnswerMemory() override;
  AnswerMemory(const AnswerMemory&) = delete;
  AnswerMemory& operator=(const AnswerMemory&) = delete;

  /// Bytes allocated so far.
  std::size_t used() const { return used_; }
  std::size_t leftForRecords() const { return leftForRecords_; }
  /// Counts bytes of records. False, without counting, when the limit would be exceeded.
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

/// Allows the JSON library to release a value without traversing it.
template <>
struct boost::json::is_deallocate_trivial<orlix::AnswerMemory> {
  static constexpr bool value = true;
};
