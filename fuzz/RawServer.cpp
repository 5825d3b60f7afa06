// SPDX-License-Identifier: Apache-2.0

#include "fuzz/RawServer.h"

#include <utility>

#include "fuzz/Target.h"

namespace orlix::fuzz {

RawServer::RawServer(const Identity& identity)
    : server_({.tls = sandbox::TlsSetup{.certificate = identity.certificate.get(),
                                        .key = identity.key.get(),
                                        .resumes = false},
               .serve = [this](sandbox::Connection& connection) { return serve(connection); }},
              shutdown_),
      port_(server_.start()) {}

void RawServer::prepare(std::vector<std::string> answers) {
  const std::lock_guard guard(lock_);
  answers_ = std::move(answers);
  requests_.clear();
}

std::vector<sandbox::HttpRequest> RawServer::requests() {
  server_.awaitIdle();
  const std::lock_guard guard(lock_);
  return requests_;
}

bool RawServer::serve(sandbox::Connection& connection) {
  std::optional<sandbox::HttpRequest> request = connection.read();
  check(connection.refusal() == 0, "what is sent is HTTP");
  if (!request) {
    return false;
  }
  std::string answer;
  {
    const std::lock_guard guard(lock_);
    if (requests_.size() < answers_.size()) {
      answer = answers_[requests_.size()];
    }
    requests_.push_back(*std::move(request));
  }
  connection.write(answer);
  // Every other answer ends without TLS's own farewell, as on a line that was cut.
  return answer.size() % 2 == 0;
}

}  // namespace orlix::fuzz
