// SPDX-License-Identifier: Apache-2.0

#include "bench/NewProcess.h"

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <optional>
#include <stdexcept>

#include <fmt/format.h>
#include <sys/resource.h>

#include "bench/BareCheckout.h"
#include "bench/BareStore.h"
#include "bench/CheckoutRun.h"
#include "bench/Processors.h"
#include "bench/Rows.h"
#include "orlixkit/protocol/OMNetwork.h"
#include "orlixkit/security/DataStore.h"

namespace orlix::bench {

namespace {

const std::string kState = std::filesystem::temp_directory_path() / "orlix-bench-new";

using Clock = std::chrono::steady_clock;

double microsSince(Clock::time_point begun) {
  return std::chrono::duration<double, std::micro>(Clock::now() - begun).count();
}

/// From the start of the process to the answer, without the clean-up.
double firstRequest(const std::string& base, const std::string& anchor) {
  const auto begun = Clock::now();
  const CheckoutRun library(base, anchor, kState);
  const std::string text = kSessionBody;
  const std::optional<SecretBytes> body(
      ByteView(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()));
  if (OMNetwork()
          .post(base + "/session/new/TALU", body, DataStore(SecretBytes(16, 0)))
          .responseCode != 200) {
    throw std::runtime_error("the first request was refused");
  }
  return microsSince(begun);
}

double bareFirstRequest(const std::string& base, const std::string& anchor) {
  const auto begun = Clock::now();
  const BareStore store(kState + "/bare.db");
  BareClient client(base, anchor, BareClient::Roots::systemToo);
  openSession(client);
  return microsSince(begun);
}

double largestMemory() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_maxrss);
}

}  // namespace

double runErrand(Errand errand, const std::string& base, const std::string& anchor) {
  switch (errand) {
    case Errand::firstRequest:
      return firstRequest(base, anchor);
    case Errand::bareFirstRequest:
      return bareFirstRequest(base, anchor);
    case Errand::checkout:
      CheckoutRun(base, anchor, kState).pay();
      return largestMemory();
    case Errand::bareCheckout: {
      BareClient client(base, anchor, BareClient::Roots::systemToo);
      payBare(client);
      return largestMemory();
    }
  }
  throw std::invalid_argument("no such errand");
}

double runErrandAnew(Errand errand, const std::string& base, const std::string& anchor) {
  const std::string self = std::filesystem::read_symlink("/proc/self/exe");
  const std::string command =
      fmt::format("'{}' --errand {} '{}' '{}'", self, static_cast<int>(errand), base, anchor);
  const std::unique_ptr<FILE, int (*)(FILE*)> output(popen(command.c_str(), "r"), pclose);
  double number = 0;
  if (!output || std::fscanf(output.get(), "%lf", &number) != 1) {
    throw std::runtime_error("no number came from: " + command);
  }
  return number;
}

Row firstRequestRow(const std::string& base, const std::string& anchor) {
  std::filesystem::create_directories(kState);
  const OnOneProcessor together(OnOneProcessor::Side::client);
  return compareSamples(
      "store opened and a first request : the same, bare", "us", 1.25, {.samples = 11},
      [&] { return runErrandAnew(Errand::bareFirstRequest, base, anchor); },
      [&] { return runErrandAnew(Errand::firstRequest, base, anchor); });
}

Row memoryRow(const std::string& base, const std::string& anchor) {
  return compareSamples(
      "memory of a process that pays once : a bare client's", "kB", 1.3, {.samples = 5},
      [&] { return runErrandAnew(Errand::bareCheckout, base, anchor); },
      [&] { return runErrandAnew(Errand::checkout, base, anchor); });
}

}  // namespace orlix::bench
