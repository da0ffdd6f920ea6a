#include "support/OpenEditor.h"

#include <fstream>

namespace tavi::test {

OpenEditor::OpenEditor() : folder(library / "Recording_2024-05-06_07-08-09") {
    std::filesystem::create_directories(folder);
    media.known["video.mov"] = asset(60, Size{1280, 720});
    clock.setHostTime(100);
}

void OpenEditor::writeFile(const char* name, const std::string& text) const {
    std::ofstream(folder / name) << text;
}

void OpenEditor::writeProject(const EditProject& project) const {
    writeFile("project.json", encodeEditProject(project).value());
}

void OpenEditor::addCamera(double delay) {
    writeFile("camera.mov", "");
    media.known["camera.mov"] = asset(50, Size{640, 480});
    writeFile(
        "metadata.json",
        R"({"startDate":0,"duration":60,"screenWidth":1280,"screenHeight":720,)"
        R"("cursorEvents":[{"timestamp":1,"x":2,"y":3,"eventType":"move","cursorImageId":0}],)"
        R"("hasCamera":true,"cameraStartDelay":)" +
            std::to_string(delay) + "}");
}

void OpenEditor::open(bool settled) {
    editor = std::make_unique<EditorViewModel>(
        folder, EditorPorts{players, media, [](const auto&) { return nullptr; }, clock, main,
                            background, timers, library.path()});
    if (settled) {
        settle();
    }
}

void OpenEditor::settle() {
    while (background.waiting() + main.waiting() > 0) {
        background.runAll();
        main.runAll();
    }
}

EditProject OpenEditor::saved() const {
    const auto text = readTextFile(folder / "project.json");
    const auto project = decodeEditProject(text.value_or(""));
    EXPECT_TRUE(project) << "project.json does not decode";
    return project.value_or(EditProject{});
}

bool OpenEditor::isSaved() const {
    return std::filesystem::exists(folder / "project.json");
}

void OpenEditor::removeSaved() const {
    std::filesystem::remove(folder / "project.json");
}

std::vector<std::string> OpenEditor::newCalls() {
    const auto all = log.calls();
    const std::vector<std::string> added(all.begin() + static_cast<std::ptrdiff_t>(m_seen),
                                         all.end());
    m_seen = all.size();
    return added;
}

} // namespace tavi::test
