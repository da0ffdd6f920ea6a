#pragma once

#include <QImage>
#include <QObject>

namespace tavi::test {

/// Made-up pictures for scenes, the same at every run.
class TestPictures : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    /// Something like a desktop with a window; each number looks different.
    Q_INVOKABLE QImage screen(int number) const;
};

} // namespace tavi::test
