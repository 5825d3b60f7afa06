#pragma once

#include <atomic>
#include <exception>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "orlixkit/protocol/KCVelloConnection.h"
#include "orlixkit/protocol/OMNetwork.h"
#include "orlixkit/security/OMStorage.h"
#include "orlixkit/testing/MemoryHost.h"

namespace orlix::test {

using namespace std::chrono_literals;

inline const std::string sessionPath = "/session/new/";
inline const std::string firstKey = "ASNFZ4mrze/+3LqYdlQyEA==";  // 0123456789ABCDEFFEDCBA9876543210
inline const std::string secondKey =
    "ABEiM0RVZneImaq7zN3u/w==";  // 00112233445566778899AABBCCDDEEFF

/// An answer that opens a session; `number` distinguishes the sessions.
inline std::string openedSession(int number = 1, const std::string& pinKey = firstKey) {
  return R"({"sessionId":"one-)" + std::to_string(number) + R"(","sessionId2":"two-)" +
         std::to_string(number) + R"(","pinKey":")" + pinKey +
         R"(","activated":true,"allowConnection":true,"requestTCs":false})";
}

/// The body that asks for a session.
inline std::string sessionBody(MemoryHost& host, const std::string& device,
                               const std::string& libKey) {
  return R"({
  "deviceSerial" : "[p:)" +
         host.device().vendor + R"(]",
  "appVersion" : "iPhone TALU 2.1.0",
  "hasDoubleSession" : true,
  "ssToken" : "",
  "timeZone" : "+02:00",
  "platform" : {
    "appVersion" : "2.1.0",
    "device" : ")" +
         device + R"(",
    "node" : "TALU",
    "os" : "IOS",
    "libKey" : ")" +
         libKey + R"(",
    "osVersion" : "17.4"
  }
})";
}

/// Threads that run in an order of the seed's choice, and overtake one another at every port.
inline MemoryHostSettings anyOrder(unsigned seed, bool timeCompetes = false) {
  return {.chooser = [random = std::mt19937(seed)](
                         std::size_t candidates) mutable { return random() % candidates; },
          .timeCompetes = timeCompetes,
          .preemptive = true};
}

inline std::shared_ptr<KCVelloConnection> clientOf(const std::string& base,
                                                   const std::string& phoneId,
                                                   std::shared_ptr<StorageInterface> storage) {
  Serial serial;
  serial.phoneId = phoneId;
  return std::make_shared<KCVelloConnection>(
      base, "TALU", serial, std::move(storage), std::make_shared<OMNetwork>(), "iPhone TALU 2.1.0",
      Platform{"IOS", "17.4", "TALU", "2.1.0", "x86_64", "shop-key"}, "+02:00");
}

/// How a call ended.
struct Outcome {
  std::atomic<bool> ended = false;
  std::exception_ptr failure;  ///< to be read when it has ended

  template <class Failure>
  bool failedWith() const {
    try {
      if (failure) {
        std::rethrow_exception(failure);
      }
    } catch (const Failure&) {
      return true;
    } catch (...) {
    }
    return false;
  }
};

using Call = std::function<void(KCVelloConnection&)>;

/// Begins the call on a background queue.
inline std::shared_ptr<Outcome> begin(std::shared_ptr<KCVelloConnection> client, Call call) {
  auto outcome = std::make_shared<Outcome>();
  const Ports& ports = Host::current().ports();
  ports.backgroundQueues->global(
      QualityOfService::high,
      [client = std::move(client), call = std::move(call), outcome, mainQueue = ports.mainQueue] {
        try {
          call(*client);
        } catch (...) {
          outcome->failure = std::current_exception();
        }
        outcome->ended = true;
        mainQueue->async([] {});  // so that who waits there looks again
      });
  return outcome;
}

/// Makes the call to its end.
inline std::shared_ptr<Outcome> run(std::shared_ptr<KCVelloConnection> client, Call call) {
  auto outcome = begin(std::move(client), std::move(call));
  Host::current().ports().mainQueue->runUntil([&] { return outcome->ended.load(); });
  return outcome;
}

/// A client, its real transport and a scripted server, in virtual time.
struct ClientAndServer {
  explicit ClientAndServer(MemoryHostSettings settings = {}) : host(std::move(settings)) {
    host.connections().on("", ServerReply::of(200, "{}"));
    host.connections().on(sessionPath, ServerReply::of(200, openedSession()));
  }
  std::shared_ptr<Outcome> begin(Call call) { return test::begin(client, std::move(call)); }
  std::shared_ptr<Outcome> run(Call call) { return test::run(client, std::move(call)); }
  std::vector<RecordedRequest> requestsTo(const std::string& part) {
    return host.connections().requestsTo(part);
  }

  MemoryHost host;
  std::shared_ptr<OMStorage> storage = std::make_shared<OMStorage>("live.data");
  std::shared_ptr<KCVelloConnection> client =
      clientOf("https://live.example/vello", host.device().vendor, storage);
};

}  // namespace orlix::test
