// SPDX-License-Identifier: Apache-2.0

#include "sandbox/CommandLine.h"

#include <algorithm>
#include <charconv>
#include <memory>

#include <CLI/CLI.hpp>
#include <arpa/inet.h>
#include <fmt/format.h>
#include <netinet/in.h>

namespace orlix::sandbox {

namespace {

std::string complaintAboutPort(const std::string& text) {
  int port = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), port);
  const bool whole = error == std::errc() && end == text.data() + text.size();
  if (whole && port >= 0 && port <= 65535) return {};
  return fmt::format("\"{}\" is no port: a number from 0 to 65535", text);
}

std::string complaintAboutAddress(const std::string& text) {
  in_addr address{};
  if (inet_pton(AF_INET, text.c_str(), &address) != 1) {
    return fmt::format("\"{}\" is no address such as 192.168.1.20", text);
  }
  if (text == "127.0.0.1") return "127.0.0.1 is listened on already";
  if (address.s_addr != htonl(INADDR_ANY)) return {};
  return "0.0.0.0 is no single address; name the one by which the phone reaches this machine";
}

std::string complaintAboutEmpty(const std::string& text) {
  return text.empty() ? "needs a value" : "";
}

/// The arguments as they are read into `options`, which must outlive the result.
std::unique_ptr<CLI::App> parserFor(Options& options) {
  auto app = std::make_unique<CLI::App>("The whole wallet server for development, on this machine.",
                                        "orlix-sandbox");
  const auto value = [&app](const char* name, auto& target, const char* type, const char* what) {
    return app->add_option(name, target, what)->type_name(type);
  };
  value("--port", options.port, "N", "listen on 127.0.0.1:N; 0, the default, takes a free port")
      ->check(complaintAboutPort)
      ->group("Network");
  value("--listen", options.listen, "ADDRESS",
        "serve wallets in the network too, at this address of the machine; everybody there can "
        "reach them. Control and console stay on 127.0.0.1")
      ->check(complaintAboutAddress)
      ->group("Network");
  CLI::Option* const folder = value("--dir", options.folder, "DIR",
                                    "write the certificates here (default: a new temporary folder)")
                                  ->check(complaintAboutEmpty)
                                  ->group("State");
  app->add_flag("--keep-root", options.keepRoot,
                "keep the root certificate, with its key, in DIR and use it at each start")
      ->needs(folder)
      ->group("State");
  value("--db", options.database, "FILE", "keep the state in this SQLite file (default: in memory)")
      ->check(complaintAboutEmpty)
      ->group("State");
  value("--record", options.record, "FILE",
        "append every exchange to this file, without its secrets")
      ->check(complaintAboutEmpty)
      ->group("State");
  value("--scenario", options.scenario, "FILE.json",
        "begin with the codes, cards and PINs of this file")
      ->check(complaintAboutEmpty)
      ->group("Behaviour");
  app->add_flag("--enrolled", options.enrolled,
                "every device counts as enrolled, with a wallet of every documented card")
      ->group("Behaviour");
  app->add_flag("--one-session", options.oneSession,
                "a device's session start ends its former sessions")
      ->group("Behaviour");
  app->footer(
      "Examples:\n"
      "  orlix-sandbox --enrolled\n"
      "      pay at once; the address of the console is in the first line printed\n"
      "  orlix-sandbox --port 8443 --dir wallet --db wallet/state.db\n"
      "      the same address, certificates' folder and state at each start\n"
      "  orlix-sandbox --listen 192.168.1.20 --port 8443 --dir wallet --keep-root\n"
      "      for a phone in the same network, on which wallet/certificateroot.pem is installed "
      "once");
  return app;
}

}  // namespace

std::string usage() {
  Options unused;
  return parserFor(unused)->help();
}

std::variant<Options, HelpWanted, UsageError> readCommandLine(
    std::span<const char* const> arguments) {
  Options options;
  const auto app = parserFor(options);
  std::vector<std::string> reversed(arguments.rbegin(), arguments.rend());
  try {
    app->parse(std::move(reversed));
  } catch (const CLI::CallForHelp&) {
    return HelpWanted{};
  } catch (const CLI::ParseError& wrong) {
    return UsageError{wrong.what()};
  }
  return options;
}

}  // namespace orlix::sandbox
