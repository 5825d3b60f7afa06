// SPDX-License-Identifier: Apache-2.0

pragma Singleton
import QtQuick

// What all screens look like: the brand's colours and fonts, and the measures of the layout.
QtObject {
    id: theme

    readonly property string family: "Inter"

    // qmllint disable unqualified
    readonly property bool dark: orlixLook.dark
    readonly property bool reducedMotion: orlixLook.reducedMotion
    readonly property real textScale: orlixLook.textScale
    readonly property bool mirrored: orlixLook.mirrored
    // qmllint enable unqualified

    // On a sheet and on what the screen model colours, which is dark in both schemes.
    readonly property color accent: "#2e99f2"
    // Dark enough for white letters on it to be read.
    readonly property color accentPlate: Qt.rgba(0.11, 0.44, 0.76, 1)
    readonly property color accentPlatePressed: Qt.rgba(0.08, 0.34, 0.6, 1)
    readonly property color text: "white"
    readonly property color mutedText: "#aab0bd"
    readonly property color rowFill: "#272b37"
    readonly property color line: "#7d8599"
    readonly property color warning: "#ffc93c"
    readonly property color warningText: "#1b1e26"
    readonly property color destructive: "#ff7a6b"

    // Fields and drop-downs.
    readonly property color fieldFill: theme.dark ? theme.rowFill : "#f6f7f9"
    readonly property color fieldLine: theme.dark ? theme.line : "#7b8290"
    readonly property color fieldFocus: theme.dark ? theme.accent : theme.accentPlate
    readonly property color fieldText: theme.dark ? "white" : "#14171d"
    readonly property color fieldCaption: theme.dark ? theme.mutedText : "#4a5262"
    readonly property color fieldFocusCaption: theme.dark ? theme.accent : "#125a9c"
    readonly property color placeholder: theme.dark ? "#a9afbd" : "#555d6d"

    // A long list to choose from.
    readonly property color listFill: theme.dark ? "#1f232d" : "#f6f7f9"
    readonly property color listLine: theme.dark ? "#3a4050" : "#dfe2e8"
    readonly property color listText: theme.dark ? "white" : "#14171d"
    readonly property color listMark: theme.dark ? theme.accent : theme.accentPlate
    readonly property color listBar: theme.dark ? theme.line : "#7b8290"

    // The progress indicator.
    readonly property color noticeFill: theme.dark ? "#fb0e1016" : "#fbffffff"
    readonly property color noticeLine: theme.dark ? "#33ffffff" : "#33000000"
    readonly property color noticeText: theme.dark ? "white" : "#14171d"

    readonly property int margin: 16
    readonly property int fieldHeight: theme.points(50)
    readonly property int compactFieldHeight: theme.points(42)
    readonly property int buttonHeight: theme.points(48)
    readonly property int compactButtonHeight: theme.points(42)
    // Opacity of a control that can do nothing now.
    readonly property real disabled: 0.45

    // Height of an on-screen keyboard at the bottom of the window that the platform's input method
    // does not report; -1 to use the input method's value.
    property real keyboardHeight: -1

    // Whether controls need a line each on a sheet of this width.
    function isNarrow(width: real): bool {
        return width < 250 * theme.textScale;
    }

    // A measure that grows with the user's font size, in pixels.
    function points(size: real): int {
        return Math.round(size * theme.textScale);
    }

    // What a screen reader says of a control; Qt 6.4 does not give it the disabled state.
    function described(text: string, enabled: bool): string {
        return enabled ? text : text === "" ? "Not available now" : text + ". Not available now";
    }

    // The picture of this name, drawn in one colour.
    function tinted(name: string, color: color): string {
        return "image://orlix/" + name + "@" + color.toString().slice(1);
    }

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
