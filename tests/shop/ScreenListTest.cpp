// SPDX-License-Identifier: Apache-2.0

#include <algorithm>
#include <set>
#include <sstream>
#include <string>

#include <boost/json.hpp>
#include <gmock/gmock.h>

#include "examples/shop/Shop.h"
#include "orlixkit/OrlixKit.h"
#include "orlixkit/testing/MemoryHost.h"
#include "orlixkit/ui/Touch.h"

namespace orlix::shop {
namespace {

namespace json = boost::json;

/// The output of `orlix-shop --list-screens`, without any other option.
json::value printedList() {
  std::ostringstream out;
  std::ostringstream err;
  EXPECT_EQ(runShop({"--list-screens"}, out, err), 0) << err.str();
  return json::parse(out.str());
}

json::object named(const json::value& list, const char* key, const std::string& name) {
  for (const json::value& one : list.as_array()) {
    if (one.at(key) == json::value(name)) {
      return one.as_object();
    }
  }
  ADD_FAILURE() << "there is no " << name;
  return {};
}

TEST(ScreenList, SaysOfAnOutletWhatAHostNeedsToDrawIt) {
  const json::value list = printedList();
  const json::value product = named(list.at("screens"), "identifier", "Product");
  EXPECT_EQ(named(product.at("outlets"), "name", "pinField"),
            json::object({{"name", "pinField"},
                          {"kind", "field"},
                          {"text", ""},
                          {"inside", "pinGroupView"},
                          {"hiddenWhen", nullptr},
                          {"placeholder", "ATM PIN"},
                          {"keyboard", "number"},
                          {"secure", true}}));
  EXPECT_EQ(named(product.at("outlets"), "name", "testWarningLabel"),
            json::object({{"name", "testWarningLabel"},
                          {"kind", "label"},
                          {"text", "TEST SYSTEM: no money will be taken"},
                          {"inside", nullptr},
                          {"hiddenWhen", "the payment is on the live system"},
                          {"html", false}}));
  EXPECT_EQ(product.at("actions"), json::array({"proceedAction", "cancelAction", "cardAction"}));
}

TEST(ScreenList, HasEveryScreenWithSeguesAndAlertsAndTheOnesInsideAContainer) {
  const json::value list = printedList();
  std::set<std::string> inContainer;
  for (const json::value& screen : list.at("screens").as_array()) {
    if (screen.at("inContainer").as_bool()) {
      inContainer.insert(json::value_to<std::string>(screen.at("identifier")));
    }
    EXPECT_FALSE(screen.at("outlets").as_array().empty()) << screen;
  }
  EXPECT_THAT(inContainer, testing::ElementsAre("CountryCode", "TermsAndConditions"));
  const json::value activation = named(list.at("screens"), "identifier", "Activation");
  EXPECT_EQ(activation.at("segues"),
            json::array({"CountryCode", "TermsAndConditions", "ActivationCode"}));
  EXPECT_EQ(named(activation.at("alerts"), "message", "Could not send msisdn."),
            json::object(
                {{"title", "Warning"}, {"message", "Could not send msisdn."}, {"buttons", "Ok"}}));
  EXPECT_EQ(named(list.at("alertsOfAnyScreen"), "title", "Connection problem")["buttons"],
            json::value("Cancel, Retry"));
}

TEST(ScreenDeclarations, NameOutletsActionsAndScreensThatAreThere) {
  MemoryHost phone({.install = installOrlixKit});
  const Storyboard& storyboard = phone.application().storyboard();
  for (const auto& [identifier, maker] : storyboard.makers()) {
    const std::shared_ptr<ViewController> made = storyboard.make(identifier);
    const std::shared_ptr<ViewController> screen =
        made->visibleChild() ? made->visibleChild() : made;
    for (const HidingRule& rule : screen->declaration().hiding) {
      EXPECT_TRUE(screen->outletNamed(rule.outlet)) << identifier << ": " << rule.outlet;
    }
    for (const char* segue : screen->declaration().segues) {
      EXPECT_TRUE(storyboard.makers().contains(segue)) << identifier << ": " << segue;
    }
    for (const std::string& outlet : screen->outletNames()) {
      if (const Task touch = touchTask(screen, outlet)) {
        EXPECT_NO_THROW(touch()) << identifier << ": " << outlet;  // names an action that is there
      }
    }
  }
}

}  // namespace
}  // namespace orlix::shop
