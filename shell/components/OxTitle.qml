// SPDX-License-Identifier: Apache-2.0

import QtQuick

// The title of a screen.
Text {
    id: root

    property real size: 19

    color: OxTheme.text
    font.family: OxTheme.family
    font.pixelSize: OxTheme.points(root.size)
    font.weight: Font.Bold
    wrapMode: Text.Wrap
    textFormat: Text.PlainText
    horizontalAlignment: Text.AlignLeft

    Accessible.role: Accessible.Heading
    Accessible.name: root.text
}
