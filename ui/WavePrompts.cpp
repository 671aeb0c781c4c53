#include "ui/WavePrompts.h"

#include <QFileDialog>
#include <QMessageBox>

WavePrompts SystemWavePrompts() {
    WavePrompts prompts;
    prompts.pickFiles = [](QWidget* parent, const QString& startFolder) {
        return QFileDialog::getOpenFileNames(parent, QString(), startFolder,
                                             QStringLiteral("Wave Files (*.wav)"), nullptr,
                                             QFileDialog::DontUseNativeDialog);
    };
    prompts.warn = [](QWidget* parent, const QString& text) {
        QMessageBox::warning(parent, QStringLiteral("oxbowlantern"), text);
    };
    return prompts;
}

std::string WaveLineName(const std::string& path) {
    const size_t slash = path.rfind('/');
    const std::string file = slash == std::string::npos ? path : path.substr(slash + 1);
    return file.substr(0, file.size() > 4 ? file.size() - 4 : 0);
}

QString WaveRefusalReason(WaveStatus status) {
    switch (status) {
    case WaveStatus::Ok:
        return QStringLiteral("loaded");
    case WaveStatus::Missing:
        return QStringLiteral("the file cannot be opened");
    case WaveStatus::NotWave:
        return QStringLiteral("it is not a RIFF wave file");
    case WaveStatus::NoFormat:
        return QStringLiteral("it has no usable format chunk before its sample data");
    case WaveStatus::Unsupported:
        return QStringLiteral("its format is not taken: compressed, more than two channels, or "
                              "an unusual sample size");
    case WaveStatus::NoData:
        return QStringLiteral("it has no sample data");
    case WaveStatus::ShortData:
        return QStringLiteral("the file ends inside its sample data");
    case WaveStatus::OutOfMemory:
        return QStringLiteral("the sample does not fit in memory");
    }
    return QStringLiteral("unknown reason");
}
