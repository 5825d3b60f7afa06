// SPDX-License-Identifier: Apache-2.0

import QtQuick

// A label outlet.
Text {
    id: root

    required property var outlet
    property real size: root.outlet.fontSize

    objectName: root.outlet.name
    visible: root.outlet.shown
    opacity: root.outlet.alpha
    text: root.outlet.html ? OxTheme.drawableHtml(root.outlet.text)
                           : OxTheme.drawable(root.outlet.text)
    textFormat: root.outlet.html ? Text.StyledText : Text.PlainText
    color: root.outlet.textColor
    linkColor: OxTheme.accent
    font.family: OxTheme.family
    font.pixelSize: OxTheme.points(root.size)
    font.weight: OxTheme.weight(root.outlet.fontName)
    horizontalAlignment: root.outlet.centered ? Text.AlignHCenter : Text.AlignLeft
    wrapMode: Text.Wrap

    Accessible.role: Accessible.StaticText
    Accessible.name: root.outlet.html ? OxTheme.spoken(root.outlet.text) : root.outlet.text
}
