// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/records/MTApiResponse.h"

namespace orlix {

MTApiResponse& MTApiResponse::parseFromData(ByteView /*data*/) { return *this; }

}  // namespace orlix
