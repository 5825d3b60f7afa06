#include "orlixkit/platform/posix/CurlLoop.h"

#include <algorithm>
#include <chrono>
#include <pthread.h>
#include <stdexcept>
#include <string>
#include <utility>

#include "orlixkit/platform/posix/CurlExchange.h"
#include "orlixkit/platform/posix/CurlMemory.h"

namespace orlix {

namespace {

CURLM* makeMulti() {
  initialiseCurl();
  CURLM* multi = curl_multi_init();
  if (multi == nullptr) {
    throw std::runtime_error("libcurl: no multi handle");
  }
  return multi;
}

}  // namespace

CurlLoop::CurlLoop() : multi_(makeMulti()) {}

CurlLoop::~CurlLoop() { close(); }

void CurlLoop::admit(const std::shared_ptr<CurlExchange>& exchange) {
  bool admitted = false;
  {
    const std::lock_guard lock(lock_);
    if (!closed_) {
      admitted = true;
      admitted_.push_back(exchange);
      if (!thread_.joinable()) {
        thread_ = std::thread([this] { run(); });
        pthread_setname_np(thread_.native_handle(), "orlix-https");
      }
    }
  }
  if (admitted) {
    wake();
  } else {
    exchange->fail("the network has been shut down");
  }
}

void CurlLoop::wake() {
  {
    // Whoever waits has either looked already and is woken, or will look at what changed.
    const std::lock_guard lock(lock_);
  }
  changed_.notify_all();
  curl_multi_wakeup(multi_.get());
}

void CurlLoop::wait(std::chrono::steady_clock::time_point deadline,
                    const std::function<bool()>& done) {
  std::unique_lock lock(lock_);
  changed_.wait_until(lock, deadline, [this, &done] { return closed_ || done(); });
}

void CurlLoop::close() {
  std::thread ended;
  {
    const std::lock_guard lock(lock_);
    closed_ = true;
    ended.swap(thread_);
  }
  wake();
  if (ended.joinable()) {
    ended.join();
  }
}

void CurlLoop::run() {
  while (takeNew()) {
    endCancelledAndSilent();
    int under_way = 0;
    curl_multi_perform(multi_.get(), &under_way);
    if (isClosed()) {
      break;  // what ended by the close itself is told to nobody
    }
    endFinished();
    curl_multi_poll(multi_.get(), nullptr, 0, millisecondsToWait(), nullptr);
  }
  for (const std::shared_ptr<CurlExchange>& exchange : std::exchange(running_, {})) {
    exchange->abandon();
    remove(*exchange);
  }
}

bool CurlLoop::isClosed() {
  const std::lock_guard lock(lock_);
  return closed_;
}

bool CurlLoop::takeNew() {
  std::vector<std::shared_ptr<CurlExchange>> fresh;
  bool closed = false;
  {
    const std::lock_guard lock(lock_);
    fresh.swap(admitted_);
    closed = closed_;
  }
  for (const std::shared_ptr<CurlExchange>& exchange : fresh) {
    if (closed) {
      exchange->abandon();
    } else {
      begin(exchange);
    }
  }
  return !closed;
}

void CurlLoop::begin(const std::shared_ptr<CurlExchange>& exchange) {
  if (exchange->prepare() && transfer(*exchange)) {
    running_.push_back(exchange);
  }
}

bool CurlLoop::transfer(CurlExchange& exchange) {
  const CURLMcode result = curl_multi_add_handle(multi_.get(), exchange.easy());
  if (result != CURLM_OK) {
    exchange.fail(std::string("libcurl: ") + curl_multi_strerror(result));
    exchange.release();
  }
  return result == CURLM_OK;
}

void CurlLoop::endFinished() {
  int left = 0;
  while (const CURLMsg* message = curl_multi_info_read(multi_.get(), &left)) {
    if (message->msg != CURLMSG_DONE) {
      continue;
    }
    const CURLcode result = message->data.result;
    const auto found = std::find_if(
        running_.begin(), running_.end(),
        [message](const auto& exchange) { return exchange->easy() == message->easy_handle; });
    if (found == running_.end()) {
      continue;
    }
    curl_multi_remove_handle(multi_.get(), (*found)->easy());
    if (!(*found)->endHop(result) || !transfer(**found)) {
      running_.erase(found);
    }
  }
}

void CurlLoop::endCancelledAndSilent() {
  const auto now = std::chrono::steady_clock::now();
  for (const std::shared_ptr<CurlExchange>& exchange : running_) {
    if (!exchange->isOver() && exchange->silentUntil() <= now) {
      exchange->failSilent();
    }
    if (exchange->isOver()) {
      remove(*exchange);
    }
  }
  std::erase_if(running_, [](const auto& exchange) { return exchange->isOver(); });
}

void CurlLoop::remove(CurlExchange& exchange) {
  curl_multi_remove_handle(multi_.get(), exchange.easy());
  exchange.release();
}

int CurlLoop::millisecondsToWait() const {
  using namespace std::chrono;
  const auto now = steady_clock::now();
  auto until = now + minutes(1);
  for (const std::shared_ptr<CurlExchange>& exchange : running_) {
    until = std::min(until, exchange->silentUntil());
  }
  // Rounded up: a moment too early would wake for nothing.
  return static_cast<int>(std::max<long long>(0, ceil<milliseconds>(until - now).count()));
}

}  // namespace orlix
