// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <array>
#include <csignal>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <thread>

#include <boost/json.hpp>

#include "tests/faults/TlsPhone.h"

namespace orlix::test {

/// The wallet server as a process of its own, so that nothing of it is in this one's memory.
class SandboxProcess {
 public:
  explicit SandboxProcess(const std::string& arguments) {
    const std::string program(ORLIX_SANDBOX_PROGRAM);
    pipe_ = popen((program + " " + arguments + " & echo $!; wait $!").c_str(), "r");
    id_ = std::stoi(line());
    const auto ready = boost::json::parse(line());
    address.base = ready.at("base").as_string();
    address.anchor = ready.at("anchor").as_string();
    drain_ = std::thread([this] {  // or it would stand still once the pipe is full
      while (!line().empty()) {
      }
    });
  }
  ~SandboxProcess() {
    kill(id_, SIGTERM);
    drain_.join();
    pclose(pipe_);
  }
  SandboxProcess(const SandboxProcess&) = delete;
  SandboxProcess& operator=(const SandboxProcess&) = delete;

  ServerAddress address;

 private:
  std::string line() {
    std::array<char, 4096> text{};
    return std::fgets(text.data(), text.size(), pipe_) == nullptr ? "" : text.data();
  }

  FILE* pipe_;
  int id_ = 0;
  std::thread drain_;
};

}  // namespace orlix::test
