// SPDX-License-Identifier: Apache-2.0

import QtQuick

// An image outlet.
OxPicture {
    id: root

    required property var outlet

    objectName: root.outlet.name
    visible: root.outlet.shown
    opacity: root.outlet.alpha
    source: root.outlet.imageSource
}
