// The window's tests need one QApplication for the whole process.

#include <QApplication>

#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    // Listing the tests at build time runs this too, with no display.
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
