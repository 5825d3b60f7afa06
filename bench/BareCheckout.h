// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>
#include <string>

#include "bench/BareClient.h"
#include "orlixkit/ports/Secret.h"

namespace orlix::bench {

/// What opens a session at the server.
inline const char* const kSessionBody =
    R"({"deviceSerial":"[p:bench]","appVersion":"iPhone TALU 2.1.0","hasDoubleSession":true,)"
    R"("ssToken":"","timeZone":"+02:00","platform":{"appVersion":"2.1.0","device":"x86_64",)"
    R"("node":"TALU","os":"IOS","libKey":"bench-key","osVersion":"1"}})";

struct BareSession {
  std::string first;  ///< the tokens, which the client sends from now on
  std::string second;
  SecretBytes pinKey;
};

BareSession openSession(BareClient& client);

using Caller = std::function<void(const std::function<void()>&)>;

/// The requests of a PIN checkout, each made through `call`, and nothing that a library does around
/// them but the PIN block, without which the server would not take the purchase.
void payBare(
    BareClient& client, const Caller& call = [](const std::function<void()>& work) { work(); });

}  // namespace orlix::bench
