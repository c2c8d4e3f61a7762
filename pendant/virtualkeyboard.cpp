#include "virtualkeyboard.h"

#include <tcore/settingmanager.h>

#include <QFileInfo>
#include <QGuiApplication>
#include <QInputMethod>
#include <QLibraryInfo>
#include <QScreen>
#include <QVariant>
#include <QWindow>

#ifdef TPENDANT_KEYBOARD
#include <QQmlError>
#include <QQuickItem>
#include <QQuickView>
#include <QQuickWindow>
#include <QSGRendererInterface>

static void initKeyboardResources()
{
    Q_INIT_RESOURCE(pendantkeyboard);
}
#endif

namespace {

constexpr char kInputModule[] = "qtvirtualkeyboard";
// Keys of about 80 px on the 1280x800 panel.
constexpr int kMaxWidth = 960;

[[maybe_unused]] bool pluginInstalled()
{
    const QString plugins = QLibraryInfo::location(QLibraryInfo::PluginsPath);
    const QString qml = QLibraryInfo::location(QLibraryInfo::Qml2ImportsPath);
    return QFileInfo::exists(plugins + QStringLiteral("/platforminputcontexts/libqtvirtualkeyboardplugin.so"))
           && QFileInfo::exists(qml + QStringLiteral("/QtQuick/VirtualKeyboard/qmldir"));
}

} // namespace

void VirtualKeyboard::prepareEnvironment()
{
#ifdef TPENDANT_KEYBOARD
    if (!qEnvironmentVariableIsSet("QT_IM_MODULE") && pluginInstalled())
        qputenv("QT_IM_MODULE", kInputModule);
    if (qgetenv("QT_IM_MODULE") == kInputModule && !qEnvironmentVariableIsSet("QT_VIRTUALKEYBOARD_DESKTOP_DISABLE"))
        qputenv("QT_VIRTUALKEYBOARD_DESKTOP_DISABLE", "1");
#endif
}

bool VirtualKeyboard::isAvailable()
{
#ifdef TPENDANT_KEYBOARD
    return qgetenv("QT_IM_MODULE") == kInputModule && pluginInstalled();
#else
    return false;
#endif
}

QString VirtualKeyboard::layoutFor(const QString &language)
{
    // Debian's keyboard has no Chinese or Japanese input method: those type Latin letters.
    if (language == QLatin1String("ru"))
        return QStringLiteral("ru_RU");
    if (language == QLatin1String("kr"))
        return QStringLiteral("ko_KR");
    return QStringLiteral("en_GB");
}

QRect VirtualKeyboard::placement(const QRect &screen, const QRect &field, int width, int height)
{
    width = qMin(width, screen.width());
    height = qMin(height, screen.height());
    const int x = screen.x() + (screen.width() - width) / 2;
    QRect bottom(x, screen.bottom() - height + 1, width, height);
    if (field.isValid() && field.intersects(bottom))
        return QRect(x, screen.y(), width, height);
    return bottom;
}

VirtualKeyboard::VirtualKeyboard(QObject *parent)
    : QObject(parent)
{
#ifdef TPENDANT_KEYBOARD
    initKeyboardResources();
    if (!isAvailable()) {
        m_error = tr("Qt's virtual keyboard is not the input method (QT_IM_MODULE).");
        return;
    }
    // A flat 2D panel: Qt Quick's software renderer draws it on every platform, the VNC and
    // framebuffer ones without OpenGL included.
    if (!qEnvironmentVariableIsSet("QT_QUICK_BACKEND"))
        QQuickWindow::setSceneGraphBackend(QSGRendererInterface::Software);
    m_view = new QQuickView;
    m_view->setObjectName(QStringLiteral("virtualKeyboard"));
    m_view->setTitle(QStringLiteral("keyboard"));
    m_view->setFlags(Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::WindowDoesNotAcceptFocus);
    m_view->setColor(QColor(QStringLiteral("#14171b")));
    m_view->setResizeMode(QQuickView::SizeViewToRootObject);
    m_view->setSource(QUrl(QStringLiteral("qrc:/pendant/keyboard.qml")));
    if (m_view->status() != QQuickView::Ready || !m_view->rootObject()) {
        QStringList errors;
        for (const QQmlError &e : m_view->errors())
            errors.append(e.toString());
        m_error = errors.isEmpty() ? tr("The keyboard did not load.") : errors.join(QLatin1Char('\n'));
        delete m_view;
        m_view = nullptr;
        return;
    }
    QInputMethod *im = QGuiApplication::inputMethod();
    connect(im, &QInputMethod::visibleChanged, this, &VirtualKeyboard::update);
    connect(im, &QInputMethod::cursorRectangleChanged, this, [this] {
        if (m_view && m_view->isVisible())
            update();
    });
    connect(qGuiApp, &QGuiApplication::focusWindowChanged, this, &VirtualKeyboard::onFocusWindowChanged);
    connect(tcore::SettingManager::instance(), &tcore::SettingManager::changed, this,
            [this](const QString &key, const QVariant &value) {
                if (key == QLatin1String("language"))
                    setLanguage(value.toString());
            });
    setLanguage(tcore::SettingManager::getStr(QStringLiteral("language"), QStringLiteral("en")));
    onFocusWindowChanged(QGuiApplication::focusWindow());
#else
    m_error = tr("This build has no on-screen keyboard (Qt Quick was not found).");
#endif
}

