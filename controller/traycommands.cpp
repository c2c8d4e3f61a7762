#include "controllerprivate.h"
#include "rawjson.h"
#include "session.h"

#include <orba/moduleobject.h>

#include <QTextCodec>

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
    QByteArray text = pallet->exportToJson(true);
    // The reader takes a U+FEFF that begins a run of text for a byte order mark and drops it;
    // written as an escape it comes back.
    if (text.contains("\xEF\xBB\xBF"))
        text.replace("\xEF\xBB\xBF", "\\ufeff");
    return text;
}

bool readsBackAs(const QByteArray &stored, const QString &name)
{
    QString back;
    return rawjson::topLevelString(stored, QLatin1String("name"), &back) && back == name;
}

// The stored form of a pallet that came in as `raw` and was parsed into `pallet`: the text as
// received with "index" spliced in, which is what serialising the tree gives for the compact
// texts clients send, without writing a megabyte of JSON again. False when the name would not
// come back from the stored text as it is now.
bool storedForm(orba::ModuleObject *pallet, const Session *session, int index, const QString &name, QByteArray *out)
{
    if (session) {
        *out = session->rawParamsWithIndex(index);
        // The very bytes the name was read from.
        if (!out->isNull())
            return true;
    }
    *out = storedForm(pallet, index);
    return readsBackAs(*out, name);
}

Reply notStorable(const QString &name)
{
    return Reply::error(InvalidParams, QStringLiteral("pallet name \"%1\" would not come back from the store as it is")
                                           .arg(rawjson::excerpt(name)));
}

bool palletName(orba::ModuleObject *pallet, QString *name)
{
    return isObject(pallet) && protocol::readString(pallet->c(kName), name) && !name->isEmpty();
}

// Names are how pallets are addressed: one that would not come back from the store exactly
// (a lone surrogate has no UTF-8 form) is refused rather than stored altered.
bool storableName(const QString &name, QString *why)
{
    for (int i = 0; i < name.size(); ++i) {
        const QChar c = name.at(i);
        if (c.isHighSurrogate() && i + 1 < name.size() && name.at(i + 1).isLowSurrogate()) {
            ++i;
            continue;
        }
        if (c.isSurrogate()) {
            *why = QStringLiteral("pallet name \"%1\" holds a lone surrogate (U+%2 at %3) and cannot be stored")
                       .arg(rawjson::excerpt(name))
                       .arg(c.unicode(), 4, 16, QLatin1Char('0'))
                       .arg(i);
            return false;
        }
    }
    // Decoded with the header kept: a leading U+FEFF is a character of the name, not a mark.
    const QByteArray utf8 = name.toUtf8();
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
    if (QTextCodec::codecForMib(106)->toUnicode(utf8.constData(), utf8.size(), &state) != name || state.invalidChars) {
        *why = QStringLiteral("pallet name \"%1\" does not survive UTF-8 and cannot be stored").arg(rawjson::excerpt(name));
        return false;
    }
    return true;
}

Reply badName(const QString &why)
{
    return Reply::error(InvalidParams, why);
}

Reply storeFailure(const QString &error)
{
    return Reply::failed(QStringLiteral("store: %1").arg(error), -2);
}

} // namespace

