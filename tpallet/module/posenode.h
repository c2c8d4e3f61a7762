#pragma once

#include "tpallet_export.h"

#include <QString>

class QDoubleSpinBox;
class QGroupBox;
class QWidget;

namespace orba {
class ModuleObject;
}

namespace tpallet {

// Editors of a pose group box are found by a substring of their object name ("dspnX" matches
// "dspnX_3"), so a box must hold exactly one editor per key.
TPALLET_EXPORT QDoubleSpinBox *findDouleSpin(const QString &key, QGroupBox *box);

// Node (metres, radians) to editors (millimetres, degrees when convert is true).
TPALLET_EXPORT void pointToGroupSpin(orba::ModuleObject *point, QGroupBox *box, bool convert);
TPALLET_EXPORT void pointTransToGroupSpin(orba::ModuleObject *point, QGroupBox *box, bool convert);

// Editors (millimetres, degrees) to node (metres, radians); always converts.
TPALLET_EXPORT void groupSpinToPoint(orba::ModuleObject *point, QGroupBox *box);
TPALLET_EXPORT void groupSpinToPointTrans(orba::ModuleObject *point, QGroupBox *box);

// Writes the whole box back into the node whenever one of its editors finishes an edit; the
// connections end with `context`.
TPALLET_EXPORT void connectSpinChangeToPoint(QGroupBox *box, orba::ModuleObject *point, QWidget *context);
TPALLET_EXPORT void connectSpinChangeToPointTrans(QGroupBox *box, orba::ModuleObject *point, QWidget *context);

// Fills a pose node from a posture record given in millimetres and degrees
// ("position", "euler", "joint").
TPALLET_EXPORT void accquirePosToPointNode(orba::ModuleObject *posture, orba::ModuleObject *point);

// Empty when the pallet's calibrated spans are usable, else the warning to show.
TPALLET_EXPORT QString checkCalibrated(orba::ModuleObject *pallet);

} // namespace tpallet
