#include "orlixkit/platform/posix/PosixDevice.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <span>
#include <stdexcept>
#include <unistd.h>

#include <fmt/format.h>
#include <openssl/evp.h>
#include <openssl/rand.h>
#include <sys/utsname.h>

namespace orlix {

namespace {

using Uuid = std::array<std::uint8_t, 16>;

/// The text form of RFC 4122, upper-case, with the version and variant bits set.
std::string uuidText(Uuid bytes, std::uint8_t version) {
  bytes[6] = static_cast<std::uint8_t>((bytes[6] & 0x0F) | (version << 4));
  bytes[8] = static_cast<std::uint8_t>((bytes[8] & 0x3F) | 0x80);
  std::string text;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    text += fmt::format("{}{:02X}", i == 4 || i == 6 || i == 8 || i == 10 ? "-" : "", bytes[i]);
  }
  return text;
}

std::string derivedUuid(const std::string& machineId, const std::string& applicationName) {
  const std::string input = applicationName + '\0' + machineId;
  std::array<std::uint8_t, 32> digest{};
  if (EVP_Digest(input.data(), input.size(), digest.data(), nullptr, EVP_sha256(), nullptr) != 1) {
    throw std::runtime_error("device: SHA-256 is not available");
  }
  Uuid bytes{};
  std::copy_n(digest.begin(), bytes.size(), bytes.begin());
  // Version 8: made by a rule of one's own.
  return uuidText(bytes, 8);
}

std::string randomUuid() {
  Uuid bytes{};
  if (RAND_bytes(bytes.data(), static_cast<int>(bytes.size())) != 1) {
    throw std::runtime_error("device: no random bytes");
  }
  return uuidText(bytes, 4);
}

/// The file's first line; empty when it cannot be read.
std::string firstLine(const std::filesystem::path& file) {
  std::ifstream stream(file);
  std::string line;
  std::getline(stream, line);
  return line;
}

/// Puts the whole text on the disk under a new name, then gives it `file`'s name unless that is
/// taken: of two processes that start at once, the second one keeps the first one's identifier.
void writeOnce(const std::filesystem::path& file, const std::string& text) {
  std::string temporary = file.string() + ".XXXXXX";
  const int made = ::mkostemp(temporary.data(), O_CLOEXEC);
  const bool written =
      made >= 0 && ::write(made, text.data(), text.size()) == static_cast<ssize_t>(text.size()) &&
      ::fsync(made) == 0;
  const bool linked = written && (::link(temporary.c_str(), file.c_str()) == 0 || errno == EEXIST);
  const int reason = errno;
  if (made >= 0) {
    ::close(made);
    ::unlink(temporary.c_str());
  }
  if (!linked) {
    throw std::runtime_error(fmt::format("device: cannot keep the vendor identifier in {}: {}",
                                         file.string(), std::strerror(reason)));
  }
}

std::string keptUuid(const std::filesystem::path& stateDirectory) {
  const std::filesystem::path file = stateDirectory / "vendor-identifier";
  std::string kept = firstLine(file);
  if (kept.empty()) {
    std::filesystem::create_directories(stateDirectory);
    writeOnce(file, randomUuid() + "\n");
    kept = firstLine(file);
  }
  if (kept.size() != 36) {
    throw std::runtime_error(
        fmt::format("device: {} does not hold a vendor identifier", file.string()));
  }
  return kept;
}

}  // namespace

PosixDevice::PosixDevice(const Sources& sources) {
  const std::string machineId = firstLine(sources.machineIdFile);
  // "uninitialized" stands in the file during a system's first start only.
  vendorIdentifier_ = machineId.empty() || machineId == "uninitialized"
                          ? keptUuid(sources.stateDirectory)
                          : derivedUuid(machineId, sources.applicationName);
  utsname names{};
  if (::uname(&names) == 0) {
    systemVersion_ = static_cast<const char*>(names.release);
    model_ = static_cast<const char*>(names.machine);
  }
}

std::string PosixDevice::bundleShortVersion() const { return ORLIX_VERSION; }

}  // namespace orlix
