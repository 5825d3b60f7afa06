#include <gtest/gtest.h>

#include "orlixkit/platform/posix/SqliteUserDefaults.h"
#include "tests/platform/PosixPlatform.h"
#include "tests/platform/UserDefaultsContract.h"

namespace orlix {

namespace {

class SqlitePlatform {
 public:
  UserDefaults& userDefaults() { return store_; }

 private:
  TemporaryFolder folder_;
  SqliteUserDefaults store_{folder_.path() / "state" / "defaults.db"};
};

}  // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(Sqlite, UserDefaultsContract, SqlitePlatform);

}  // namespace orlix
