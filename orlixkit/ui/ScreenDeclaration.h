// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <span>

namespace orlix {

/// An alert that a screen can show. Angle brackets in the message mark a text that is only known at
/// run time: "<the server's message>".
struct AlertText {
  const char* title;
  const char* message;
  const char* buttons = "Ok";  ///< their titles in order, separated by ", "
};

/// When an outlet is hidden. The rule of a group also covers the outlets inside it.
struct HidingRule {
  const char* outlet;
  const char* when;  ///< completes "hidden when …"
};

/// Alerts, segues and hiding rules of a screen, for hosts that draw the screens themselves. The
/// tests compare the running screens with it. Refers to static memory.
struct ScreenDeclaration {
  std::span<const AlertText> alerts = {};
  /// Names, which are the identifiers of the opened screens.
  std::span<const char* const> segues = {};
  std::span<const HidingRule> hiding = {};
};

}  // namespace orlix
