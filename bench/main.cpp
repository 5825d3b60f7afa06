// Prints what the library costs against its floor, the bare library calls, measured in one run.

#include <exception>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <utility>
#include <vector>

#include <boost/json.hpp>
#include <fmt/format.h>
#include <sys/resource.h>

#include "bench/CheckoutRun.h"
#include "bench/Rows.h"
#include "sandbox/Sandbox.h"

namespace {

using namespace orlix::bench;

/// Handshakes that one checkout of a fresh process makes.
std::int64_t handshakesOfACheckout(orlix::sandbox::Sandbox& server, const std::string& folder) {
  const auto count = [&server] {
    const auto state = boost::json::parse(server.control("GET", "/control/state"));
    return state.at("handshakes").to_number<std::int64_t>();
  };
  const std::int64_t before = count();
  CheckoutRun library(server.base(), server.anchorPath(), folder);
  library.pay();
  return count() - before;
}

/// All rows, or the one of this name.
int run(const std::string& only) {
  const auto folder = std::filesystem::temp_directory_path() / "orlix-bench";
  orlix::sandbox::Options options;
  options.enrolled = true;
  options.onEvent = [](std::string_view) {};
  orlix::sandbox::Sandbox server(std::move(options));
  server.start();

  const std::vector<std::pair<std::string, std::function<Row()>>> known = {
      {"request", [&] { return requestRow(server.base(), server.anchorPath()); }},
      {"checkout", [&] { return checkoutRow(server.base(), server.anchorPath()); }},
      {"checkout-off-main",
       [&] { return threadedCheckoutRow(server.base(), server.anchorPath()); }},
      {"pin-block", pinBlockRow},
      {"store", [&] { return storeRow(folder / "store.db"); }},
      {"card-list", cardListRow}};
  const std::int64_t handshakes = handshakesOfACheckout(server, folder);
  std::vector<Row> rows;
  for (const auto& [name, measure] : known) {
    if (only.empty() || only == name) {
      rows.push_back(measure());
    }
  }
  if (rows.empty()) {
    throw std::invalid_argument("knows no row \"" + only + "\"");
  }
  const bool met = print(rows);
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  fmt::print("\nTLS handshakes of a checkout: {} (at most 1)\n", handshakes);
  fmt::print("largest memory of this process, server included: {:.1f} MB\n",
             static_cast<double>(usage.ru_maxrss) / 1024);
  return met && handshakes <= 1 ? 0 : 1;
}

}  // namespace

int main(int count, char** values) {
  try {
    return run(count > 1 ? values[1] : "");
  } catch (const std::exception& failure) {
    fmt::print(stderr, "orlix-bench: {}\n", failure.what());
    return 1;
  }
}
