// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "orlixkit/ports/Bytes.h"
#include "orlixkit/protocol/NetworkInterface.h"

namespace orlix {

/// The transport: one HTTPS POST by the host's client, with the pinned certificates added to the
/// system's roots and a limit of 60 seconds.
///
/// Thread: any, also several at once; each call blocks its thread. At the host's shutdown a call
/// returns at once with what had arrived and no body.
class OMNetwork : public NetworkInterface {
 public:
  /// An answer that grows beyond this many bytes ends as a failed exchange. The largest honest
  /// answer, a list of ten thousand cards, has some three million.
  static constexpr std::size_t kLongestAnswer = std::size_t{16} << 20U;

  NetworkResult post(const std::string& url, const std::optional<SecretBytes>& payload,
                     const DataStore& dataStore, std::function<bool()> mayBeSent = {}) override;

  /// The certificates (DER) that are trusted besides the system's roots: the bundle's resources
  /// "certificateroot" and "certificatewildcard" of type "cer", as far as they are there.
  static std::vector<Bytes> pinnedCertificates();
};

}  // namespace orlix
