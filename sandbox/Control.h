// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>

#include "sandbox/Http.h"
#include "sandbox/HttpServer.h"
#include "sandbox/State.h"

namespace orlix::sandbox {

/// The switches and the account of the sandbox, below /control, for tests and scripts on the same
/// machine; see README.md for the paths.
///
/// Thread: any. Lifetime: `state` outlives it.
class Control {
 public:
  /// What the switches need of the server's connections.
  struct Connections {
    std::function<ConnectionCounts()> counts;
    std::function<void()> drop;
  };

  Control(State& state, Connections connections);

  static bool owns(const HttpRequest& request);
  HttpAnswer answer(const HttpRequest& request);

 private:
  struct Entry;
  static const std::vector<Entry>& entries();
  static HttpAnswer noSuchSwitch(std::string_view path);

  HttpAnswer addFault(const json::object& wish);
  HttpAnswer listFaults(const json::object& wish);
  HttpAnswer clearFaults(const json::object& wish);
  HttpAnswer dropConnections(const json::object& wish);
  HttpAnswer forgetSessions(const json::object& wish);
  HttpAnswer setSessions(const json::object& wish);
  HttpAnswer setSessionStart(const json::object& wish);
  HttpAnswer setTerms(const json::object& wish);
  HttpAnswer setEnrolled(const json::object& wish);
  HttpAnswer putCardKind(const json::object& wish);
  HttpAnswer counts(const json::object& wish);
  HttpAnswer listPurchases(const json::object& wish);
  HttpAnswer clearPurchases(const json::object& wish);
  HttpAnswer listCodes(const json::object& wish);
  HttpAnswer makeCode(const json::object& wish);
  HttpAnswer removeCode(const json::object& wish);
  HttpAnswer listPayments(const json::object& wish);
  HttpAnswer setPayments(const json::object& wish);
  HttpAnswer listMessages(const json::object& wish);
  HttpAnswer listWallets(const json::object& wish);
  HttpAnswer addCard(const json::object& wish);
  HttpAnswer changeCard(const json::object& wish);
  HttpAnswer removeCard(const json::object& wish);
  HttpAnswer setDevice(const json::object& wish);
  HttpAnswer removeDevice(const json::object& wish);
  HttpAnswer listRequests(const json::object& wish);
  HttpAnswer clearRequests(const json::object& wish);

  State& state_;
  Connections connections_;
};

}  // namespace orlix::sandbox
