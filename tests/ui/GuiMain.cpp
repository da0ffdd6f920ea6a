#include "Scene.h"

#include <QGuiApplication>
#include <gtest/gtest.h>

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    QGuiApplication application(argc, argv);
    tavi::test::prepareScenes();
    return RUN_ALL_TESTS();
}
