// SPDX-License-Identifier: Apache-2.0

#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <functional>
#include <mutex>
#include <stdexcept>
#include <thread>

#include "bench/BareCheckout.h"
#include "bench/CheckoutRun.h"
#include "bench/DelayingProxy.h"
#include "bench/Processors.h"
#include "bench/Rows.h"
#include "orlixkit/protocol/OMNetwork.h"
#include "orlixkit/security/DataStore.h"

namespace orlix::bench {

namespace {

const std::string kState = std::filesystem::temp_directory_path() / "orlix-bench";

/// A thread that runs one thing after another while its caller waits, with nothing around it.
class OtherThread {
 public:
  OtherThread() = default;
  OtherThread(const OtherThread&) = delete;
  OtherThread& operator=(const OtherThread&) = delete;
  ~OtherThread() {
    call({});
    thread_.join();
  }
  void call(std::function<void()> work) {
    std::unique_lock lock(lock_);
    work_ = std::move(work);
    handedOver_ = true;
    changed_.notify_all();
    changed_.wait(lock, [this] { return !handedOver_; });
  }

 private:
  void run() {
    std::unique_lock lock(lock_);
    for (bool over = false; !over;) {
      changed_.wait(lock, [this] { return handedOver_; });
      over = !work_;
      if (work_) {
        work_();
      }
      handedOver_ = false;
      changed_.notify_all();
    }
  }

  std::mutex lock_;
  std::condition_variable changed_;
  std::function<void()> work_;
  bool handedOver_ = false;
  std::thread thread_{[this] { run(); }};
};

}  // namespace

Row requestRow(const std::string& base, const std::string& anchor) {
  const OnOneProcessor together(OnOneProcessor::Side::client);
  const CheckoutRun library(base, anchor, kState);
  BareClient bare(base, anchor);
  const BareSession session = openSession(bare);
  DataStore store(SecretBytes(16, 0));
  store.sessionId = session.first;
  store.sessionId2 = session.second;
  OMNetwork network;
  const std::optional<SecretBytes> body(ByteView(reinterpret_cast<const std::uint8_t*>("{}"), 2));
  return compare(
      "a request through OMNetwork : bare reused handle", 1.05, {.samples = 300},
      [&] { bare.post("/card/list/TALU", "{}"); },
      [&] {
        if (network.post(base + "/card/list/TALU", body, store).responseCode != 200) {
          throw std::runtime_error("OMNetwork was refused");
        }
      });
}

Row checkoutRow(const std::string& base, const std::string& anchor) {
  const OnOneProcessor together(OnOneProcessor::Side::client);
  CheckoutRun library(base, anchor, kState);
  BareClient bare(base, anchor);
  return compare(
      "a headless PIN checkout : its bare requests", 1.2, {.samples = 100}, [&] { payBare(bare); },
      [&] { library.pay(); });
}

Row spreadCheckoutRow(const std::string& base, const std::string& anchor) {
  CheckoutRun library(base, anchor, kState);
  BareClient bare(base, anchor);
  return compare(
      "the same, its threads free to move to an idle processor", 0, {.samples = 60},
      [&] { payBare(bare); }, [&] { library.pay(); });
}

Row threadedCheckoutRow(const std::string& base, const std::string& anchor) {
  const OnOneProcessor together(OnOneProcessor::Side::client);
  CheckoutRun library(base, anchor, kState);
  BareClient bare(base, anchor);
  OtherThread worker;
  return compare(
      "the same, the bare requests made off the main thread", 1.1, {.samples = 60},
      [&] { payBare(bare, [&](const std::function<void()>& work) { worker.call(work); }); },
      [&] { library.pay(); });
}

Row distantCheckoutRow(const std::string& base, const std::string& anchor) {
  const DelayingProxy line(base, std::chrono::milliseconds(100));
  BareClient bare(line.base(), anchor);
  openSession(bare);
  // Five: the handshake, the session, the lookup, the purchase and its receipt.
  return compare(
      "a first checkout over 100 ms each way : a round trip", 5.3, {.samples = 1},
      [&] { bare.post("/card/list/TALU", "{}"); },
      [&] {
        CheckoutRun library(line.base(), anchor, kState);
        library.pay();
      });
}

}  // namespace orlix::bench
