#pragma once

#include <exception>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "orlixkit/platform/memory/MemoryHost.h"
#include "orlixkit/protocol/KCVelloConnection.h"
#include "orlixkit/protocol/OMNetwork.h"
#include "orlixkit/security/OMStorage.h"

namespace orlix {

inline const std::string sessionPath = "/session/new/";
inline const std::string firstKey = "ASNFZ4mrze/+3LqYdlQyEA==";  // 0123456789ABCDEFFEDCBA9876543210
inline const std::string secondKey =
    "ABEiM0RVZneImaq7zN3u/w==";  // 00112233445566778899AABBCCDDEEFF

/// An answer that opens a session; `number` tells the sessions apart.
inline std::string openedSession(int number = 1, const std::string& pinKey = firstKey) {
  return R"({"sessionId":"one-)" + std::to_string(number) + R"(","sessionId2":"two-)" +
         std::to_string(number) + R"(","pinKey":")" + pinKey +
         R"(","activated":true,"allowConnection":true,"requestTCs":false})";
}

/// A pretty-printed object of these members.
inline std::string object(const std::vector<std::string>& members) {
  std::string text = "{";
  for (const std::string& member : members) {
    text += (text.size() == 1 ? "\n  " : ",\n  ") + member;
  }
  return text + "\n}";
}

/// How a call ended.
struct Outcome {
  bool ended = false;
  std::exception_ptr failure;

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

/// A client, its real transport and a scripted server, in virtual time.
struct ClientAndServer {
  using Call = std::function<void(KCVelloConnection&)>;

  explicit ClientAndServer(MemoryHostSettings settings = {}) : host(std::move(settings)) {
    Serial serial;
    serial.phoneId = host.device().vendor;
    Platform platform{"IOS", "17.4", "TALU", "2.1.0", "x86_64", "shop-key"};
    client = std::make_shared<KCVelloConnection>("https://live.example/vello", "TALU", serial,
                                                 storage, std::make_shared<OMNetwork>(),
                                                 "iPhone TALU 2.1.0", platform, "+02:00");
    host.connections().on("", ServerReply::of(200, "{}"));
    host.connections().on(sessionPath, ServerReply::of(200, openedSession()));
  }

  /// Begins the call on a background queue.
  std::shared_ptr<Outcome> begin(Call call) {
    auto outcome = std::make_shared<Outcome>();
    host.backgroundQueues().global(QualityOfService::high,
                                   [used = client, call = std::move(call), outcome] {
                                     try {
                                       call(*used);
                                     } catch (...) {
                                       outcome->failure = std::current_exception();
                                     }
                                     outcome->ended = true;
                                   });
    return outcome;
  }

  /// Makes the call to its end.
  Outcome run(Call call) {
    const auto outcome = begin(std::move(call));
    host.runUntil([&] { return outcome->ended; });
    return *outcome;
  }

  std::vector<RecordedRequest> requestsTo(const std::string& part) {
    return host.connections().requestsTo(part);
  }

  MemoryHost host;
  std::shared_ptr<OMStorage> storage = std::make_shared<OMStorage>("live.data");
  std::shared_ptr<KCVelloConnection> client;
};

}  // namespace orlix
