// SPDX-License-Identifier: Apache-2.0

// The Linux ports keep the ports' rules, as they are put together for a host.

#include <map>
#include <mutex>

#include <gtest/gtest.h>

#include "tests/ports/BackgroundQueuesContract.h"
#include "tests/ports/BundleContract.h"
#include "tests/ports/ClockContract.h"
#include "tests/ports/DeviceContract.h"
#include "tests/ports/HttpClientContract.h"
#include "tests/ports/LocationManagerContract.h"
#include "tests/ports/MainQueueContract.h"
#include "tests/ports/SystemLogContract.h"
#include "tests/ports/UserDefaultsContract.h"
#include "tests/posix/PosixPlatform.h"
#include "tests/posix/TlsServer.h"

namespace orlix {

namespace {

const Identity& serverIdentity() {
  static const Identity made = makeIdentity({});
  return made;
}

/// The client over TLS to a server in this process that does as the contract scripts it.
class CurlPlatform : public PosixPlatform {
 public:
  ~CurlPlatform() { httpClient().close(); }

  void script(const std::string& path, ScriptedAnswer answer) {
    const std::lock_guard guard(lock_);
    answers_[path] = std::move(answer);
  }
  std::vector<SeenRequest> seen() {
    const std::lock_guard guard(lock_);
    return seen_;
  }
  std::string address(const std::string& path) { return server_.address(path); }
  std::string foreign(const std::string& path) { return server_.address(path, "localhost"); }

 private:
  void serve(TlsConnection& connection) {
    while (const std::optional<SeenRequest> request = connection.read()) {
      ScriptedAnswer answer;
      {
        const std::lock_guard guard(lock_);
        seen_.push_back(*request);
        answer = answers_[request->path];
      }
      if (!send(connection, answer)) {
        return;
      }
    }
  }
  static bool send(TlsConnection& connection, const ScriptedAnswer& answer) {
    const std::string fields =
        answer.location.empty() ? "" : "Location: " + answer.location + "\r\n";
    if (answer.end == AnswerEnd::complete) {
      return connection.write(httpAnswer(answer.status, fields, answer.body));
    }
    if (answer.end == AnswerEnd::insideBody || answer.end == AnswerEnd::silence) {
      connection.write(httpAnswer(answer.status, fields, answer.body, 100));
    }
    if (answer.end == AnswerEnd::silence || answer.end == AnswerEnd::mute) {
      connection.awaitClose();
    }
    return false;
  }

  std::mutex lock_;
  std::map<std::string, ScriptedAnswer> answers_;
  std::vector<SeenRequest> seen_;
  TlsServer server_{serverIdentity(), [this](TlsConnection& connection) { serve(connection); }};
};

}  // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(Posix, MainQueueContract, LoggedPlatform);
INSTANTIATE_TYPED_TEST_SUITE_P(Posix, BackgroundQueuesContract, PosixPlatform);
INSTANTIATE_TYPED_TEST_SUITE_P(Posix, ClockContract, PosixPlatform);
INSTANTIATE_TYPED_TEST_SUITE_P(Posix, UserDefaultsContract, PosixPlatform);
INSTANTIATE_TYPED_TEST_SUITE_P(Posix, LocationManagerContract, PosixPlatform);
INSTANTIATE_TYPED_TEST_SUITE_P(Posix, BundleContract, PosixPlatform);
INSTANTIATE_TYPED_TEST_SUITE_P(Posix, DeviceContract, PosixPlatform);
INSTANTIATE_TYPED_TEST_SUITE_P(Posix, SystemLogContract, LoggedPlatform);
INSTANTIATE_TYPED_TEST_SUITE_P(Posix, HttpClientContract, CurlPlatform);

}  // namespace orlix
