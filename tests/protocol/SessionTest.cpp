#include <gtest/gtest.h>

#include "orlixkit/protocol/MessageBuilder.h"
#include "tests/protocol/ClientAndServer.h"

namespace orlix::test {

namespace {

/// What a call of establishSession ends in, as one text.
std::string establish(ClientAndServer& test) {
  const auto outcome = test.run([](auto& c) { c.establishSession(); });
  try {
    if (outcome->failure) {
      std::rethrow_exception(outcome->failure);
    }
    return "established";
  } catch (const SMSException&) {
    return "SMS";
  } catch (const AppOutOfDateException& failure) {
    return (failure.stopConnection ? "stop: " : "notice: ") + failure.message.value_or("(none)");
  } catch (const TcOutOfDateException& failure) {
    return "terms: " + failure.message;
  } catch (const NetworkException& failure) {
    return failure.name || failure.reason ? "named network failure" : "network";
  }
}

}  // namespace

TEST(Session, TheAnswerDecidesActivationFirstThenNoticeThenTerms) {
  const std::string terms = "terms: You need to accept the latest Terms and Conditions";
  const std::vector<std::pair<std::string, std::string>> rows = {
      {R"("activated":true,"allowConnection":true)", "established"},
      {R"("activated":true,"allowConnection":true,"message":"","requestTCs":false)", "established"},
      {R"("activated":"yes","allowConnection":"1","requestTCs":"no")", "established"},
      {R"("activated":true,"allowConnection":true,"message":null,"requestTCs":0)", "established"},
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
      {R"("activated":null,"allowConnection":true)", "network"},
      {R"("activated":true,"allowConnection":[])", "network"},
      {R"("activated":true,"allowConnection":true,"requestTCs":{})", "network"},
  };
  for (const auto& [members, expected] : rows) {
    SCOPED_TRACE(members);
    ClientAndServer test;
    test.host.connections().on(
        sessionPath, ServerReply::of(500, R"({"sessionId":"a","sessionId2":17,"pinKey":")" +
                                              firstKey + "\"," + members + "}"));
    EXPECT_EQ(establish(test), expected);
    EXPECT_EQ(test.client->dataStore().sessionId, "a");
    EXPECT_EQ(test.client->dataStore().sessionId2, "17");
    ASSERT_TRUE(test.client->dataStore().pinKey);
    EXPECT_EQ(test.client->dataStore().pinKey->size(), 16U);
  }
}

TEST(Session, AnUnreadableAnswerKeepsTheTokensAndAbsentOrUnreadableKeysLeaveNothingBehind) {
  ClientAndServer test;
  EXPECT_EQ(establish(test), "established");
  for (const ServerReply& reply : {ServerReply().fail("reset"), ServerReply().status(200).silence(),
                                   ServerReply::of(200, ""), ServerReply::of(200, "[]"),
                                   ServerReply::of(200, "{\"a\":"), ServerReply::of(200, "\xff")}) {
    test.host.connections().on(sessionPath, reply);
    EXPECT_EQ(establish(test), "network");
    EXPECT_EQ(test.client->dataStore().sessionId, "one-1");
  }
  test.host.connections().on(
      sessionPath,
      ServerReply::of(200, R"({"pinKey":"not base64","activated":true,"allowConnection":true})"));
  EXPECT_EQ(establish(test), "established");
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
    EXPECT_NE(test.requestsTo(sessionPath).back().body->find("\"ssToken\" : \"" + token + '"'),
              std::string::npos);
    EXPECT_EQ(test.run([&](auto& c) { c.reset(*test.storage); })->failure, nullptr);
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
