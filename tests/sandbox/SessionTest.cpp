// SPDX-License-Identifier: Apache-2.0

#include "sandbox/CommandLine.h"
#include "tests/sandbox/Wallet.h"

namespace orlix::sandbox::test {
namespace {

using Sessions = SandboxTest;

TEST_F(Sessions, WithOneForEachDeviceAStartEndsTheDevicesFormerOnesAndNoOtherDevices) {
  struct Row {
    std::string name;
    bool onePerDevice;
    int formerStatus;  ///< What a request with the former tokens of the same device meets.
  };
  for (const Row& row : std::vector<Row>{{"several sessions a device", false, 200},
                                         {"one session a device", true, 403},
                                         {"several again", false, 200}}) {
    SCOPED_TRACE(row.name);
    control("POST", "/control/sessions",
            json::serialize(json::object{{"onePerDevice", row.onePerDevice}}));
    Wallet former(sandbox_), present(sandbox_), other(sandbox_, "[p:0E]");
    for (Wallet* wallet : {&other, &former, &present}) wallet->start();
    EXPECT_EQ(former.post("card/list/TALU").status, row.formerStatus);
    EXPECT_EQ(present.post("card/list/TALU").status, 200);
    EXPECT_EQ(other.post("card/list/TALU").status, 200) << "another device";
    former.start();
    EXPECT_EQ(former.post("card/list/TALU").status, 200) << "a new session heals it";
    EXPECT_EQ(present.post("card/list/TALU").status, row.formerStatus);
  }
  EXPECT_EQ(counted("sessionsOpened"), 1 + 3 * 4);
}

TEST(CommandLine, OneSessionIsOffUnlessItIsAskedFor) {
  using Arguments = std::vector<const char*>;
  for (const Arguments& arguments : {Arguments{"--enrolled"}, {"--one-session", "--enrolled"}}) {
    Sandbox sandbox(std::get<Options>(readCommandLine(arguments)));
    sandbox.start();
    Wallet former(sandbox), present(sandbox);
    former.start();
    present.start();
    EXPECT_EQ(former.post("card/list/TALU").status, arguments.size() == 1 ? 200 : 403);
  }
}

}  // namespace
}  // namespace orlix::sandbox::test
