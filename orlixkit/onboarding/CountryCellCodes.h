#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orlix {

/// One row of the list of countries.
struct CountryCellCode {
  std::string name;     ///< as it is shown
  std::string isoCode;  ///< ISO 3166-1, two letters; carried along
  std::string code;     ///< dialling code in digits, without "+" (E.164)
};

/// The list from the resource "CountryCellCodes", in its order. Empty, with a log line, when the
/// resource is missing or corrupt. A row that is not "name,ISO code,digits" is logged and left out.
std::vector<CountryCellCode> loadCountryCellCodes();

/// Dialling code of an international number ("+" and digits): that of the last row that matches.
/// None when the number does not begin with "+", or when no row matches.
std::optional<std::string> countryCodeOf(std::string_view number,
                                         const std::vector<CountryCellCode>& rows);

}  // namespace orlix
