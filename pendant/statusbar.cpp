#include "statusbar.h"

#include "shelloptions.h"

#include <kx/kx.h>
#include <orba/moduleobject.h>
#include <orbat/controllermanager.h>
#include <orbat/transport.h>
#include <orbat/tservice.h>
#include <tcore/settingmanager.h>

#include <QComboBox>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVariant>

namespace {

QString languageName(const QString &code)
{
    if (code == QLatin1String("cn"))
        return QStringLiteral("中文");
    if (code == QLatin1String("jp"))
        return QStringLiteral("日本語");
    if (code == QLatin1String("kr"))
        return QStringLiteral("한국어");
    if (code == QLatin1String("ru"))
        return QStringLiteral("Русский");
    return QStringLiteral("English");
}

} // namespace

StatusBar::StatusBar(QWidget *parent)
    : QFrame(parent)
{
    setObjectName(QStringLiteral("statusBar"));
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(12, 4, 12, 4);
    layout->setSpacing(12);

    m_title = new QLabel(QStringLiteral("tpendant"), this);
    m_title->setObjectName(QStringLiteral("lblTitle"));
    layout->addWidget(m_title);

    m_link = new QLabel(this);
    m_link->setObjectName(QStringLiteral("lblLink"));
    layout->addWidget(m_link);

    m_rcId = new QLabel(this);
    m_rcId->setObjectName(QStringLiteral("lblRcId"));
    layout->addWidget(m_rcId);
    layout->addStretch(1);

    m_power = new QPushButton(this);
    m_power->setObjectName(QStringLiteral("btnPower"));
    m_power->setCheckable(true);
    m_power->setMinimumSize(132, 44);
    layout->addWidget(m_power);

    m_level = new QComboBox(this);
    m_level->setObjectName(QStringLiteral("cmbLevel"));
    for (int level = 0; level <= 4; ++level)
        m_level->addItem(QString(), level);
    m_level->setMinimumSize(120, 44);
    layout->addWidget(m_level);

    m_language = new QComboBox(this);
    m_language->setObjectName(QStringLiteral("cmbLanguage"));
    for (const QString &code : ShellOptions::languages())
        m_language->addItem(languageName(code), code);
    m_language->setMinimumSize(120, 44);
    layout->addWidget(m_language);

    connect(m_power, &QPushButton::clicked, this, [this](bool checked) { requestPower(checked); });
    connect(m_level, QOverload<int>::of(&QComboBox::currentIndexChanged), this, &StatusBar::onLevelChosen);
    connect(m_language, QOverload<int>::of(&QComboBox::currentIndexChanged), this, &StatusBar::onLanguageChosen);

    followLevelNode();
    connect(tcore::SettingManager::instance(), &tcore::SettingManager::changed, this,
            [this](const QString &key, const QVariant &value) {
                if (key == QLatin1String("language"))
                    showLanguage(value.toString());
            });
    showLanguage(tcore::SettingManager::getStr(QStringLiteral("language"), QStringLiteral("en")));

    orbat::ControllerManager *manager = tservice()->controllerManager();
    connect(manager, &orbat::ControllerManager::rcConnected, this, &StatusBar::onConnected);
    connect(manager, &orbat::ControllerManager::rcDisconnected, this, &StatusBar::onDisconnected);
    connect(tservice(), &TService::watchEvent, this, [this](const QString &name, const QVariant &data) {
        if (name != QLatin1String("sys.power"))
            return;
        const int power = parsePower(data);
        if (power >= 0)
            showPower(power == 1, true);
    });
    retranslate();
    refresh();
}

StatusBar::~StatusBar() = default;

int StatusBar::parsePower(const QVariant &value)
{
    switch (value.userType()) {
    case QMetaType::Bool:
        return value.toBool() ? 1 : 0;
    case QMetaType::Int:
    case QMetaType::LongLong:
    case QMetaType::UInt:
    case QMetaType::ULongLong:
    case QMetaType::Double:
        return value.toDouble() != 0.0 ? 1 : 0;
    case QMetaType::QString:
    case QMetaType::QByteArray: {
        // Not QVariant::toBool(): every non-empty text but "0" and "false" would be "on".
        const QString text = value.toString().trimmed().toLower();
        if (text == QLatin1String("on") || text == QLatin1String("true") || text == QLatin1String("1"))
            return 1;
        if (text == QLatin1String("off") || text == QLatin1String("false") || text == QLatin1String("0"))
            return 0;
        return -1;
    }
    default:
        return -1;
    }
}

void StatusBar::changeEvent(QEvent *event)
{
    QFrame::changeEvent(event);
    if (event->type() == QEvent::LanguageChange)
        retranslate();
}

