// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <string_view>

#include "orlixkit/ports/Secret.h"
#include "orlixkit/records/MTSecureCodeURLResponse.h"

namespace orlix {

/// The pages of a 3-D Secure authentication: the form that posts PaReq, TermUrl and MD to the
/// issuer, and the termination page that returns the PaRes.
class IssuerPage {
 public:
  /// The page to load: the server's own if it sent one, else a form that submits itself to the
  /// issuer. `base`: the wallet server's base address, for the TermUrl.
  static std::string pageFor(const MTSecureCodeURLResponse& info, const std::string& base);

  /// True when the server sent neither a page nor the address of the issuer's page.
  static bool isMissing(const MTSecureCodeURLResponse& info);

  /// True for the markup of the self-submitting form.
  static bool isLaunchForm(std::string_view markup);

  /// True for the markup of the wallet server's termination page.
  static bool isTerminationPage(std::string_view markup);

  /// The PaRes: the first double-quoted value in the termination page's markup. Empty without one;
  /// the server then refuses the purchase.
  static SecretString parsePaRes(std::string_view markup);
};

}  // namespace orlix
