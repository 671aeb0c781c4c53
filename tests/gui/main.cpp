#include "BarCommandsTest.h"
#include "BarsTest.h"
#include "CanvasPainterTest.h"
#include "FrameTest.h"
#include "InstrumentCommandsTest.h"
#include "KeyFeedTest.h"
#include "NoteBarTest.h"
#include "PartsTest.h"
#include "ViewWidgetTest.h"

#include <QApplication>
#include <QTest>

// Runs every GUI test class in one process with one application object;
// the exit code is non-zero when any of them fails.
int main(int argc, char** argv) {
    QApplication app(argc, argv);
    PartsTest parts;
    CanvasPainterTest canvas;
    FrameTest frame;
    BarsTest bars;
    BarCommandsTest barCommands;
    KeyFeedTest keys;
    ViewWidgetTest view;
    InstrumentCommandsTest instrumentCommands;
    NoteBarTest noteBar;
    int failed = 0;
    for (QObject* test :
         std::initializer_list<QObject*>{&parts, &canvas, &frame, &bars, &barCommands, &keys, &view,
                                         &instrumentCommands, &noteBar})
        failed += QTest::qExec(test, argc, argv) != 0;
    return failed;
}
