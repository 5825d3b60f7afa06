#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <set>
#include <thread>
#include <vector>

#include <curl/curl.h>

#include "orlixkit/platform/posix/CurlSockets.h"
#include "orlixkit/platform/posix/WaitingWork.h"

namespace orlix {

class CurlExchange;

/// What runs an operation queue's tasks, taken from that queue.
struct OwnTask {
  std::shared_ptr<SelfServedQueue> queue;
  Task run;
};
using OwnTasks = std::vector<OwnTask>;

struct CleanUpEasy {
  void operator()(CURL* easy) const { curl_easy_cleanup(easy); }
};
using EasyHandle = std::unique_ptr<CURL, CleanUpEasy>;

/// Drives all exchanges on one multi handle, which keeps their connections. One thread at a time is
/// the driver and may touch the handle: the I/O thread, a thread that waits for its own exchange,
/// or the one that closes.
class CurlLoop : public WaitingWork {
 public:
  /// Throws std::runtime_error when libcurl cannot be prepared.
  CurlLoop();
  ~CurlLoop() override;

  /// Starts the exchange. Any thread. After `close` it fails at once.
  void admit(const std::shared_ptr<CurlExchange>& exchange);
  /// Abandons every exchange and ends the I/O thread. Any thread but the driver.
  void close();

  bool isWaitingForMe() override;
  void workUntil(const std::function<bool()>& done, SteadyTime deadline) override;
  /// Has the driver look at its exchanges again: one was cancelled, or its trust decided.
  void wake() override;

  /// What the calling thread runs itself once it has left off driving; none unless it drives and
  /// has started the exchange. Any thread.
  OwnTasks* ownTasks(const CurlExchange& exchange);

  // From here on: the driver.

  /// Waits for what another thread's `wake` announces; ends at the deadline and at `close` as well.
  void wait(SteadyTime deadline, const std::function<bool()>& done);
  CurlSockets& sockets() { return sockets_; }
  /// Leaves the driver's own tasks to other threads: it is about to wait for one that may stand
  /// behind them in the same queue.
  void giveAwayOwnTasks();

 private:
  struct CleanUpMulti {
    void operator()(CURLM* multi) const { curl_multi_cleanup(multi); }
  };
  using Lock = std::unique_lock<std::mutex>;

  void run();
  void beginDriving(OwnTasks* ownTasks);
  void endDriving();
  void watch(Lock& lock);
  bool isClosed();

  void step();
  void poll(SteadyTime deadline);
  /// Abandons every exchange: at the end, or when memory runs out. Who waits for one has a limit of
  /// his own.
  void giveUp();
  void takeNew();
  /// Hands the exchange's handle to libcurl; false when the exchange has failed.
  bool transfer(CurlExchange& exchange);
  void endFinished();
  void endCancelledAndSilent();
  void leave(CurlExchange& exchange);

  CurlSockets sockets_;  // before the handle, whose end closes them
  const std::unique_ptr<CURLM, CleanUpMulti> multi_;
  // The driver's:
  std::vector<std::shared_ptr<CurlExchange>> running_;

  std::mutex lock_;                  // guards all below
  std::condition_variable changed_;  // there is work without a driver, or the loop is closed
  std::condition_variable decided_;  // what the driver waits for within an exchange
  std::vector<std::shared_ptr<CurlExchange>> admitted_;
  std::multiset<std::thread::id> starters_;  // one for each exchange, admitted or running
  bool closed_ = false;
  bool emptied_ = false;  // closed, and nothing is left
  bool driven_ = false;
  bool watching_ = false;  // the I/O thread looks at the exchanges again by itself
  bool left_ = false;      // a driver has gone and left exchanges to whoever is there
  std::thread::id driver_;
  OwnTasks* ownTasks_ = nullptr;
  std::thread thread_;
};

}  // namespace orlix
