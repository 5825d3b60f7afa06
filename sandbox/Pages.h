// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <string_view>

namespace orlix::sandbox {

/// What the issuer's page shows and carries along.
struct IssuerForm {
  std::string action;  ///< Absolute or relative address that the form is posted to.
  std::string paReq;
  std::string termUrl;
  std::string md;
  std::string amount;  ///< Empty when the card alone is authenticated.
  int wrongCodes = 0;  ///< How many were sent before.
};

/// The access-control page: #otp takes the one-time code, #submit sends it, #cancel gives up.
/// After N wrong codes the message is `#message[data-wrong='N']`.
std::string issuerPage(const IssuerForm& form);

/// Posts PaRes and MD to `termUrl` by itself as soon as it is loaded.
std::string returningPage(std::string_view termUrl, std::string_view paRes, std::string_view md);

/// A page that stays as it is.
std::string waitingPage(std::string_view title, std::string_view text);

/// The termination page. `paRes` is the first double-quoted text of its markup, as a browser gives
/// the markup back. `again`: the page loads itself once more. `padding`: bytes of filling at its
/// end.
std::string terminationPage(std::string_view paRes, bool again, size_t padding);

std::string termsPage(long long version);

/// `text` for use inside HTML text and quoted attributes.
std::string escaped(std::string_view text);

}  // namespace orlix::sandbox
