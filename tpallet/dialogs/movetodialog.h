#pragma once

#include "tpallet_export.h"

#include <orba/moduleobject.h>

#include <QDialog>
#include <QMetaObject>
#include <QPointer>
#include <QString>

class QLabel;
class QTimer;

namespace Ui {
class MoveToDialog;
}

// Drives the robot to a taught point while the operator holds "Start Moving" (hold-to-run).
// Modeless, one at a time (registry key "tpallet.move.dialog"), closed with its point node.
// The robot never moves unless the button is held: release, loss of the press (hidden, disabled,
// focus lost), going back, closing, destruction and loss of the controller link all stop it, and
// only a new press starts it again.
class MoveToDialog : public QDialog
{
    Q_OBJECT

public:
    // `motion` is read once here ("type", "motion.toolset", "motion.speed"); `point` is a pose
    // node, not owned. A null point (or a never-filled one) stands for the controller variable
    // named by "cmbPointName".
    MoveToDialog(orba::ModuleObject *motion, orba::ModuleObject *point, QWidget *parent = nullptr);
    ~MoveToDialog() override;

    bool isJoint() const { return m_isJoint; }
    bool isAbsJoint() const { return m_isAbsJoint; }
    // Between a started move and its stop.
    bool isMoving() const { return m_moving; }

    // Shows an offset pose ("trans" in metres, "rot" in radians) in the offset editors and
    // selects "Offs"; a null or empty node selects "None".
    void setOffset(orba::ModuleObject *offset);

public slots:
    void confirmMotion();
    void goBack();
    void startMoving();
    void stopMoving();
    void refreshMoveType(int index);
    void changeOffs();
    void monitorPosture();

protected:
    void hideEvent(QHideEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    QLabel *gridLabel(int row, int column) const;
    void setGridLblText(int row, int column, const QString &text);
    void setGridLblVisible(int row, int column, bool visible);
    void alignGridLabels();
    void showRowLabels();
    void updateTitle();
    void onMoveError();
    void onLinkLost();
    void onLinkBack();
    // Stops a running move now (not through the queued release).
    void endMotion();
    double offsetValue(int axis) const;

    Ui::MoveToDialog *m_ui;
    QPointer<orba::ModuleObject> m_point;
    // The target read from the controller ("data.var") when there is no point node.
    orba::MobjPtr m_variable;
    QPointer<orba::ModuleObject> m_target;
    QString m_motionToolset;
    QTimer *m_timer;
    QPointer<orba::ModuleObject> m_errorNode;
    QMetaObject::Connection m_errorConnection;
    int m_jointCount = 0;
    bool m_isJoint = false;
    bool m_isAbsJoint = false;
    bool m_moving = false;
    bool m_confirmed = false;
};

namespace tpallet {

// "v%1".
TPALLET_EXPORT QString int2speed(int n);
// The number after the first character ("v1000" gives 1000); 0 when it is not a number.
TPALLET_EXPORT int speed2int(const QString &s);
// "fine" for 0, otherwise "z%1".
TPALLET_EXPORT QString int2zone(int n);
// The number after the first character; "fine" gives 0.
TPALLET_EXPORT int zone2int(const QString &s);

// Opens the move dialog on `point` (linear move at v300, active toolset kept), parented to the
// parent of the widget's parent, without blocking.
TPALLET_EXPORT MoveToDialog *moveToPoint(orba::ModuleObject *point, QWidget *widget);

} // namespace tpallet
