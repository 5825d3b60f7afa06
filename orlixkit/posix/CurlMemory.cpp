// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/posix/CurlMemory.h"

#include <cstdlib>
#include <cstring>
#include <malloc.h>
#include <stdexcept>

#include <curl/curl.h>

#include "orlixkit/ports/Secret.h"

namespace orlix {

namespace {

void releaseWiped(void* memory) {
  if (memory != nullptr) {
    wipe(memory, malloc_usable_size(memory));
    std::free(memory);
  }
}

/// realloc that leaves no copy behind when the block moves.
void* resizeWiped(void* memory, std::size_t size) {
  if (memory == nullptr) {
    return std::malloc(size);
  }
  const std::size_t had = malloc_usable_size(memory);
  if (had >= size && size > had / 2) {
    return memory;
  }
  void* made = std::malloc(size);
  if (made != nullptr) {
    std::memcpy(made, memory, had < size ? had : size);
    releaseWiped(memory);
  }
  return made;
}

CURLcode initialise() {
  return curl_global_init_mem(CURL_GLOBAL_DEFAULT, std::malloc, releaseWiped, resizeWiped, ::strdup,
                              std::calloc);
}

}  // namespace

void initialiseCurl() {
  static const CURLcode result = initialise();
  if (result != CURLE_OK) {
    throw std::runtime_error(std::string("libcurl: ") + curl_easy_strerror(result));
  }
}

}  // namespace orlix