QByteArray renumberedPallet(const QByteArray &json, int index)
{
    const QByteArray spliced = rawjson::withIndex(json, index);
    if (!spliced.isNull())
        return spliced;
    orba::ModuleObject pallet;
    if (!pallet.importFromJson(nullptr, json))
        return json;
    return storedForm(&pallet, index);
}

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
            return Reply::okParts({store.at(int(i)).json});
        });
    }

    add(QStringLiteral("get"), QStringLiteral("tray.data"), [this](Session *, orba::ModuleObject *, const QString &) {
        // The stored texts themselves, shared: the list can be a hundred megabytes.
        QVector<QByteArray> parts;
        parts.reserve(2 * store.count() + 1);
        for (int i = 0; i < store.count(); ++i) {
            parts += QByteArray(i ? "," : "[");
            parts += store.at(i).json;
        }
        parts += QByteArray(store.count() ? "]" : "[]");
        return Reply::okParts(parts);
    });

    add(QStringLiteral("set"), QStringLiteral("tray.data"), [this](Session *, orba::ModuleObject *params, const QString &) {
        // An empty list travels as null.
        QVector<PalletStore::Entry> entries;
        if (params && !params->isNull()) {
            if (!params->isArray())
                return Reply::error(InvalidParams, QStringLiteral("\"tray.data\" takes an array of pallets"));
            for (int i = 0; i < params->cmobjCount(); ++i) {
                orba::ModuleObject *p = params->c(i);
                QString name, why;
                if (!palletName(p, &name))
                    return Reply::error(InvalidParams, QStringLiteral("pallet %1 has no name").arg(i));
                if (!storableName(name, &why))
                    return badName(QStringLiteral("pallet %1: %2").arg(i).arg(why));
                for (const PalletStore::Entry &e : qAsConst(entries)) {
                    if (e.name == name)
                        return Reply::failed(QStringLiteral("pallet name \"%1\" used twice").arg(rawjson::excerpt(name)));
                }
                QByteArray stored;
                if (!storedForm(p, nullptr, i, name, &stored))
                    return notStorable(name);
                entries.append({name, stored});
            }
        }
        QString error;
        if (!store.replaceAll(entries, &error))
            return storeFailure(error);
        return Reply::ok(QVariantMap{{QStringLiteral("size"), store.count()}});
    });

    add(QStringLiteral("exec"), QStringLiteral("tray.add_one"), [this](Session *session, orba::ModuleObject *params, const QString &) {
        QString name, why;
        if (!palletName(params, &name))
            return Reply::error(InvalidParams, QStringLiteral("\"tray.add_one\" takes a pallet with a name"));
        if (!storableName(name, &why))
            return badName(why);
        if (store.indexOf(name) >= 0)
            return Reply::failed(QStringLiteral("a pallet named \"%1\" exists").arg(rawjson::excerpt(name)));
        QByteArray stored;
        if (!storedForm(params, session, store.count(), name, &stored))
            return notStorable(name);
        QString error;
        if (!store.append({name, stored}, &error))
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
            return Reply::failed(QStringLiteral("no pallet \"%1\" at position %2").arg(rawjson::excerpt(name)).arg(index));
        QString error;
        if (!store.remove(int(index), &renumberedPallet, &error))
            return storeFailure(error);
        return Reply::ok(QVariantMap{{QStringLiteral("size"), store.count()}});
    });

    add(QStringLiteral("exec"), QStringLiteral("tray.set.one"), [this](Session *session, orba::ModuleObject *params, const QString &) {
        QString name, why;
        if (!palletName(params, &name))
            return Reply::error(InvalidParams, QStringLiteral("\"tray.set.one\" takes a pallet with a name"));
        if (!storableName(name, &why))
            return badName(why);
        const int pos = store.indexOf(name);
        if (pos < 0)
            return Reply::failed(QStringLiteral("no pallet named \"%1\"").arg(rawjson::excerpt(name)));
        QByteArray stored;
        if (!storedForm(params, session, pos, name, &stored))
            return notStorable(name);
        QString error;
        if (!store.replace(pos, {name, stored}, &error))
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
        QString why;
        if (!storableName(name, &why))
            return badName(why);
        if (index < 0 || index >= store.count())
            return Reply::failed(QStringLiteral("no pallet at position %1").arg(index));
        const int other = store.indexOf(name);
        if (other >= 0 && other != index)
            return Reply::failed(QStringLiteral("a pallet named \"%1\" exists").arg(rawjson::excerpt(name)));
        orba::ModuleObject pallet;
        if (!pallet.importFromJson(nullptr, store.at(int(index)).json))
            return Reply::failed(QStringLiteral("stored pallet %1 is unreadable").arg(index), -2);
        pallet.set(nullptr, kName, name);
        if (hasDesc)
            pallet.set(nullptr, QStringLiteral("desc"), desc);
        const QByteArray stored = storedForm(&pallet, int(index));
        if (!readsBackAs(stored, name))
            return notStorable(name);
        QString error;
        if (!store.replace(int(index), {name, stored}, &error))
            return storeFailure(error);
        return Reply::ok();
    });
}

} // namespace rc
