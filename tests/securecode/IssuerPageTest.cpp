// SPDX-License-Identifier: Apache-2.0

#include <gtest/gtest.h>

#include "orlixkit/securecode/IssuerPage.h"

namespace orlix::test {

TEST(IssuerPage, PostsPaReqTermUrlAndMdToTheIssuerUnescaped) {
  MTSecureCodeURLResponse info;
  info.URL = "https://issuer.example/acs?a=1&b='2'";
  info.payload = "eJx<&>'+/=";
  EXPECT_EQ(IssuerPage::pageFor(info, "https://wallet.example/vello"),
            "<HTML><head>"
            "   <meta name='viewport' content='width=device-width, initial-scale=1.0'>"
            "</head><BODY onload='document.frmLaunch.submit();'> Redirecting..."
            "<FORM name='frmLaunch' method='POST' action='https://issuer.example/acs?a=1&b='2''>"
            "    <input type=hidden name='PaReq' value='eJx<&>'+/='>"
            "   <input type=hidden name='TermUrl' "
            "value='https://wallet.example/vello/secure_code.jsp'>"
            "   <input type=hidden name='MD' value=''>"
            "</FORM></BODY></HTML>");
  for (const bool value : {true, false}) {  // the key alone counts
    info.hasHtmlPresent = true;
    info.htmlPresent = value;
    info.htmlContent = "<html>{own}</html>";
    EXPECT_EQ(IssuerPage::pageFor(info, "https://wallet.example/vello"), "<html>{own}</html>");
  }
}

TEST(IssuerPage, ReadsThePaResFromAnyMarkup) {
  const std::string large(5'000'000, 'x');
  const std::vector<std::pair<std::string, std::string>> rows{
      {R"(<html><script>Vello.handle("eJz=");</script>)", "eJz="},
      {R"(handle("one","two"))", "one"},
      {"Vello.handle('eJz=')", ""},
      {"Vello.handle(\"eJz=", ""},
      {R"(Vello.handle("") + "x")", ""},
      {"", ""},
      {"(\"a\nb\")", "a\nb"},
      {large + "\"" + large + "\"", large},
  };
  for (const auto& [markup, paRes] : rows) {
    EXPECT_TRUE(IssuerPage::parsePaRes(markup).text() == paRes) << markup.substr(0, 99);
  }
}

}  // namespace orlix::test
