#pragma once

#include <tcore/tcore_export.h>

#include <QMetaType>
#include <QPointer>
#include <QString>
#include <QVariant>

#include <memory>

namespace kx {

/*
 * Handle that ties an object to a global registry node: while it lives the node's value holds the
 * object (as QObject*); when the handle is destroyed (with the object that carries it as the
 * property "unique") the node is cleared, unless it already holds another object.
 */
template<typename T>
class GlobalUniquePtr
{
public:
    GlobalUniquePtr(const QString &key, T *object);
    ~GlobalUniquePtr();
    GlobalUniquePtr(const GlobalUniquePtr &) = delete;
    GlobalUniquePtr &operator=(const GlobalUniquePtr &) = delete;

    T *get() const { return m_object.data(); }
    QString key() const { return m_key; }

private:
    QString m_key;
    QPointer<T> m_object;
    // Compared, never dereferenced: by the time the carrying object's properties are destroyed
    // the QPointer has already been cleared.
    const QObject *m_identity;
};

// The object registered under a registry key (null when none).
TCORE_EXPORT QObject *uniqueObject(const QString &key);
TCORE_EXPORT void setUniqueObject(const QString &key, QObject *object);
TCORE_EXPORT void releaseUniqueObject(const QString &key, const QObject *object);

template<typename T>
GlobalUniquePtr<T>::GlobalUniquePtr(const QString &key, T *object)
    : m_key(key), m_object(object), m_identity(object)
{
    setUniqueObject(key, object);
}

template<typename T>
GlobalUniquePtr<T>::~GlobalUniquePtr()
{
    releaseUniqueObject(m_key, m_identity);
}

} // namespace kx

class QWidget;
Q_DECLARE_METATYPE(std::shared_ptr<kx::GlobalUniquePtr<QWidget>>)
