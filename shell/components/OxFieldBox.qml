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
    readonly property real textTop: root.compact ? 17 : 21
    readonly property real textHeight: root.height - root.textTop - (root.compact ? 4 : 6)
    default property alias content: inside.data

    implicitHeight: root.compact ? OxTheme.compactFieldHeight : OxTheme.fieldHeight
    implicitWidth: 120
    opacity: root.outlet.enabled ? root.outlet.alpha : 0.5

    Rectangle {
        anchors.fill: parent
        radius: 6
        color: OxTheme.fieldFill
        border.width: root.editing ? 2 : 1
        border.color: root.editing ? OxTheme.accent : OxTheme.fieldLine
    }

    Text {
        objectName: root.label !== null ? root.label.name : ""
        x: 12
        y: root.raised ? (root.compact ? 4 : 7) : (root.height - height) / 2
        width: root.width - 24
        visible: root.label === null || root.label.shown
        text: root.label !== null ? root.label.text
                                 : root.caption !== "" ? root.caption : root.outlet.placeholder
        textFormat: Text.PlainText
        color: root.editing ? OxTheme.accent : OxTheme.mutedText
        font.family: OxTheme.family
        font.pixelSize: root.raised ? 11 : 16
        elide: Text.ElideRight
        Accessible.ignored: true
    }

    Text {
        x: 12
        y: root.textTop
        width: root.width - 24
        height: root.textHeight
        visible: root.label !== null && root.outlet.text === ""
        text: root.outlet.placeholder
        textFormat: Text.PlainText
        color: OxTheme.placeholder
        font.family: OxTheme.family
        font.pixelSize: 16
        elide: Text.ElideRight
        verticalAlignment: Text.AlignVCenter
        Accessible.ignored: true
    }

    Item {
        id: inside

        x: 12
        y: root.textTop
        width: root.width - 24
        height: root.textHeight
    }
}
