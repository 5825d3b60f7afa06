// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QByteArray>
#include <QJsonArray>
#include <QJsonDocument>
#include <QString>

namespace orlix::shell {

/// `text` as a JavaScript string literal, quotes included; escaped so that nothing in it ends the
/// literal.
inline std::string quotedForScript(const std::string& text) {
  const QJsonArray alone{QString::fromStdString(text)};
  std::string json = QJsonDocument(alone).toJson(QJsonDocument::Compact).toStdString();
  return json.substr(1, json.size() - 2);
}

}  // namespace orlix::shell
