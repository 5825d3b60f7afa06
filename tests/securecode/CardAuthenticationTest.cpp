#include "tests/securecode/SecureCodeFixture.h"

namespace orlix {
namespace {

using namespace std::chrono_literals;

TEST_F(SecureCode, AuthenticatesACardWithoutAnAmountAndValidatesItOnce) {
  showAuthenticating();
  returnFromIssuer();
  EXPECT_EQ(ear->heard, Ear{"validated"});
  ASSERT_EQ(sent("/auth3Ds"), 1U);
  EXPECT_EQ(sent("/purchase"), 0U);
  EXPECT_EQ(sent("/card/validate"), 1U);
  const auto request = host.connections().requestsTo("/auth3Ds")[0];
  EXPECT_EQ(request.body->find("amount"), std::string::npos);
  const auto asked = host.connections().requestsTo("/card/get3dsValidateUrl")[0];
  EXPECT_EQ(asked.body, "{\n  \"cardId\" : 7\n}");
}

TEST_F(SecureCode, ACardThatFailsItsAuthenticationNeverCountsAsValidated) {
  host.connections().on("/receipt/poll", ServerReply::of(200, R"({"status":"FAILED"})"));
  showAuthenticating();
  returnFromIssuer();
  EXPECT_EQ(ear->heard, Ear{"failed 4711"});
  EXPECT_EQ(sent("/card/validate"), 0U);
}

TEST_F(SecureCode, ACardThatCannotBeMarkedEndsInTheLogAndLeavesTheUserACancel) {
  host.connections().on("/card/validate", ServerReply::of(500));
  showAuthenticating();
  returnFromIssuer();
  EXPECT_EQ(ear->heard, Ear{});
  host.tap("cancelButton");
  host.runUntilIdle();
  EXPECT_EQ(ear->heard, Ear{"cancelled"});
}

}  // namespace
}  // namespace orlix
