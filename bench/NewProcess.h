// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>

namespace orlix::bench {

/// What a process can be started for; each prints one number.
enum class Errand {
  firstRequest,      ///< microseconds from nothing to the first answer, by the library
  bareFirstRequest,  ///< the same by a bare client that trusts the system's roots and the anchor,
                     ///< and a bare store, which the library opens before it asks anything
  checkout,          ///< largest memory in kB of a process that paid once
  bareCheckout,      ///< the same by a bare client
};

/// Runs it in this process. Throws std::runtime_error when a request fails.
double runErrand(Errand errand, const std::string& base, const std::string& anchor);

/// Starts this program as a new process for the measurement and returns the printed number.
double runErrandAnew(Errand errand, const std::string& base, const std::string& anchor);

}  // namespace orlix::bench
