import QtQuick
import QtTest
import Tavi.Ui

TestCase {
    name: "Palette"

    function test_coloursAreThoseOfTheProgram_data() {
        return [{ tag: "background", rgba: [0.067, 0.067, 0.075, 1] },
                { tag: "surface", rgba: [0.11, 0.11, 0.118, 1] },
                { tag: "raisedSurface", rgba: [0.145, 0.145, 0.155, 1] },
                { tag: "border", rgba: [1, 1, 1, 0.06] },
                { tag: "accent", rgba: [0.94, 0.71, 0.16, 1] },
                { tag: "primaryText", rgba: [0.91, 0.91, 0.93, 1] },
                { tag: "secondaryText", rgba: [0.56, 0.56, 0.58, 1] },
                { tag: "danger", rgba: [1.0, 0.27, 0.23, 1] },
                { tag: "success", rgba: [0.19, 0.82, 0.35, 1] }]
    }
    function test_coloursAreThoseOfTheProgram(data) {
        const colour = AppPalette[data.tag]
        const found = [colour.r, colour.g, colour.b, colour.a]
        for (let i = 0; i < 4; ++i)
            fuzzyCompare(found[i], data.rgba[i], 1 / 65535)
    }
    function test_aToneKeepsItsColour() {
        const faint = AppPalette.at(AppPalette.accent, 0.25)
        fuzzyCompare(faint.r, AppPalette.accent.r, 1e-4)
        fuzzyCompare(faint.a, 0.25, 1e-4)
    }
    function contrast(one, other) {
        const light = c => [c.r, c.g, c.b].map(v => v <= 0.04045 ? v / 12.92 : Math.pow((v + 0.055) / 1.055, 2.4))
                                          .reduce((sum, v, i) => sum + v * [0.2126, 0.7152, 0.0722][i], 0)
        const [a, b] = [light(one), light(other)].sort((x, y) => y - x)
        return (a + 0.05) / (b + 0.05)
    }
    function test_textsCanBeRead() {
        for (const ground of [AppPalette.background, AppPalette.surface, AppPalette.raisedSurface]) {
            verify(contrast(AppPalette.primaryText, ground) > 7)
            verify(contrast(AppPalette.secondaryText, ground) > 4.5)
            verify(contrast(AppPalette.accent, ground) > 4.5)
        }
        verify(contrast(AppPalette.background, AppPalette.accent) > 7) // text on the primary button
    }
    function test_typefacesAreTheBuiltInOnes() {
        verify(Qt.fontFamilies().includes(Theme.family))
        verify(Qt.fontFamilies().includes(Theme.tabularFamily))
    }

    TextLabel { id: ones; tabular: true; text: "11:11.1" }
    TextLabel { id: eights; tabular: true; text: "88:88.8" }
    TextLabel { id: loose; text: "11:11.1" }

    function test_digitsOfTimesAreOfOneWidth() {
        compare(ones.implicitWidth, eights.implicitWidth)
        verify(loose.implicitWidth < ones.implicitWidth)
    }
}
