#include <string>

#include <gtest/gtest.h>

#include "orlixkit/securecode/IssuerPage.h"

namespace orlix {
namespace {

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
}

TEST(IssuerPage, ShowsTheServersOwnPageWheneverTheKeyIsThere) {
  for (const bool value : {true, false}) {
    MTSecureCodeURLResponse info;
    info.hasHtmlPresent = true;
    info.htmlPresent = value;
    info.htmlContent = "<html>{own}</html>";
    EXPECT_EQ(IssuerPage::pageFor(info, "https://wallet.example/vello"), "<html>{own}</html>");
  }
}

TEST(IssuerPage, ReadsThePaResFromAnyMarkup) {
  struct Row {
    const char* name;
    std::string markup;
    std::string paRes;
  };
  const std::string large(5'000'000, 'x');
  const Row rows[] = {
      {"call of the marker", R"(<html><script>Vello.handle("eJz=");</script>)", "eJz="},
      {"only the first value", R"(handle("one","two"))", "one"},
      {"no quote", "Vello.handle('eJz=')", ""},
      {"one quote", "Vello.handle(\"eJz=", ""},
      {"empty value", R"(Vello.handle("") + "x")", ""},
      {"nothing at all", "", ""},
      {"line ends inside", "(\"a\nb\")", "a\nb"},
      {"5 MB", large + "\"" + large + "\"", large},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(IssuerPage::parsePaRes(row.markup) == row.paRes, true) << row.name;
  }
}

}  // namespace
}  // namespace orlix
