// SPDX-License-Identifier: Apache-2.0

import QtQuick
import QtQuick.Templates as T

// The sheet that every screen is laid out on: what heads it, the body, and the buttons at its foot.
// Enter moves on to the next field and from the last one presses the main button; Escape presses the
// way out. On a small device in landscape a sheet is taller than the window; important items stay
// within the visible part. With large texts the whole sheet scrolls, otherwise only its body.
FocusScope {
    id: root

    required property var screen
    property string title: ""
    property Item primary: null
    property Item cancel: null
    property bool ribbon: false
    property real lift: 0
    // Whole height of the body; a scrolling body is useful from `enough` on.
    property real bodyHeight: 0
    property real enough: OxTheme.points(110)
    // The progress indicator leaves this item uncovered.
    property Item keptInSight: null
    property alias head: head.data
    property alias foot: foot.data
    default property alias body: body.data

    readonly property real windowHeight: Window.height
    readonly property real overhang: root.windowHeight > 0
                                     ? Math.max(0, (root.height - root.windowHeight) / 2) : 0
    readonly property bool compact: root.height - 2 * root.overhang < 380
    readonly property bool narrow: OxTheme.isNarrow(root.width)
    readonly property int margin: OxTheme.margin
    readonly property int gap: root.compact ? 6 : 10
    readonly property real roundness: root.height < root.windowHeight ? 12 : 0
    // Above the ribbon, when that lies on the sheet.
    readonly property real footSpace: root.ribbon && root.windowHeight <= root.height
                                      ? root.height - root.windowHeight + 6 : root.overhang
    readonly property real scrollHeight: scroll.contentHeight
    readonly property Item focusItem: Window.activeFocusItem

    transform: Translate {
        y: -root.lift

        Behavior on y {
            enabled: !OxTheme.reducedMotion

            NumberAnimation {
                duration: 160
                easing.type: Easing.OutCubic
            }
        }
    }

    Accessible.role: Accessible.Pane
    Accessible.name: root.title

    Keys.onReturnPressed: root.enter()
    Keys.onEnterPressed: root.enter()
    Keys.onEscapePressed: root.press(root.cancel)

    onFocusItemChanged: {
        if (root.focusItem && root.holds(root.focusItem)) {
            root.reveal(root.focusItem);
        }
    }

    function press(button: var): void {
        if (button !== null && button.enabled && button.visible) {
            button.clicked();
        }
    }

    function holds(item: Item): bool {
        for (let above = item; above; above = above.parent) {
            if (above === root) {
                return true;
            }
        }
        return false;
    }

    // The fields that can be edited now, in their order.
    function fieldsIn(item: Item): var {
        let found = [];
        for (let i = 0; i < item.children.length; ++i) {
            const child = item.children[i];
            if (child instanceof OxField || child instanceof OxDropDown) {
                if (child.visible && child.outlet.enabled) {
                    found.push(child);
                }
            } else {
                found = found.concat(root.fieldsIn(child));
            }
        }
        return found;
    }

    function focusFirstField(): void {
        for (const field of root.fieldsIn(root)) {
            if (field instanceof OxField) {
                field.forceActiveFocus(Qt.OtherFocusReason);
                return;
            }
        }
    }

    function enter(): void {
        const fields = root.fieldsIn(root);
        const current = fields.findIndex(field => field.activeFocus);
        // A choice that has been made is not in the way of the keys.
        const next = current < 0 ? undefined : fields.slice(current + 1).find(
                         field => field instanceof OxField || field.outlet.text === "");
        if (next) {
            next.forceActiveFocus(Qt.TabFocusReason);
        } else {
            root.press(root.primary);
        }
    }

    // Scrolls the containers of the item until it is visible.
    function reveal(item: Item): void {
        for (let above = item.parent; above && above !== root; above = above.parent) {
            if (above instanceof Flickable) {
                root.scrollTo(above, item);
            }
        }
    }

    function scrollTo(area: Flickable, item: Item): void {
        const top = item.mapToItem(area.contentItem, 0, 0).y - 6;
        const bottom = top + item.height + 12;
        if (top < area.contentY || bottom - top > area.height) {
            area.contentY = Math.max(area.originY, Math.min(top, area.originY + Math.max(
                                                                0, area.contentHeight - area.height)));
        } else if (bottom > area.contentY + area.height) {
            area.contentY = area.originY + Math.min(Math.max(0, area.contentHeight - area.height),
                                                    bottom - area.height - area.originY);
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

    Flickable {
        id: scroll

        readonly property real aboveBody: head.height > 0 ? 0 : root.compact ? 10 : 18
        readonly property real belowBody: foot.height > 0 ? 6 : 0
        readonly property real belowFoot: foot.height > 0 ? (root.compact ? 8 : 16) : 0
        readonly property real others: head.height + scroll.aboveBody + scroll.belowBody + foot.height
                                       + scroll.belowFoot
        readonly property bool pinned: scroll.height - scroll.others >= Math.min(root.bodyHeight,
                                                                                 root.enough)

        y: root.overhang
        width: root.width
        height: root.height - root.overhang - root.footSpace
        contentHeight: scroll.pinned ? scroll.height : scroll.others + root.bodyHeight
        boundsBehavior: Flickable.StopAtBounds
        interactive: !scroll.pinned
        clip: !scroll.pinned

        T.ScrollBar.vertical: OxScrollBar {}

        Item {
            id: head

            width: root.width
            height: childrenRect.height
        }

        Item {
            id: body

            y: head.height + scroll.aboveBody
            width: root.width
            height: scroll.contentHeight - scroll.others
        }

        Item {
            id: foot

            x: root.margin
            y: scroll.contentHeight - scroll.belowFoot - foot.height
            width: root.width - 2 * root.margin
            height: childrenRect.height
        }
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
