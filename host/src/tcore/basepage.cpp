#include <tcore/basepage.h>

#include <kx/kx.h>
#include <orba/moduleobject.h>

#include <QWidget>

namespace tcore {

namespace {
const QString kConnected = QStringLiteral("tcore.r.connected");
const QString kPower = QStringLiteral("tcore.r.power");
const QString kLevel = QStringLiteral("tcore.r.level");
const QString kMode = QStringLiteral("tcore.r.mode");
} // namespace

BasePage::BasePage(const QString &key, const QString &title, QObject *parent)
    : dwel::BModule(parent), m_key(key), m_title(title)
{
    setObjectName(key);
}

BasePage::~BasePage()
{
    for (const QMetaObject::Connection &c : qAsConst(m_autoConnections))
        disconnect(c);
}

void BasePage::autoUpdate(bool onState, bool onPower, bool onLevel, bool onMode)
{
    for (const QMetaObject::Connection &c : qAsConst(m_autoConnections))
        disconnect(c);
    m_autoConnections.clear();

    auto follow = [this](const QString &path) {
        orba::ModuleObject *node = kx::globalNode(path);
        m_autoConnections.append(connect(node, &orba::ModuleObject::changed, this,
                                         [this](const QVariant &, const QVariant &, QObject *) { updateAvailability(); }));
    };
    if (onState)
        follow(kConnected);
    if (onPower)
        follow(kPower);
    if (onLevel)
        follow(kLevel);
    if (onMode)
        follow(kMode);
    updateAvailability();
}

void BasePage::requirePower(bool on)
{
    m_requirePower = on;
}

bool BasePage::isStateAvailable() const
{
    return orba::m(kConnected)->getBool(false);
}

bool BasePage::isPowerAvailable() const
{
    if (!m_requirePower)
        return true;
    const orba::ModuleObject *power = orba::m(kPower);
    if (power->value().userType() == QMetaType::Bool)
        return power->getBool(false);
    return power->getString().compare(QLatin1String("on"), Qt::CaseInsensitive) == 0;
}

bool BasePage::isModeAvailable() const
{
    return true;
}

bool BasePage::isLevelAvailable() const
{
    return userLevel() >= 1;
}

bool BasePage::isAvailable() const
{
    return isStateAvailable() && isPowerAvailable() && isModeAvailable() && isLevelAvailable();
}

void BasePage::updateAvailability()
{
    if (QWidget *w = wgt())
        w->setEnabled(isAvailable());
}

int BasePage::userLevel()
{
    return orba::m(kLevel)->getInt(0);
}

} // namespace tcore
