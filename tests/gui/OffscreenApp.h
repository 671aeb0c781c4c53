#pragma once

#include <QApplication>
#include <QSettings>
#include <QStandardPaths>
#include <QTemporaryDir>

// The application of a test process that keeps settings, on Qt's offscreen
// platform. ctest runs the cases side by side in processes of their own, so
// each process keeps its settings in a folder of its own; every case starts
// from none.
inline QApplication* StartOffscreenApp() {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static int argc = 1;
    static char name[] = "test";
    static char* argv[] = {name, nullptr};
    QApplication* app = new QApplication(argc, argv);
    QStandardPaths::setTestModeEnabled(true);
    static QTemporaryDir settings;
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settings.path());
    return app;
}

inline void ClearSettings() {
    QSettings(QStringLiteral("oxbowlantern"), QStringLiteral("oxbowlantern")).clear();
}
