// SPDX-License-Identifier: Apache-2.0

#include "sandbox/Authentications.h"

#include <utility>

#include "sandbox/Random.h"

namespace orlix::sandbox {

namespace {

template <typename Map, typename Condition>
Authentication* firstWhere(Map& all, Condition condition) {
  for (auto& [id, authentication] : all) {
    if (condition(authentication)) return &authentication;
  }
  return nullptr;
}

}  // namespace

Authentication& Authentications::begin(Authentication wanted) {
  wanted.id = nextId_;
  nextId_ += 2;  // Odd, so that rounding to a double always shows.
  wanted.paReq = base64(randomBytes(48));
  if (all_.size() == kKept) all_.erase(all_.begin());
  return all_.emplace(wanted.id, std::move(wanted)).first->second;
}

Authentication* Authentications::find(std::int64_t id) {
  const auto found = all_.find(id);
  return found == all_.end() ? nullptr : &found->second;
}

Authentication* Authentications::findByPaReq(std::string_view paReq) {
  return firstWhere(all_, [&](const Authentication& one) { return one.paReq == paReq; });
}

Authentication* Authentications::findByPaRes(std::string_view paRes) {
  if (paRes.empty()) return nullptr;
  return firstWhere(all_, [&](const Authentication& one) { return one.paRes == paRes; });
}

void Authentications::end(Authentication& authentication, bool passed) {
  authentication.passed = passed;
  authentication.paRes = base64(randomBytes(96));
}

}  // namespace orlix::sandbox
