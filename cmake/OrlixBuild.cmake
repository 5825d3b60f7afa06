# SPDX-License-Identifier: Apache-2.0

# What every target of this project is built with, and the helper that makes a floor.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(THREADS_PREFER_PTHREAD_FLAG ON)

# How to build is the business of the project on top.
if(PROJECT_IS_TOP_LEVEL)
  set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
  # The development build: half the compile time of -O2 -g, and still quick to run.
  set(CMAKE_CXX_FLAGS_RELWITHDEBINFO "-O1 -g1")
  # A release: for speed where a payment spends its instructions, for size elsewhere (SMALL, below).
  set(CMAKE_CXX_FLAGS_RELEASE "-O2 -DNDEBUG -ffunction-sections -fdata-sections")

  if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
    set(CMAKE_BUILD_TYPE RelWithDebInfo CACHE STRING "Build type" FORCE)
  endif()

  find_program(ORLIX_CCACHE ccache)
  if(ORLIX_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${ORLIX_CCACHE})
  endif()

  # Debian's folder of libraries, also below /usr/local. Set before a package that is looked for sets its own.
  if(NOT DEFINED CMAKE_INSTALL_LIBDIR AND CMAKE_LIBRARY_ARCHITECTURE AND EXISTS /etc/debian_version)
    set(CMAKE_INSTALL_LIBDIR lib/${CMAKE_LIBRARY_ARCHITECTURE} CACHE PATH "Folder of libraries")
  endif()

  # Several times as fast as the system's linker, which shows in a build of a dozen test programs.
  find_program(ORLIX_LLD ld.lld)
  if(ORLIX_LLD AND NOT CMAKE_CROSSCOMPILING)
    add_link_options(-fuse-ld=lld)
  endif()
endif()

find_package(Threads REQUIRED)
find_package(OpenSSL 3 REQUIRED)
find_package(CURL REQUIRED)
find_package(SQLite3 REQUIRED)
find_package(fmt REQUIRED)
find_package(Boost 1.81 REQUIRED COMPONENTS json)

# Warnings are errors, in every target of ours.
add_library(orlix_warnings INTERFACE)
target_compile_options(orlix_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow $<$<BOOL:${ORLIXKIT_WERROR}>:-Werror>)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # At -O2 and above g++ 12 takes every std::string::insert of a literal for an overlapping copy.
  target_compile_options(orlix_warnings INTERFACE -Wno-restrict)
endif()

if(ORLIXKIT_SANITIZE)
  add_compile_options(-fsanitize=${ORLIXKIT_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer -g)
  add_link_options(-fsanitize=${ORLIXKIT_SANITIZE})
endif()

# Everything counts its coverage; only a fuzz target brings libFuzzer's main.
if(ORLIXKIT_BUILD_FUZZ)
  if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    message(FATAL_ERROR "ORLIXKIT_BUILD_FUZZ needs clang; the preset \"fuzz\" chooses it.")
  endif()
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()

# orlix_floor(<name> [SMALL] [DEPENDS <targets>...] [PRIVATE <targets>...])
#
# A floor of the library: every source in the current folder becomes the static library
# orlix_<name>. It links only the floors named in DEPENDS, so an include that points up fails to
# link; the test `IncludesPointDown` reads the includes themselves. SMALL optimises a release for
# size: a third of the library's code on a phone, for screens that wait for a user or a server.
function(orlix_floor name)
  cmake_parse_arguments(FLOOR "SMALL" "" "DEPENDS;PRIVATE" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp ${CMAKE_CURRENT_SOURCE_DIR}/*.h)
  if(NOT sources)
    add_library(orlix_${name} INTERFACE)
    return()
  endif()
  add_library(orlix_${name} STATIC ${sources})
  set_target_properties(orlix_${name} PROPERTIES LINKER_LANGUAGE CXX)
  target_compile_features(orlix_${name} PUBLIC cxx_std_20)
  target_include_directories(orlix_${name} PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>)
  target_link_libraries(orlix_${name} PUBLIC ${FLOOR_DEPENDS} PRIVATE orlix_warnings ${FLOOR_PRIVATE})
  if(FLOOR_SMALL)
    target_compile_options(orlix_${name} PRIVATE $<$<CONFIG:Release>:-Os>)
  endif()
endfunction()
