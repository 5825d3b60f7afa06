// SPDX-License-Identifier: Apache-2.0

#include "sandbox/Answering.h"

#include <utility>

#include <fmt/format.h>

namespace orlix::sandbox {

namespace {

/// The answer's header, with the empty line that ends it.
std::string headOf(const HttpAnswer& answer) {
  std::string head = fmt::format("HTTP/1.1 {} {}\r\nContent-Type: {}\r\n", answer.status,
                                 reasonPhrase(answer.status), answer.contentType);
  // A stream has no length: it ends with the connection.
  if (!answer.stream) head += fmt::format("Content-Length: {}\r\n", answer.body.size());
  for (const auto& [name, value] : answer.headers) head += fmt::format("{}: {}\r\n", name, value);
  if (answer.last) head += "Connection: close\r\n";
  return head + "\r\n";
}

bool sendStream(Connection& connection, const HttpAnswer& answer) {
  if (!connection.write(headOf(answer))) return false;
  for (std::string piece = answer.stream(); !piece.empty(); piece = answer.stream()) {
    if (!connection.write(piece)) return false;
  }
  return true;
}

bool trickle(Connection& connection, HttpAnswer& answer, Shutdown& shutdown) {
  if (!connection.write(headOf(answer))) return false;
  for (size_t at = 0; at < answer.body.size(); ++at) {
    if (!shutdown.pause(answer.interval)) return false;
    if (at + 1 == answer.body.size()) answer.underWay.reset();
    if (!connection.write({&answer.body[at], 1})) return false;
  }
  return true;
}

/// False when the connection must end abruptly: by a fault, or because the client has gone.
bool deliver(Connection& connection, HttpAnswer answer, Shutdown& shutdown) {
  if (answer.delay.count() > 0 && !shutdown.pause(answer.delay)) return false;
  if (answer.hold && !answer.hold()) return false;
  switch (answer.delivery) {
    case Delivery::whole:
      answer.underWay.reset();  // Having the answer, the client may send its next request at once.
      if (answer.stream) return sendStream(connection, answer);
      return connection.write(headOf(answer) + answer.body);
    case Delivery::hangUp:
      return false;
    case Delivery::headerThenSilence:
      if (!connection.write(headOf(answer))) return false;
      [[fallthrough]];
    case Delivery::silence:
      connection.awaitClose();
      return false;
    case Delivery::cutInBody:
      connection.write(headOf(answer) + answer.body.substr(0, answer.body.size() / 2));
      return false;
    case Delivery::trickle:
      return trickle(connection, answer, shutdown);
  }
  return false;
}

void refuse(Connection& connection) {
  connection.write(headOf({.status = connection.refusal(), .last = true}));
  connection.awaitClose();  // Closing with unread bytes would lose the answer.
}

}  // namespace

HttpServer::Serve answering(std::function<HttpAnswer(const HttpRequest&)> handler,
                            Shutdown& shutdown) {
  return [handler = std::move(handler), &shutdown](Connection& connection) {
    while (const auto request = connection.read()) {
      if (shutdown.begun()) return false;
      HttpAnswer answer = handler(*request);
      answer.last = answer.last || !request->keepAlive || answer.stream;
      const bool ends = answer.last;
      const bool sent = request->method == "HEAD"
                            ? connection.write(headOf(answer))
                            : deliver(connection, std::move(answer), shutdown);
      if (!sent) return false;
      if (ends) return true;
    }
    if (connection.refusal() != 0) refuse(connection);
    return true;
  };
}

}  // namespace orlix::sandbox
