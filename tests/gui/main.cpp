#include "BarsTest.h"
#include "FrameTest.h"
#include "PartsTest.h"

#include <QApplication>
#include <QTest>

// Runs every GUI test class in one process with one application object;
// the exit code is non-zero when any of them fails.
int main(int argc, char** argv) {
    QApplication app(argc, argv);
    PartsTest parts;
    FrameTest frame;
    BarsTest bars;
    int failed = 0;
    for (QObject* test : std::initializer_list<QObject*>{&parts, &frame, &bars})
        failed += QTest::qExec(test, argc, argv) != 0;
    return failed;
}
