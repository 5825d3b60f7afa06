// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>

#include "bench/Table.h"

namespace orlix::bench {

// Over TLS, against the server at `base`, whose root is the file `anchor`.
Row requestRow(const std::string& base, const std::string& anchor);
Row checkoutRow(const std::string& base, const std::string& anchor);
/// Without its client kept to one processor: what idle processors take to wake up shows.
Row spreadCheckoutRow(const std::string& base, const std::string& anchor);
/// Against requests that take the same turns between two threads and nothing else.
Row threadedCheckoutRow(const std::string& base, const std::string& anchor);
/// A first checkout over a line with 100 ms in each direction: how many round trips it takes.
Row distantCheckoutRow(const std::string& base, const std::string& anchor);

// A new process for each sample.
Row firstRequestRow(const std::string& base, const std::string& anchor);
Row memoryRow(const std::string& base, const std::string& anchor);

// Without a server.
Row pinBlockRow();
Row storeRow(const std::string& file);
Row cardListRow();
/// How time, and memory, grow from ten to 100,000 cards: 1 when they are linear.
Row cardListGrowthRow();
Row cardListMemoryRow();

}  // namespace orlix::bench
