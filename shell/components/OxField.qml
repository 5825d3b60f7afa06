// SPDX-License-Identifier: Apache-2.0

import QtQuick

// A field outlet. The text belongs to the outlet: each edit, by key, paste or input method, is
// passed to it, and its text and caret are then displayed. Text typed into a secure field does not
// reach this item: the outlet receives it first, and the field shows bullets.
FocusScope {
    id: root

    required property var outlet
    property alias label: box.label
    property alias compact: box.compact
    property real size: 16
    property int weight: Font.Medium

    readonly property bool editing: input.activeFocus
    readonly property string shownText: root.outlet.text
    readonly property int shownCaret: root.outlet.caret
    readonly property bool wanted: root.outlet.focused
    readonly property bool reachable: root.outlet.reachable

    objectName: root.outlet.name
    visible: root.outlet.shown
    implicitWidth: box.implicitWidth
    implicitHeight: box.implicitHeight

    onShownTextChanged: input.showOutlet()
    onShownCaretChanged: input.showOutlet()
    // The focus may have come while touches were masked.
    onReachableChanged: {
        if (root.reachable && input.activeFocus) {
            root.outlet.beginEditing();
        }
    }
    onWantedChanged: {
        if (!root.wanted && input.activeFocus) {
            input.focus = false;
        }
    }

    OxFieldBox {
        id: box

        anchors.fill: parent
        outlet: root.outlet
        editing: input.activeFocus
        pictureSpace: brand.visible ? brand.width + 8 : 0
    }

    // The brand that the digits of a card number tell.
    OxPicture {
        id: brand

        objectName: root.outlet.name + ".brand"
        anchors.right: parent.right
        anchors.rightMargin: 10
        anchors.verticalCenter: parent.verticalCenter
        width: 40
        height: 26
        opacity: box.opacity
        visible: root.outlet.brandImage.toString() !== ""
        source: root.outlet.brandImage
    }

    // A touch anywhere in the box begins editing.
    MouseArea {
        anchors.fill: parent
        enabled: input.enabled
        cursorShape: Qt.IBeamCursor
        onPressed: input.forceActiveFocus(Qt.MouseFocusReason)
    }

    TextInput {
        id: input

        property bool showing: false

        anchors.left: parent.left
        anchors.leftMargin: 12
        y: box.textTop
        width: box.textWidth
        opacity: box.opacity
        height: box.textHeight
        focus: true
        activeFocusOnTab: true
        // Not by `reachable`: masking touches for a moment must not end the editing.
        enabled: root.outlet.enabled
        clip: true
        verticalAlignment: TextInput.AlignVCenter
        horizontalAlignment: TextInput.AlignLeft
        color: OxTheme.fieldText
        selectionColor: OxTheme.accentPlate
        selectedTextColor: "white"
        selectByMouse: !root.outlet.secure
        // Bullets for bullets; but nothing of a secret can be copied or cut.
        echoMode: root.outlet.secure ? TextInput.Password : TextInput.Normal
        passwordCharacter: "\u2022"
        passwordMaskDelay: 0
        font.family: OxTheme.family
        font.pixelSize: OxTheme.points(root.size)
        font.weight: root.weight
        font.letterSpacing: root.outlet.secure ? 2 : 0
        inputMethodHints: (root.outlet.numeric ? Qt.ImhDigitsOnly : Qt.ImhNone)
                          | (root.outlet.phone ? Qt.ImhDialableCharactersOnly : Qt.ImhNone)
                          | (root.outlet.secure ? Qt.ImhHiddenText | Qt.ImhSensitiveData
                                                  | Qt.ImhNoPredictiveText : Qt.ImhNone)

        // Not as a passwordEdit: the toolkit would keep its name back as well. Its text is bullets anyway.
        Accessible.role: Accessible.EditableText
        Accessible.name: root.label !== null ? root.label.text : root.outlet.placeholder
        Accessible.description: root.outlet.brand !== "" ? root.outlet.brand
                                : root.label !== null ? root.outlet.placeholder : ""
        Accessible.readOnly: !root.outlet.reachable || !root.outlet.enabled
        Accessible.focusable: true

        function showOutlet(): void {
            input.showing = true;
            if (input.text !== root.outlet.text) {
                input.text = root.outlet.text;
            }
            input.cursorPosition = Math.min(root.outlet.caret, input.length);
            input.showing = false;
        }

        // The text after the caret existed before the edit; differences before it are new.
        function applyEdit(): void {
            const was = root.outlet.text;
            const behind = input.length - input.cursorPosition;
            const head = was.slice(0, Math.max(0, was.length - behind));
            const now = input.text.slice(0, input.cursorPosition);
            let same = 0;
            while (same < head.length && same < now.length && head[same] === now[same]) {
                ++same;
            }
            root.outlet.replaceCharacters(same, head.length - same, now.slice(same));
            input.showOutlet();
        }

        Component.onCompleted: {
            root.outlet.watch(input);
            input.showOutlet();
        }
        onTextEdited: input.applyEdit()
        onCursorPositionChanged: {
            if (!input.showing && input.text === root.outlet.text) {
                root.outlet.moveCaret(input.cursorPosition);
            }
        }
        onActiveFocusChanged: {
            if (input.activeFocus) {
                root.outlet.beginEditing();
            } else if (root.outlet.enabled) {
                root.outlet.endEditing();
            } else {
                // Not while the item is being disabled, by a binding to the same outlet.
                Qt.callLater(root.outlet.endEditing);
            }
        }
    }
}
