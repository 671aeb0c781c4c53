#include "ui/InstrumentPrompts.h"

#include "ui/HelpDialogs.h"

#include <QFileDialog>
#include <QLineEdit>

InstrumentPrompts SystemInstrumentPrompts() {
    InstrumentPrompts prompts;
    prompts.openFile = [](QWidget* parent) {
        return QFileDialog::getOpenFileName(parent, QString(), QString(),
                                            QStringLiteral("Inst Files   (*.nst)"), nullptr,
                                            QFileDialog::DontUseNativeDialog);
    };
    prompts.saveFile = [](QWidget* parent) {
        return QFileDialog::getSaveFileName(
            parent, QString(), QString(), QStringLiteral("Inst Files (*.nst)"), nullptr,
            QFileDialog::DontUseNativeDialog | QFileDialog::DontConfirmOverwrite);
    };
    prompts.askName = [](QWidget* parent, const QString& name) -> std::optional<QString> {
        NameDialog dialog(parent, name);
        if (dialog.exec() != QDialog::Accepted)
            return std::nullopt;
        return dialog.field->text();
    };
    return prompts;
}
