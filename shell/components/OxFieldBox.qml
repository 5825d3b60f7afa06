// SPDX-License-Identifier: Apache-2.0

import QtQuick

// The box around a field: fill, line, and the caption above the text. Without a label the field's
// placeholder is the caption; it is shown in place of the text while that is empty.
Item {
    id: root

    required property var outlet
    property var label: null
    // For a field that has neither label nor placeholder.
    property string caption: ""
    property bool compact: false
    property bool editing: false
    property bool raised: root.label !== null || root.editing || root.outlet.text !== ""
    // Room for a picture behind the text.
    property real pictureSpace: 0
    readonly property real textTop: OxTheme.points(root.compact ? 17 : 21)
    readonly property real textHeight: root.height - root.textTop - (root.compact ? 4 : 6)
    readonly property real textWidth: root.width - 24 - root.pictureSpace
    default property alias content: inside.data

    implicitHeight: root.compact ? OxTheme.compactFieldHeight : OxTheme.fieldHeight
    implicitWidth: 120
    opacity: root.outlet.alpha * (root.outlet.enabled && root.outlet.reachable ? 1
                                                                               : OxTheme.disabled)

    Rectangle {
        anchors.fill: parent
        radius: 6
        color: OxTheme.fieldFill
        border.width: root.editing ? 2 : 1
        border.color: root.editing ? OxTheme.fieldFocus : OxTheme.fieldLine
    }

    Text {
        objectName: root.label !== null ? root.label.name : ""
        anchors.left: parent.left
        anchors.leftMargin: 12
        y: root.raised ? OxTheme.points(root.compact ? 4 : 7) : (root.height - height) / 2
        width: root.textWidth
        visible: root.label === null || root.label.shown
        text: root.label !== null ? root.label.text
                                 : root.caption !== "" ? root.caption : root.outlet.placeholder
        textFormat: Text.PlainText
        color: root.editing ? OxTheme.fieldFocusCaption : OxTheme.fieldCaption
        font.family: OxTheme.family
        font.pixelSize: OxTheme.points(root.raised ? 11 : 16)
        fontSizeMode: Text.HorizontalFit
        minimumPixelSize: 11
        horizontalAlignment: Text.AlignLeft
        Accessible.ignored: true
    }

    Text {
        anchors.left: parent.left
        anchors.leftMargin: 12
        y: root.textTop
        width: root.textWidth
        height: root.textHeight
        visible: root.label !== null && root.outlet.text === ""
        text: root.outlet.placeholder
        textFormat: Text.PlainText
        color: OxTheme.placeholder
        font.family: OxTheme.family
        font.pixelSize: OxTheme.points(16)
        fontSizeMode: Text.HorizontalFit
        minimumPixelSize: 11
        horizontalAlignment: Text.AlignLeft
        verticalAlignment: Text.AlignVCenter
        Accessible.ignored: true
    }

    Item {
        id: inside

        anchors.left: parent.left
        anchors.leftMargin: 12
        y: root.textTop
        width: root.textWidth
        height: root.textHeight
    }
}
