// SPDX-License-Identifier: Apache-2.0

#include "examples/shop/ShopOptions.h"

#include <charconv>
#include <memory>

#include <CLI/CLI.hpp>

namespace orlix::shop {

namespace {

/// The command line asks for the list of screens: nothing else that it says counts.
struct ScreenListAsked {};

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

bool darkColors(const std::string& text) {
  if (text != "light" && text != "dark") {
    throw UsageError("--colors is light or dark, not \"" + text + "\"");
  }
  return text == "dark";
}

std::int64_t systemNumber(const std::string& text) {
  if (text != "0" && text != "1") {
    throw UsageError("--system is 0 (live) or 1 (test), not \"" + text + "\"");
  }
  return text == "0" ? 0 : 1;
}

/// Adds an option whose value `read` checks and keeps.
template <typename Read>
CLI::Option* add(CLI::App& app, const char* name, const char* type, const char* what, Read read) {
  return app
      .add_option_function<std::string>(
          name,
          [name, read](const std::string& value) {
            if (value.empty()) {
              throw UsageError(std::string(name) + " needs a value");
            }
            read(value);
          },
          what)
      ->type_name(type);
}

/// What the host itself would decide.
void addHost(CLI::App& app, ShopOptions& options) {
  for (CLI::Option* required :
       {add(app, "--server", "BASE",
            "base address of the wallet server, such as https://127.0.0.1:8443/vello",
            [&](auto& value) { options.server = httpsAddress("--server", value); }),
        add(app, "--anchor", "FILE", "certificate to trust besides the system's roots (PEM or DER)",
            [&](auto& value) { options.anchor = value; }),
        add(app, "--state", "DIR",
            "where the application keeps its stored values; made when it is missing",
            [&](auto& value) { options.state = value; })}) {
    required->required()->group("Wallet server and state");
  }
  for (CLI::Option* optional :
       {add(app, "--system", "0|1", "0 live, 1 test (default 1); both use BASE",
            [&](auto& value) { options.system = systemNumber(value); }),
        add(app, "--terms", "URL", "terms page (default: /terms/tavlo.html on the server's host)",
            [&](auto& value) { options.terms = httpsAddress("--terms", value); }),
        add(app, "--location", "LAT,LON", "position of the device in degrees; none by default",
            [&](auto& value) { options.location = location(value); })}) {
    optional->group("Wallet server and state");
  }
}

/// Who operates the shop, and what is seen of it.
void addOperation(CLI::App& app, ShopOptions& options) {
  CLI::Option* const script = add(
      app, "--script", "FILE", "commands to run, one a line; a pipe is read while the script runs",
      [&](auto& value) { options.script = value; });
  script->group("Script");
  // A headless run takes its input from a script only.
  app.add_flag("--headless", options.headless, "run without a window")
      ->needs(script)
      ->group("Script");
  for (CLI::Option* drawn :
       {add(app, "--window", "WxH", "size of the window in points (default 375x667)",
            [&](auto& value) { options.window = windowSize(value); }),
        add(app, "--colors", "light|dark", "colours of the window (default: the desktop's)",
            [&](auto& value) { options.darkColors = darkColors(value); }),
        app.add_flag("--right-to-left", options.rightToLeft, "mirror the window"),
        app.add_flag("--reduced-motion", options.reducedMotion, "draw without animations"),
        add(app, "--snapshots", "DIR", "where the drawn shell saves its pictures",
            [&](auto& value) { options.snapshots = value; }),
        add(app, "--messages", "FILE",
            "lines for the window to show, such as SMS codes; a pipe is read as they come",
            [&](auto& value) { options.messages = value; })}) {
    drawn->group("Window");
  }
}

/// Like --help, it needs nothing that a run needs.
void addList(CLI::App& app) {
  app.add_flag_callback(
         "--list-screens", [] { throw ScreenListAsked(); },
         "print the library's screens in JSON: outlets, actions, segues, alerts")
      ->trigger_on_parse();
}

std::unique_ptr<CLI::App> parserFor(ShopOptions& options) {
  auto app = std::make_unique<CLI::App>("A shop that pays with the wallet.", "orlix-shop");
  addList(*app);
  addHost(*app, options);
  addOperation(*app, options);
  app->footer(
      "Examples, with the base and anchor of orlix-sandbox's first line:\n"
      "  orlix-shop --server https://127.0.0.1:8443/vello --anchor root.cer --state shop\n"
      "      opens the shop's window\n"
      "  orlix-shop --server https://127.0.0.1:8443/vello --anchor root.cer --state shop \\\n"
      "             --script pay.shop --headless\n"
      "      runs a script without a window\n\n"
      "Exit status: 0 every expectation of the script held, 1 one did not, 2 the command line is "
      "wrong.");
  return app;
}

}  // namespace

ShopOptions parseOptions(const std::vector<std::string>& arguments) {
  ShopOptions options;
  const auto app = parserFor(options);
  try {
    app->parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
  } catch (const CLI::CallForHelp&) {
    options.help = true;
    return options;
  } catch (const ScreenListAsked&) {
    options.listScreens = true;
    return options;
  } catch (const CLI::ParseError& error) {
    throw UsageError(error.what());
  }
  if (options.terms.empty()) {
    options.terms = originOf(options.server) + "/terms/tavlo.html";
  }
  return options;
}

std::string usage() {
  ShopOptions unused;
  return parserFor(unused)->help();
}

}  // namespace orlix::shop
