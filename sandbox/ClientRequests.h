// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "sandbox/EventLog.h"
#include "sandbox/Faults.h"
#include "sandbox/Http.h"
#include "sandbox/Issuer.h"
#include "sandbox/Recorder.h"
#include "sandbox/Shutdown.h"
#include "sandbox/State.h"
#include "sandbox/Vello.h"

namespace orlix::sandbox {

/// Answers the requests of clients: has them carried out, spoils their answers by the faults that
/// are switched on, and keeps account of both.
///
/// Thread: any. Lifetime: the arguments outlive it and its answers.
class ClientRequests {
 public:
  /// `recorder`: none when nothing is recorded.
  ClientRequests(State& state, EventLog& log, Shutdown& shutdown, Recorder* recorder);

  HttpAnswer answer(const HttpRequest& request);

 private:
  struct Arrival;

  Arrival note(const HttpRequest& request);
  Origin originOf(const HttpRequest& request) const;
  HttpAnswer carryOut(const HttpRequest& request);

  State& state_;
  Shutdown& shutdown_;
  Vello vello_;
  Issuer issuer_;
  Recorder* recorder_;
};

}  // namespace orlix::sandbox
