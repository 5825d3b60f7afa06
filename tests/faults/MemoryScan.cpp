// SPDX-License-Identifier: Apache-2.0

#include "tests/faults/MemoryScan.h"

#include <algorithm>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <span>
#include <sstream>
#include <unistd.h>

#include <fmt/format.h>
#include <sys/mman.h>

namespace orlix::test {

namespace {

constexpr std::size_t kPiece = std::size_t{1} << 20U;
/// Longer than any needle with its surroundings. What is found this near to a piece's end is read
/// whole in the piece beside it.
constexpr std::size_t kMargin = 512;

struct Region {
  std::uintptr_t begin = 0;
  std::uintptr_t end = 0;
  std::string name;
};

std::vector<Region> writableRegions() {
  std::vector<Region> regions;
  std::ifstream maps("/proc/self/maps");
  for (std::string line; std::getline(maps, line);) {
    Region region;
    std::string rights, offset, device, node;
    char dash = 0;
    std::istringstream text(line);
    text >> std::hex >> region.begin >> dash >> region.end >> rights >> offset >> device >> node;
    std::getline(text >> std::ws, region.name);
    if (rights.substr(0, 2) == "rw") {
      regions.push_back(region);
    }
  }
  return regions;
}

/// Memory of the scan's own, to read pieces into: no part of what is looked through.
class Piece {
 public:
  Piece()
      : memory_(static_cast<std::uint8_t*>(
            mmap(nullptr, kPiece, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0))) {}
  ~Piece() { munmap(memory_, kPiece); }
  Piece(const Piece&) = delete;
  Piece& operator=(const Piece&) = delete;
  std::uint8_t* data() { return memory_; }

 private:
  std::uint8_t* memory_;
};

bool isAt(const std::uint8_t* at, const std::vector<std::uint8_t>& masked) {
  return std::equal(masked.begin(), masked.end(), at, [](std::uint8_t hidden, std::uint8_t byte) {
    return static_cast<std::uint8_t>(hidden ^ MemoryScan::kMask) == byte;
  });
}

/// Where the needle begins in the piece, from `first` up to `last`.
std::vector<std::size_t> placesOf(const MemoryScan::Needle& needle,
                                  std::span<const std::uint8_t> piece, std::size_t first,
                                  std::size_t last) {
  std::vector<std::size_t> places;
  const std::size_t length = needle.masked.size();
  const int head = needle.masked.front() ^ MemoryScan::kMask;
  for (std::size_t at = first; at < last && at + length <= piece.size(); ++at) {
    const std::size_t left = std::min(last, piece.size() - length + 1) - at;
    const void* const look = std::memchr(piece.data() + at, head, left);
    if (look == nullptr) {
      break;
    }
    at = static_cast<std::size_t>(static_cast<const std::uint8_t*>(look) - piece.data());
    if (isAt(piece.data() + at, needle.masked)) {
      places.push_back(at);
    }
  }
  return places;
}

bool isExempt(const MemoryScan::Needle& needle, std::span<const std::uint8_t> piece,
              std::size_t offset) {
  if (!needle.isExempt) {
    return false;
  }
  constexpr std::size_t kSurroundings = 32;
  const std::string_view all(reinterpret_cast<const char*>(piece.data()), piece.size());
  const std::size_t begin = offset - std::min(offset, kSurroundings);
  return needle.isExempt({all.substr(begin, offset - begin),
                          all.substr(offset + needle.masked.size(), kSurroundings)});
}

}  // namespace

std::vector<std::string> MemoryScan::findings() const {
  std::vector<std::string> found;
  const std::vector<Region> regions = writableRegions();  // before the piece is mapped
  Piece piece;
  const int memory = open("/proc/self/mem", O_RDONLY | O_CLOEXEC);
  for (const Region& region : regions) {
    for (std::uintptr_t at = region.begin; at < region.end; at += kPiece - 2 * kMargin) {
      const ssize_t got =
          pread(memory, piece.data(), std::min(kPiece, region.end - at), static_cast<off_t>(at));
      const std::size_t size = got > 0 ? static_cast<std::size_t>(got) : 0;
      const std::size_t first = at == region.begin ? 0 : kMargin;
      const std::size_t last = size == kPiece ? size - kMargin : size;
      for (const Needle& needle : needles_) {
        for (const std::size_t offset : placesOf(needle, {piece.data(), size}, first, last)) {
          if (!isExempt(needle, {piece.data(), size}, offset)) {
            found.push_back(fmt::format("{} at {:x} in {}", needle.name, at + offset,
                                        region.name.empty() ? "anonymous" : region.name));
          }
        }
      }
    }
  }
  close(memory);
  std::sort(found.begin(), found.end());
  return found;
}

std::size_t MemoryScan::count(std::string_view name) const {
  const auto found = findings();
  return static_cast<std::size_t>(std::count_if(
      found.begin(), found.end(), [&](const auto& line) { return line.rfind(name, 0) == 0; }));
}

}  // namespace orlix::test
