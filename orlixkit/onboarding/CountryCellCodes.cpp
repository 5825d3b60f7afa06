// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/onboarding/CountryCellCodes.h"

#include <stdexcept>

#include "orlixkit/host/Host.h"
#include "orlixkit/onboarding/PropertyList.h"

namespace orlix {

namespace {

std::optional<CountryCellCode> rowOf(const std::string& entry) {
  const std::size_t first = entry.find(',');
  const std::size_t second = first == std::string::npos ? first : entry.find(',', first + 1);
  if (second == std::string::npos) {
    return std::nullopt;
  }
  const std::string code = entry.substr(second + 1, entry.find(',', second + 1) - second - 1);
  if (code.empty() || code.find_first_not_of("0123456789") != std::string::npos) {
    return std::nullopt;
  }
  return CountryCellCode{entry.substr(0, first), entry.substr(first + 1, second - first - 1), code};
}

std::vector<std::string> loadEntries() {
  const std::optional<Bytes> list =
      Host::current().ports().bundle->resource("CountryCellCodes", "plist");
  if (!list) {
    log("OrlixKit: The list of countries is missing.");
    return {};
  }
  try {
    return readStringArray(*list);
  } catch (const std::invalid_argument& error) {
    log(std::string("OrlixKit: The list of countries is corrupt: ") + error.what());
    return {};
  }
}

}  // namespace

std::vector<CountryCellCode> loadCountryCellCodes() {
  std::vector<CountryCellCode> rows;
  for (const std::string& entry : loadEntries()) {
    if (std::optional<CountryCellCode> row = rowOf(entry)) {
      rows.push_back(std::move(*row));
    } else {
      log("OrlixKit: The list of countries has an entry that cannot be read: " + entry);
    }
  }
  return rows;
}

std::optional<std::string> countryCodeOf(std::string_view number,
                                         const std::vector<CountryCellCode>& rows) {
  if (!number.starts_with('+')) {
    return std::nullopt;
  }
  number.remove_prefix(1);
  std::optional<std::string> found;
  for (const CountryCellCode& row : rows) {
    if (number.starts_with(row.code)) {
      // Continue the search: the last match wins when one code is a prefix of another.
      found = row.code;
    }
  }
  return found;
}

}  // namespace orlix
