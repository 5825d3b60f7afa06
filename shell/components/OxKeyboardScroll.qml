// SPDX-License-Identifier: Apache-2.0

import QtQuick
import QtQuick.Layouts

// The fields of a screen, scrolled when they are taller than the room for them. The field in focus
// stays in sight: it is scrolled to, and the whole sheet is lifted when an on-screen keyboard, of
// whatever height, would cover it.
Flickable {
    id: root

    required property OxSheet sheet
    default property alias content: column.data
    property alias spacing: column.spacing
    // The keyboard's bar, below the fields while it is there.
    property Item bar: null
    readonly property real barSpace: root.bar && root.bar.visible ? root.bar.height + 14 : 0
    readonly property real bottomOfWindow: Window.height
    readonly property real keyboardTop: {
        if (OxTheme.keyboardHeight >= 0) {
            return root.bottomOfWindow - OxTheme.keyboardHeight;
        }
        const keyboard = Qt.inputMethod.keyboardRectangle;
        return Qt.inputMethod.visible && keyboard.height > 0 ? keyboard.y : root.bottomOfWindow;
    }
    readonly property real sheetHeight: root.sheet.scrollHeight
    readonly property Item focusItem: Window.activeFocusItem

    anchors.fill: parent
    anchors.bottomMargin: root.barSpace
    contentWidth: root.width
    contentHeight: column.implicitHeight
    boundsBehavior: Flickable.StopAtBounds
    interactive: root.contentHeight > root.height
    clip: root.interactive

    function holds(item: Item): bool {
        for (let above = item; above; above = above.parent) {
            if (above === root.contentItem) {
                return true;
            }
        }
        return false;
    }

    function keepInSight(): void {
        const sheet = root.sheet;
        if (!sheet.parent || !root.Window.window) {
            return;
        }
        const item = root.focusItem;
        const held = item && root.holds(item);
        if (held) {
            sheet.reveal(item);
        }
        const top = sheet.parent.mapToItem(null, sheet.x, sheet.y).y;
        const covered = top + sheet.height - sheet.overhang - root.keyboardTop;
        if (covered <= 0) {
            sheet.lift = 0;
            return;
        }
        // As far as there is room for the whole sheet; further only for the field's sake, and never
        // so far that its upper edge would leave the window.
        let lift = Math.min(covered, Math.max(0, top));
        if (held) {
            const fieldTop = top + item.mapToItem(sheet, 0, 0).y;
            const wanted = fieldTop + item.height + 10 - root.keyboardTop;
            lift = Math.max(lift, Math.min(wanted, Math.max(0, fieldTop - 4)));
        }
        sheet.lift = lift;
    }

    onKeyboardTopChanged: root.keepInSight()
    onFocusItemChanged: root.keepInSight()
    onHeightChanged: root.keepInSight()
    onContentHeightChanged: root.keepInSight()
    // Once the sheet has been laid out for it.
    onSheetHeightChanged: later.restart()

    Timer {
        id: later

        interval: 0
        onTriggered: root.keepInSight()
    }

    Binding {
        target: root.sheet
        property: "bodyHeight"
        value: root.contentHeight + root.barSpace
    }

    Binding {
        target: root.sheet
        property: "enough"
        value: OxTheme.points(110) + root.barSpace
    }

    ColumnLayout {
        id: column

        x: root.sheet.margin
        width: root.width - 2 * x
        spacing: root.sheet.gap
    }
}
