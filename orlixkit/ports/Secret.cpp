// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/ports/Secret.h"

#include <array>
#include <cstring>

namespace orlix {

namespace {

constexpr std::size_t kWipedDepth = std::size_t{64} << 10U;

#ifdef __x86_64__

[[gnu::noinline, gnu::target("avx512f")]] void clearAvx512Registers() noexcept {
  asm volatile(
      "vzeroall\n\t"
      ".irp index,16,17,18,19,20,21,22,23,24,25,26,27,28,29,30,31\n\t"
      "vpxord %%zmm\\index, %%zmm\\index, %%zmm\\index\n\t"
      ".endr" ::
          : "xmm0", "xmm1", "xmm2", "xmm3", "xmm4", "xmm5", "xmm6", "xmm7", "xmm8", "xmm9", "xmm10",
            "xmm11", "xmm12", "xmm13", "xmm14", "xmm15", "xmm16", "xmm17", "xmm18", "xmm19",
            "xmm20", "xmm21", "xmm22", "xmm23", "xmm24", "xmm25", "xmm26", "xmm27", "xmm28",
            "xmm29", "xmm30", "xmm31");
}

[[gnu::noinline]] void clearVectorRegisters() noexcept {
  if (__builtin_cpu_supports("avx512f")) {
    clearAvx512Registers();
  } else {
    asm volatile(
        ".irp index,0,1,2,3,4,5,6,7,8,9,10,11,12,13,14,15\n\t"
        "pxor %%xmm\\index, %%xmm\\index\n\t"
        ".endr" ::
            : "xmm0", "xmm1", "xmm2", "xmm3", "xmm4", "xmm5", "xmm6", "xmm7", "xmm8", "xmm9",
              "xmm10", "xmm11", "xmm12", "xmm13", "xmm14", "xmm15");
  }
}

#elif __has_attribute(zero_call_used_regs)
[[gnu::noinline, gnu::zero_call_used_regs("all")]] void clearVectorRegisters() noexcept {}
#else
void clearVectorRegisters() noexcept {}  // not supported by this compiler
#endif

[[gnu::noinline]] void wipeBelow() noexcept {
  std::array<std::uint8_t, kWipedDepth> room;  // NOLINT: uninitialised on purpose
  wipe(room.data(), room.size());
}

}  // namespace

void wipe(void* memory, std::size_t size) noexcept {
  if (size != 0) {
    explicit_bzero(memory, size);
  }
}

void wipeStack() noexcept {
  // Before the stack, since the next call may save the registers there.
  clearVectorRegisters();
  wipeBelow();
}

}  // namespace orlix
