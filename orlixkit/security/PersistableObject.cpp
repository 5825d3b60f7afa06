// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/security/PersistableObject.h"

#include <array>
#include <new>
#include <stdexcept>
#include <string_view>

#include <boost/json.hpp>

#include "orlixkit/security/AnswerMemory.h"

namespace orlix {

namespace json = boost::json;

namespace {

constexpr std::string_view kRootKey = "root";
constexpr std::string_view kRootClass = "PersistableObject";
constexpr std::string_view kSsTokenKey = "ssToken";
constexpr std::string_view kUidKey = "uid";
/// Far larger than any token, and small enough to bound the memory for a foreign blob.
constexpr std::size_t kMemoryLimit = std::size_t{16} * 1024 * 1024;

SecretBytes written(const json::value& archive) {
  SecretBytes bytes;
  std::array<char, 512> piece{};
  json::serializer serializer;
  serializer.reset(&archive);
  while (!serializer.done()) {
    const auto text = serializer.read(piece.data(), piece.size());
    bytes.append({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
  }
  wipe(piece.data(), piece.size());
  return bytes;
}

std::string decodedText(const json::object& archive, std::string_view key) {
  const json::value* value = archive.if_contains(key);
  if (value == nullptr || !value->is_string()) {
    throw std::invalid_argument("The archive has no text for the key " + std::string(key));
  }
  const json::string& text = value->get_string();
  return {text.data(), text.size()};
}

std::shared_ptr<PersistableObject> decoded(const json::value& archive) {
  const json::object* root = archive.if_object();
  const json::value* kind = root != nullptr ? root->if_contains(kRootKey) : nullptr;
  if (kind == nullptr) {
    throw std::invalid_argument("The data is no archive");
  }
  if (kind->is_null()) {
    return nullptr;
  }
  if (!kind->is_string() || std::string_view(kind->get_string()) != kRootClass) {
    throw std::invalid_argument("The archive's root is no PersistableObject");
  }
  auto record = std::make_shared<PersistableObject>();
  record->ssToken = decodedText(*root, kSsTokenKey);
  record->uid = decodedText(*root, kUidKey);
  return record;
}

}  // namespace

SecretBytes PersistableObject::archive(const PersistableObject* root) {
  AnswerMemory memory(kMemoryLimit);
  json::value archive(json::object_kind, &memory);
  json::object& entries = archive.get_object();
  if (root == nullptr) {
    entries[kRootKey] = nullptr;
    return written(archive);
  }
  entries[kRootKey] = kRootClass;
  if (root->ssToken) {
    entries[kSsTokenKey] = *root->ssToken;
  }
  if (root->uid) {
    entries[kUidKey] = *root->uid;
  }
  return written(archive);
}

std::shared_ptr<PersistableObject> PersistableObject::unarchive(ByteView archive) {
  AnswerMemory memory(kMemoryLimit);
  json::parser parser{json::storage_ptr(&memory)};
  parser.reset(&memory);
  json::error_code error;
  try {
    const json::string_view text(reinterpret_cast<const char*>(archive.data()), archive.size());
    if (parser.write(text, error); error) {
      throw std::invalid_argument("The data is no archive");
    }
  } catch (const std::bad_alloc&) {
    throw std::invalid_argument("The archive is too large");
  }
  return decoded(parser.release());
}

}  // namespace orlix
