// SPDX-License-Identifier: Apache-2.0

pragma Singleton
import QtQuick

// Colours and text sizes of the shop, with the colour scheme and text scale of the wallet's screens.
QtObject {
    id: theme

    // qmllint disable unqualified
    readonly property bool dark: orlixLook.dark
    readonly property real textScale: orlixLook.textScale
    // qmllint enable unqualified

    readonly property color page: theme.dark ? "#12181a" : "#f3f6f4"
    readonly property color plate: theme.dark ? "#1d2629" : "white"
    readonly property color edge: theme.dark ? "#2c383b" : "#e2e7e4"
    readonly property color bar: theme.dark ? "#0e4a36" : "#15694c"
    readonly property color ink: theme.dark ? "#eef3f0" : "#14211b"
    readonly property color mutedInk: theme.dark ? "#d3ddd8" : "#414b46"
    readonly property color price: theme.dark ? "#a5ecd0" : "#15694c"
    readonly property color button: theme.dark ? "#1c7d5a" : "#15694c"
    readonly property color buttonPressed: theme.dark ? "#15644a" : "#0d4a35"
    readonly property color platePressed: theme.dark ? "#2a363a" : "#dfe6e2"
    readonly property color buttonLine: theme.dark ? "#75857d" : "#73847b"
    readonly property color ring: theme.dark ? "#8ab8ff" : "#1a56b0"
    readonly property color messageFill: theme.dark ? "#332c12" : "#fff6dd"
    readonly property color messageInk: theme.dark ? "#ffe9a8" : "#5c4300"
    readonly property color good: theme.dark ? "#5fd08a" : "#15703a"
    readonly property color bad: theme.dark ? "#ff8a7a" : "#b42318"
    readonly property color neutral: theme.dark ? "#a9b4c4" : "#475467"

    // A measure that grows with the user's font size, in pixels.
    function points(size: real): int {
        return Math.round(size * theme.textScale);
    }
}
