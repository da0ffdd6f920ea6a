#pragma once

#include <QImage>
#include <QObject>
#include <QUrl>

namespace tavi::test {

/// Made-up pictures for scenes, the same at every run.
class TestPictures : public QObject {
    Q_OBJECT
    /// A file with a picture of a screen.
    Q_PROPERTY(QUrl screenUrl READ screenUrl CONSTANT)

public:
    using QObject::QObject;

    /// Something like a desktop with a window; each number looks different.
    Q_INVOKABLE QImage screen(int number) const;
    QUrl screenUrl() const;
};

} // namespace tavi::test
