#include <vector>

#include <gtest/gtest.h>

#include "sandbox/Formats.h"

namespace orlix::sandbox::test {
namespace {

TEST(Formats, TakeWhatTheProtocolCanSendAndNothingElse) {
  struct Row {
    const char* what;
    bool (*holds)(std::string_view);
    std::vector<std::string_view> right;
    std::vector<std::string_view> wrong;
  };
  const std::vector<Row> rows{
      {"decimal number",
       &isDecimalNumber,
       {"0", "25", "25.00", "12.5"},
       {"", ".", "1.", ".5", "1,5", "1.2.3", "-1", "1e3", " 1"}},
      {"mobile number",
       &isMobileNumber,
       {"1234567", "123456789012345"},
       {"", "123456", "1234567890123456", "+27821234567", "082 123 4567"}},
      {"time zone", &isTimeZone, {"+02:00", "-05:30"}, {"", "0200", "+0200", "+2:000", "+02:0x"}},
      {"device serial",
       &isDeviceSerial,
       {"[p:0F]", "[i:1],[s:2],[p:3]", "[p:1],[p:2]"},
       {"", "[p:]", "[x:1]", "[p:1],", "[p:1][p:2]", "p:1", "[p:1", ",[p:1]"}},
      {"location",
       &isLocation,
       {"", "[G:-33.9,18.4]", "[N:655,01,7,9]", "[G:1,2],[N:655,01,7,9]", "[N:,,7,]"},
       {"[G:1,2],", "[G:1]", "[G:1,2,3]", "[N:1,2,3,4],[G:1,2]", "[G:1,2][N:1,2,3,4]", "G:1,2",
        "[G:1,2],[G:1,2]"}},
      {"termination address",
       &isTerminationAddress,
       {"https://127.0.0.1:8443/vello/secure_code.jsp", "https://localhost/vello/secure_code.jsp"},
       {"", "https://127.0.0.1", "https://127.0.0.1:8443", "http://127.0.0.1/vello/secure_code.jsp",
        "https://127.0.0.1.example/vello/secure_code.jsp",
        "https://localhost:1/vello/secure_code.jsp?x"}},
  };
  for (const Row& row : rows) {
    for (const std::string_view text : row.right) EXPECT_TRUE(row.holds(text)) << row.what << text;
    for (const std::string_view text : row.wrong) EXPECT_FALSE(row.holds(text)) << row.what << text;
  }
}

}  // namespace
}  // namespace orlix::sandbox::test
