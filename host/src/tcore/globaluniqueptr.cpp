#include <kx/globaluniqueptr.h>
#include <kx/kx.h>

#include <orba/moduleobject.h>

#include <QHash>
#include <QWidget>

namespace kx {

namespace {

// Objects registered through setUniqueObject, so a value left behind by an object that died
// without releasing its key is never handed out.
QHash<QString, QPointer<QObject>> &liveObjects()
{
    // Leaked on purpose: objects dying during static destruction still look their key up.
    static auto *objects = new QHash<QString, QPointer<QObject>>;
    return *objects;
}

QObject *objectIn(const orba::ModuleObject *node)
{
    const QVariant v = node->value();
    if (v.userType() != qMetaTypeId<QObject *>())
        return nullptr;
    return v.value<QObject *>();
}

const int s_uniquePtrType = qRegisterMetaType<std::shared_ptr<kx::GlobalUniquePtr<QWidget>>>(
    "std::shared_ptr<kx::GlobalUniquePtr<QWidget>>");

} // namespace

QObject *uniqueObject(const QString &key)
{
    Q_UNUSED(s_uniquePtrType)
    QObject *stored = objectIn(orba::m(key));
    if (!stored)
        return nullptr;
    auto it = liveObjects().constFind(key);
    if (it != liveObjects().constEnd() && it->data() != stored)
        return nullptr;
    if (it != liveObjects().constEnd() && it->isNull())
        return nullptr;
    return stored;
}

void setUniqueObject(const QString &key, QObject *object)
{
    orba::ModuleObject *node = globalNode(key);
    if (!object) {
        liveObjects().remove(key);
        node->setValue(nullptr, QVariant());
        return;
    }
    liveObjects().insert(key, QPointer<QObject>(object));
    node->setValue(nullptr, QVariant::fromValue<QObject *>(object));
    // Clear the entry as soon as the object starts dying, before any property handle goes.
    QObject::connect(object, &QObject::destroyed, [key, object]() { releaseUniqueObject(key, object); });
}

void releaseUniqueObject(const QString &key, const QObject *object)
{
    orba::ModuleObject *node = orba::m(key);
    if (objectIn(node) != object)
        return;
    liveObjects().remove(key);
    node->setValue(nullptr, QVariant());
}

} // namespace kx
