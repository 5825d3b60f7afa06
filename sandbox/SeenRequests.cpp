// SPDX-License-Identifier: Apache-2.0

#include "sandbox/SeenRequests.h"

#include <algorithm>
#include <utility>

namespace orlix::sandbox {

namespace {

json::object described(const MaskedBody& body) {
  json::array masked;
  for (const std::string& pointer : body.masked) masked.push_back(json::string(pointer));
  return {
      {"text", body.text}, {"masked", std::move(masked)}, {"json", body.isJson}, {"cut", body.cut}};
}

}  // namespace

std::int64_t SeenRequests::arrived(const HttpRequest& request, Origin origin, MaskedBody body,
                                   Moment at) {
  seen_.push_back({.number = ++lastNumber_,
                   .origin = std::move(origin),
                   .method = clipped(request.method),
                   .path = clipped(request.path),
                   .token1 = shortened(request.sessionToken1()),
                   .token2 = shortened(request.sessionToken2()),
                   .contentType = clipped(request.contentType()),
                   .bytes = request.body.size(),
                   .arrived = at,
                   .asked = std::move(body)});
  seen_.back().changed = ++revision_;
  bodyBytes_ += seen_.back().bodyBytes();
  if (seen_.size() > kKept) {
    bodyBytes_ -= seen_.front().bodyBytes();
    seen_.pop_front();
  }
  dropOldBodies();
  return lastNumber_;
}

void SeenRequests::dropOldBodies() {
  firstWithBodies_ = std::max(firstWithBodies_, oldest());
  while (bodyBytes_ > kBytesKept && firstWithBodies_ < lastNumber_) {
    Seen& oldest = *find(firstWithBodies_++);
    bodyBytes_ -= oldest.bodyBytes();
    oldest.asked = {};
    oldest.answer.body = {};
    oldest.bodiesDropped = true;
  }
}

SeenRequests::Seen* SeenRequests::find(std::int64_t number) {
  if (seen_.empty() || number < seen_.front().number || number > seen_.back().number) {
    return nullptr;
  }
  return &seen_.at(static_cast<size_t>(number - seen_.front().number));
}

void SeenRequests::decided(std::int64_t number, Decision decision) {
  Seen* seen = find(number);
  if (seen == nullptr) return;
  if (seen->bodiesDropped) decision.body = {};
  decision.reason = clipped(std::move(decision.reason));
  bodyBytes_ -= seen->bodyBytes();
  seen->answer = std::move(decision);
  bodyBytes_ += seen->bodyBytes();
  seen->changed = ++revision_;
  dropOldBodies();
}

void SeenRequests::ended(std::int64_t number, Moment at) {
  Seen* seen = find(number);
  if (seen == nullptr) return;
  seen->ended = at;
  seen->changed = ++revision_;
}

void SeenRequests::clear() {
  seen_.clear();
  bodyBytes_ = 0;
  ++revision_;
}

json::object SeenRequests::Seen::summary() const {
  json::object out{{"number", number},
                   {"session", origin.session},
                   {"device", origin.device},
                   {"method", method},
                   {"path", path},
                   {"status", answer.status},
                   {"underWay", !ended},
                   {"time", arrived.time_since_epoch().count()}};
  // The calendar may be set back between the two.
  if (ended) out["milliseconds"] = std::max<std::int64_t>((*ended - arrived).count(), 0);
  if (!answer.reason.empty()) out["reason"] = answer.reason;
  if (!answer.faults.empty()) out["faults"] = answer.faults;
  return out;
}

json::object SeenRequests::Seen::whole() const {
  json::object out = summary();
  out["contentType"] = contentType;
  out["bytes"] = bytes;
  out["asked"] = described(asked);
  out["answered"] = described(answer.body);
  out["bodiesDropped"] = bodiesDropped;
  return out;
}

json::array SeenRequests::list() const {
  json::array out;
  for (const Seen& seen : seen_) {
    json::object row = seen.whole();
    row["token1"] = !seen.token1.empty();
    row["token2"] = !seen.token2.empty();
    out.push_back(std::move(row));
  }
  return out;
}

json::array SeenRequests::changedSince(std::int64_t revision) const {
  json::array out;
  for (const Seen& seen : seen_) {
    if (seen.changed > revision) out.push_back(seen.summary());
  }
  return out;
}

std::optional<json::object> SeenRequests::whole(std::int64_t number) const {
  if (number < oldest() || number > lastNumber_) return std::nullopt;
  const Seen& seen = seen_.at(static_cast<size_t>(number - seen_.front().number));
  json::object out = seen.whole();
  out["token1"] = seen.token1;
  out["token2"] = seen.token2;
  return out;
}

}  // namespace orlix::sandbox
