// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <exception>
#include <optional>
#include <string>
#include <utility>

namespace orlix {

/// Transport failure, unexpected HTTP code or unreadable answer: the request has failed, and the
/// user is offered a retry. Only the answer parser sets name and reason.
class NetworkException : public std::exception {
 public:
  std::optional<std::string> name;
  std::optional<std::string> reason;

  NetworkException() = default;
  explicit NetworkException(std::string name_, std::string reason_)
      : name(std::move(name_)), reason(std::move(reason_)) {}
  const char* what() const noexcept override {
    return reason ? reason->c_str() : "The wallet server could not be asked";
  }
};

/// The exception that the answer parser throws.
inline NetworkException unreadableAnswer() {
  return NetworkException("Parse data", "Something went wrong with the data");
}

/// The device is not activated on the server: activation by SMS has to come first.
class SMSException : public std::exception {
 public:
  const char* what() const noexcept override { return "The device is not activated"; }
};

/// The server refuses this version of the library (`stopConnection`) or sends a notice for the user
/// (otherwise; the session is usable).
class AppOutOfDateException : public std::exception {
 public:
  std::optional<std::string> message;
  bool stopConnection = false;

  AppOutOfDateException(std::optional<std::string> message_, bool stopConnection_)
      : message(std::move(message_)), stopConnection(stopConnection_) {}
  const char* what() const noexcept override {
    return message ? message->c_str() : "The application is out of date";
  }
};

/// The user has to accept new terms and conditions.
class TcOutOfDateException : public std::exception {
 public:
  std::string message;

  explicit TcOutOfDateException(std::string message_) : message(std::move(message_)) {}
  const char* what() const noexcept override { return message.c_str(); }
};

}  // namespace orlix
