// SPDX-License-Identifier: Apache-2.0

import QtQuick

// The title of a screen.
Text {
    id: root

    color: OxTheme.text
    font.family: OxTheme.family
    font.pixelSize: 19
    font.weight: Font.Bold
    wrapMode: Text.Wrap
    textFormat: Text.PlainText

    Accessible.role: Accessible.Heading
    Accessible.name: root.text
}
