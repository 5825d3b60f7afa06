// SPDX-License-Identifier: Apache-2.0

import QtQuick

// The brand's ribbon along the bottom of the screen.
Image {
    height: 6
    source: "image://orlix/bottom_ribbon"
    fillMode: Image.Stretch
    sourceSize.width: 600
    sourceSize.height: 12
    Accessible.ignored: true
}
