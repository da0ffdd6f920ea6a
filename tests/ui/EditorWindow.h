#pragma once

#include "AccessibleTree.h"
#include "ProjectChanges.h"
#include "TavlinWindow.h"

#include <QJsonValue>

#include <string>
#include <vector>

namespace tavi::test {

/// The real program with a take of eight seconds open in its editor, and a camera's video beside
/// it. Controls are found as assistive technology finds them.
///
/// The window is so tall that every control is on it.
class EditorWindow : public TavlinWindow {
public:
    static constexpr double kLength = 8;
    static constexpr int kVideoWidth = 640;
    static constexpr int kVideoHeight = 360;

    EditorWindow();

    std::filesystem::path take() const { return library() / "Take"; }
    void open();

    /// The control of that name; of several the one with that number, from 0.
    AccessibleItem find(const QString& name, const QString& role = {}, int number = 0);
    bool shows(const QString& name);
    void click(const QString& name, const QString& role = {}, int number = 0);
    using TavlinWindow::click;

    /// Clicks on a slider where it stands for that value.
    void setSlider(const QString& name, double value, double from, double to, int number = 0);

    /// Types into a field and leaves it by Return.
    void enter(const QString& field, const std::string& text);
    /// Answers the dialog for a new file: one in the library.
    void chooseFile(const std::string& name);

    enum class Lane { upper, lower };
    /// A place on the timeline; `height` is from 0 at the top of the lane to 1.
    QPoint onTimeline(Lane lane, double time, double height);
    /// The moment, and the level of zoom, that a place on the timeline means.
    double timeAt(QPoint place);
    double levelAt(QPoint place);
    /// The playhead as the toolbar tells it, in seconds.
    double playhead();

    struct Change {
        std::string path;
        QJsonValue value;
        double tolerance = 1e-9;
    };
    /// Waits until `project.json` differs from what it was at the last call by exactly that.
    void expectChanges(const std::vector<Change>& expected);
    void expectNoChange();

    /// Starts the program once more, with the same take.
    void openFromOutside();
    /// What the command line prints.
    std::string tavi(const QStringList& arguments);
    /// "codec,tag,width,height,rate,frames" of a film in the library.
    std::string probe(const std::string& name);

    QJsonValue project() const { return jsonIn(take() / "project.json"); }

private:
    struct Track {
        int left = 0;
        int top = 0;
        double width = 0;
    };
    Track track();
    /// The file dialog's window; empty where there is none.
    QString dialog();
    bool dialogStandsBeforeTheWindow();
    bool dialogHasTheKeyboard();
    void makeTake();
    void makeFilm(const char* name, const char* source);

    AccessibleTree m_tree;
    QJsonValue m_known; ///< The project as it was last looked at.
};

} // namespace tavi::test
