#include <QApplication>
#include <gmock/gmock.h>

#include <cstdlib>

/// Windows of these tests are drawn into memory; those that need a display start one.
int main(int argc, char** argv) {
    testing::InitGoogleMock(&argc, argv);
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    const QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
