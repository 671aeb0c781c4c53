#include "ui/HelpDialogs.h"

#include "ui/DialogUnits.h"

#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>

namespace {

struct Tutorial {
    const char* title;
    int width, height; // dialog units
};

constexpr Tutorial tutorials[] = {{"Oxbowlantern Tutorial", 320, 223},
                                  {"Volume Tutorial", 339, 242},
                                  {"Pattern Editing Tutorial", 372, 261},
                                  {"Sequencing Tutorial", 354, 237},
                                  {"Tutorial 5:   Other Stuff", 346, 223}};

constexpr int Margin = 7;   // dialog units around the texts and the button
constexpr int Indent = 104; // dialog units from the left of an indented text

} // namespace

// The texts are compiled into the GUI library, a static one, so their
// registration is called for by name.
static void RegisterHelpTexts() {
    Q_INIT_RESOURCE(help);
}

QStringList TutorialDialog::Texts(int number) {
    static const bool registered = (RegisterHelpTexts(), true);
    (void)registered;
    QFile file(QStringLiteral(":/help/tutorial%1.txt").arg(number));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

// The texts are word-wrapped in labels as wide as the dialog less the
// margins; the dialog keeps its size and grows only if the font of this
// screen needs more room than the layout had.
TutorialDialog::TutorialDialog(QWidget* parent, int number) : QDialog(parent) {
    const Tutorial& t = tutorials[std::clamp(number, 1, 5) - 1];
    setWindowTitle(QString::fromLatin1(t.title));
    setFont(DialogFont());
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(DluToPixelsX(Margin), DluToPixelsY(Margin), DluToPixelsX(Margin),
                               DluToPixelsY(Margin));
    for (QString text : Texts(number)) {
        const bool indented = text.startsWith(QLatin1Char('\t'));
        auto* label = new QLabel(indented ? text.mid(1) : text, this);
        label->setTextFormat(Qt::PlainText);
        label->setWordWrap(true);
        if (indented)
            label->setContentsMargins(DluToPixelsX(Indent - Margin), 0, 0, 0);
        layout->addWidget(label);
    }
    layout->addStretch(1);
    auto* ok = new QPushButton(QStringLiteral("OK"), this);
    ok->setDefault(true);
    connect(ok, &QPushButton::clicked, this, &QDialog::accept);
    layout->addWidget(ok, 0, Qt::AlignRight);
    resize(DluRect(0, 0, t.width, t.height).size());
}

NameDialog::NameDialog(QWidget* parent, const QString& name) : QDialog(parent) {
    setWindowTitle(QStringLiteral("Change Instrument Name"));
    setFont(DialogFont());
    setFixedSize(DluRect(0, 0, 186, 77).size());
    field = new QLineEdit(name, this);
    field->setGeometry(DluRect(7, 7, 172, 12));
    auto* ok = new QPushButton(QStringLiteral("OK"), this);
    ok->setGeometry(DluRect(129, 27, 50, 14));
    ok->setDefault(true);
    connect(ok, &QPushButton::clicked, this, &QDialog::accept);
    auto* cancel = new QPushButton(QStringLiteral("Cancel"), this);
    cancel->setGeometry(DluRect(129, 47, 50, 14));
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
}
