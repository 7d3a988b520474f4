#include <QApplication>
#include <gtest/gtest.h>

/// The surfaces are drawn off screen; what needs a window manager is tested in a session of its own.
int main(int count, char** arguments) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("LUMNARA_APPEARANCE", "dark");
    ::testing::InitGoogleTest(&count, arguments);
    QApplication application(count, arguments);
    QApplication::setQuitOnLastWindowClosed(false);
    return RUN_ALL_TESTS();
}
