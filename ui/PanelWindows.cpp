#include "ui/PanelWindows.h"

#include "ui/CanvasPainter.h"
#include "ui/DialogUnits.h"
#include "ui/MainView.h"
#include "ui/SpinArrows.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSlider>

namespace {

template <class W> W* NoFocus(W* widget) {
    widget->setFocusPolicy(Qt::NoFocus);
    return widget;
}

QLineEdit* Field(QWidget* parent) {
    auto* field = NoFocus(new QLineEdit(parent));
    field->setReadOnly(true);
    field->setFrame(false);
    return field;
}

// A release of the thumb, or a click on the groove, which pages the thumb
// without a drag: either sets the value from where the thumb now stands.
void OnRelease(QSlider* slider, const std::function<void(int)>& release) {
    QObject::connect(slider, &QSlider::sliderReleased, slider,
                     [slider, release] { release(slider->sliderPosition()); });
    QObject::connect(slider, &QSlider::actionTriggered, slider, [slider, release](int action) {
        if (action == QAbstractSlider::SliderPageStepAdd ||
            action == QAbstractSlider::SliderPageStepSub)
            release(slider->sliderPosition());
    });
}

// A text wider than its field shows its beginning.
void SetText(QLineEdit* field, const PanelText& text) {
    const QString t = QString::fromUtf8(text.text);
    if (field->text() == t)
        return;
    field->setText(t);
    field->setCursorPosition(0);
}

void SetSlider(QSlider* slider, int minimum, int maximum, int position) {
    const QSignalBlocker block(slider);
    slider->setRange(minimum, maximum);
    slider->setValue(position);
}

void SetCheck(QCheckBox* check, bool checked) {
    const QSignalBlocker block(check);
    check->setChecked(checked);
}

} // namespace

VolumePanelWindow::VolumePanelWindow(QWidget* parent, bool linePanel, WithView with)
    : QDialog(parent, Qt::Tool | Qt::CustomizeWindowHint | Qt::WindowTitleHint),
      isLinePanel(linePanel), withView(std::move(with)) {
    setObjectName(linePanel ? "popupVolumePanel" : "topVolumePanel");
    setAttribute(Qt::WA_QuitOnClose, false);    // the program ends with its frame
    setAttribute(Qt::WA_ShowWithoutActivating); // the keys stay with the frame
    QFont font;
    font.setFamilies({QStringLiteral("Impact"), QStringLiteral("Liberation Sans Narrow"),
                      QStringLiteral("DejaVu Sans Condensed")});
    font.setPointSize(8);
    setFont(font);
    setFocusPolicy(Qt::NoFocus);
    for (int r = 0; r < VolumePanel::MaxRows; ++r) {
        PanelColumn& c = columns[r];
        c.slider = NoFocus(new QSlider(Qt::Vertical, this));
        c.slider->setInvertedAppearance(true); // the lowest position at the top
        c.spin = new SpinArrows(Qt::Vertical, this);
        c.check = NoFocus(new QCheckBox(this));
        c.value = Field(this);
        c.name = Field(this);
        if (linePanel)
            c.name->setFont(CanvasPainter::FontFor("Times", 100));
        OnRelease(c.slider,
                  [this, r](int p) { withView([&](MainView& v) { Panel(v).OnRelease(r, p); }); });
        connect(c.spin, &SpinArrows::Spun, this, [this, r](int delta) {
            const int p = columns[r].slider->value();
            withView([&](MainView& v) { Panel(v).OnSpin(r, delta < 0, p); });
        });
        connect(c.check, &QCheckBox::clicked, this, [this, r](bool checked) {
            withView([&](MainView& v) { Panel(v).OnCheck(r, checked); });
        });
        for (QWidget* w : {static_cast<QWidget*>(c.slider), static_cast<QWidget*>(c.spin),
                           static_cast<QWidget*>(c.check), static_cast<QWidget*>(c.value),
                           static_cast<QWidget*>(c.name)})
            w->hide();
    }
    button = NoFocus(
        new QPushButton(linePanel ? QStringLiteral("Clear") : QStringLiteral("Controls"), this));
    button->setAutoDefault(false); // Return is a key of the key map, not a click
    if (!linePanel)
        connect(button, &QPushButton::clicked, this,
                [this] { withView([](MainView& v) { v.topVolumePanel.ToggleControls(); }); });
}

VolumePanel& VolumePanelWindow::Panel(MainView& view) const {
    return isLinePanel ? view.popupVolumePanel : view.topVolumePanel;
}

// A row's controls at its left edge, with the heights of the panel's kind.
void VolumePanelWindow::Place(int r, int x) {
    const int h = height();
    const PanelColumn& c = columns[r];
    const int nameBottom = isLinePanel ? 15 : 13, valueBottom = isLinePanel ? 30 : 26;
    const int checkHeight = isLinePanel ? 12 : 10;
    c.slider->setGeometry(x, 0, 25, h);
    c.name->setGeometry(x + 25, 0, 40, nameBottom);
    c.value->setGeometry(x + 25, nameBottom, 40, valueBottom - nameBottom);
    c.spin->setGeometry(x + 25, valueBottom, 40, h - checkHeight - valueBottom);
    c.check->setGeometry(x + 25, h - checkHeight, 40, checkHeight);
}

