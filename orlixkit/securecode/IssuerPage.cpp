// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/securecode/IssuerPage.h"

#include <fmt/format.h>

namespace orlix {

std::string IssuerPage::pageFor(const MTSecureCodeURLResponse& info, const std::string& base) {
  // The key's presence decides, whatever its value: a server that sends its own page says so by it.
  if (info.hasHtmlPresent) {
    return info.htmlContent.value_or("");
  }
  // Nothing is escaped: address and PaReq come from the wallet server, which sends them ready for
  // the attribute, and an escaped PaReq would reach the issuer changed.
  return fmt::format(
      "<HTML>"
      "<head>"
      "   <meta name='viewport' content='width=device-width, initial-scale=1.0'>"
      "</head>"
      "<BODY onload='document.frmLaunch.submit();'> Redirecting..."
      "<FORM name='frmLaunch' method='POST' action='{}'>"
      "    <input type=hidden name='PaReq' value='{}'>"
      "   <input type=hidden name='TermUrl' value='{}/secure_code.jsp'>"
      "   <input type=hidden name='MD' value=''>"
      "</FORM>"
      "</BODY>"
      "</HTML>",
      info.URL.value_or(""), info.payload.value_or(""), base);
}

bool IssuerPage::isMissing(const MTSecureCodeURLResponse& info) {
  return (info.hasHtmlPresent ? info.htmlContent : info.URL).value_or("").empty();
}

bool IssuerPage::isLaunchForm(std::string_view markup) {
  return markup.find("frmLaunch") != std::string_view::npos;
}

bool IssuerPage::isTerminationPage(std::string_view markup) {
  return markup.find("Vello.handle") != std::string_view::npos;
}

SecretString IssuerPage::parsePaRes(std::string_view markup) {
  const std::size_t opening = markup.find('"');
  if (opening == std::string_view::npos) {
    return {};
  }
  const std::string_view rest = markup.substr(opening + 1);
  const std::size_t closing = rest.find('"');
  return closing == std::string_view::npos ? SecretString() : SecretString(rest.substr(0, closing));
}

}  // namespace orlix