void StatusBar::retranslate()
{
    for (int i = 0; i < m_level->count(); ++i)
        m_level->setItemText(i, tr("Level %1").arg(m_level->itemData(i).toInt()));
    showLink(m_linkUp);
    showPower(m_powerOn, m_powerKnown);
}

void StatusBar::followLevelNode()
{
    orba::ModuleObject *node = kx::globalNode(QStringLiteral("tcore.r.level"));
    if (node != m_levelNode) {
        if (m_levelNode)
            disconnect(m_levelNode, nullptr, this, nullptr);
        m_levelNode = node;
        connect(node, &orba::ModuleObject::changed, this,
                [this](const QVariant &value, const QVariant &, QObject *) { showLevel(value.toInt()); });
    }
    showLevel(node->getInt(0));
}

void StatusBar::refresh()
{
    followLevelNode();
    if (tservice()->controllerManager()->isConnected())
        onConnected();
    else
        onDisconnected();
}

void StatusBar::onConnected()
{
    showLink(true);
    tservice()->watch(this, QStringLiteral("sys.power"), true);
    refreshPower();
}

void StatusBar::onDisconnected()
{
    showLink(false);
    showPower(false, false);
}

void StatusBar::showLink(bool up)
{
    const bool changed = up != m_linkUp;
    m_linkUp = up;
    const orbat::Transport *transport = tservice()->transport();
    QString peer = transport ? transport->peerName() : tr("none");
    if (peer == QLatin1String("embedded"))
        peer = tr("built-in simulator");
    m_link->setText(up ? tr("● Controller: %1").arg(peer) : tr("○ No controller (%1)").arg(peer));
    m_link->setProperty("linkUp", up);
    m_link->setStyleSheet(up ? QStringLiteral("color: #7ee07e;") : QStringLiteral("color: #ff6b6b;"));
    const QString id = orba::m(QStringLiteral("tcore.r.id"))->getString();
    m_rcId->setText(up && !id.isEmpty() ? id : QString());
    if (changed)
        emit linkChanged(up);
}

void StatusBar::showPower(bool on, bool known)
{
    const bool changed = on != m_powerOn;
    m_powerOn = on;
    m_powerKnown = known;
    m_power->setChecked(known && on);
    m_power->setEnabled(m_linkUp);
    m_power->setText(!known ? tr("Power ?") : on ? tr("Power ON") : tr("Power OFF"));
    m_power->setProperty("powerOn", on);
    if (known)
        kx::globalNode(QStringLiteral("tcore.r.power"))->setValue(this, on ? QStringLiteral("on") : QStringLiteral("off"));
    if (changed)
        emit powerChanged(on);
}

bool StatusBar::refreshPower()
{
    orba::MobjPtr reply = tservice()->get(this, QStringLiteral("sys.power"));
    if (!reply || tservice()->lastStatus() < 0) {
        showPower(false, false);
        return false;
    }
    const int power = parsePower(reply->value());
    if (power < 0) {
        showPower(false, false);
        return false;
    }
    showPower(power == 1, true);
    return true;
}

bool StatusBar::requestPower(bool on)
{
    orba::ModuleObject param(QStringLiteral("power"));
    param.setValue(this, on ? QStringLiteral("on") : QStringLiteral("off"));
    int status = tservice()->set(this, QStringLiteral("sys.power"), &param);
    if (status < 0) {
        // Controllers that do not accept writes of the power value switch through the simulator command.
        orba::ModuleObject flag(QStringLiteral("power"));
        flag.setValue(this, on);
        orba::MobjPtr reply = tservice()->execCommand(this, QStringLiteral("sim.power"), &flag);
        status = reply ? reply->getInt(-1) : -1;
    }
    refreshPower();
    return status >= 0;
}

void StatusBar::showLevel(int level)
{
    m_updating = true;
    m_level->setCurrentIndex(m_level->findData(qBound(0, level, 4)));
    m_updating = false;
}

void StatusBar::showLanguage(const QString &code)
{
    const int index = m_language->findData(code);
    m_updating = true;
    m_language->setCurrentIndex(index < 0 ? 0 : index);
    m_updating = false;
}

void StatusBar::onLevelChosen(int index)
{
    if (m_updating || index < 0)
        return;
    kx::globalNode(QStringLiteral("tcore.r.level"))->setValue(this, m_level->itemData(index).toInt());
}

void StatusBar::onLanguageChosen(int index)
{
    if (m_updating || index < 0)
        return;
    tcore::SettingManager::setStr(QStringLiteral("language"), m_language->itemData(index).toString());
}
