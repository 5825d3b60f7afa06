// SPDX-License-Identifier: Apache-2.0

#include <gtest/gtest.h>

#include "orlixkit/protocol/MessageBuilder.h"
#include "tests/protocol/ClientAndServer.h"

namespace orlix::test {

namespace {

std::string establish(ClientAndServer& test) {
  return test.run([](auto& c) { c.establishSession(); });
}

}  // namespace

TEST(Session, TheAnswerDecidesActivationFirstThenNoticeThenTerms) {
  const std::string terms = "terms: You need to accept the latest Terms and Conditions";
  const std::vector<std::pair<std::string, std::string>> rows = {
      {R"("activated":true,"allowConnection":true)", "done"},
      {R"("activated":true,"allowConnection":true,"message":"","requestTCs":false)", "done"},
      {R"("activated":"yes","allowConnection":"1","requestTCs":"no")", "done"},
      {R"("activated":true,"allowConnection":true,"message":null,"requestTCs":0)", "done"},
      {R"("activated":false,"allowConnection":false,"message":"m")", "SMS"},
      {R"("activated":"0","allowConnection":null)", "SMS"},
      {R"("other":1)", "SMS"},
      {R"("activated":1,"allowConnection":true,"requestTCs":true)", terms},
      {R"("activated":true,"allowConnection":true,"message":"","requestTCs":1)", terms},
      {R"("activated":true,"allowConnection":true,"message":"m","requestTCs":true)", "notice: m"},
      {R"("activated":true,"allowConnection":true,"message":5)", "notice: 5"},
      {R"("activated":true,"allowConnection":false,"message":"m","requestTCs":true)", "stop: m"},
      {R"("activated":true,"message":"")", "stop: Please update your application"},
      {R"("activated":true,"allowConnection":false)", "stop: (none)"},
      {R"("activated":null,"allowConnection":true)", "network failure"},
      {R"("activated":true,"allowConnection":[])", "network failure"},
      {R"("activated":true,"allowConnection":true,"requestTCs":{})", "network failure"},
  };
  for (const auto& [members, expected] : rows) {
    SCOPED_TRACE(members);
    ClientAndServer test;
    test.host.connections().on(
        kSessionPath, ServerReply::of(500, R"({"sessionId":"a","sessionId2":17,"pinKey":")" +
                                               kFirstKey + "\"," + members + "}"));
    EXPECT_EQ(establish(test), expected);
    EXPECT_EQ(test.client->dataStore().sessionId, "a");
    EXPECT_EQ(test.client->dataStore().sessionId2, "17");
    ASSERT_TRUE(test.client->dataStore().pinKey);
    EXPECT_EQ(test.client->dataStore().pinKey->size(), 16U);
  }
}

TEST(Session, AnUnreadableAnswerKeepsTheTokensAndAbsentOrUnreadableKeysLeaveNothingBehind) {
  ClientAndServer test;
  EXPECT_EQ(establish(test), "done");
  for (const ServerReply& reply : {ServerReply().fail("reset"), ServerReply().status(200).silence(),
                                   ServerReply::of(200, ""), ServerReply::of(200, "[]"),
                                   ServerReply::of(200, "{\"a\":"), ServerReply::of(200, "\xff")}) {
    test.host.connections().on(kSessionPath, reply);
    EXPECT_EQ(establish(test), "network failure");
    EXPECT_EQ(test.client->dataStore().sessionId, "one-1");
  }
  test.host.connections().on(
      kSessionPath,
      ServerReply::of(200, R"({"pinKey":"not base64","activated":true,"allowConnection":true})"));
  EXPECT_EQ(establish(test), "done");
  const DataStore& store = test.client->dataStore();
  EXPECT_FALSE(store.sessionId || store.sessionId2 || store.pinKey);
}

TEST(Session, TheActivationTokenIsSentUntilTheDeregistration) {
  ClientAndServer test;
  test.host.connections().on("/sms/activateSession",
                             ServerReply::of(200, R"({"status":"SUCCESS","newSsToken":"t1"})"));
  test.run([](auto& c) { c.processActivationCode("1"); });
  for (const std::string token : {"t1", ""}) {
    establish(test);
    EXPECT_NE(test.requestsTo(kSessionPath).back().body->find("\"ssToken\" : \"" + token + '"'),
              std::string::npos);
    EXPECT_EQ(test.run([&](auto& c) { c.reset(*test.storage); }), "done");
  }
}

TEST(Session, NeedsAStorageAndATransport) {
  MemoryHost host;
  const auto storage = std::make_shared<OMStorage>("live.data");
  const auto network = std::make_shared<OMNetwork>();
  EXPECT_THROW(KCVelloConnection("u", "n", {}, nullptr, network, "v", {}, "z"),
               std::invalid_argument);
  EXPECT_THROW(KCVelloConnection("u", "n", {}, storage, nullptr, "v", {}, "z"),
               std::invalid_argument);
}

TEST(Session, TheMessageFillsAbsentValuesInTheRecordsItself) {
  Platform platform{"o", "v", "n", "a", "d", {}};
  const auto record = std::make_shared<PersistableObject>();
  record->ssToken.reset();
  const auto body = MessageBuilder::buildEstablishSession({}, "s", record, platform, "+00:00");
  const std::string text(body->reveal().begin(), body->reveal().end());
  EXPECT_NE(text.find(R"("appVersion" : "UNKNOWN")"), std::string::npos);
  EXPECT_EQ(platform.libKey, "");
  EXPECT_EQ(record->ssToken, "");
  platform.device.reset();
  EXPECT_THROW(MessageBuilder::buildEstablishSession({}, "s", nullptr, platform, "+00:00"),
               std::invalid_argument);
}

}  // namespace orlix::test
