import QtQuick

// A button outlet.
OxPlate {
    id: root

    required property var outlet
    // The action that the outlet's touch performs, for whoever looks a button up by it.
    property string actionName: ""

    objectName: root.outlet.name
    visible: root.outlet.shown
    enabled: root.outlet.enabled && root.outlet.reachable
    // Touches held back for a moment are no reason to look different.
    opacity: root.outlet.enabled ? root.outlet.alpha : 0.5
    text: root.outlet.text
    fill: root.outlet.backgroundColor
    letters: root.outlet.textColor
    line: root.outlet.borderColor
    lineWidth: root.outlet.borderWidth
    cornerRadius: root.outlet.cornerRadius

    onClicked: root.outlet.tap()
}
