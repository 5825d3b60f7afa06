// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

namespace orlix {

/// Overwrites memory; the optimiser does not remove the write.
void wipe(void* memory, std::size_t size) noexcept;

/// Overwrites remnants of secrets in this thread's vector registers and in the 64 kB below its
/// stack pointer, more than a request uses. Copies pass through these registers, and the dynamic
/// linker saves them on the stack when it binds a function at its first call. For threads that
/// continue to run after handling secrets; takes about 1 µs.
void wipeStack() noexcept;

/// Allocator that overwrites memory before returning it to the heap, also when a vector grows.
template <class T>
struct WipingAllocator {
  using value_type = T;
  WipingAllocator() = default;
  template <class Other>
  WipingAllocator(const WipingAllocator<Other>&) noexcept {}

  T* allocate(std::size_t n) { return std::allocator<T>().allocate(n); }
  void deallocate(T* memory, std::size_t n) noexcept {
    wipe(memory, n * sizeof(T));
    std::allocator<T>().deallocate(memory, n);
  }
  friend bool operator==(const WipingAllocator&, const WipingAllocator&) noexcept { return true; }
};

/// A sequence of units (bytes or characters) that is always heap-allocated, wiped on release and
/// not printable. Copies are independent secrets.
template <class Unit>
class Secret {
 public:
  Secret() = default;
  explicit Secret(std::span<const Unit> units) : units_(units.begin(), units.end()) {}
  explicit Secret(std::size_t count, Unit unit) : units_(count, unit) {}

  std::size_t size() const { return units_.size(); }
  bool empty() const { return units_.empty(); }
  Unit* data() { return units_.data(); }
  const Unit* data() const { return units_.data(); }

  /// View of the units, valid while this object is neither changed nor released. Do not copy it
  /// into memory that is not wiped.
  std::span<const Unit> reveal() const { return {units_.data(), units_.size()}; }

  void append(std::span<const Unit> more) { units_.insert(units_.end(), more.begin(), more.end()); }
  /// Replaces `length` units at `position`; both are clamped to the size.
  void replace(std::size_t position, std::size_t length, std::span<const Unit> with);
  void resize(std::size_t count) { units_.resize(count); }
  void clear() { units_ = {}; }

  friend bool operator==(const Secret&, const Secret&) = default;

 private:
  std::vector<Unit, WipingAllocator<Unit>> units_;
};

template <class Unit>
void Secret<Unit>::replace(std::size_t position, std::size_t length, std::span<const Unit> with) {
  const std::size_t from = position < units_.size() ? position : units_.size();
  const std::size_t rest = units_.size() - from;
  const std::size_t cut = length < rest ? length : rest;
  // Build a new sequence, so that moved units leave no copy in the old memory.
  std::vector<Unit, WipingAllocator<Unit>> made;
  made.reserve(units_.size() - cut + with.size());
  const auto middle = units_.begin() + static_cast<std::ptrdiff_t>(from);
  made.insert(made.end(), units_.begin(), middle);
  made.insert(made.end(), with.begin(), with.end());
  made.insert(made.end(), middle + static_cast<std::ptrdiff_t>(cut), units_.end());
  units_ = std::move(made);
}

/// For key material and clear PIN blocks.
using SecretBytes = Secret<std::uint8_t>;

/// For PIN, CVV and other texts that must not remain in memory.
class SecretString : public Secret<char> {
 public:
  SecretString() = default;
  explicit SecretString(std::string_view text) : Secret(std::span(text.data(), text.size())) {}
  std::string_view text() const { return {data(), size()}; }
};

}  // namespace orlix
