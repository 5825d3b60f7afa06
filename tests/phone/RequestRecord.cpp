// SPDX-License-Identifier: Apache-2.0

#include "tests/phone/RequestRecord.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <unistd.h>

#include <boost/json.hpp>
#include <fmt/format.h>

namespace orlix::test {

namespace {

std::string lineOf(const HttpRequest& request) {
  boost::json::object headers;
  for (const auto& [name, value] : request.headers) {
    headers[name] = value;
  }
  std::string body;
  if (request.body) {
    const auto bytes = request.body->reveal();
    body.assign(bytes.begin(), bytes.end());
  }
  const std::size_t path = request.url.find('/', request.url.find("//") + 2);
  return boost::json::serialize(boost::json::object{{"method", request.method},
                                                    {"path", request.url.substr(path)},
                                                    {"headers", headers},
                                                    {"body", body}});
}

}  // namespace

void RequestRecord::note(const HttpRequest& request) {
  static const char* const folder = std::getenv("ORLIX_RECORD");
  if (folder != nullptr && *folder != '\0') {
    static RequestRecord ofProcess(folder);
    ofProcess.write(request);
  }
}

RequestRecord::~RequestRecord() {
  if (process_ == getpid()) {
    writeLine(fmt::format(R"({{"repeated":{}}})", repeated_));
  }
}

void RequestRecord::write(const HttpRequest& request) {
  if (process_ != getpid()) {  // the first request, or the first since a fork
    process_ = getpid();
    repeated_ = 0;
    file_ = std::ofstream(
        fmt::format("{}/{}-{}.jsonl", folder_, program_invocation_short_name, process_));
  }
  const std::string line = lineOf(request);
  std::string form = line;
  std::replace_if(
      form.begin(), form.end(), [](unsigned char c) { return std::isdigit(c) != 0; }, '0');
  if (forms_.insert(std::move(form)).second) {
    writeLine(line);
  } else {
    ++repeated_;
  }
}

void RequestRecord::writeLine(const std::string& line) { file_ << line + '\n' << std::flush; }

}  // namespace orlix::test
