#include "orlixkit/platform/posix/CurlLoop.h"

#include <algorithm>
#include <new>
#include <pthread.h>
#include <stdexcept>
#include <string>
#include <utility>

#include "orlixkit/platform/Secret.h"
#include "orlixkit/platform/posix/CurlExchange.h"
#include "orlixkit/platform/posix/CurlMemory.h"

namespace orlix {

namespace {

/// How long the I/O thread leaves a new exchange to its starter, who mostly waits for it himself.
constexpr std::chrono::milliseconds startersTime{5};

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
  Lock lock(lock_);
  if (closed_) {
    lock.unlock();
    exchange->fail("the network has been shut down");
    return;
  }
  admitted_.push_back(exchange);
  starters_.insert(exchange->starter());
  if (!thread_.joinable()) {
    thread_ = std::thread([this] { run(); });
  }
  if (driven_) {
    curl_multi_wakeup(multi_.get());
  } else if (!watching_) {
    lock.unlock();  // or the I/O thread would wake only to wait for it
    changed_.notify_all();
  }
}

void CurlLoop::close() {
  std::thread ended;
  {
    const std::lock_guard lock(lock_);
    closed_ = true;
    ended.swap(thread_);
    changed_.notify_all();
  }
  wake();
  if (ended.joinable()) {
    ended.join();
  }
  {
    Lock lock(lock_);
    changed_.wait(lock, [this] { return !driven_; });
    if (emptied_) {
      return;
    }
    beginDriving(nullptr);
  }
  giveUp();
  const std::lock_guard lock(lock_);
  emptied_ = true;
  endDriving();
}

bool CurlLoop::isClosed() {
  const std::lock_guard lock(lock_);
  return closed_;
}

void CurlLoop::beginDriving(OwnTasks* ownTasks) {
  driven_ = true;
  left_ = false;
  driver_ = std::this_thread::get_id();
  ownTasks_ = ownTasks;
}

void CurlLoop::endDriving() {
  driven_ = false;
  driver_ = {};
  ownTasks_ = nullptr;
  left_ = !starters_.empty();
  changed_.notify_all();
}

void CurlLoop::watch(Lock& lock) {
  watching_ = true;
  changed_.wait_for(lock, startersTime, [this] { return closed_ || left_; });
  watching_ = false;
}

void CurlLoop::run() {
  pthread_setname_np(pthread_self(), "orlix-https");
  Lock lock(lock_);
  while (!closed_) {
    if (driven_ || starters_.empty()) {
      changed_.wait(lock);
      continue;
    }
    if (!left_) {
      watch(lock);
      if (closed_ || driven_ || starters_.empty()) {
        continue;
      }
    }
    beginDriving(nullptr);
    while (!closed_ && !starters_.empty()) {
      lock.unlock();
      step();
      lock.lock();
      if (!closed_ && !starters_.empty()) {
        lock.unlock();
        poll(SteadyTime::max());
        lock.lock();
      }
    }
    endDriving();
    wipeStack();
  }
}

bool CurlLoop::isWaitingForMe() {
  const std::lock_guard lock(lock_);
  return !closed_ && !driven_ && starters_.contains(std::this_thread::get_id());
}

void CurlLoop::workUntil(const std::function<bool()>& done, SteadyTime deadline) {
  const std::thread::id self = std::this_thread::get_id();
  OwnTasks own;
  Lock lock(lock_);
  while (!closed_ && !driven_ && starters_.contains(self) && !done() &&
         std::chrono::steady_clock::now() < deadline) {
    beginDriving(&own);
    lock.unlock();
    step();
    if (own.empty()) {
      poll(deadline);
    }
    lock.lock();
    // Kept between two steps: the I/O thread is told only when this thread turns to something else.
    driven_ = false;
    if (!own.empty()) {
      // A callback may block, or wait for another exchange: meanwhile others may drive.
      const bool others = starters_.size() > starters_.count(self);
      if (others || closed_) {
        left_ = others;
        changed_.notify_all();
      }
      lock.unlock();
      for (const OwnTask& task : std::exchange(own, {})) {
        runLoggedInBackground(task.run);
      }
      lock.lock();
    }
  }
  if (!driven_ && (closed_ || !starters_.empty())) {
    endDriving();
  }
}

void CurlLoop::wake() {
  const std::lock_guard lock(lock_);
  if (driven_ && driver_ != std::this_thread::get_id()) {
    decided_.notify_all();
    curl_multi_wakeup(multi_.get());
  }
}

OwnTasks* CurlLoop::ownTasks(const CurlExchange& exchange) {
  const std::lock_guard lock(lock_);
  const std::thread::id self = std::this_thread::get_id();
  return driven_ && driver_ == self && exchange.starter() == self ? ownTasks_ : nullptr;
}

void CurlLoop::wait(SteadyTime deadline, const std::function<bool()>& done) {
  Lock lock(lock_);
  decided_.wait_until(lock, deadline, [this, &done] { return closed_ || done(); });
}

void CurlLoop::giveAwayOwnTasks() {
  OwnTasks own;
  {
    const std::lock_guard lock(lock_);
    if (ownTasks_ != nullptr) {
      own.swap(*ownTasks_);
    }
  }
  for (OwnTask& task : own) {
    task.queue->giveBack(std::move(task.run));
  }
}

void CurlLoop::step() {
  try {
    takeNew();
    endCancelledAndSilent();
    int underWay = 0;
    curl_multi_perform(multi_.get(), &underWay);
    if (!isClosed()) {  // what ended by the close itself is told to nobody
      endFinished();
    }
  } catch (const std::bad_alloc&) {
    giveUp();
  }
}

void CurlLoop::giveUp() {
  std::vector<std::shared_ptr<CurlExchange>> fresh;
  {
    const std::lock_guard lock(lock_);
    fresh.swap(admitted_);
  }
  std::erase_if(running_, [](const auto& exchange) { return exchange->easy() == nullptr; });
  for (const auto* given : {&fresh, &running_}) {
    for (const std::shared_ptr<CurlExchange>& exchange : *given) {
      exchange->abandon();
      leave(*exchange);
    }
  }
  running_.clear();
}

void CurlLoop::poll(SteadyTime deadline) {
  using std::chrono::milliseconds;
  const auto now = std::chrono::steady_clock::now();
  SteadyTime until = std::min<SteadyTime>(deadline, now + std::chrono::minutes(1));
  for (const std::shared_ptr<CurlExchange>& exchange : running_) {
    until = std::min(until, exchange->silentUntil());
  }
  // Rounded up: a moment too early would wake for nothing.
  const auto left = std::chrono::ceil<milliseconds>(until - now);
  curl_multi_poll(multi_.get(), nullptr, 0, static_cast<int>(std::max<long long>(0, left.count())),
                  nullptr);
}

void CurlLoop::takeNew() {
  std::vector<std::shared_ptr<CurlExchange>> fresh;
  {
    const std::lock_guard lock(lock_);
    running_.reserve(running_.size() + admitted_.size());
    fresh.swap(admitted_);
  }
  for (const std::shared_ptr<CurlExchange>& exchange : fresh) {
    if (exchange->prepare() && transfer(*exchange)) {
      running_.push_back(exchange);
    } else {
      leave(*exchange);
    }
  }
}

bool CurlLoop::transfer(CurlExchange& exchange) {
  const CURLMcode result = curl_multi_add_handle(multi_.get(), exchange.easy());
  if (result != CURLM_OK) {
    exchange.fail(curl_multi_strerror(result));
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
    const std::shared_ptr<CurlExchange> exchange = *found;
    curl_multi_remove_handle(multi_.get(), exchange->easy());
    if (!exchange->endHop(result) || !transfer(*exchange)) {
      running_.erase(found);
      leave(*exchange);
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
      leave(*exchange);
    }
  }
  std::erase_if(running_, [](const auto& exchange) { return exchange->easy() == nullptr; });
}

void CurlLoop::leave(CurlExchange& exchange) {
  if (exchange.easy() != nullptr) {
    curl_multi_remove_handle(multi_.get(), exchange.easy());
  }
  exchange.release();
  const std::lock_guard lock(lock_);
  starters_.erase(starters_.find(exchange.starter()));
}

}  // namespace orlix
