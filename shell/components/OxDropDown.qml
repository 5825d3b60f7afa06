// SPDX-License-Identifier: Apache-2.0

pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T

// A field outlet whose text is chosen instead of typed: from its own list, or on another screen.
// Not a control of the toolkit, which would give it another role.
FocusScope {
    id: root

    required property var outlet
    property alias label: box.label
    property alias compact: box.compact
    property alias caption: box.caption
    // Set before the text, such as the "+" of a dialling code.
    property string prefix: ""
    // Covers the screen while the list is open.
    required property Item overlay
    readonly property string text: root.outlet.text
    readonly property bool open: root.outlet.picker !== null && root.outlet.picker.open

    objectName: root.outlet.name
    visible: root.outlet.shown
    enabled: root.outlet.enabled && root.outlet.reachable
    implicitWidth: box.implicitWidth
    implicitHeight: box.implicitHeight
    activeFocusOnTab: true

    signal clicked

    Accessible.role: Accessible.ComboBox
    Accessible.name: root.label !== null ? root.label.text
                                         : root.caption !== "" ? root.caption : root.outlet.placeholder
    Accessible.description: OxTheme.described(root.outlet.text, root.enabled)
    Accessible.onPressAction: root.clicked()

    Keys.onReturnPressed: root.clicked()
    Keys.onEnterPressed: root.clicked()
    Keys.onSpacePressed: root.clicked()
    Keys.onDownPressed: root.clicked()

    function take(index: int): void {
        root.forceActiveFocus();
        root.outlet.picker.choose(index);
    }

    onClicked: {
        if (root.outlet.picker !== null) {
            root.outlet.picker.toggle();
        } else {
            root.outlet.beginEditing();
        }
    }

    MouseArea {
        anchors.fill: parent
        onPressed: root.forceActiveFocus(Qt.MouseFocusReason)
        onClicked: root.clicked()
    }

    OxFieldBox {
        id: box

        anchors.fill: parent
        outlet: root.outlet
        editing: root.open || root.activeFocus
        pictureSpace: arrow.width

        Text {
            width: parent.width
            height: parent.height
            text: root.text === "" ? "" : root.prefix + root.text
            textFormat: Text.PlainText
            color: OxTheme.fieldText
            font.family: OxTheme.family
            font.pixelSize: OxTheme.points(16)
            font.weight: Font.Medium
            fontSizeMode: Text.HorizontalFit
            minimumPixelSize: 11
            horizontalAlignment: Text.AlignLeft
            verticalAlignment: Text.AlignVCenter
        }
    }

    OxPicture {
        id: arrow

        anchors.right: parent.right
        anchors.rightMargin: 8
        anchors.verticalCenter: parent.verticalCenter
        width: OxTheme.points(22)
        height: width
        opacity: box.opacity
        source: OxTheme.tinted("dropdown", OxTheme.fieldText)
        rotation: root.open ? 180 : 0
    }

    FocusScope {
        id: cover

        readonly property point below: root.open ? root.mapToItem(root.overlay, 0, root.height + 4)
                                                 : Qt.point(0, 0)
        readonly property bool fitsBelow: cover.below.y + list.height <= cover.height

        parent: root.overlay
        anchors.fill: parent
        z: 10
        visible: root.open

        Keys.onEscapePressed: root.forceActiveFocus()

        onVisibleChanged: {
            if (cover.visible) {
                rows.currentIndex = Math.max(0, root.outlet.picker.current);
                cover.forceActiveFocus();
            }
        }
        // Losing the focus closes the list.
        onActiveFocusChanged: {
            if (!cover.activeFocus && root.open) {
                root.outlet.picker.toggle();
            }
        }

        MouseArea {
            anchors.fill: parent
            onClicked: root.forceActiveFocus()
        }

        Rectangle {
            id: list

            x: cover.below.x
            y: cover.fitsBelow ? cover.below.y : cover.below.y - root.height - 8 - list.height
            width: root.width
            height: rows.height + 2
            radius: 6
            color: OxTheme.fieldFill
            border.width: 1
            border.color: OxTheme.fieldFocus

            ListView {
                id: rows

                anchors.left: parent.left
                anchors.right: parent.right
                anchors.top: parent.top
                anchors.margins: 1
                height: Math.min(rows.contentHeight, 200)
                clip: true
                focus: true
                model: root.outlet.picker !== null ? root.outlet.picker.entries : []
                keyNavigationWraps: true
                boundsBehavior: Flickable.StopAtBounds
                Accessible.role: Accessible.List
                Accessible.name: root.Accessible.name

                Keys.onReturnPressed: root.take(rows.currentIndex)
                Keys.onEnterPressed: root.take(rows.currentIndex)
                Keys.onSpacePressed: root.take(rows.currentIndex)

                delegate: T.ItemDelegate {
                    id: entry

                    required property int index
                    required property string modelData

                    objectName: root.outlet.name + ".entry" + entry.index
                    width: rows.width
                    height: Math.max(OxTheme.points(36), entry.implicitContentHeight + 8)
                    text: entry.modelData
                    focusPolicy: Qt.NoFocus
                    onClicked: root.take(entry.index)

                    Accessible.role: Accessible.ListItem
                    Accessible.name: entry.text
                    Accessible.onPressAction: entry.clicked()

                    background: Rectangle {
                        radius: 5
                        color: entry.ListView.isCurrentItem ? OxTheme.accentPlate : "transparent"
                    }
                    contentItem: Text {
                        leftPadding: 11
                        rightPadding: 11
                        text: entry.text
                        textFormat: Text.PlainText
                        color: entry.ListView.isCurrentItem ? "white" : OxTheme.fieldText
                        font.family: OxTheme.family
                        font.pixelSize: OxTheme.points(15)
                        horizontalAlignment: Text.AlignLeft
                        verticalAlignment: Text.AlignVCenter
                        wrapMode: Text.Wrap
                    }
                }
            }
        }
    }
}
