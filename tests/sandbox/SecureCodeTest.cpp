#include "tests/sandbox/EnrolledTest.h"

namespace orlix::sandbox::test {
namespace {

/// The value of the hidden field `name` in a page, as a browser would post it.
std::string fieldIn(const std::string& page, const std::string& name) {
  const std::string before = "name='" + name + "' value='";
  const size_t at = page.find(before);
  if (at == std::string::npos) return "";
  const size_t start = at + before.size();
  return page.substr(start, page.find('\'', start) - start);
}

/// A device with cards of every issuer, and a browser beside it.
class SecureCode : public EnrolledTest {
 protected:
  json::object pageFor(std::string_view hint, std::string_view code = "FIXED-25",
                       std::string_view amount = "25.00") {
    return wallet_
        ->post("/vello/card/scUrl/TALU",
               {{"cardId", wallet_->cardEnding(hint)}, {"code", code}, {"amount", amount}})
        .body;
  }

  std::string post(const std::string& path, const httplib::Params& fields) {
    const auto result = wallet_->http.Post(path, fields);
    return result ? result->body : "";
  }

  std::string termUrl() const { return sandbox_.base() + "/secure_code.jsp"; }

  std::string openPage(const json::object& info) {
    return post("/issuer/acs",
                {{"PaReq", textOf(info, "payload")}, {"TermUrl", termUrl()}, {"MD", "m'd"}});
  }

  std::string answer(const std::string& page, const std::string& otp,
                     const std::string& choice = "submit") {
    return post("/issuer/otp", {{"PaReq", fieldIn(page, "PaReq")},
                                {"TermUrl", fieldIn(page, "TermUrl")},
                                {"MD", "m'd"},
                                {"otp", otp},
                                {"choice", choice}});
  }

  /// Through the issuer's page with the right code; the PaRes that comes back.
  std::string pass(const json::object& info) {
    return fieldIn(answer(openPage(info), "123456"), "PaRes");
  }

