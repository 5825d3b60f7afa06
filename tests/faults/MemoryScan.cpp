// SPDX-License-Identifier: Apache-2.0

#include "tests/faults/MemoryScan.h"

#include <algorithm>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <sstream>
#include <unistd.h>

#include <fmt/format.h>
#include <sys/mman.h>

namespace orlix::test {

namespace {

constexpr std::size_t kPiece = std::size_t{1} << 20U;
constexpr std::size_t kOverlap = 128;  // longer than any needle

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

bool standsAt(const std::uint8_t* at, const std::vector<std::uint8_t>& masked) {
  return std::equal(masked.begin(), masked.end(), at, [](std::uint8_t hidden, std::uint8_t byte) {
    return static_cast<std::uint8_t>(hidden ^ MemoryScan::kMask) == byte;
  });
}

}  // namespace

std::vector<std::string> MemoryScan::findings() const {
  std::vector<std::string> found;
  const std::vector<Region> regions = writableRegions();  // before the piece is mapped
  Piece piece;
  const int memory = open("/proc/self/mem", O_RDONLY | O_CLOEXEC);
  for (const Region& region : regions) {
    for (std::uintptr_t at = region.begin; at < region.end; at += kPiece - kOverlap) {
      const ssize_t got =
          pread(memory, piece.data(), std::min(kPiece, region.end - at), static_cast<off_t>(at));
      const std::size_t size = got > 0 ? static_cast<std::size_t>(got) : 0;
      for (const Needle& needle : needles_) {
        const std::size_t length = needle.masked.size();
        const int first = needle.masked.front() ^ kMask;
        std::uint8_t* const end = piece.data() + size;
        for (std::uint8_t* look = piece.data();
             static_cast<std::size_t>(end - look) >= length &&
             (look = static_cast<std::uint8_t*>(
                  std::memchr(look, first, static_cast<std::size_t>(end - look) - length + 1)));
             ++look) {
          if (standsAt(look, needle.masked)) {
            found.push_back(fmt::format("{} at {:x} in {}", needle.name,
                                        at + static_cast<std::size_t>(look - piece.data()),
                                        region.name.empty() ? "anonymous" : region.name));
          }
        }
      }
    }
  }
  close(memory);
  std::sort(found.begin(), found.end());
  found.erase(std::unique(found.begin(), found.end()), found.end());  // pieces overlap
  return found;
}

std::size_t MemoryScan::count(std::string_view name) const {
  const auto found = findings();
  return static_cast<std::size_t>(std::count_if(
      found.begin(), found.end(), [&](const auto& line) { return line.rfind(name, 0) == 0; }));
}

}  // namespace orlix::test
