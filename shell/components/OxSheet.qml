// SPDX-License-Identifier: Apache-2.0

import QtQuick

// The sheet that every screen is laid out on: what heads it, the body, and the buttons at its foot.
// Enter presses the main button, Escape the way out. On a small device in landscape a sheet is taller
// than the window; important items stay within the visible part.
FocusScope {
    id: root

    required property var screen
    property string title: ""
    property Item primary: null
    property Item cancel: null
    property bool ribbon: false
    property real lift: 0
    property alias head: head.data
    property alias foot: foot.data
    default property alias body: body.data

    readonly property real windowHeight: Window.height
    readonly property real overhang: root.windowHeight > 0
                                     ? Math.max(0, (root.height - root.windowHeight) / 2) : 0
    readonly property bool compact: root.height - 2 * root.overhang < 380
    readonly property int margin: OxTheme.margin
    readonly property int gap: root.compact ? 6 : 10
    readonly property real roundness: root.height < root.windowHeight ? 12 : 0
    // Above the ribbon, when that lies on the sheet.
    readonly property real footSpace: root.ribbon && root.windowHeight <= root.height
                                      ? root.height - root.windowHeight + 6 : root.overhang

    transform: Translate {
        y: -root.lift

        Behavior on y {
            NumberAnimation {
                duration: 160
                easing.type: Easing.OutCubic
            }
        }
    }

    Accessible.role: Accessible.Pane
    Accessible.name: root.title

    Keys.onReturnPressed: root.press(root.primary)
    Keys.onEnterPressed: root.press(root.primary)
    Keys.onEscapePressed: root.press(root.cancel)

    function press(button: var): void {
        if (button !== null && button.enabled && button.visible) {
            button.clicked();
        }
    }

    // Scrolls the containers of the item until it is visible.
    function reveal(item: Item): void {
        for (let above = item.parent; above; above = above.parent) {
            if (above instanceof OxKeyboardScroll) {
                above.showItem(item);
                return;
            }
        }
    }

    Rectangle {
        anchors.fill: parent
        radius: root.roundness
        color: root.screen.view.backgroundColor
    }

    // Touches between the controls are the sheet's, and end the editing of a field.
    MouseArea {
        anchors.fill: parent
        onClicked: root.forceActiveFocus()
    }

    Item {
        id: head

        y: root.overhang
        width: root.width
        height: childrenRect.height
    }

    Item {
        id: body

        anchors.top: head.bottom
        anchors.topMargin: head.height > 0 ? 0 : root.compact ? 10 : 18
        anchors.bottom: foot.top
        anchors.bottomMargin: foot.height > 0 ? 6 : 0
        width: root.width
    }

    Item {
        id: foot

        anchors.bottom: parent.bottom
        anchors.bottomMargin: root.footSpace + (foot.height > 0 ? (root.compact ? 8 : 16) : 0)
        x: root.margin
        width: root.width - 2 * root.margin
        height: childrenRect.height
    }

    Item {
        anchors.fill: parent
        clip: true
        visible: root.ribbon

        OxRibbon {
            y: root.windowHeight - 6
            width: root.width
        }
    }
}
