// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orlix {

/// One row of the list of countries.
struct CountryCellCode {
  std::string name;     ///< display name
  std::string isoCode;  ///< ISO 3166-1, two letters; unused
  std::string code;     ///< dialling code in digits, without "+" (E.164)
};

/// Reads the resource "CountryCellCodes", in file order. Empty, with a log line, when the resource
/// is missing or corrupt. A row that is not "name,ISO code,digits" is logged and skipped.
std::vector<CountryCellCode> loadCountryCellCodes();

/// Dialling code of an international number ("+" and digits), from the last matching row. Absent
/// when the number does not begin with "+" or no row matches.
std::optional<std::string> countryCodeOf(std::string_view number,
                                         const std::vector<CountryCellCode>& rows);

}  // namespace orlix
