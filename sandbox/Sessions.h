#pragma once

#include <list>
#include <string>
#include <string_view>
#include <vector>

namespace orlix::sandbox {

struct Session {
  std::string token1;
  std::string token2;
  std::string deviceSerial;
  std::string wallet;  ///< Empty until the device is enrolled.
  std::vector<unsigned char> pinKey;
  bool forgetAtNextRequest = false;
};

/// The sessions that the server knows; a restart forgets them all.
/// Thread: the caller locks. A returned pointer is good until the next change.
class Sessions {
 public:
  /// A session with fresh tokens and PIN key. A device keeps its latest sessions only, so that a
  /// client that re-establishes without end does not fill the memory.
  const Session& open(std::string_view deviceSerial, std::string_view wallet);

  /// The session with both tokens, or none.
  Session* find(std::string_view token1, std::string_view token2);

  void forget(std::string_view token1);
  void forgetAll();
  size_t count() const { return sessions_.size(); }

 private:
  static constexpr size_t keptForEachDevice = 16;

  std::list<Session> sessions_;  ///< Latest first.
};

}  // namespace orlix::sandbox
