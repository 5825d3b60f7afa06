import QtQuick

// A label outlet; one that listens to taps works by key as well.
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
    font.pixelSize: root.size
    font.weight: OxTheme.weight(root.outlet.fontName)
    horizontalAlignment: root.outlet.centered ? Text.AlignHCenter : Text.AlignLeft
    wrapMode: Text.Wrap
    activeFocusOnTab: root.outlet.tappable

    Accessible.role: root.outlet.tappable ? Accessible.Link : Accessible.StaticText
    Accessible.name: root.outlet.html ? OxTheme.spoken(root.outlet.text) : root.outlet.text
    Accessible.focusable: root.outlet.tappable
    Accessible.onPressAction: root.outlet.tap()

    Keys.enabled: root.outlet.tappable
    Keys.onReturnPressed: root.outlet.tap()
    Keys.onEnterPressed: root.outlet.tap()
    Keys.onSpacePressed: root.outlet.tap()

    MouseArea {
        anchors.fill: parent
        enabled: root.outlet.tappable && root.outlet.reachable
        cursorShape: Qt.PointingHandCursor
        onClicked: root.outlet.tap()
    }

    OxFocusRing {
        on: root.activeFocus
    }
}
