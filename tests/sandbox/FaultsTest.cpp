// SPDX-License-Identifier: Apache-2.0

#include <atomic>
#include <thread>

#include "sandbox/Faults.h"
#include "tests/sandbox/Wallet.h"

namespace orlix::sandbox::test {
namespace {

class FaultsOnDemand : public SandboxTest {
 protected:
  std::int64_t switchOn(const json::object& fault) {
    return integerOf(control("POST", "/control/faults", json::serialize(fault)), "id");
  }
  void clear(const json::object& which) {
    control("DELETE", "/control/faults", json::serialize(which));
  }
  /// Requests that the fault has met.
  std::int64_t hits(std::int64_t id) {
    const json::object listed = control("GET", "/control/faults");
    for (const json::value& fault : listed.at("faults").get_array()) {
      if (fault.at("id") == id) return integerOf(fault.get_object(), "hits");
    }
    return -1;
  }
  /// The status by which the last request of this path is to be answered.
  std::int64_t decided(std::string_view path) {
    std::int64_t status = 0;
    const json::object listed = control("GET", "/control/requests");
    for (const json::value& seen : listed.at("requests").get_array()) {
      if (textOf(seen.get_object(), "path") == path) {
        status = integerOf(seen.get_object(), "status");
      }
    }
    return status;
  }
};

TEST_F(FaultsOnDemand, APathIsWholeOrAPrefixAndARefusalLeavesTheSessionValid) {
  struct Row {
    const char* path;
    std::string refused;  ///< Of the list, a BIN and a lookup: x where the fault meets it.
  };
  for (const Row& row : std::vector<Row>{{"/vello/card/list/TALU", "x.."},
                                         {"/vello/card/*", "xx."},
                                         {"/vello/lookup/*", "..x"},
                                         {"/vello/card", "..."},
                                         {"/issuer/*", "..."},
                                         {"*", "xxx"}}) {
    const std::int64_t fault =
        switchOn({{"kind", "status"}, {"status", 403}, {"path", row.path}, {"count", -1}});
    const auto seen = [&] {
      std::string out;
      const json::object bin{{"bin", "400000100"}};
      for (const Reply& reply :
           {wallet_->post("card/list/TALU"), wallet_->post("card/bin/TALU", bin),
            wallet_->lookUp("FIXED-25")}) {
        out += reply.status == 403 ? 'x' : '.';
      }
      return out;
    };
    EXPECT_EQ(seen(), row.refused) << row.path;
    EXPECT_EQ(seen(), row.refused) << row.path << ": again, until it is cleared";
    clear({{"id", fault}});
    EXPECT_EQ(seen(), "...") << row.path << ": with the session from before";
  }
  for (const char* malformed : {"", "card/list/TALU", "/vello/*/TALU", "**"}) {
    EXPECT_THROW(switchOn({{"kind", "status"}, {"path", malformed}}), std::runtime_error);
  }
  EXPECT_THROW(clear({{"id", 1}}), std::runtime_error) << "cleared before";
}

TEST_F(FaultsOnDemand, AnswersOfSeveralPathsAreHeldSideBySideAndTheirRequestsCarriedOutAtOnce) {
  const json::object purchase = wallet_->purchase("FIXED-25", "2222", "25.00", "");
  struct Row {
    json::object fault;
    const char* path;
    json::object body;
    std::int64_t id = 0;
    std::atomic<int> status = -1;  ///< Of the answer, once there is one.
  };
  Row paid{{{"kind", "hold"}}, "purchase/TALU", purchase};
  Row refused{{{"kind", "hold"}, {"count", -1}}, "card/list/TALU", {}};
  Row late{{{"kind", "delay"}, {"milliseconds", 600'000}}, "card/bin/TALU", {{"bin", "400000100"}}};
  switchOn({{"kind", "status"}, {"status", 403}, {"path", "/vello/card/*"}, {"count", 2}});
  std::vector<std::thread> threads;
  for (Row* row : {&paid, &refused, &late}) {
    row->fault["path"] = "/vello/" + std::string(row->path);
    row->id = switchOn(row->fault);
    threads.emplace_back([this, row] {
      Wallet other(sandbox_);
      other.start();
      row->status = other.post(row->path, row->body).status;
    });
    while (hits(row->id) == 0) std::this_thread::yield();
  }
  while (counted("purchasesPaid") == 0) std::this_thread::yield();
  EXPECT_EQ(wallet_->lookUp("FIXED-25").status, 200) << "another path";
  EXPECT_EQ(paid.status, -1) << "made, but not answered";
  clear({{"path", paid.fault.at("path")}});
  threads[0].join();
  EXPECT_EQ(paid.status, 200);
  EXPECT_EQ(refused.status, -1);
  clear({{"kind", "hold"}});
  threads[1].join();
  EXPECT_EQ(refused.status, 403) << "held and refused";
  while (decided("/vello/card/bin/TALU") != 403) std::this_thread::yield();
  EXPECT_EQ(late.status, -1) << "delayed and refused";
  sandbox_.stop();
  threads[2].join();
  EXPECT_EQ(late.status, 0) << "the end does not wait for a delay";
}

TEST(Faults, AreBoundedAndDropTheOldestSpentOneFirst) {
  Faults faults;
  const std::int64_t first = faults.add(Fault{.kind = Fault::Kind::silence, .path = "/never"});
  const std::int64_t spent = faults.add(Fault{.kind = Fault::Kind::silence, .path = "/once"});
  EXPECT_EQ(faults.take("/once").size(), 1U);
  while (faults.list().size() < 1000) faults.add(Fault{});
  faults.add(Fault{});
  EXPECT_EQ(faults.list().size(), 1000U);
  EXPECT_FALSE(faults.has(spent));
  EXPECT_TRUE(faults.has(first));
  faults.add(Fault{});
  EXPECT_FALSE(faults.has(first));
}

TEST_F(FaultsOnDemand, AHandshakeIsHeldUntilItIsClearedAndHoldsUpNoOther) {
  const std::int64_t fault = switchOn({{"kind", "hold-handshake"}});
  std::atomic<int> status = -1;
  std::thread held([&] {
    Wallet other(sandbox_);
    status = other.start().status;
  });
  while (hits(fault) == 0) std::this_thread::yield();
  EXPECT_EQ(Wallet(sandbox_).start().status, 200) << "the next connection";
  EXPECT_EQ(wallet_->start().status, 200) << "the open connection";
  EXPECT_EQ(status, -1);
  clear({{"id", fault}});
  held.join();
  EXPECT_EQ(status, 200);
}

}  // namespace
}  // namespace orlix::sandbox::test
