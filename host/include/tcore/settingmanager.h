#pragma once

#include "tcore_export.h"

#include <QObject>
#include <QString>
#include <QVariant>

namespace tcore {

/*
 * Host settings ("language": "en", "cn", "jp", "kr", "ru"), persisted with QSettings in the
 * host's settings file (setStorage) or in memory only (the default, and what tests use).
 * Changing "language" also reloads the translations of every registered alias.
 */
class TCORE_EXPORT SettingManager : public QObject
{
    Q_OBJECT

public:
    static SettingManager *instance();
    static QString getStr(const QString &key, const QString &def = QString());
    static void setStr(const QString &key, const QString &value);
    static QVariant get(const QString &key, const QVariant &def = QVariant());
    static void set(const QString &key, const QVariant &value);

    // Persist to this ini file (empty: memory only).
    void setStorage(const QString &iniPath);
    void clear();

signals:
    void changed(const QString &key, const QVariant &value);

private:
    SettingManager();
    ~SettingManager() override;
    struct Private;
    Private *d;
};

} // namespace tcore
