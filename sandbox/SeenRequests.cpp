#include "sandbox/SeenRequests.h"

#include <utility>

namespace orlix::sandbox {

std::int64_t SeenRequests::arrived(const HttpRequest& request, Origin origin) {
  seen_.push_back({.number = ++lastNumber_,
                   .origin = std::move(origin),
                   .method = request.method,
                   .path = request.path,
                   .token1 = !request.sessionToken1.empty(),
                   .token2 = !request.sessionToken2.empty(),
                   .contentType = request.contentType,
                   .bytes = request.body.size()});
  if (seen_.size() > kept) seen_.pop_front();
  return lastNumber_;
}

SeenRequests::Seen* SeenRequests::find(std::int64_t number) {
  if (seen_.empty() || number < seen_.front().number) return nullptr;
  return &seen_.at(static_cast<size_t>(number - seen_.front().number));
}

void SeenRequests::decided(std::int64_t number, int status) {
  if (Seen* seen = find(number)) seen->status = status;
}

void SeenRequests::ended(std::int64_t number) {
  if (Seen* seen = find(number)) seen->underWay = false;
}

json::array SeenRequests::list() const {
  json::array out;
  for (const Seen& seen : seen_) {
    out.push_back(json::object{{"number", seen.number},
                               {"session", seen.origin.session},
                               {"device", seen.origin.device},
                               {"method", seen.method},
                               {"path", seen.path},
                               {"status", seen.status},
                               {"underWay", seen.underWay},
                               {"token1", seen.token1},
                               {"token2", seen.token2},
                               {"contentType", seen.contentType},
                               {"bytes", seen.bytes}});
  }
  return out;
}

}  // namespace orlix::sandbox
