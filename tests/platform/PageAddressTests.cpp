#include <gtest/gtest.h>

#include "orlixkit/platform/PageAddress.h"

namespace orlix {

namespace {

TEST(PageAddress, IsEncryptedOrOfThisMachineHoweverItIsWritten) {
  for (const char* allowed :
       {"https://bank.example", "HTTPS://bank.example:8443/a?b#c", "wss://bank.example/push",
        "http://127.0.0.1:80/", "http://LocalHost", "http://[::1]:8080/x", "ws://localhost/"}) {
    EXPECT_TRUE(isPageAddressAllowed(allowed)) << allowed;
  }
  for (const char* refused :
       {"http://bank.example/", "http://127.0.0.1.bank.example/", "http://127.0.0.1@bank.example/",
        "http://bank.example\\@127.0.0.1/", "http://localhost:80@bank.example/", "http://[::1",
        "https://", "https:///path", "file:///etc/passwd", "ftp://127.0.0.1/", "data:text/html,x",
        "javascript:alert(1)", "chrome://version", "view-source:https://bank.example/", ""}) {
    EXPECT_FALSE(isPageAddressAllowed(refused)) << refused;
  }
}

}  // namespace

}  // namespace orlix
