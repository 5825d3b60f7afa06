// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QByteArray>
#include <QString>
#include <string_view>

#include "orlixkit/ports/Secret.h"

namespace orlix::shell {

/// Overwrites the characters of a text in every object that shares them, including copies made by
/// assignment. For secrets no longer needed. Does not write to texts in read-only memory.
inline void wipeShared(const QString& text) {
  if (auto& data = const_cast<QString&>(text).data_ptr(); data.d_ptr() != nullptr) {
    wipe(data.data(), static_cast<std::size_t>(text.size()) * sizeof(QChar));
  }
}

/// The text in UTF-8, without leaving an intermediate copy.
inline SecretString secretOf(const QString& text) {
  const QByteArray bytes = text.toUtf8();
  SecretString secret(std::string_view(bytes.constData(), static_cast<std::size_t>(bytes.size())));
  wipe(const_cast<char*>(bytes.constData()), static_cast<std::size_t>(bytes.size()));
  return secret;
}

}  // namespace orlix::shell