void VolumePanelWindow::Show(const VolumePanel& panel) {
    setWindowTitle(QString::fromUtf8(panel.caption.text));
    button->setGeometry(width() - VolumePanel::ButtonWidth, 0, VolumePanel::ButtonWidth, 20);
    for (int r = 0; r < VolumePanel::MaxRows; ++r) {
        const PanelColumn& c = columns[r];
        const PanelRow& row = panel.rows[r];
        const bool shown = r < panel.shownRows && row.left >= 0;
        if (shown) {
            Place(r, row.left);
            SetText(c.name, row.name);
            SetText(c.value, row.value);
            SetSlider(c.slider, row.minimum, row.maximum, row.position);
            c.check->setText(QString::fromUtf8(row.checkText.text));
            SetCheck(c.check, row.checked);
        }
        for (QWidget* w : {static_cast<QWidget*>(c.slider), static_cast<QWidget*>(c.spin),
                           static_cast<QWidget*>(c.check), static_cast<QWidget*>(c.value),
                           static_cast<QWidget*>(c.name)})
            w->setVisible(shown);
    }
}

void VolumePanelWindow::resizeEvent(QResizeEvent*) {
    const int w = width(), h = height();
    withView([&](MainView& v) {
        VolumePanel& panel = Panel(v);
        panel.SetClientSize(w, h);
        v.RefreshPanels();
    });
}

// The top panel stays for the life of the view; the popup panel comes and
// goes with the tab key only.
void VolumePanelWindow::closeEvent(QCloseEvent* event) {
    event->ignore();
}

SamplePanelWindow::SamplePanelWindow(QWidget* parent, WithView with,
                                     std::function<void()> loadSamples)
    : QDialog(parent, Qt::Tool), withView(std::move(with)) {
    setObjectName("samplePanel");
    setAttribute(Qt::WA_QuitOnClose, false);
    setAttribute(Qt::WA_ShowWithoutActivating);
    setFont(DialogFont());
    setFixedSize(DluRect(0, 0, 247, 161).size());
    setFocusPolicy(Qt::NoFocus);
    struct Layout {
        QRect check, name, slider, spin, value, clear;
    };
    const Layout layouts[SamplePanel::Rows] = {
        {DluRect(2, 3, 11, 11), DluRect(15, 3, 140, 12), DluRect(15, 15, 140, 17),
         DluRect(2, 15, 17, 18), DluRect(159, 17, 37, 12), QRect()},
        {DluRect(10, 39, 12, 11), DluRect(25, 39, 158, 12), DluRect(25, 52, 158, 17),
         DluRect(10, 52, 11, 18), DluRect(188, 55, 39, 12), DluRect(188, 39, 35, 12)},
        {DluRect(9, 74, 12, 11), DluRect(25, 74, 158, 12), DluRect(25, 87, 158, 17),
         DluRect(9, 87, 11, 18), DluRect(187, 90, 39, 12), DluRect(187, 74, 35, 12)},
        {DluRect(9, 109, 12, 11), DluRect(25, 110, 158, 12), DluRect(25, 122, 158, 17),
         DluRect(9, 122, 11, 18), DluRect(187, 125, 39, 12), DluRect(187, 109, 35, 12)}};
    for (int r = 0; r < SamplePanel::Rows; ++r) {
        const Layout& l = layouts[r];
        SampleRowWidgets& w = rows[r];
        w.check = NoFocus(new QCheckBox(this));
        w.check->setGeometry(l.check);
        w.name = Field(this);
        w.name->setGeometry(l.name);
        w.slider = NoFocus(new QSlider(Qt::Horizontal, this));
        w.slider->setRange(SamplePanel::SliderMinimum, 0);
        w.slider->setGeometry(l.slider);
        w.spin = new SpinArrows(Qt::Vertical, this);
        w.spin->setGeometry(l.spin);
        w.value = Field(this);
        w.value->setGeometry(l.value);
        w.clear = nullptr;
        OnRelease(w.slider, [this, r](int p) {
            withView([&](MainView& v) { v.samplePanel.OnRelease(r, p); });
        });
        connect(w.spin, &SpinArrows::Spun, this, [this, r](int delta) {
            withView([&](MainView& v) { v.samplePanel.OnSpin(r, delta < 0); });
        });
        connect(w.check, &QCheckBox::clicked, this, [this, r](bool checked) {
            withView([&](MainView& v) { v.samplePanel.OnCheck(r, checked); });
        });
        if (r > 0) {
            w.clear = NoFocus(new QPushButton(QStringLiteral("Clear"), this));
            w.clear->setGeometry(l.clear);
            connect(w.clear, &QPushButton::clicked, this,
                    [this, r] { withView([&](MainView& v) { v.samplePanel.OnClear(r); }); });
        }
    }
    okButton = NoFocus(new QPushButton(QStringLiteral("OK"), this));
    okButton->setGeometry(DluRect(198, 16, 45, 14));
    connect(okButton, &QPushButton::clicked, this,
            [this] { withView([](MainView& v) { v.samplePanel.OnOK(); }); });
    auto* label = new QLabel(QStringLiteral("Add/Remove Samples"), this);
    label->setGeometry(DluRect(172, 3, 71, 11));
    loadButton = NoFocus(new QPushButton(QStringLiteral("LOAD"), this));
    loadButton->setGeometry(DluRect(2, 144, 50, 14));
    connect(loadButton, &QPushButton::clicked, this, std::move(loadSamples));
}

void SamplePanelWindow::Show(const SamplePanel& panel) {
    for (int r = 0; r < SamplePanel::Rows; ++r) {
        const SamplePanelRow& row = panel.rows[r];
        SetText(rows[r].name, row.name);
        SetText(rows[r].value, row.value);
        SetSlider(rows[r].slider, SamplePanel::SliderMinimum, 0, row.position);
        SetCheck(rows[r].check, row.checked);
    }
}

void SamplePanelWindow::closeEvent(QCloseEvent* event) {
    event->ignore();
    withView([](MainView& v) { v.samplePanel.OnOK(); });
}
