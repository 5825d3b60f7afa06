#pragma once

#include <cstddef>

#include <boost/json/memory_resource.hpp>

namespace orlix {

/// Memory for a JSON value: overwritten before it goes back to the heap, because the value may hold
/// a key or a token, and limited, because whoever sent the text decides how much it takes.
///
/// Must outlive every value and resource on top of it. Used by one thread at a time.
class WipingResource final : public boost::json::memory_resource {
 public:
  /// `limit`: bytes that may be held at one time. Beyond them an allocation throws std::bad_alloc.
  explicit WipingResource(std::size_t limit) : left_(limit) {}

  /// Bytes that can still be allocated.
  std::size_t left() const { return left_; }

  /// Deallocates memory of which only the first `used` bytes were ever written. Overwriting the
  /// rest as well would only make the system find real memory for it.
  void giveBack(void* memory, std::size_t size, std::size_t used);

 private:
  void* do_allocate(std::size_t size, std::size_t alignment) override;
  void do_deallocate(void* memory, std::size_t size, std::size_t alignment) override;
  bool do_is_equal(const memory_resource& other) const noexcept override { return this == &other; }

  std::size_t left_;
};

}  // namespace orlix
