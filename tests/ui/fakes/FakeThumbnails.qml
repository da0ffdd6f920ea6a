import QtQuick

QtObject {
    /// Takes whose picture never comes.
    property var missing: []
    property var wanted: []

    signal ready(url url)

    function image(url: url): var {
        const number = Number(String(url).split("/").pop())
        return missing.includes(number) ? undefined : testPictures.screen(number)
    }
    function want(url: url) {
        wanted.push(String(url))
    }
    function forget(url: url) {
    }
}
