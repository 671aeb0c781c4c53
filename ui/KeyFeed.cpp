#include "ui/KeyFeed.h"

#include <QGuiApplication>
#include <QKeyEvent>

KeyFeed::KeyFeed(Engine& engine) : poster(engine), raw(engine) {}

KeyFeed::~KeyFeed() {
    Stop();
}

KeyFeed::Source KeyFeed::Start() {
    if (source != Source::None)
        return source;
    if (QGuiApplication::platformName() == QLatin1String("xcb")) {
        Display* qtDisplay = nullptr;
#if QT_CONFIG(xcb)
        if (auto* x11 = qApp->nativeInterface<QNativeInterface::QX11Application>())
            qtDisplay = x11->display();
#endif
        if (raw.Start(qtDisplay))
            return source = Source::Raw;
    }
    qApp->installEventFilter(this);
    connect(qApp, &QGuiApplication::applicationStateChanged, this,
            &KeyFeed::OnApplicationStateChanged);
    return source = Source::QtEvents;
}

void KeyFeed::Stop() {
    if (source == Source::QtEvents) {
        qApp->removeEventFilter(this);
        disconnect(qApp, nullptr, this, nullptr);
    }
    raw.Stop();
    source = Source::None;
}

// GUI thread. Every sighting of a key event counts: the window's and those of
// the widgets it travels through are one press to the poster, which passes
// only a key's first press and first release.
bool KeyFeed::eventFilter(QObject* watched, QEvent* event) {
    const QEvent::Type type = event->type();
    if (type == QEvent::KeyPress || type == QEvent::KeyRelease) {
        const auto* key = static_cast<const QKeyEvent*>(event);
        if (!key->isAutoRepeat())
            poster.Post(type == QEvent::KeyPress, key->nativeScanCode());
    }
    return QObject::eventFilter(watched, event);
}

// Keys released while another program has the focus never reach the filter:
// they are released when the program loses it.
void KeyFeed::OnApplicationStateChanged(Qt::ApplicationState state) {
    if (state != Qt::ApplicationActive)
        poster.ReleaseHeld();
}
