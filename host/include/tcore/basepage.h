#pragma once

#include "tcore_export.h"

#include <dwel/bmodule.h>

#include <QString>

class QWidget;

namespace tcore {

/*
 * Base of module pages. A page is a sub-module with a key (its module's key) and a title.
 * autoUpdate(state, power, level, mode) subscribes the page to the host's state changes:
 * controller link and state, power, user level ("tcore.r.level") and operating mode; on each
 * subscribed change updateAvailability() is called (also once right away).
 *
 * isAvailable() = isStateAvailable() && isPowerAvailable() && isModeAvailable() && isLevelAvailable().
 * Defaults: state = controller connected ("tcore.r.connected"); power = true unless
 * requirePower(true) (then "tcore.r.power" must be "on"); mode = true; level = user level >= 1.
 */
class TCORE_EXPORT BasePage : public dwel::BModule
{
    Q_OBJECT

public:
    BasePage(const QString &key, const QString &title, QObject *parent = nullptr);
    ~BasePage() override;

    QString key() const { return m_key; }
    QString title() const { return m_title; }

    void autoUpdate(bool onState, bool onPower, bool onLevel, bool onMode);
    void requirePower(bool on);

    virtual bool isStateAvailable() const;
    virtual bool isPowerAvailable() const;
    virtual bool isModeAvailable() const;
    virtual bool isLevelAvailable() const;
    bool isAvailable() const;

    virtual void updateAvailability();

    static int userLevel();

private:
    QString m_key;
    QString m_title;
    bool m_requirePower = false;
    QList<QMetaObject::Connection> m_autoConnections;
};

} // namespace tcore
