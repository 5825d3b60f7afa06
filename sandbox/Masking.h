// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "sandbox/Bounds.h"
#include "sandbox/Json.h"

namespace orlix::sandbox {

/// What is kept of a body for people to read: its secrets are replaced by words about them.
struct MaskedBody {
  std::string text{};                 ///< JSON when `isJson`; otherwise words about the body.
  std::vector<std::string> masked{};  ///< JSON pointers (RFC 6901) to the values replaced.
  bool isJson = false;
  bool cut = false;  ///< Text or pointers were too long and lack their end.

  size_t bytes() const;
};

/// Words about a secret that the server can judge ("PIN block, correct PIN"), given its key in
/// lower case and the outermost object of the body; empty when it knows no better than the rules.
using Explain = std::function<std::string(std::string_view key, const json::value& value,
                                          const json::object& body)>;

/// Replaces tokens, keys, PIN blocks, CVVs, card numbers, PaRes and the like, wherever they are in
/// the body and however their key is capitalised. A text that looks like a card number is taken
/// for one under any key that is not known to hold something else. Of what is no JSON object only
/// the kind and size are kept, because the secrets in it cannot be found.
MaskedBody maskBody(std::string_view body, std::string_view contentType, const Explain& explain);

/// True for a value that must not be kept under this key, however that is capitalised.
bool isSecret(std::string_view key, const json::value& value);

/// "3fa2... (32 characters)": enough to tell two tokens apart, too little to use one.
std::string shortened(std::string_view token);

}  // namespace orlix::sandbox
