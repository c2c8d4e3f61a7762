#include "orba/creatormanager.h"
#include "orba/names.h"

namespace orba {

IntCreatorManager *pluginManager()
{
    static IntCreatorManager manager;
    return &manager;
}

IntCreatorManager *versionManager()
{
    static IntCreatorManager manager;
    return &manager;
}

} // namespace orba

QString mName(const QString &a, const QString &b)
{
    return a + QLatin1Char('.') + b;
}

QString mName(const QString &a, const QString &b, const QString &c)
{
    return a + QLatin1Char('.') + b + QLatin1Char('.') + c;
}

int ver(const QString &key, bool sum)
{
    const orba::IntCreatorManager *versions = orba::versionManager();
    if (!sum)
        return versions->create(key);
    const QString prefix = key + QLatin1Char('.');
    int total = 0;
    const QStringList keys = versions->keys();
    for (const QString &k : keys) {
        if (k == key || k.startsWith(prefix))
            total += versions->create(k);
    }
    return total;
}
