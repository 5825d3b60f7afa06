// SPDX-License-Identifier: Apache-2.0

#include "tests/posix/TlsServer.h"

#include <fmt/format.h>

namespace orlix {

namespace {

sandbox::TlsSetup setupOf(const Identity& identity, int highestVersion) {
  sandbox::TlsSetup setup{.certificate = identity.certificate.get(), .key = identity.key.get()};
  for (const std::shared_ptr<X509>& intermediate : identity.intermediates) {
    setup.intermediates.push_back(intermediate.get());
  }
  if (highestVersion != 0) {
    setup.lowestVersion = TLS1_VERSION;
    setup.highestVersion = highestVersion;
  }
  return setup;
}

}  // namespace

std::optional<SeenRequest> TlsConnection::read() {
  const std::optional<sandbox::HttpRequest> request = connection_.read();
  if (!request) {
    return std::nullopt;
  }
  return SeenRequest{.method = request->method,
                     .path = request->target,
                     .headers = request->headers,
                     .body = request->body};
}

TlsServer::TlsServer(const Identity& identity, Serve serve, int highestVersion)
    : server_({.tls = setupOf(identity, highestVersion),
               .serve =
                   [serve = std::move(serve)](sandbox::Connection& connection) {
                     TlsConnection ours(connection);
                     serve(ours);
                     return true;
                   }},
              shutdown_),
      port_(server_.start()) {}

std::string TlsServer::address(const std::string& path, const std::string& host) const {
  return fmt::format("https://{}:{}{}", host, port_, path);
}

std::string httpAnswer(int status, const std::string& fields, const std::string& body,
                       std::size_t missing) {
  return fmt::format("HTTP/1.1 {} Status\r\n{}Content-Length: {}\r\n\r\n{}", status, fields,
                     body.size() + missing, body);
}

}  // namespace orlix
