# SPDX-License-Identifier: Apache-2.0

# For 64-bit ARM Linux, the processor of phones, where `char` is unsigned. Headers and libraries come from
# the Debian tree that scripts/arm64 makes; programs of the build run under qemu.

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)
set(CMAKE_LIBRARY_ARCHITECTURE aarch64-linux-gnu)

set(ORLIXKIT_ARM64_ROOT ${CMAKE_CURRENT_LIST_DIR}/../build/arm64-root CACHE PATH "Debian tree of arm64")
cmake_path(ABSOLUTE_PATH ORLIXKIT_ARM64_ROOT NORMALIZE OUTPUT_VARIABLE root)
set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES ORLIXKIT_ARM64_ROOT)
set(CMAKE_SYSROOT ${root})
set(CMAKE_FIND_ROOT_PATH ${root})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64 -L ${root})
