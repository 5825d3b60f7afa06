// SPDX-License-Identifier: Apache-2.0

#include <iostream>
#include <string>
#include <vector>

#include "examples/shop/Shop.h"
#ifdef ORLIX_SHOP_HAS_WINDOW
#include "examples/shop/window/DrawnShop.h"
#endif

int main(int count, char** values) {
  const std::vector<std::string> arguments(values + (count > 0 ? 1 : 0), values + count);
#ifdef ORLIX_SHOP_HAS_WINDOW
  return orlix::shop::runShop(arguments, std::cout, std::cerr, orlix::shop::runDrawn);
#else
  return orlix::shop::runShop(arguments, std::cout, std::cerr);
#endif
}
