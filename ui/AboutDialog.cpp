#include "ui/AboutDialog.h"

#include "ui/DialogUnits.h"

#include <QApplication>
#include <QLabel>
#include <QPushButton>

namespace {

QLabel* AddText(QDialog* dialog, const char* text, int x, int y) {
    auto* label = new QLabel(QString::fromLatin1(text), dialog);
    label->setTextFormat(Qt::PlainText);
    label->move(DluToPixelsX(x), DluToPixelsY(y));
    label->adjustSize();
    return label;
}

} // namespace

AboutDialog::AboutDialog(QWidget* parent) : QDialog(parent) {
    setWindowTitle(QStringLiteral("About oxbowlantern"));
    setFont(DialogFont());
    setFixedSize(DluRect(0, 0, 235, 98).size());

    auto* icon = new QLabel(this);
    icon->setPixmap(QApplication::windowIcon().pixmap(32, 32));
    icon->setGeometry(DluToPixelsX(11), DluToPixelsY(17), 32, 32);

    AddText(this, "oxbowlantern   Version 1.0 ", 40, 10);
    AddText(this, "\"Take all you want,  but eat all you take\"", 40, 39);

    auto* ok = new QPushButton(QStringLiteral("OK"), this);
    ok->setGeometry(DluRect(178, 7, 50, 14));
    ok->setDefault(true);
    connect(ok, &QPushButton::clicked, this, &QDialog::accept);
}
