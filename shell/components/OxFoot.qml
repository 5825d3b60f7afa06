// SPDX-License-Identifier: Apache-2.0

import QtQuick.Layouts

// The buttons at the foot of a screen: first the way out, then the main one, where the thumb is.
// In a line each where they are narrow.
GridLayout {
    id: foot

    width: parent ? parent.width : 0
    columns: OxTheme.isNarrow(foot.width + 2 * OxTheme.margin) ? 1 : 2
    columnSpacing: 10
    rowSpacing: 8
}
