// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/testing/ServerReply.h"

namespace orlix {

ServerReply ServerReply::of(std::int64_t status, std::string body) {
  ServerReply reply;
  reply.status(status);
  if (!body.empty()) {
    reply.body(std::move(body));
  }
  return reply;
}

ServerReply& ServerReply::add(Step step) {
  steps_.push_back(std::move(step));
  return *this;
}

}  // namespace orlix
