#include "posenode.h"

#include <orba/moduleobject.h>

#include <QAbstractSpinBox>
#include <QCoreApplication>
#include <QDoubleSpinBox>
#include <QGroupBox>
#include <QPointer>

namespace tpallet {

namespace {

// The way in and the way out use different constants on purpose: values read back from the
// editors are converted with pi / 180, values shown use the precomputed 180 / pi.
constexpr double kMetreToMm = 1000.0;
constexpr double kRadToDeg = 57.29577951308232;
constexpr double kPi = 3.141592653589793;

const char *const kTransKeys[3] = {"dspnX", "dspnY", "dspnZ"};
const char *const kRotKeys[3] = {"dspnA", "dspnB", "dspnC"};

bool usable(const orba::ModuleObject *node)
{
    return node && !node->isEmpty();
}

void nodeToSpins(orba::ModuleObject *point, QGroupBox *box, bool convert, bool withRot)
{
    if (!usable(point) || !box)
        return;
    const double transFactor = convert ? kMetreToMm : 1.0;
    const double rotFactor = convert ? kRadToDeg : 1.0;
    for (int i = 0; i < 3; ++i) {
        if (QDoubleSpinBox *spin = findDouleSpin(QLatin1String(kTransKeys[i]), box))
            spin->setValue(transFactor * point->r(QStringLiteral("trans.#%1").arg(i))->getDouble(0.0));
    }
    if (!withRot)
        return;
    for (int i = 0; i < 3; ++i) {
        if (QDoubleSpinBox *spin = findDouleSpin(QLatin1String(kRotKeys[i]), box))
            spin->setValue(rotFactor * point->r(QStringLiteral("rot.#%1").arg(i))->getDouble(0.0));
    }
}

void spinsToNode(orba::ModuleObject *point, QGroupBox *box, bool withRot)
{
    if (!usable(point) || !box)
        return;
    for (int i = 0; i < 3; ++i) {
        if (QDoubleSpinBox *spin = findDouleSpin(QLatin1String(kTransKeys[i]), box))
            point->set(nullptr, QStringLiteral("trans.#%1").arg(i), spin->value() / kMetreToMm, true);
    }
    if (!withRot)
        return;
    for (int i = 0; i < 3; ++i) {
        if (QDoubleSpinBox *spin = findDouleSpin(QLatin1String(kRotKeys[i]), box))
            point->set(nullptr, QStringLiteral("rot.#%1").arg(i), spin->value() * kPi / 180.0, true);
    }
}

void connectSpins(QGroupBox *box, orba::ModuleObject *point, QWidget *context, bool withRot)
{
    if (!box || !point)
        return;
    // The node may go away before the form does (pallet list reloaded): then edits are dropped.
    QPointer<orba::ModuleObject> target(point);
    QPointer<QGroupBox> source(box);
    for (QObject *child : box->children()) {
        auto *spin = qobject_cast<QAbstractSpinBox *>(child);
        if (!spin)
            continue;
        QObject::connect(spin, &QAbstractSpinBox::editingFinished, context ? static_cast<QObject *>(context) : spin,
                         [target, source, withRot]() {
                             if (target && source)
                                 spinsToNode(target.data(), source.data(), withRot);
                         });
    }
}

// Posture records come in millimetres and degrees.
void copyArray(orba::ModuleObject *posture, const QString &from, orba::ModuleObject *point, const QString &to,
               bool angle)
{
    const int count = posture->c(from)->size();
    for (int i = 0; i < count; ++i) {
        const double v = posture->r(QStringLiteral("%1.#%2").arg(from).arg(i))->getDouble(0.0);
        const double stored = angle ? v * kPi / 180.0 : v / kMetreToMm;
        point->set(nullptr, QStringLiteral("%1.#%2").arg(to).arg(i), stored, true);
    }
}

} // namespace

QDoubleSpinBox *findDouleSpin(const QString &key, QGroupBox *box)
{
    if (!box)
        return nullptr;
    const QList<QDoubleSpinBox *> spins = box->findChildren<QDoubleSpinBox *>();
    for (QDoubleSpinBox *spin : spins) {
        if (spin->objectName().contains(key, Qt::CaseSensitive))
            return spin;
    }
    return nullptr;
}

void pointToGroupSpin(orba::ModuleObject *point, QGroupBox *box, bool convert)
{
    nodeToSpins(point, box, convert, true);
}

void pointTransToGroupSpin(orba::ModuleObject *point, QGroupBox *box, bool convert)
{
    nodeToSpins(point, box, convert, false);
}

void groupSpinToPoint(orba::ModuleObject *point, QGroupBox *box)
{
    spinsToNode(point, box, true);
}

void groupSpinToPointTrans(orba::ModuleObject *point, QGroupBox *box)
{
    spinsToNode(point, box, false);
}

void connectSpinChangeToPoint(QGroupBox *box, orba::ModuleObject *point, QWidget *context)
{
    connectSpins(box, point, context, true);
}

void connectSpinChangeToPointTrans(QGroupBox *box, orba::ModuleObject *point, QWidget *context)
{
    connectSpins(box, point, context, false);
}

void accquirePosToPointNode(orba::ModuleObject *posture, orba::ModuleObject *point)
{
    if (!usable(posture) || !usable(point))
        return;
    copyArray(posture, QStringLiteral("position"), point, QStringLiteral("trans"), false);
    copyArray(posture, QStringLiteral("euler"), point, QStringLiteral("rot"), true);
    copyArray(posture, QStringLiteral("joint"), point, QStringLiteral("near"), true);
}

QString checkCalibrated(orba::ModuleObject *pallet)
{
    double xSpan = 0.0;
    double ySpan = 0.0;
    if (pallet) {
        xSpan = pallet->r(QStringLiteral("calibrate.x_span"))->getDouble(0.0);
        ySpan = pallet->r(QStringLiteral("calibrate.y_span"))->getDouble(0.0);
    }
    if (xSpan < 0.01 || ySpan < 0.01)
        return QCoreApplication::translate("tpallet", "The pallet's width or height is too small, it may not be calibrated!");
    return QString();
}

} // namespace tpallet
