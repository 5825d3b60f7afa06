// SPDX-License-Identifier: Apache-2.0

#include <cstdlib>
#include <malloc.h>

#include <gtest/gtest.h>

#include "tests/faults/SandboxProcess.h"

namespace orlix::test {

namespace {

std::ptrdiff_t entriesOf(const char* folder) {
  return std::distance(std::filesystem::directory_iterator(folder), {});
}

void payOnce(TlsPhone& phone) {
  phone.app->heard.clear();
  phone.checkout("FIXED-25");
  phone.runUntilScreen("Product");
  phone.user->type("pinField", "1234");
  phone.user->tap("proceedButton");
  phone.runUntilOutcomeOrAlert();
  ASSERT_EQ(phone.alert(), "") << phone.log->text();
  ASSERT_EQ(phone.app->heard[0].rfind("succeeded", 0), 0U);
  phone.log->clear();
}

}  // namespace

TEST(Steady, AThousandCheckoutsNeedNoMoreThanTheFirstTen) {
  SandboxProcess server("--enrolled");
  TlsPhone phone(server.address);
  struct Needs {
    std::size_t memory;
    std::ptrdiff_t threads, descriptors;
  };
  const auto after = [&phone](int checkouts) {
    for (int i = 0; i < checkouts; ++i) {
      payOnce(phone);
    }
    // What the last one took in the background is given back only when its tasks have ended.
    phone.runUntil([&activity = *phone.activity] {
      const Activity::State now = activity.state();
      return now.atRest && !now.exchanges && !now.hasTasks;
    });
    return Needs{mallinfo2().uordblks, entriesOf("/proc/self/task"), entriesOf("/proc/self/fd")};
  };
  const Needs first = after(10);
  const Needs last = after(990);
  // With the allocator's caches of each thread switched off (as ctest does) it is some bytes.
  const bool exact = std::getenv("GLIBC_TUNABLES") != nullptr;
  EXPECT_LT(last.memory, first.memory + (exact ? 16'000 : 250'000));
  EXPECT_LE(last.threads, 5) << "this one, the server's reader and three workers";
  EXPECT_LE(last.descriptors, first.descriptors);
}

}  // namespace orlix::test
