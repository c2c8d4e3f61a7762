#include "controllerprivate.h"
#include "session.h"

#include <orba/moduleobject.h>

namespace rc {

namespace {

const QString kName = QStringLiteral("name");
const QString kIndex = QStringLiteral("index");

bool isObject(const orba::ModuleObject *n)
{
    return n && !n->isEmpty() && n->cmobjCount() > 0 && !n->isArray();
}

// Writes the controller's number into the pallet and returns the stored form.
QByteArray storedForm(orba::ModuleObject *pallet, int index)
{
    pallet->set(nullptr, kIndex, index);
    return pallet->exportToJson(true);
}

QByteArray renumbered(const QByteArray &json, int index)
{
    orba::ModuleObject pallet;
    if (!pallet.importFromJson(nullptr, json))
        return json;
    return storedForm(&pallet, index);
}

bool palletName(orba::ModuleObject *pallet, QString *name)
{
    return isObject(pallet) && protocol::readString(pallet->c(kName), name) && !name->isEmpty();
}

Reply storeFailure(const QString &error)
{
    return Reply::failed(QStringLiteral("store: %1").arg(error), -2);
}

} // namespace

void ControllerPrivate::registerTrayCommands()
{
    add(QStringLiteral("exec"), QStringLiteral("tray.query.list"), [this](Session *, orba::ModuleObject *, const QString &) {
        QVariantList list;
        for (int i = 0; i < store.count(); ++i)
            list << QVariantMap{{kIndex, i}, {kName, store.at(i).name}};
        return Reply::ok(QVariant(list));
    });

    if (!options.legacy) {
        add(QStringLiteral("exec"), QStringLiteral("tray.query.one"), [this](Session *, orba::ModuleObject *params, const QString &) {
            qint64 i;
            if (!protocol::readInt(params, &i))
                return Reply::error(InvalidParams, QStringLiteral("\"tray.query.one\" takes the integer position"));
            if (i < 0 || i >= store.count())
                return Reply::failed(QStringLiteral("no pallet at position %1").arg(i));
            return Reply::ok(store.at(int(i)).json);
        });
    }

    add(QStringLiteral("get"), QStringLiteral("tray.data"), [this](Session *, orba::ModuleObject *, const QString &) {
        QByteArray data = "[";
        for (int i = 0; i < store.count(); ++i) {
            if (i)
                data += ',';
            data += store.at(i).json;
        }
        data += ']';
        return Reply::ok(data);
    });

    add(QStringLiteral("set"), QStringLiteral("tray.data"), [this](Session *, orba::ModuleObject *params, const QString &) {
        // An empty list travels as null.
        QVector<PalletStore::Entry> entries;
        if (params && !params->isNull()) {
            if (!params->isArray())
                return Reply::error(InvalidParams, QStringLiteral("\"tray.data\" takes an array of pallets"));
            for (int i = 0; i < params->cmobjCount(); ++i) {
                orba::ModuleObject *p = params->c(i);
                QString name;
                if (!palletName(p, &name))
                    return Reply::error(InvalidParams, QStringLiteral("pallet %1 has no name").arg(i));
                for (const PalletStore::Entry &e : qAsConst(entries)) {
                    if (e.name == name)
                        return Reply::failed(QStringLiteral("pallet name \"%1\" used twice").arg(name));
                }
                entries.append({name, storedForm(p, i)});
            }
        }
        QString error;
        if (!store.replaceAll(entries, &error))
            return storeFailure(error);
        return Reply::ok(QVariantMap{{QStringLiteral("size"), store.count()}});
    });

    add(QStringLiteral("exec"), QStringLiteral("tray.add_one"), [this](Session *, orba::ModuleObject *params, const QString &) {
        QString name;
        if (!palletName(params, &name))
            return Reply::error(InvalidParams, QStringLiteral("\"tray.add_one\" takes a pallet with a name"));
        if (store.indexOf(name) >= 0)
            return Reply::failed(QStringLiteral("a pallet named \"%1\" exists").arg(name));
        QString error;
        if (!store.append({name, storedForm(params, store.count())}, &error))
            return storeFailure(error);
        return Reply::ok(QVariantMap{{QStringLiteral("size"), store.count()}});
    });

    add(QStringLiteral("exec"), QStringLiteral("tray.del_one"), [this](Session *, orba::ModuleObject *params, const QString &) {
        qint64 index;
        QString name;
        if (!isObject(params) || !protocol::readInt(params->c(kIndex), &index)
            || !protocol::readString(params->c(kName), &name))
            return Reply::error(InvalidParams, QStringLiteral("\"tray.del_one\" takes {\"index\", \"name\"}"));
        if (index < 0 || index >= store.count() || store.at(int(index)).name != name)
            return Reply::failed(QStringLiteral("no pallet \"%1\" at position %2").arg(name).arg(index));
        QString error;
        if (!store.remove(int(index), &renumbered, &error))
            return storeFailure(error);
        return Reply::ok(QVariantMap{{QStringLiteral("size"), store.count()}});
    });

    add(QStringLiteral("exec"), QStringLiteral("tray.set.one"), [this](Session *, orba::ModuleObject *params, const QString &) {
        QString name;
        if (!palletName(params, &name))
            return Reply::error(InvalidParams, QStringLiteral("\"tray.set.one\" takes a pallet with a name"));
        const int pos = store.indexOf(name);
        if (pos < 0)
            return Reply::failed(QStringLiteral("no pallet named \"%1\"").arg(name));
        QString error;
        if (!store.replace(pos, {name, storedForm(params, pos)}, &error))
            return storeFailure(error);
        return Reply::ok(QVariantMap{{kIndex, pos}});
    });

    add(QStringLiteral("exec"), QStringLiteral("tray.set.name"), [this](Session *, orba::ModuleObject *params, const QString &) {
        qint64 index;
        QString name, desc;
        const bool hasDesc = isObject(params) && !params->c(QStringLiteral("desc"))->isEmpty();
        if (!isObject(params) || !protocol::readInt(params->c(kIndex), &index)
            || !protocol::readString(params->c(kName), &name) || name.isEmpty()
            || (hasDesc && !protocol::readString(params->c(QStringLiteral("desc")), &desc)))
            return Reply::error(InvalidParams, QStringLiteral("\"tray.set.name\" takes {\"index\", \"name\", \"desc\"}"));
        if (index < 0 || index >= store.count())
            return Reply::failed(QStringLiteral("no pallet at position %1").arg(index));
        const int other = store.indexOf(name);
        if (other >= 0 && other != index)
            return Reply::failed(QStringLiteral("a pallet named \"%1\" exists").arg(name));
        orba::ModuleObject pallet;
        if (!pallet.importFromJson(nullptr, store.at(int(index)).json))
            return Reply::failed(QStringLiteral("stored pallet %1 is unreadable").arg(index), -2);
        pallet.set(nullptr, kName, name);
        if (hasDesc)
            pallet.set(nullptr, QStringLiteral("desc"), desc);
        QString error;
        if (!store.replace(int(index), {name, storedForm(&pallet, int(index))}, &error))
            return storeFailure(error);
        return Reply::ok();
    });
}

} // namespace rc
