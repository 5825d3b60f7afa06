#include <regex>

#include <gtest/gtest.h>

#include "orlixkit/protocol/MessageBuilder.h"
#include "tests/protocol/ClientAndServer.h"

namespace orlix {

namespace {

/// What a call of establishSession ends in, as one text.
std::string establish(ClientAndServer& test) {
  const Outcome outcome = test.run([](auto& c) { c.establishSession(); });
  try {
    if (outcome.failure) {
      std::rethrow_exception(outcome.failure);
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
  } catch (...) {
    return "something else";
  }
}

TEST(Session, TheAnswerDecidesActivationFirstThenNoticeThenTerms) {
  const std::string terms = "terms: You need to accept the latest Terms and Conditions";
  const std::vector<std::pair<std::string, std::string>> rows = {
      {R"("activated":true,"allowConnection":true)", "established"},
      {R"("activated":true,"allowConnection":true,"message":"","requestTCs":false)", "established"},
      {R"("activated":"yes","allowConnection":"1","requestTCs":"no")", "established"},
      {R"("activated":true,"allowConnection":true,"message":null,"requestTCs":0)", "established"},
      {R"("activated":false,"allowConnection":false,"message":"m")", "SMS"},
      {R"("activated":"0","allowConnection":null)", "SMS"},
      {"", "SMS"},
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
    const std::string tokens = R"({"sessionId":"a","sessionId2":17,"pinKey":")" + firstKey + "\"";
    test.host.connections().on(
        sessionPath, ServerReply::of(500, tokens + (members.empty() ? "" : ",") + members + "}"));
    EXPECT_EQ(establish(test), expected);
    EXPECT_EQ(test.client->dataStore().sessionId, "a");
    EXPECT_EQ(test.client->dataStore().sessionId2, "17");
    ASSERT_TRUE(test.client->dataStore().pinKey);
    EXPECT_EQ(test.client->dataStore().pinKey->size(), 16U);
  }
}

TEST(Session, AnUnreadableOrMissingAnswerIsANetworkFailureAndKeepsTheTokens) {
  const std::vector<ServerReply> replies = {
      ServerReply().fail("reset"),     ServerReply().status(200).silence(),
      ServerReply::of(200, ""),        ServerReply::of(200, "[]"),
      ServerReply::of(200, "{\"a\":"), ServerReply::of(200, "\xff"),
  };
  for (const ServerReply& reply : replies) {
    ClientAndServer test;
    EXPECT_EQ(establish(test), "established");
    test.host.connections().on(sessionPath, reply);
    EXPECT_EQ(establish(test), "network");
    EXPECT_EQ(test.client->dataStore().sessionId, "one-1");
  }
}

TEST(Session, KeysThatAreAbsentOrUnreadableLeaveNothingBehind) {
  ClientAndServer test;
  establish(test);
  test.host.connections().on(
      sessionPath,
      ServerReply::of(200, R"({"pinKey":"not base64","activated":true,"allowConnection":true})"));
  EXPECT_EQ(establish(test), "established");
  EXPECT_FALSE(test.client->dataStore().sessionId);
  EXPECT_FALSE(test.client->dataStore().sessionId2);
  EXPECT_FALSE(test.client->dataStore().pinKey);
}

TEST(Session, RequestsBeforeActivationGoOutWithTheTokensOfTheRefusal) {
  ClientAndServer test;
  test.host.connections().on(sessionPath, ServerReply::of(200, R"({"sessionId":"s"})"));
  EXPECT_EQ(establish(test), "SMS");
  EXPECT_EQ(test.run([](auto& c) { c.sendMsisdn("1"); }).failure, nullptr);
  EXPECT_EQ(test.requestsTo("/sms/send").at(0).header("x-session-token1"), "s");
  EXPECT_EQ(test.requestsTo("/sms/send").at(0).header("x-session-token2"), std::nullopt);
  EXPECT_EQ(test.requestsTo(sessionPath).size(), 1U);
}

TEST(Session, TheActivationTokenIsStoredAndSentFromThenOn) {
  struct Case {
    std::string answer;
    std::int32_t status;
    std::string sent;
  };
  const std::vector<Case> cases = {
      {R"({"status":"SUCCESS","newSsToken":"t1"})", 2, R"("ssToken" : "t1")"},
      {R"({"status":"FAILED","newSsToken":"t1"})", 3, R"("ssToken" : "")"},
      {R"({"status":"SUCCESS"})", 2, R"("ssToken" : "")"},
  };
  for (const Case& row : cases) {
    SCOPED_TRACE(row.answer);
    ClientAndServer test;
    test.host.connections().on("/sms/activateSession", ServerReply::of(200, row.answer));
    std::int32_t status = 0;
    EXPECT_EQ(test.run([&](auto& c) { status = c.processActivationCode("1"); }).failure, nullptr);
    EXPECT_EQ(status, row.status);
    EXPECT_EQ(test.client->dataStore().po != nullptr, row.status == 2);
    establish(test);
    EXPECT_NE(test.requestsTo(sessionPath).at(1).body->find(row.sent), std::string::npos);
  }
}

TEST(Session, DeregistrationMakesTheStoredTokenUnreadable) {
  ClientAndServer test;
  test.host.connections().on("/sms/activateSession",
                             ServerReply::of(200, R"({"status":"SUCCESS","newSsToken":"t1"})"));
  test.run([](auto& c) { c.processActivationCode("1"); });
  EXPECT_EQ(test.run([&](auto& c) { c.reset(*test.storage); }).failure, nullptr);
  establish(test);
  EXPECT_NE(test.requestsTo(sessionPath).at(1).body->find(R"("ssToken" : "")"), std::string::npos);
}

TEST(Session, ADeviceWithoutIdentifierMakesOneAndKeepsIt) {
  ClientAndServer test;
  KCVelloConnection anonymous("https://live.example/vello", "TALU", Serial{}, test.storage,
                              std::make_shared<OMNetwork>(), "v",
                              Platform{"o", "v", "n", "a", "d", {}}, "+00:00");
  test.run([&](auto&) {
    anonymous.establishSession();
    anonymous.establishSession();
  });
  const std::string body = *test.requestsTo(sessionPath).at(0).body;
  EXPECT_TRUE(std::regex_search(body, std::regex("\"deviceSerial\" : \"\\[p:[0-9A-F]{32}\\]\"")));
  EXPECT_EQ(test.requestsTo(sessionPath).at(1).body, body);
}

TEST(Session, TheMessageFillsAbsentValuesInTheRecordsItself) {
  Platform platform{"o", "v", "n", "a", "d", {}};
  const auto record = std::make_shared<PersistableObject>();
  record->ssToken.reset();
  const auto body = MessageBuilder::buildEstablishSession({}, "s", record, platform, "+00:00");
  ASSERT_TRUE(body);
  const std::string text(body->reveal().begin(), body->reveal().end());
  EXPECT_NE(text.find(R"("appVersion" : "UNKNOWN")"), std::string::npos);
  EXPECT_EQ(platform.libKey, "");
  EXPECT_EQ(record->ssToken, "");
  EXPECT_FALSE(MessageBuilder::buildEstablishSession({}, "\xff", nullptr, platform, "+00:00"));
  platform.device.reset();
  EXPECT_THROW(MessageBuilder::buildEstablishSession({}, "s", nullptr, platform, "+00:00"),
               std::invalid_argument);
}

}  // namespace

}  // namespace orlix