  json::object purchase(std::string_view hint, const json::object& info, const std::string& paRes) {
    json::object body = wallet_->purchase("FIXED-25", hint, "25.00");
    body["cvv"] = hint == "0309" ? "123" : "";
    body["secureCodeData"] = {{"PaRes", paRes}, {"secureCodeId", integerOf(info, "secureCodeId")}};
    return body;
  }
};

TEST_F(SecureCode, PassedPagePaysOnceForItsOwnPayment) {
  const json::object info = pageFor("0301");
  EXPECT_EQ(info.at("cardSupported"), true);
  const std::string page = openPage(info);
  for (const char* id : {"id='otp'", "id='submit'", "id='cancel'", "m&#39;d"}) {
    EXPECT_NE(page.find(id), std::string::npos) << id;
  }
  const std::string paRes = pass(info);
  ASSERT_FALSE(paRes.empty());
  json::object otherAmount = purchase("0301", info, paRes);
  otherAmount["code"] = "OPEN";
  otherAmount["amount"] = "1.00";
  EXPECT_EQ(pay(otherAmount), "ERROR") << "it was for another payment";
  EXPECT_EQ(pay(purchase("0309", info, paRes)), "ERROR") << "it was for another card";
  EXPECT_EQ(pay(purchase("0301", info, paRes + "x")), "ERROR") << "the issuer never said that";
  EXPECT_EQ(pay(purchase("0301", info, paRes)), "SUCCESS");
  EXPECT_EQ(pay(purchase("0301", info, paRes)), "ERROR") << "it is used up";
}

TEST_F(SecureCode, IssuerBelievesTheRightCodeOnly) {
  struct Row {
    const char* what;
    std::vector<std::string> codes;
    const char* choice;
    const char* status;
  };
  const std::vector<Row> rows{
      {"right at once", {"123456"}, "submit", "SUCCESS"},
      {"right at the third try", {"1", "2", "123456"}, "submit", "SUCCESS"},
      {"three wrong codes", {"1", "2", "3"}, "submit", "ERROR"},
      {"the code that fails", {"000000"}, "submit", "ERROR"},
      {"cancelled", {"123456"}, "cancel", "ERROR"},
  };
  for (const Row& row : rows) {
    const json::object info = pageFor("0301");
    std::string page = openPage(info);
    for (const std::string& code : row.codes) page = answer(page, code, row.choice);
    const std::string paRes = fieldIn(page, "PaRes");
    ASSERT_FALSE(paRes.empty()) << row.what;
    EXPECT_EQ(pay(purchase("0301", info, paRes)), row.status) << row.what;
  }
}

TEST_F(SecureCode, CardDecidesHowItsIssuerBehaves) {
  EXPECT_EQ(pageFor("0302").at("cardSupported"), false);
  EXPECT_EQ(pageFor("1111").at("cardSupported"), false) << "pays in another way";
  EXPECT_FALSE(textOf(pageFor("0303"), "error").empty());
  EXPECT_FALSE(textOf(pageFor("9999"), "error").empty()) << "no such card";
  EXPECT_FALSE(textOf(pageFor("0301", "NO-SUCH-CODE"), "error").empty());
  for (const auto& [hint, present] :
       std::vector<std::pair<const char*, bool>>{{"0304", true}, {"0305", false}}) {
    const json::object info = pageFor(hint);
    EXPECT_EQ(info.at("htmlPresent"), present);
    EXPECT_FALSE(info.contains("url"));
    const std::string page = textOf(info, "htmlContent");
    EXPECT_NE(page.find("action='https://127.0.0.1:"), std::string::npos);
    const std::string paRes = fieldIn(answer(page, "123456"), "PaRes");
    EXPECT_EQ(pay(purchase(hint, info, paRes)), "SUCCESS") << hint;
  }
  const json::object never = pageFor("0306");
  EXPECT_EQ(fieldIn(answer(openPage(never), "123456"), "PaRes"), "");
  EXPECT_NE(fieldIn(answer(openPage(never), "", "cancel"), "PaRes"), "") << "cancel always works";
  for (const auto& [hint, status] :
       std::vector<std::pair<const char*, const char*>>{{"0308", "ERROR"}, {"0309", "SUCCESS"}}) {
    const json::object info = pageFor(hint);
    EXPECT_EQ(pay(purchase(hint, info, pass(info))), status) << hint;
  }
}

TEST_F(SecureCode, PaResIsTheFirstQuotedTextOfTheTerminationPage) {
  struct Row {
    const char* hint;
    bool again;   ///< The first view of the page loads it once more.
    size_t size;  ///< At least.
  };
  for (const Row& row :
       std::vector<Row>{{"0301", false, 0}, {"0307", true, 0}, {"0310", false, 5'000'000}}) {
    const std::string paRes = pass(pageFor(row.hint));
    const std::string first = post("/vello/secure_code.jsp", {{"PaRes", paRes}, {"MD", ""}});
    const std::string second = post("/vello/secure_code.jsp", {{"PaRes", paRes}, {"MD", ""}});
    EXPECT_EQ(first.find("id='again'") != std::string::npos, row.again) << row.hint;
    EXPECT_EQ(second.find("id='again'"), std::string::npos) << row.hint;
    EXPECT_GE(first.size(), row.size);
    for (const std::string& page : {first, second}) {
      EXPECT_NE(page.find("Vello.handle"), std::string::npos);
      const size_t quote = page.find('"');
      EXPECT_EQ(page.substr(quote + 1, page.find('"', quote + 1) - quote - 1), paRes) << row.hint;
      // Attributes come back from a browser in double quotes, so none may stand before it.
      EXPECT_EQ(page.substr(0, quote).find('='), page.find("Vello=") + 5) << page.substr(0, quote);
    }
  }
  const std::string hostile =
      post("/vello/secure_code.jsp", {{"PaRes", "\"</script><b>"}, {"MD", ""}});
  EXPECT_EQ(hostile.find("</script><b>"), std::string::npos);
}

TEST_F(SecureCode, IssuerTakesOnlyWhatTheWalletSends) {
  const json::object info = pageFor("0301");
  const auto statusOf = [&](const std::string& paReq, const std::string& address) {
    const auto result =
        wallet_->http.Post("/issuer/acs", httplib::Params{{"PaReq", paReq}, {"TermUrl", address}});
    return result ? result->status : 0;
  };
  EXPECT_EQ(statusOf(textOf(info, "payload"), termUrl()), 200);
  EXPECT_EQ(statusOf("x", termUrl()), 400);
  for (const char* address : {"", "https://example.org/vello/secure_code.jsp",
                              "http://127.0.0.1/vello/secure_code.jsp"}) {
    EXPECT_EQ(statusOf(textOf(info, "payload"), address), 400) << address;
  }
}

TEST_F(SecureCode, CardIsAuthenticatedThenValidatedThenPays) {
  const std::int64_t card = wallet_->cardEnding("0203");
  const json::object validation{{"validate", true}, {"cardId", card}, {"inputValue", ""}};
  const auto info = wallet_->post("/vello/card/get3dsValidateUrl/TALU", {{"cardId", card}}).body;
  json::object body = purchase("0203", info, pass(info));
  EXPECT_EQ(pay(body), "ERROR") << "an authentication of the card alone pays nothing";
  body.erase("amount");
  const Reply authenticated = wallet_->post("/vello/auth3Ds/TALU", body);
  EXPECT_EQ(textOf(authenticated.body, "status"), "SUCCESS") << authenticated.text;
  const Reply receipt =
      wallet_->post("/vello/receipt/poll/TALU",
                    {{"transactionId", integerOf(authenticated.body, "transactionId")}});
  EXPECT_EQ(textOf(receipt.body, "status"), "SUCCESS");
  EXPECT_EQ(textOf(wallet_->post("/vello/card/validate/TALU", validation).body, "message"),
            "Your card has been added");
  const json::object page = pageFor("0203");
  EXPECT_EQ(pay(purchase("0203", page, pass(page))), "SUCCESS");
}

}  // namespace
}  // namespace orlix::sandbox::test
