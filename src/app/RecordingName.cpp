#include "app/RecordingName.h"

#include "app/PathText.h"

#include <QCoreApplication>
#include <QTextBoundaryFinder>

namespace tavi {

namespace {

constexpr int kLongestName = 200; // characters as a reader counts them

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(HomeView)
};

int characterCount(const QString& text) {
    QTextBoundaryFinder characters(QTextBoundaryFinder::Grapheme, text);
    int count = 0;
    while (characters.toNextBoundary() != -1) {
        ++count;
    }
    return count;
}

} // namespace

QString trimmedName(const QString& text) {
    return text.trimmed();
}

QString problemWithName(const QString& name, const std::filesystem::path& folder) {
    if (name.isEmpty()) {
        return Texts::tr("Name cannot be empty.");
    }
    if (name.contains(u'/') || name.contains(u':')) {
        return Texts::tr("Name cannot contain \"/\" or \":\" characters.");
    }
    if (name.startsWith(u'.')) {
        return Texts::tr("Name cannot start with a dot.");
    }
    if (characterCount(name) > kLongestName) {
        return Texts::tr("Name is too long (max 200 characters).");
    }
    if (isThere(folder.parent_path() / pathOf(name))) {
        return Texts::tr("A recording with this name already exists.");
    }
    return {};
}

} // namespace tavi
