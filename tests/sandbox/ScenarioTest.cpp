// SPDX-License-Identifier: Apache-2.0

#include <fstream>

#include "tests/TemporaryFolder.h"
#include "tests/sandbox/Wallet.h"

namespace orlix::sandbox::test {
namespace {

const std::string kExample = ORLIX_SOURCE_DIR "/sandbox/scenario.example.json";

TEST(Scenario, TheExamplesCodesAndCardsPayByItsPins) {
  Sandbox sandbox({.scenario = kExample, .enrolled = true});
  sandbox.start();
  Wallet wallet(sandbox);
  wallet.start();
  EXPECT_EQ(wallet.post("card/list/TALU").body.at("cards").get_array().size(), 3U);
  EXPECT_EQ(wallet.pay(wallet.purchase("BREAKFAST", "4711", "149.00", "2468")), "SUCCESS");
  EXPECT_EQ(wallet.pay(wallet.purchase("BREAKFAST", "4711", "149.00", "1234")), "INVALID_PASSWORD");
  EXPECT_EQ(wallet.pay(wallet.purchase("JUKEBOX", "4712", "5.00", "", "987")), "SUCCESS");
  EXPECT_EQ(wallet.pay(wallet.purchase("JUKEBOX", "4713", "5.00")), "ERROR");
  EXPECT_TRUE(wallet.lookUp("FIXED-25").body.contains("codeInfo")) << "the documented ones too";
}

TEST(Scenario, AMistakeIsToldWithItsPlaceAndNothingStarts) {
  const orlix::test::TemporaryFolder folder;
  const std::string file = folder.path() / "scenario.json";
  struct Row {
    const char* name;
    std::string text;
    std::string place;  ///< Behind the file's name.
    std::string why;
  };
  const std::string card = R"({"number":"4990000010004711"})";
  for (const Row& row : std::vector<Row>{
           {"no JSON", "{\n  \"codes\": [\n    {,}\n  ]}", ":3: ", "syntax error"},
           {"cut", "{\n \"codes\": [", ":2: ", "does not end"},
           {"more", "{}\n\n{}", ":3: ", "has ended"},
           {"a list", "[]", ": ", "is no JSON object"},
           {"another key", R"({"code":[]})", ": ", R"(its keys are "codes", "cards")"},
           {"no list", R"({"cards":{}})", ": ", "\"cards\" in the scenario is not an array"},
           {"no object", R"({"cards":[1]})", ": cards[0]: ", "is no object"},
           {"no merchant", R"({"codes":[{"merchant":"M"},{"code":"C"}]})",
            ": codes[1]: ", "lacks \"merchant\""},
           {"an amount", R"({"codes":[{"merchant":"M","amount":"1,50"}]})",
            ": codes[0]: ", "\"amount\" is no amount above 0"},
           {"a code twice",
            R"({"codes":[{"merchant":"M","code":"C"},{"merchant":"M","code":"C"}]})",
            ": codes[1]: ", "there is a code C already"},
           {"a documented code", R"({"codes":[{"merchant":"M","code":"OPEN"}]})",
            ": codes[0]: ", "there is a code OPEN already"},
           {"no number", R"({"cards":[{"pin":"1234"}]})", ": cards[0]: ", "13 to 19 digits"},
           {"a PIN", R"({"cards":[{"number":"4990000010004711","pin":"12"}]})",
            ": cards[0]: ", "\"pin\" is not of 4 to 12 digits"},
           {"a PIN of another type", R"({"cards":[{"number":"4990000010004711","pin":1234}]})",
            ": cards[0]: ", "pin (string)"},
           {"an issuer", R"({"cards":[{"number":"4990000010004711","authentication":"x"}]})",
            ": cards[0]: ", "none of pass, notEnrolled"},
           {"a BIN twice", "{\"cards\":[" + card + "," + card + "]}",
            ": cards[1]: ", "begins with 499000001 too"},
       }) {
    std::ofstream(file, std::ios::trunc) << row.text;
    try {
      Sandbox({.scenario = file}).start();
      ADD_FAILURE() << row.name;
    } catch (const std::runtime_error& failure) {
      const std::string told = failure.what();
      EXPECT_TRUE(told.starts_with(file + row.place)) << row.name << ": " << told;
      EXPECT_NE(told.find(row.why), std::string::npos) << row.name << ": " << told;
    }
  }
  EXPECT_THROW(Sandbox({.scenario = folder.path() / "none"}).start(), std::runtime_error);
}

}  // namespace
}  // namespace orlix::sandbox::test
