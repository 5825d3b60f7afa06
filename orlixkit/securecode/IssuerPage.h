// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <string_view>

#include "orlixkit/ports/Secret.h"
#include "orlixkit/records/MTSecureCodeURLResponse.h"

namespace orlix {

/// The page exchange of 3-D Secure: the form that sends the browser to the issuer, and the page on
/// which the issuer sends it back.
class IssuerPage {
 public:
  /// The page to load: the server's own, when it sent one, else a form that posts PaReq, TermUrl
  /// and MD to the issuer by itself. `base`: the wallet server's base address, for the TermUrl.
  static std::string pageFor(const MTSecureCodeURLResponse& info, const std::string& base);

  /// True when the server sent neither a page of its own nor the address of the issuer's.
  static bool isMissing(const MTSecureCodeURLResponse& info);

  /// True for the markup of the form that posts itself, whose place the issuer's page takes.
  static bool isLaunchForm(std::string_view markup);

  /// True for the markup of the wallet server's termination page.
  static bool isTerminationPage(std::string_view markup);

  /// The PaRes: the first double-quoted value of the termination page's markup. Empty when there is
  /// no complete quoted value; the server then refuses the purchase.
  static SecretString parsePaRes(std::string_view markup);
};

}  // namespace orlix
