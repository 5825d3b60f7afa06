import QtQuick

// One presented screen: what dims all that stands below it, and keeps touches from it. The presenter
// puts the screen itself in front, and moves the two values while the presentation fades.
FocusScope {
    id: presentation

    property color dimming: "transparent"
    property real dimmed: 1

    Rectangle {
        anchors.fill: parent
        color: presentation.dimming
        opacity: presentation.dimmed
    }

    MouseArea {
        anchors.fill: parent
        acceptedButtons: Qt.AllButtons
        hoverEnabled: true
        onWheel: wheel => wheel.accepted = true
    }
}
