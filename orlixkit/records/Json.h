// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <boost/json/fwd.hpp>

namespace orlix {

/// A decoded JSON object and any decoded JSON value. Records name them by reference or pointer
/// only, so that including a record does not pull in the JSON library.
using JsonDictionary = boost::json::object;
using JsonValue = boost::json::value;

}  // namespace orlix
