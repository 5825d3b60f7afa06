// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "sandbox/Http.h"
#include "sandbox/State.h"

namespace orlix::sandbox {

/// The card issuer's access-control server and the wallet's termination page, as a browser meets
/// them. One-time code: 123456 passes, 000000 fails at once, three other codes fail as well.
///
/// Thread: any. Lifetime: `state` outlives it.
class Issuer {
 public:
  explicit Issuer(State& state) : state_(state) {}

  /// True for the paths that are answered here.
  static bool owns(const HttpRequest& request);

  HttpAnswer answer(const HttpRequest& request);

 private:
  HttpAnswer accessControl(const HttpRequest& request);
  HttpAnswer oneTimeCode(const HttpRequest& request);
  HttpAnswer termination(const HttpRequest& request);
  HttpAnswer terms();

  State& state_;
};

}  // namespace orlix::sandbox
