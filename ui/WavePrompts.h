#pragma once

#include "engine/WaveFile.h"

#include <QString>
#include <QStringList>
#include <functional>
#include <string>

class QWidget;

// The two windows of Load Waves, kept as replaceable calls so that the
// command runs without them in tests. GUI thread only.
struct WavePrompts {
    // The wave files the user picked, in the dialog's order; empty when the
    // dialog was cancelled.
    std::function<QStringList(QWidget* parent, const QString& startFolder)> pickFiles;
    // The one message after all files, naming each refused file.
    std::function<void(QWidget* parent, const QString& text)> warn;
};

// Qt's own multi-file open dialog for "*.wav" files and a warning box.
WavePrompts SystemWavePrompts();

// The name of the line a wave file becomes: the text behind the last '/',
// less its last four characters, taken as the extension whether or not it is
// one.
std::string WaveLineName(const std::string& path);

// Why a wave file was refused, as a clause for the user.
QString WaveRefusalReason(WaveStatus status);
