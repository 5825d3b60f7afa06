#pragma once

#include <string>

#include "bench/Table.h"

namespace orlix::bench {

/// A request through OMNetwork against the same POST on a bare, reused curl handle.
Row requestRow(const std::string& base, const std::string& anchor);
/// A whole PIN checkout against the sum of its bare requests.
Row checkoutRow(const std::string& base, const std::string& anchor);
/// The same against those requests made one by one on another thread, as whoever must not block the
/// main thread has to make them: what the two hand-overs a request cost is in both.
Row threadedCheckoutRow(const std::string& base, const std::string& anchor);
/// A PIN block against the bare triple-DES call.
Row pinBlockRow();
/// Saving and loading the record against the bare cipher and database calls. `file` is made.
Row storeRow(const std::string& file);
/// A list of 10,000 cards read into records against the bare JSON parse of the same bytes.
Row cardListRow();

}  // namespace orlix::bench
