// SPDX-License-Identifier: Apache-2.0

import QtQuick

// The button above the keyboard that ends the editing of a field; there while the field is edited.
OxPlate {
    id: root

    required property OxField field
    // The action that it performs.
    property string actionName: ""

    objectName: root.actionName
    anchors.right: parent ? parent.right : undefined
    anchors.bottom: parent ? parent.bottom : undefined
    anchors.rightMargin: OxTheme.margin
    anchors.bottomMargin: 8
    implicitHeight: OxTheme.points(36)
    implicitWidth: OxTheme.points(72)
    visible: root.field.editing && root.text !== ""
    enabled: root.field.outlet.reachable
    // Taking the focus would end the editing before the action does.
    focusPolicy: Qt.NoFocus
    text: root.field.outlet.toolbarButton
    lineWidth: 0
    letters: OxTheme.accent
    letterWeight: Font.Bold
}