VirtualKeyboard::~VirtualKeyboard()
{
#ifdef TPENDANT_KEYBOARD
    if (m_view)
        m_view->hide();
    delete m_view;
#endif
}

bool VirtualKeyboard::isReady() const
{
    return m_view != nullptr;
}

bool VirtualKeyboard::isVisible() const
{
#ifdef TPENDANT_KEYBOARD
    return m_view && m_view->isVisible();
#else
    return false;
#endif
}

QWindow *VirtualKeyboard::window() const
{
#ifdef TPENDANT_KEYBOARD
    return m_view;
#else
    return nullptr;
#endif
}

QString VirtualKeyboard::layout() const
{
#ifdef TPENDANT_KEYBOARD
    if (m_view && m_view->rootObject())
        return m_view->rootObject()->property("layout").toString();
#endif
    return QString();
}

void VirtualKeyboard::setLanguage(const QString &language)
{
#ifdef TPENDANT_KEYBOARD
    if (!m_view || !m_view->rootObject())
        return;
    const QString layout = layoutFor(language);
    QStringList layouts{layout};
    if (layout != QLatin1String("en_GB"))
        layouts.append(QStringLiteral("en_GB"));
    m_view->rootObject()->setProperty("layouts", layouts);
    m_view->rootObject()->setProperty("layout", layout);
#else
    Q_UNUSED(language)
#endif
}

void VirtualKeyboard::onFocusWindowChanged(QWindow *window)
{
#ifdef TPENDANT_KEYBOARD
    if (!m_view || !window)
        return;
    if (window == m_view) {
        // Platforms that ignore "does not accept focus" (offscreen) hand it the focus on show:
        // give it back to the window being typed in, or the keys would have nowhere to go.
        if (m_lastFocus)
            m_lastFocus->requestActivate();
        return;
    }
    m_lastFocus = window;
#else
    Q_UNUSED(window)
#endif
}

void VirtualKeyboard::update()
{
#ifdef TPENDANT_KEYBOARD
    if (!m_view)
        return;
    QInputMethod *im = QGuiApplication::inputMethod();
    if (!im->isVisible()) {
        m_view->hide();
        return;
    }
    QWindow *target = QGuiApplication::focusWindow();
    if (!target || target == m_view)
        target = m_lastFocus;
    // A transient of the window being typed in is not blocked when that window is modal.
    if (target)
        m_view->setTransientParent(target);
    QScreen *screen = target ? target->screen() : QGuiApplication::primaryScreen();
    const QRect area = screen->geometry();

    QQuickItem *panel = m_view->rootObject();
    // The keyboard's height follows its width (about 5/16): at most 3/8 of the screen's height.
    const int width = qMin(qMin(area.width(), kMaxWidth), area.height() * 6 / 5);
    panel->setWidth(width);
    int height = int(panel->height());
    if (height <= 0)
        height = width * 5 / 16;

    QRect field;
    if (target) {
        QRect local = im->inputItemClipRectangle().toAlignedRect();
        if (!local.isValid())
            local = im->cursorRectangle().toAlignedRect();
        if (local.isValid())
            field = QRect(target->mapToGlobal(local.topLeft()), local.size());
    }
    m_view->setGeometry(placement(area, field, width, height));
    m_view->show();
    m_view->raise();
#endif
}
