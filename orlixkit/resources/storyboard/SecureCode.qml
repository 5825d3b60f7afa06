// SPDX-License-Identifier: Apache-2.0

import OrlixKit.Components

OxIssuerPage {
    heading: "Confirm with your bank"
}
