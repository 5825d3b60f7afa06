// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <string_view>

#include "sandbox/Http.h"
#include "sandbox/Masking.h"
#include "sandbox/State.h"

namespace orlix::sandbox {

/// The request's body without its secrets, each replaced by what the server makes of it: whether
/// the PIN and the CVV are the card's and the PaRes the issuer's. To be asked before the request is
/// carried out, which may use up what is judged. Thread: the caller locks.
MaskedBody maskRequest(State& state, const HttpRequest& request);

/// The answer's body without its secrets.
MaskedBody maskAnswer(const HttpAnswer& answer);

}  // namespace orlix::sandbox
