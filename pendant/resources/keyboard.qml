import QtQuick 2.0
import QtQuick.VirtualKeyboard 2.1
import QtQuick.VirtualKeyboard.Settings 2.1

// The keyboard the shell shows in a window of its own; its width is set by the shell and its
// height follows from it. "layout" is the shell's language, "layouts" what the globe key offers.
InputPanel {
    id: panel
    objectName: "inputPanel"
    property string layout: "en_GB"
    property var layouts: ["en_GB"]

    function apply() {
        VirtualKeyboardSettings.activeLocales = layouts
        VirtualKeyboardSettings.locale = layout
    }
    onLayoutChanged: apply()
    onLayoutsChanged: apply()
    Component.onCompleted: apply()
}
