// SPDX-License-Identifier: Apache-2.0

// Prints what the library costs against its floor, the bare library calls, measured in one run.

#include <exception>
#include <filesystem>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <boost/json.hpp>
#include <fmt/format.h>

#include "bench/Chart.h"
#include "bench/CheckoutRun.h"
#include "bench/NewProcess.h"
#include "bench/Processors.h"
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

struct Wish {
  std::string only;     ///< name of a row; empty: all
  std::string picture;  ///< file to draw the rows into; empty: none
};

std::vector<std::pair<std::string, std::function<Row()>>> knownRows(const std::string& base,
                                                                    const std::string& anchor,
                                                                    const std::string& folder) {
  return {{"request", [=] { return requestRow(base, anchor); }},
          {"first-request", [=] { return firstRequestRow(base, anchor); }},
          {"checkout", [=] { return checkoutRow(base, anchor); }},
          {"checkout-spread", [=] { return spreadCheckoutRow(base, anchor); }},
          {"checkout-off-main", [=] { return threadedCheckoutRow(base, anchor); }},
          {"checkout-distant", [=] { return distantCheckoutRow(base, anchor); }},
          {"memory", [=] { return memoryRow(base, anchor); }},
          {"pin-block", pinBlockRow},
          {"store", [=] { return storeRow(folder + "/store.db"); }},
          {"card-list", cardListRow},
          {"card-list-growth", cardListGrowthRow},
          {"card-list-memory", cardListMemoryRow}};
}

int run(const Wish& wish) {
  const std::string folder = std::filesystem::temp_directory_path() / "orlix-bench";
  orlix::sandbox::Options options;
  options.enrolled = true;
  options.onEvent = [](std::string_view) {};
  orlix::sandbox::Sandbox server(std::move(options));
  {
    const OnOneProcessor apart(OnOneProcessor::Side::server);
    server.start();
  }
  const std::int64_t handshakes = handshakesOfACheckout(server, folder);
  std::vector<Row> rows;
  for (const auto& [name, measure] : knownRows(server.base(), server.anchorPath(), folder)) {
    if (wish.only.empty() || wish.only == name) {
      rows.push_back(measure());
    }
  }
  if (rows.empty()) {
    throw std::invalid_argument("knows no row \"" + wish.only + "\"");
  }
  const bool met = print(rows);
  fmt::print("\nTLS handshakes of a checkout: {} (at most 1)\n", handshakes);
  if (!wish.picture.empty()) {
    std::ofstream(wish.picture) << chartOf(rows);
  }
  return met && handshakes <= 1 ? 0 : 1;
}

int start(const std::vector<std::string>& words) {
  if (words.size() == 4 && words[0] == "--errand") {
    fmt::print("{}\n", runErrand(static_cast<Errand>(std::stoi(words[1])), words[2], words[3]));
    return 0;
  }
  Wish wish;
  for (std::size_t i = 0; i < words.size(); ++i) {
    if (words[i] == "--picture" && i + 1 < words.size()) {
      wish.picture = words[++i];
    } else {
      wish.only = words[i];
    }
  }
  return run(wish);
}

}  // namespace

int main(int count, char** values) {
  try {
    return start({values + 1, values + count});
  } catch (const std::exception& failure) {
    fmt::print(stderr, "orlix-bench: {}\n", failure.what());
    return 1;
  }
}
