// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QStringList>

namespace orlix::shop {

/// Keeps what the toolkit warns of, for as long as it lives; it goes to where it went as well. One
/// at a time. Main thread.
class Warnings {
 public:
  Warnings();
  ~Warnings();
  Warnings(const Warnings&) = delete;
  Warnings& operator=(const Warnings&) = delete;

  QStringList texts() const;
};

}  // namespace orlix::shop
