// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>

#include "orlixkit/testing/ScriptedWallet.h"

namespace orlix::test {

inline ServerReply ok(const std::string& body) { return ServerReply::ok(body); }
inline ServerReply late(Duration after, const std::string& body) {
  return ServerReply().after(after).status(200).body(body);
}
inline ServerReply unreachable() { return ServerReply().fail("no network"); }

}  // namespace orlix::test
