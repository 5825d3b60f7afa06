// SPDX-License-Identifier: Apache-2.0

import QtQuick

// A picture that fits its rectangle, sharp at every scale of the screen.
Image {
    id: picture

    fillMode: Image.PreserveAspectFit
    sourceSize.width: Math.ceil(picture.width * Screen.devicePixelRatio)
    sourceSize.height: Math.ceil(picture.height * Screen.devicePixelRatio)
    smooth: true
    Accessible.ignored: true
}
