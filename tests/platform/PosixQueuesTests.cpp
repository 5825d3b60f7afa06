#include "tests/platform/BackgroundQueuesContract.h"
#include "tests/platform/ClockContract.h"
#include "tests/platform/MainQueueContract.h"
#include "tests/platform/PosixPlatform.h"

namespace orlix {

INSTANTIATE_TYPED_TEST_SUITE_P(Posix, MainQueueContract, PosixPlatform);
INSTANTIATE_TYPED_TEST_SUITE_P(Posix, BackgroundQueuesContract, PosixPlatform);
INSTANTIATE_TYPED_TEST_SUITE_P(Posix, ClockContract, PosixPlatform);

}  // namespace orlix
