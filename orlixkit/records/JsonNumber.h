#pragma once

#include <cmath>

namespace orlix {

/// A number as the answer means it. The JSON library reads a zero with a large exponent, such as
/// 0e400, as none at all, which has no integer reading; and a zero has no sign to be shown.
inline double jsonNumber(double decoded) {
  return std::isnan(decoded) || decoded == 0 ? 0 : decoded;
}

}  // namespace orlix
