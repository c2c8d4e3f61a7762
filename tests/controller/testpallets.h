#pragma once

#include <orba/moduleobject.h>

#include <QByteArray>
#include <QRandomGenerator>
#include <QString>

// Pallet texts for the controller tests, written compactly as the pendant sends them.
namespace testpallets {

// A pallet with `places` places of random approach, wobj and retract poses.
inline QByteArray full(const QString &name, int places, quint32 seed = 42, bool placeIndex = false)
{
    orba::ModuleObject p;
    p.set(nullptr, "name", name);
    p.set(nullptr, "desc", QString("pallet %1").arg(name));
    p.set(nullptr, "pattern.row", 1);
    p.set(nullptr, "pattern.col", places);
    QRandomGenerator gen(seed);
    for (int i = 0; i < places; ++i) {
        for (const char *k : {"approach", "wobj", "retract"}) {
            const QString base = QString("points.#%1.%2.").arg(i).arg(k);
            for (int j = 0; j < 3; ++j) {
                p.set(nullptr, base + QString("trans.#%1").arg(j), gen.generateDouble() * 2 - 1);
                p.set(nullptr, base + QString("rot.#%1").arg(j), gen.generateDouble() * 6 - 3);
            }
            for (int j = 0; j < 6; ++j)
                p.set(nullptr, base + QString("near.#%1").arg(j), gen.generateDouble() * 6 - 3);
        }
        if (placeIndex)
            p.set(nullptr, QString("points.#%1.index").arg(i), i);
    }
    p.set(nullptr, "calibrate.x_span", 0.1 + 0.2);
    return p.exportToJson(true);
}

// A small pallet that tells its writes apart by "rev": wobj positions of `places` places.
inline QByteArray revision(const QString &name, int rev, int places, QRandomGenerator &gen)
{
    orba::ModuleObject p;
    p.set(nullptr, "name", name);
    p.set(nullptr, "rev", rev);
    for (int i = 0; i < places; ++i) {
        for (int j = 0; j < 3; ++j)
            p.set(nullptr, QString("points.#%1.wobj.trans.#%2").arg(i).arg(j), gen.generateDouble());
        for (int j = 0; j < 6; ++j)
            p.set(nullptr, QString("points.#%1.wobj.near.#%2").arg(i).arg(j), gen.generateDouble() * 3);
    }
    return p.exportToJson(true);
}

// The stored form the controller always produced: parse, set "index", write.
inline QByteArray serialisedForm(const QByteArray &text, int index)
{
    orba::ModuleObject p;
    if (!p.importFromJson(nullptr, text))
        return QByteArray("unparsable");
    p.set(nullptr, "index", index);
    return p.exportToJson(true);
}

} // namespace testpallets
