// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "sandbox/Call.h"

namespace orlix::sandbox {

/// The wallet protocol below /vello: finds the request, holds it to its exact form, checks its
/// session and has it answered.
///
/// Thread: any; requests change the state one at a time. Lifetime: the arguments outlive it.
class Vello {
 public:
  Vello(State& state, EventLog& log, Shutdown& shutdown);

  HttpAnswer answer(const HttpRequest& request);

  /// True for the two paths that can move money.
  static bool isPurchase(const HttpRequest& request);
  static bool isSessionStart(const HttpRequest& request);

 private:
  HttpAnswer answerRoute(const Route& route, const HttpRequest& request);

  State& state_;
  EventLog& log_;
  Shutdown& shutdown_;
};

}  // namespace orlix::sandbox
