#pragma once

namespace orlix {

/// Prepares libcurl, once in the process, with an allocator that overwrites what it gives back: the
/// buffers in which libcurl copies a request's body and an answer's bytes leave no trace. Where the
/// application has prepared libcurl before, the application's allocator stays.
/// Throws std::runtime_error when libcurl refuses.
void initialiseCurl();

}  // namespace orlix
