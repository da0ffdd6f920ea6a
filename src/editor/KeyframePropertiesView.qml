import QtQuick
import QtQuick.Templates as T
import Tavi.Ui

/// The inspector: look, zooms and film in three tabs.
Rectangle {
    id: view

    required property QtObject screen
    property int selectedTab: 0
    property bool showZoomDetails: false

    color: AppPalette.surface

    SidebarTabs {
        id: tabs
        width: parent.width
        currentIndex: view.selectedTab
        onChosen: index => view.selectedTab = index
    }
    Rule {
        id: rule
        anchors.top: tabs.bottom
        width: parent.width
    }
    Flickable {
        id: scroll
        anchors.top: rule.bottom
        anchors.bottom: parent.bottom
        width: parent.width
        contentHeight: body.height + 2 * Theme.margin
        boundsBehavior: Flickable.StopAtBounds
        clip: true

        T.ScrollBar.vertical: ScrollLine {}

        Loader {
            id: body
            x: Theme.margin
            y: Theme.margin
            width: parent.width - 2 * Theme.margin
            sourceComponent: view.selectedTab === 0 ? style : view.selectedTab === 1 ? zoom : film
            onSourceComponentChanged: scroll.contentY = 0
        }
    }
    Component {
        id: style
        StyleTab {
            style: view.screen.style
        }
    }
    Component {
        id: zoom
        ZoomTab {
            screen: view.screen
            showZoomDetails: view.showZoomDetails
            onDetailsToggled: view.showZoomDetails = !view.showZoomDetails
        }
    }
    Component {
        id: film
        ExportSettingsView {
            settings: view.screen.exportSettings
        }
    }
}
