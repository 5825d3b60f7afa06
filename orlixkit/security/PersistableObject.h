// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <optional>
#include <string>

#include "orlixkit/ports/Bytes.h"
#include "orlixkit/ports/Secret.h"

namespace orlix {

/// The one record that is kept on the device.
///
/// Its archive is a JSON object with the class name of the root and its two texts:
/// {"root":"PersistableObject","ssToken":"…","uid":"…"}; the archive of nothing is {"root":null}.
struct PersistableObject {
  std::optional<std::string> ssToken = "";  ///< long-lived wallet token; empty: never activated
  std::optional<std::string> uid = "";

  /// An absent record is archived as an archive of nothing; an absent text is omitted.
  static SecretBytes archive(const PersistableObject* root);

  /// The archived record; absent for an archive of nothing. Throws std::invalid_argument when the
  /// bytes are not an archive, its root is of another class, or one of the texts is missing.
  static std::shared_ptr<PersistableObject> unarchive(ByteView archive);
};

}  // namespace orlix
