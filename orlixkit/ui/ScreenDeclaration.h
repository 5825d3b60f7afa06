// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <span>

namespace orlix {

/// An alert that can come over a screen. What is between angle brackets in the message stands for a
/// text that is known only then: "<the server's message>".
struct AlertText {
  const char* title;
  const char* message;
  const char* buttons = "Ok";  ///< their titles in order, separated by ", "
};

/// An outlet that can be out of sight. Rules for a group cover the outlets inside it.
struct HidingRule {
  const char* outlet;
  const char* when;  ///< completes "hidden when …"
};

/// What a screen can bring about besides its outlets and actions: for those who draw it themselves,
/// and for the tests, which hold the running screens against it. All of it is in static memory.
struct ScreenDeclaration {
  std::span<const AlertText> alerts = {};
  /// By name, which is the identifier of the screen that the segue opens.
  std::span<const char* const> segues = {};
  std::span<const HidingRule> hiding = {};
};

}  // namespace orlix
