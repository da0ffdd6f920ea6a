#include "EditorSceneTest.h"
#include "ui/Picture.h"

#include <algorithm>

namespace tavi::test {
namespace {

class EditorCanvas : public EditorSceneTest {
protected:
    EditorCanvas() : EditorSceneTest(QStringLiteral("editor")) {}

    const Picture& shown() {
        return *static_cast<Picture*>(find([](const QQuickItem& item) {
            const auto* picture = qobject_cast<const Picture*>(&item);
            return picture && picture->holder();
        }));
    }
};

TEST_F(EditorCanvas, showsTheNewestPictureAndKeepsNoOther) {
    CanvasViewModel& canvas = *screen().canvas();
    std::vector<std::weak_ptr<const PixelBuffer>> composed;
    for (int i = 0; i < 10; ++i) {
        canvas.tick();
        m_scene.settle();
        composed.emplace_back(canvas.pixels());
        EXPECT_EQ(shown().source().value<PixelBufferPtr>(), canvas.pixels());
        EXPECT_EQ(
            std::ranges::count_if(composed, [](const auto& picture) { return !picture.expired(); }),
            1);
    }
}

} // namespace
} // namespace tavi::test
