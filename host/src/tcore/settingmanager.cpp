#include <tcore/settingmanager.h>

#include <tcore/managerhelper.h>

#include <QSettings>
#include <QVariantMap>

#include <memory>

namespace tcore {

namespace {
const QString kLanguage = QStringLiteral("language");
} // namespace

struct SettingManager::Private
{
    QVariantMap memory;
    std::unique_ptr<QSettings> file;

    QVariant value(const QString &key, const QVariant &def) const
    {
        if (file)
            return file->value(key, def);
        return memory.value(key, def);
    }
};

SettingManager *SettingManager::instance()
{
    static SettingManager *manager = new SettingManager;
    return manager;
}

SettingManager::SettingManager() : d(new Private) {}

SettingManager::~SettingManager()
{
    delete d;
}

QString SettingManager::getStr(const QString &key, const QString &def)
{
    return get(key, def).toString();
}

void SettingManager::setStr(const QString &key, const QString &value)
{
    set(key, value);
}

QVariant SettingManager::get(const QString &key, const QVariant &def)
{
    return instance()->d->value(key, def);
}

void SettingManager::set(const QString &key, const QVariant &value)
{
    if (key.isEmpty())
        return;
    SettingManager *self = instance();
    const QVariant old = self->d->value(key, QVariant());
    if (old.isValid() && old == value)
        return;
    if (self->d->file) {
        self->d->file->setValue(key, value);
        self->d->file->sync();
    } else {
        self->d->memory.insert(key, value);
    }
    if (key == kLanguage)
        ManagerHelper::instance()->reloadTranslations(value.toString());
    emit self->changed(key, value);
}

void SettingManager::setStorage(const QString &iniPath)
{
    const QString before = getStr(kLanguage, QStringLiteral("en"));
    if (iniPath.isEmpty()) {
        if (d->file) {
            // Back to memory with what the file held, so nothing changes under the caller.
            QVariantMap values;
            for (const QString &key : d->file->allKeys())
                values.insert(key, d->file->value(key));
            d->file.reset();
            d->memory = values;
        }
    } else {
        auto settings = std::make_unique<QSettings>(iniPath, QSettings::IniFormat);
        // Values set before storage was chosen are carried into the file unless it has its own.
        const QVariantMap carried = d->file ? QVariantMap() : d->memory;
        for (auto it = carried.constBegin(); it != carried.constEnd(); ++it) {
            if (!settings->contains(it.key()))
                settings->setValue(it.key(), it.value());
        }
        settings->sync();
        d->file = std::move(settings);
        d->memory.clear();
    }
    const QString after = getStr(kLanguage, QStringLiteral("en"));
    if (after != before) {
        ManagerHelper::instance()->reloadTranslations(after);
        emit changed(kLanguage, after);
    }
}

void SettingManager::clear()
{
    const QString before = getStr(kLanguage, QStringLiteral("en"));
    d->memory.clear();
    if (d->file) {
        d->file->clear();
        d->file->sync();
    }
    if (before != QLatin1String("en")) {
        ManagerHelper::instance()->reloadTranslations(QStringLiteral("en"));
        emit changed(kLanguage, QStringLiteral("en"));
    }
}

} // namespace tcore
