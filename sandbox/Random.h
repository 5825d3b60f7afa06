// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <vector>

namespace orlix::sandbox {

/// Cryptographically secure random bytes. Throws std::runtime_error when the system provides none.
std::vector<unsigned char> randomBytes(size_t count);

/// `count` random bytes in lower-case hexadecimal.
std::string randomHex(size_t count);

/// `count` random decimal digits.
std::string randomDigits(size_t count);

/// RFC 4648 base64, standard alphabet, padded.
std::string base64(const std::vector<unsigned char>& bytes);

}  // namespace orlix::sandbox
