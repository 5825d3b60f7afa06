#include "examples/shop/ShopOptions.h"

#include <charconv>
#include <functional>
#include <map>
#include <set>

namespace orlix::shop {

namespace {

/// The address without trailing slashes. It names a host, and says nothing but https.
std::string httpsAddress(const std::string& option, std::string address) {
  constexpr std::string_view kScheme = "https://";
  while (address.size() > kScheme.size() && address.back() == '/') {
    address.pop_back();
  }
  const bool hasHost = address.size() > kScheme.size() && address[kScheme.size()] != '/';
  const bool isPlain = address.find_first_of(" \t\r\n\"<>?#") == std::string::npos;
  if (!address.starts_with(kScheme) || !hasHost || !isPlain) {
    throw UsageError(option + " needs an address that begins with https://, not \"" + address +
                     "\"");
  }
  return address;
}

/// Scheme, host and port of an https address.
std::string originOf(const std::string& address) {
  return address.substr(0, address.find('/', std::string("https://").size()));
}

double degrees(const std::string& text, double most) {
  double value = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  if (text.empty() || error != std::errc() || stop != end || !(value >= -most && value <= most)) {
    throw UsageError("--location needs LAT,LON in degrees, such as -33.92,18.42");
  }
  return value;
}

std::pair<double, double> location(const std::string& text) {
  const std::size_t comma = text.find(',');
  if (comma == std::string::npos) {
    degrees("", 0);
  }
  return {degrees(text.substr(0, comma), 90), degrees(text.substr(comma + 1), 180)};
}

std::pair<int, int> windowSize(const std::string& text) {
  std::pair<int, int> size;
  const char* const end = text.data() + text.size();
  const auto width = std::from_chars(text.data(), end, size.first);
  const bool apart = width.ec == std::errc() && width.ptr != end && *width.ptr == 'x';
  const auto height = apart ? std::from_chars(width.ptr + 1, end, size.second) : width;
  constexpr int kMost = 8192;
  const auto fits = [](int points) { return points >= 1 && points <= kMost; };
  if (!apart || height.ec != std::errc() || height.ptr != end || !fits(size.first) ||
      !fits(size.second)) {
    throw UsageError("--window needs WIDTHxHEIGHT in points, such as 375x667");
  }
  return size;
}

std::int64_t systemNumber(const std::string& text) {
  if (text != "0" && text != "1") {
    throw UsageError("--system is 0 (live) or 1 (test), not \"" + text + "\"");
  }
  return text == "0" ? 0 : 1;
}

void require(const std::string& option, const std::string& value) {
  if (value.empty()) {
    throw UsageError(option + " is missing");
  }
}

}  // namespace

ShopOptions parseOptions(const std::vector<std::string>& arguments) {
  ShopOptions options;
  const std::map<std::string, std::function<void(const std::string&)>> takesValue{
      {"--server", [&](auto& value) { options.server = httpsAddress("--server", value); }},
      {"--anchor", [&](auto& value) { options.anchor = value; }},
      {"--state", [&](auto& value) { options.state = value; }},
      {"--system", [&](auto& value) { options.system = systemNumber(value); }},
      {"--location", [&](auto& value) { options.location = location(value); }},
      {"--terms", [&](auto& value) { options.terms = httpsAddress("--terms", value); }},
      {"--script", [&](auto& value) { options.script = value; }},
      {"--window", [&](auto& value) { options.window = windowSize(value); }},
      {"--messages", [&](auto& value) { options.messages = value; }},
      {"--snapshots", [&](auto& value) { options.snapshots = value; }},
  };
  std::set<std::string> seen;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string& option = arguments[i];
    if (option == "--help" || option == "-h") {
      options.help = true;
      return options;
    }
    if (!seen.insert(option).second) {
      throw UsageError(option + " is given twice");
    }
    if (option == "--headless") {
      options.headless = true;
      continue;
    }
    const auto found = takesValue.find(option);
    if (found == takesValue.end()) {
      throw UsageError("unknown argument \"" + option + "\"");
    }
    if (i + 1 == arguments.size() || arguments[i + 1].empty()) {
      throw UsageError(option + " needs a value");
    }
    found->second(arguments[++i]);
  }
  require("--server", options.server);
  require("--anchor", options.anchor);
  require("--state", options.state);
  if (options.headless && !options.script) {
    throw UsageError("--headless needs a --script: there is nobody to press anything");
  }
  if (options.terms.empty()) {
    options.terms = originOf(options.server) + "/terms/tavlo.html";
  }
  return options;
}

std::string usage() {
  return R"(usage: orlix-shop --server BASE --anchor FILE --state DIR
                  [--system 0|1] [--location LAT,LON] [--terms URL]
                  [--script FILE] [--headless] [--snapshots DIR] [--window WxH]
                  [--messages FILE]

  --server BASE       base address of the wallet server, such as https://127.0.0.1:8443/vello
  --anchor FILE       certificate to trust besides the system's roots (PEM or DER)
  --state DIR         where the application keeps its stored values; made when it is missing
  --system 0|1        0 live, 1 test (default 1); both use BASE
  --location LAT,LON  position of the device in degrees; none by default
  --terms URL         terms page (default: /terms/tavlo.html on the server's host)
  --script FILE       commands to run, one a line; a pipe is read while the script runs
  --headless          run without a window
  --snapshots DIR     where the drawn shell saves its pictures
  --window WxH        size of the window in points (default 375x667)
  --messages FILE     lines for the window to show, such as SMS codes; a pipe is read as they come

Exit status: 0 every expectation of the script held, 1 one did not, 2 the command line is wrong.
)";
}

}  // namespace orlix::shop
