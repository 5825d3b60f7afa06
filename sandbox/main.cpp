// SPDX-License-Identifier: Apache-2.0

#include <csignal>
#include <cstdio>
#include <exception>
#include <string>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "sandbox/CommandLine.h"
#include "sandbox/Sandbox.h"

namespace {

void printLine(std::string_view line) {
  std::fwrite(line.data(), 1, line.size(), stdout);
  std::fputc('\n', stdout);
  std::fflush(stdout);  // A script waits for each line at the other end of a pipe.
}

/// Unlike fmt::print it does not throw when its reader has gone.
void say(std::string_view words) {
  std::fputs(fmt::format("orlix-sandbox: {}\n", words).c_str(), stderr);
}

int serve(orlix::sandbox::Options options, const sigset_t& endings) {
  if (!options.listen.empty()) {
    say(
        fmt::format("warning: everybody in the network of {} can reach the wallet server; type "
                    "nothing real",
                    options.listen));
  }
  options.onEvent = &printLine;
  options.console = true;
  orlix::sandbox::Sandbox sandbox(std::move(options));
  sandbox.start();
  int signal = 0;
  sigwait(&endings, &signal);
  sandbox.stop();
  return 0;
}

}  // namespace

int main(int count, char** values) {
  using namespace orlix::sandbox;
  const std::vector<const char*> arguments(values + (count > 0 ? 1 : 0), values + count);
  auto read = readCommandLine(arguments);
  if (std::holds_alternative<HelpWanted>(read)) {
    fmt::print("{}", usage());
    return 0;
  }
  if (const auto* wrong = std::get_if<UsageError>(&read)) {
    say(wrong->message + "\nRun orlix-sandbox --help for more.");
    return 2;
  }
  // Blocked before any thread starts, so that every thread inherits it and only sigwait sees them.
  sigset_t endings;
  sigemptyset(&endings);
  sigaddset(&endings, SIGTERM);
  sigaddset(&endings, SIGINT);
  pthread_sigmask(SIG_BLOCK, &endings, nullptr);
  std::signal(SIGPIPE, SIG_IGN);  // A reader that has gone ends neither a connection nor us.
  try {
    return serve(std::get<Options>(std::move(read)), endings);
  } catch (const std::exception& failure) {
    say(failure.what());
    return 1;
  }
}
