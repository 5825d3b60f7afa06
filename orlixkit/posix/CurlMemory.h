// SPDX-License-Identifier: Apache-2.0

#pragma once

namespace orlix {

/// Initialises libcurl, once per process, with an allocator that overwrites memory on release, so
/// that its copies of a request's body and an answer's bytes are wiped. If the application has
/// initialised libcurl before, the application's allocator stays in use.
/// Throws std::runtime_error when libcurl refuses.
void initialiseCurl();

}  // namespace orlix
