// SPDX-License-Identifier: Apache-2.0

// Kills enrolments and purchases at random points, and looks at what a restart finds in the store.

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <random>

#include <boost/json.hpp>
#include <fmt/format.h>
#include <sys/wait.h>

#include "sandbox/Sandbox.h"
#include "tests/faults/TlsPhone.h"

namespace {

namespace fs = std::filesystem;
using namespace orlix::test;

/// How the process that may be killed ends when it is not.
enum Exit : int { kNotEnrolled = 10, kEnrolled = 11, kPaid = 12, kNeither = 13 };

bool holdsToken() {
  return orlix::Host::current().ports().userDefaults->dataForKey("test.data").has_value();
}

/// The application: a checkout up to the payment screen ("look", "enrol") or through it ("pay").
int runApplication(const std::string& purpose, const ServerAddress& server, const fs::path& folder,
                   const fs::path& smsFile) {
  TlsPhone phone(server, folder);
  phone.checkout("FIXED-25");
  std::shared_ptr<orlix::ViewController> handled;
  std::optional<int> end;
  phone.runUntil([&] {
    const auto top = phone.user->topController();
    const std::string& screen = top->identifier();
    if (!phone.app->heard.empty()) {
      end = kPaid;
    } else if (orlix::Host::current().application().progressIndicator().blocksInput() ||
               !top->hasAppeared()) {
      return false;  // touches have no effect yet
    } else if (top == handled || end) {
      return end.has_value();
    } else if (screen == "Activation") {
      end = purpose == "enrol" ? std::optional<int>() : holdsToken() ? kNeither : kNotEnrolled;
      phone.user->replaceAll("msisdnField", "0820000010");
      phone.user->tap("proceedAction");
    } else if (screen == "ActivationCode") {
      std::string code;
      std::ifstream(smsFile) >> code;
      phone.user->replaceAll("codeField", code);
      phone.user->tap("proceedAction");
    } else if (screen == "Product" && orlix::OXSession::currentSession()->codeInfo) {
      end = purpose == "pay" ? std::optional<int>() : holdsToken() ? kEnrolled : kNeither;
      phone.user->replaceAll("pinField", "1234");
      if (!end) {
        phone.user->tap("proceedAction");
      }
    }
    handled = top;
    return end.has_value();
  });
  return *end;
}

class Killer {
 public:
  explicit Killer(std::uint64_t seed) : seed_(seed) { server_.start(); }

  /// Runs the application; kills it after so long, if it still runs. Its end, or none when killed.
  std::optional<int> run(const std::string& purpose, const fs::path& folder,
                         std::chrono::duration<double> limit = std::chrono::seconds(30)) {
    const std::string program = fs::read_symlink("/proc/self/exe");
    const double seconds = std::max(limit.count(), 1e-9);  // none would be no limit
    const int status = std::system(
        fmt::format("exec timeout -s KILL {:.9f} {} {} {} {} {} {}", seconds, program, purpose,
                    server_.base(), server_.anchorPath(), folder.string(), smsFile().string())
            .c_str());
    const bool killed = WIFSIGNALED(status) || WEXITSTATUS(status) == 128 + SIGKILL;
    return killed ? std::nullopt : std::optional(WEXITSTATUS(status));
  }

  /// False when a restart finds something that is neither the state before nor the one behind.
  bool round(bool paying) {
    const TemporaryFolder folder;
    if (paying) {
      run("enrol", folder.path());  // again: a device's latest token is the valid one
    }
    const std::string purpose = paying ? "pay" : "enrol";
    const auto limit = std::chrono::nanoseconds(
        std::uniform_int_distribution<std::int64_t>(0, usual_.at(paying).count())(random_));
    killed_.at(paying) += run(purpose, folder.path(), limit) ? 0 : 1;
    const std::optional<int> found = run("look", folder.path());
    found == kEnrolled ? ++new_ : ++old_;
    return found == kEnrolled || (found == kNotEnrolled && !paying);
  }

  /// So many enrolments and so many purchases.
  int rounds(int count) {
    for (const bool paying : {false, true}) {
      const auto begin = std::chrono::steady_clock::now();
      const std::optional<int> end = run(paying ? "pay" : "enrol", enrolled_.path());
      if (end != (paying ? kPaid : kEnrolled)) {
        fmt::print("crash_test: undisturbed it ended as {}\n", end.value_or(-1));
        return 1;
      }
      usual_.at(paying) = std::chrono::steady_clock::now() - begin;
    }
    int bad = 0;
    for (int i = 0; i < 2 * count; ++i) {
      bad += round(i % 2 == 1) ? 0 : 1;
    }
    fmt::print(
        "seed {}: {} enrolments, {} of them killed, and {} purchases, {} killed; at the restart "
        "{} as before, {} enrolled, {} neither\n",
        seed_, count, killed_[0], count, killed_[1], old_ - bad, new_, bad);
    return bad == 0 && killed_[0] + killed_[1] > 0 ? 0 : 1;
  }

 private:
  fs::path smsFile() const { return files_.path() / "sms"; }
  void heard(std::string_view line) {
    const auto event = boost::json::parse({line.data(), line.size()}).as_object();
    if (event.at("event") == "sms") {
      std::ofstream(smsFile()) << event.at("code").as_string().c_str();
    }
  }

  TemporaryFolder files_;
  TemporaryFolder enrolled_;
  orlix::sandbox::Sandbox server_{{.onEvent = [this](std::string_view line) { heard(line); }}};
  std::array<std::chrono::nanoseconds, 2> usual_{};
  const std::uint64_t seed_;
  std::mt19937_64 random_{seed_};
  std::array<int, 2> killed_{};
  int old_ = 0;
  int new_ = 0;
};

}  // namespace

int main(int count, char** values) {
  if (count == 6) {
    return runApplication(values[1], {values[2], values[3]}, values[4], values[5]);
  }
  Killer killer(count > 2 ? std::strtoull(values[2], nullptr, 10) : std::random_device()());
  return killer.rounds(count > 1 ? std::atoi(values[1]) : 10);
}
