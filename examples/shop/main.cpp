#include <iostream>
#include <string>
#include <vector>

#include "examples/shop/Shop.h"

int main(int count, char** values) {
  const std::vector<std::string> arguments(values + (count > 0 ? 1 : 0), values + count);
  return orlix::shop::runShop(arguments, std::cout, std::cerr);
}
