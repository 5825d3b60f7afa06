// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/posix/CurlHttpClient.h"

#include <exception>
#include <iterator>
#include <utility>

#include "orlixkit/posix/CurlExchange.h"
#include "orlixkit/posix/CurlMemory.h"

namespace orlix {

namespace {

/// The number of exchanges that a flow has in progress at a time, plus one.
constexpr std::size_t kMostIdle = 4;

}  // namespace

/// A channel for as long as an exchange needs it.
class CurlHttpClient::Lease {
 public:
  Lease(CurlHttpClient& client, const std::string& origin)
      : client_(client), channel_(client.take(origin)) {}
  ~Lease() { client_.giveBack(channel_); }
  Lease(const Lease&) = delete;
  Lease& operator=(const Lease&) = delete;

  CurlChannel& channel() const { return *channel_; }

 private:
  CurlHttpClient& client_;
  const Channels::iterator channel_;
};

CurlHttpClient::CurlHttpClient(std::shared_ptr<Clock> clock) : clock_(std::move(clock)) {
  initialiseCurl();
}

HttpResult CurlHttpClient::perform(const HttpRequest& request, HttpDelegate& delegate) {
  if (closed_) {
    return {HttpResult::End::closed};
  }
  try {
    checkRequest(request);
    RequestTarget target = targetOf(request.url);
    const Lease lease(*this, target.origin);
    return CurlExchange(request, delegate, lease.channel(), *clock_, closed_)
        .run(std::move(target));
  } catch (const std::exception& failure) {
    return {HttpResult::End::failed, failure.what()};
  }
}

void CurlHttpClient::close() {
  Channels dropped;  // their connections are closed without the lock
  {
    const std::lock_guard lock(lock_);
    closed_ = true;
    dropped.swap(idle_);
  }
  wake();
}

void CurlHttpClient::wake() {
  const std::lock_guard lock(lock_);
  for (const CurlChannel& channel : busy_) {
    channel.wake();
  }
}

CurlHttpClient::Channels::iterator CurlHttpClient::take(const std::string& origin) {
  Channels fresh;
  Channels dropped;
  std::unique_lock lock(lock_);
  for (auto next = idle_.end(); next != idle_.begin();) {
    const auto one = std::prev(next);
    if (one->origin() != origin) {
      next = one;
    } else if (one->isQuiet()) {
      busy_.splice(busy_.end(), idle_, one);
      return one;
    } else {
      dropped.splice(dropped.end(), idle_, one);
    }
  }
  lock.unlock();
  fresh.emplace_back(origin);
  lock.lock();
  const auto made = fresh.begin();
  busy_.splice(busy_.end(), fresh);
  return made;
}

void CurlHttpClient::giveBack(Channels::iterator channel) {
  Channels dropped;
  const std::lock_guard lock(lock_);
  idle_.splice(idle_.end(), busy_, channel);
  if (closed_) {
    dropped.swap(idle_);
  } else if (idle_.size() > kMostIdle) {
    dropped.splice(dropped.end(), idle_, idle_.begin());
  }
}

}  // namespace orlix
