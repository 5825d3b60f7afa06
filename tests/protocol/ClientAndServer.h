// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "orlixkit/protocol/KCVelloConnection.h"
#include "orlixkit/protocol/OMNetwork.h"
#include "orlixkit/security/OMStorage.h"
#include "orlixkit/testing/MemoryHost.h"

namespace orlix::test {

using namespace std::chrono_literals;

inline const std::string kSessionPath = "/session/new/";
inline const std::string kFirstKey =
    "ASNFZ4mrze/+3LqYdlQyEA==";  // 0123456789ABCDEFFEDCBA9876543210
inline const std::string kSecondKey =
    "ABEiM0RVZneImaq7zN3u/w==";  // 00112233445566778899AABBCCDDEEFF

/// An answer that opens a session; `number` distinguishes the sessions.
inline std::string openedSession(int number = 1, const std::string& pinKey = kFirstKey) {
  return R"({"sessionId":"one-)" + std::to_string(number) + R"(","sessionId2":"two-)" +
         std::to_string(number) + R"(","pinKey":")" + pinKey +
         R"(","activated":true,"allowConnection":true,"requestTCs":false})";
}

/// Threads that run in an order of the seed's choice, and overtake one another at every port.
inline MemoryHostSettings anyOrder(unsigned seed, bool timeCompetes = false) {
  return {.chooser = [random = std::mt19937(seed)](
                         std::size_t candidates) mutable { return random() % candidates; },
          .timeCompetes = timeCompetes,
          .preemptive = true};
}

using Call = std::function<void(KCVelloConnection&)>;

/// Makes the call; how it ended, as one text.
inline std::string endOf(const Call& call, KCVelloConnection& client) {
  try {
    call(client);
    return "done";
  } catch (const SMSException&) {
    return "SMS";
  } catch (const AppOutOfDateException& failure) {
    return (failure.stopConnection ? "stop: " : "notice: ") + failure.message.value_or("(none)");
  } catch (const TcOutOfDateException& failure) {
    return "terms: " + failure.message;
  } catch (const NetworkException& failure) {
    return failure.name || failure.reason ? "named network failure" : "network failure";
  } catch (const std::out_of_range&) {
    return "out of range";
  } catch (const std::invalid_argument&) {
    return "invalid argument";
  }
}

/// A client, its real transport and a scripted server, in virtual time.
struct ClientAndServer {
  explicit ClientAndServer(MemoryHostSettings settings = {}) : host(std::move(settings)) {
    host.connections().on("", ServerReply::of(200, "{}"));
    host.connections().on(kSessionPath, ServerReply::of(200, openedSession()));
  }
  /// Begins the call on a background queue. The text says how it ended, once it has.
  std::shared_ptr<const std::string> begin(Call call) {
    const auto end = std::make_shared<std::string>();
    host.backgroundQueues().global(QualityOfService::high, [client = client, call = std::move(call),
                                                            end] { *end = endOf(call, *client); });
    return end;
  }
  std::string run(Call call) {
    const auto end = begin(std::move(call));
    host.runUntil([&end] { return !end->empty(); });
    return *end;
  }
  std::vector<RecordedRequest> requestsTo(const std::string& part) {
    return host.connections().requestsTo(part);
  }

  MemoryHost host;
  std::shared_ptr<OMStorage> storage = std::make_shared<OMStorage>("live.data");
  std::shared_ptr<KCVelloConnection> client = std::make_shared<KCVelloConnection>(
      "https://live.example/vello", "TALU", Serial{{}, {}, {}, {}, host.device().vendor}, storage,
      std::make_shared<OMNetwork>(), "iPhone TALU 2.1.0",
      Platform{"IOS", "17.4", "TALU", "2.1.0", "x86_64", "shop-key"}, "+02:00");
};

}  // namespace orlix::test
