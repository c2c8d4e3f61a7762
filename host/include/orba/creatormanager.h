#pragma once

#include "orbacore_export.h"

#include <QHash>
#include <QString>
#include <QStringList>

#include <functional>

namespace orba {

template<typename Product, typename Signature>
class CreatorManager;

// A registry of creator functions keyed by text (module factory, plug-in and version tables).
// Registering a key again replaces the former creator.
template<typename Product, typename... Args>
class CreatorManager<Product, Product(Args...)>
{
public:
    using Creator = std::function<Product(Args...)>;

    void regist(const QString &key, Creator creator) { m_creators.insert(key, std::move(creator)); }
    bool unregist(const QString &key) { return m_creators.remove(key) > 0; }
    bool has(const QString &key) const { return m_creators.contains(key); }
    QStringList keys() const
    {
        QStringList k = m_creators.keys();
        k.sort();
        return k;
    }
    // Calls the creator of key; a default-constructed Product when there is none.
    Product create(const QString &key, Args... args) const
    {
        auto it = m_creators.constFind(key);
        if (it == m_creators.constEnd())
            return Product();
        return (*it)(args...);
    }

private:
    QHash<QString, Creator> m_creators;
};

using IntCreatorManager = CreatorManager<int, int()>;

// Plug-in numbers by module key.
ORBACORE_EXPORT IntCreatorManager *pluginManager();
// Component version numbers, keyed by mName(module, component).
ORBACORE_EXPORT IntCreatorManager *versionManager();

} // namespace orba
