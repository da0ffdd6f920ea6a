import QtQuick

QtObject {
    id: model

    property var recordings: []
    property var selectedItems: []
    readonly property int selectedCount: selectedItems.length
    readonly property bool allSelected: recordings.length > 0 && selectedCount === recordings.length
    /// What rename and delete answer; empty for success.
    property string problem: ""
    property var calls: []

    function fill(count: int) {
        const names = ["Recording_2026-11-20_15-04-05", "Product tour", "Bug 1422 - menu stays open",
                       "Onboarding, third attempt", "Recording_2026-11-17_09-30-00",
                       "A recording whose name is much longer than any card is wide, which must be cut"]
        const list = []
        for (let i = 0; i < count; ++i)
            list.push({
                id: "take-" + i,
                url: "file:///takes/" + i,
                path: "/takes/" + i,
                name: i < names.length ? names[i] : "Recording " + (i + 1),
                dateText: "Nov " + (1 + (40 - i % 20) % 28) + ", 2026, 3:04 PM",
                durationText: (i * 7) % 12 + ":" + String((i * 17) % 60).padStart(2, "0")
            })
        recordings = list
    }
    function toggleSelection(id: string) {
        selectedItems = selectedItems.includes(id) ? selectedItems.filter(other => other !== id)
                                                   : selectedItems.concat([id])
    }
    function selectAll() {
        selectedItems = recordings.map(item => item.id)
    }
    function clearSelection() {
        selectedItems = []
    }
    function rename(id: string, name: string): string {
        calls.push("rename " + id + " " + name)
        return problem
    }
    function deleteItem(id: string): string {
        calls.push("delete " + id)
        if (problem === "")
            recordings = recordings.filter(item => item.id !== id)
        return problem
    }
    function deleteSelected(): string {
        calls.push("delete selected")
        if (problem === "")
            recordings = recordings.filter(item => !selectedItems.includes(item.id))
        clearSelection()
        return problem
    }
}
