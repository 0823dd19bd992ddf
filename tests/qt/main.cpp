#include <gtest/gtest.h>

#include <QApplication>
#include <fstream>

#include "support/temp_dir.h"

int main(int argc, char** argv) {
    // A desktop of 1366 x 768, the smallest that clerks have.
    const owb::test::TempDir folder;
    std::ofstream(folder.file("desktop.json"))
        << R"({"screens":[{"name":"desk","x":0,"y":0,"width":1366,"height":768,)"
           R"("logicalDpi":96,"logicalBaseDpi":96,"dpr":1}]})";
    qputenv("QT_QPA_PLATFORM",
            QByteArray("offscreen:configfile=") + folder.file("desktop.json").c_str());
    ::testing::InitGoogleTest(&argc, argv);
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setStyle("Fusion");
    return RUN_ALL_TESTS();
}
