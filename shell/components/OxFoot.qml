// SPDX-License-Identifier: Apache-2.0

import QtQuick.Layouts

// The buttons at the foot of a screen: first the way out, then the main one, where the thumb is.
RowLayout {
    width: parent ? parent.width : 0
    spacing: 10
}
