// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/posix/VendorIdentifier.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <string_view>
#include <unistd.h>

#include <fmt/format.h>
#include <openssl/evp.h>
#include <openssl/rand.h>
#include <sys/stat.h>

#include "orlixkit/ports/UserDefaults.h"
#include "orlixkit/posix/StateFolder.h"

namespace orlix {

namespace {

using Uuid = std::array<std::uint8_t, 16>;

constexpr std::string_view kUuidForm = "XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX";
constexpr std::string_view kHexDigits = "0123456789ABCDEFabcdef";

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

bool isUuidText(std::string_view text) {
  return std::equal(text.begin(), text.end(), kUuidForm.begin(), kUuidForm.end(),
                    [](char c, char f) {
                      return f == '-' ? c == '-' : kHexDigits.find(c) != std::string_view::npos;
                    });
}

std::string derivedUuid(const std::string& machineId, const std::string& applicationName) {
  const std::string input = applicationName + '\0' + machineId;
  std::array<std::uint8_t, 32> digest{};
  if (EVP_Digest(input.data(), input.size(), digest.data(), nullptr, EVP_sha256(), nullptr) != 1) {
    throw std::runtime_error("device: SHA-256 is not available");
  }
  Uuid bytes{};
  std::copy_n(digest.begin(), bytes.size(), bytes.begin());
  // Version 8: custom format.
  return uuidText(bytes, 8);
}

std::string randomUuid() {
  Uuid bytes{};
  if (RAND_bytes(bytes.data(), static_cast<int>(bytes.size())) != 1) {
    throw std::runtime_error("device: no random bytes");
  }
  return uuidText(bytes, 4);
}

/// Empty when there is none: the file holds "uninitialized" during a system's first boot.
std::string machineIdIn(const std::filesystem::path& file) {
  std::ifstream stream(file);
  std::string line;
  std::getline(stream, line);
  return line == "uninitialized" ? "" : line;
}

std::string newIdentifier(const IdentifierSources& sources) {
  const std::filesystem::path store = sources.stateDirectory / kStoreFileName;
  if (!existsAndIsPrivate(store)) {
    return randomUuid();
  }
  const std::string machineId = machineIdIn(sources.machineIdFile);
  if (machineId.empty()) {
    throw StoreException(fmt::format(
        "device: there is the store {}, but neither {} beside it nor a machine id in {} to make it "
        "again from. Restore one of the two, or move the store away; the device then has to be "
        "activated again.",
        store.string(), kIdentifierFileName, sources.machineIdFile.string()));
  }
  return derivedUuid(machineId, sources.applicationName);
}

/// Writes the whole text to the disk under a temporary name, then links it as `file` unless that
/// exists: of two processes that start at once, the second uses the first one's identifier.
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
    throw StoreException(fmt::format(
        "device: cannot keep the vendor identifier in {}: {}. Give this user room and the right to "
        "write there, or choose another state folder.",
        file.string(), std::strerror(reason)));
  }
  syncFolder(file.parent_path());
}

std::string read(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  std::string text(kUuidForm.size() + 2, '\0');  // one more than a valid file has
  stream.read(text.data(), static_cast<std::streamsize>(text.size()));
  text.resize(static_cast<std::size_t>(stream.gcount()));
  if (text.ends_with('\n')) {
    text.pop_back();
  }
  if (!isUuidText(text)) {
    throw StoreException(fmt::format(
        "device: {} {}. Restore it from a backup, or move it away together with {}; the device "
        "then has to be activated again.",
        file.string(), stream.is_open() ? "does not hold a vendor identifier" : "cannot be read",
        kStoreFileName));
  }
  return text;
}

}  // namespace

std::string vendorIdentifierOf(const IdentifierSources& sources) {
  requirePrivateFolder(sources.stateDirectory);
  const std::filesystem::path file = sources.stateDirectory / kIdentifierFileName;
  if (!existsAndIsPrivate(file)) {
    writeOnce(file, newIdentifier(sources) + "\n");
  }
  std::string identifier = read(file);
  // Also restrict a file that was copied here with wider permissions.
  ::chmod(file.c_str(), S_IRUSR | S_IWUSR);
  return identifier;
}

}  // namespace orlix
