// SPDX-License-Identifier: Apache-2.0

pragma Singleton
import QtQuick

// What all screens look like: the brand's colours and fonts, and the measures of the layout.
QtObject {
    id: theme

    readonly property string family: "Inter"

    readonly property color sheet: Qt.rgba(27 / 255, 30 / 255, 38 / 255, 1)
    readonly property color primary: Qt.rgba(0.106, 0.118, 0.149, 1)
    readonly property color primaryDark: Qt.rgba(0.439, 0.443, 0.455, 1)
    readonly property color accent: Qt.rgba(0.18, 0.6, 0.95, 1)
    // Dark enough for white letters on it to be read.
    readonly property color accentPlate: Qt.rgba(0.11, 0.44, 0.76, 1)
    readonly property color accentPlatePressed: Qt.rgba(0.08, 0.34, 0.6, 1)
    readonly property color text: "white"
    readonly property color mutedText: "#aab0bd"
    readonly property color placeholder: "#8b92a3"
    readonly property color fieldFill: "#272b37"
    readonly property color fieldLine: "#535a6b"
    readonly property color warning: "#ffc93c"
    readonly property color warningText: "#1b1e26"
    readonly property color destructive: "#ff7a6b"
    readonly property color listFill: "#f6f7f9"
    readonly property color listLine: "#dfe2e8"
    readonly property color listText: "black"

    readonly property int margin: 16
    readonly property int fieldHeight: 50
    readonly property int compactFieldHeight: 42
    readonly property int buttonHeight: 48
    readonly property int compactButtonHeight: 42

    // Height of an on-screen keyboard at the bottom of the window that the platform's input method
    // does not report; -1 to use the input method's value.
    property real keyboardHeight: -1

    // "Inter-Bold", "Inter-Light", or anything else for regular.
    function weight(fontName: string): int {
        const name = fontName.toLowerCase();
        return name.endsWith("bold") ? Font.Bold : name.endsWith("light") ? Font.Light : Font.Normal;
    }

    // Without the control characters, for which no font has a picture; and a date's form is not
    // broken over two lines.
    function drawable(text: string): string {
        return text.replace(/[\u0000-\u0008\u000e-\u001f]/g, "").replace(/(\w)\/(?=\w)/g, "$1/\u2060");
    }

    // An HTML fragment whose links look like links, wherever they lead.
    function drawableHtml(html: string): string {
        return html.replace(/[\u0000-\u0008\u000e-\u001f]/g, "").replace(/href=''/g, "href='#'");
    }

    // An HTML fragment as it is read aloud.
    function spoken(html: string): string {
        return theme.drawableHtml(html).replace(/<[^>]*>/g, "");
    }
}
