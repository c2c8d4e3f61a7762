#pragma once

#include "pages/basewizard.h"

class QGroupBox;

namespace Ui {
class CalibrateSetWizard;
}

// The calibration step: P1..P4 taught with the robot (or typed), checked for distance, turned
// into the pallet frame ("calibrate.toolset.ref") and the pallet's spans and skews.
class TPALLET_EXPORT CalibrateSetWizard : public BaseWizard
{
    Q_OBJECT

public:
    CalibrateSetWizard(orba::ModuleObject *pallet, QWidget *parent = nullptr);
    ~CalibrateSetWizard() override;

    // Makes sure "calibrate" holds P1..P4 and a complete toolset.
    static void initParamPointNode(orba::ModuleObject *pallet);

    bool checkPoints();
    bool calibrateRef1(bool useP4);
    void changeWayPoint();
    void saveToNode();

public slots:
    void accquireP1();
    void accquireP2();
    void accquireP3();
    void accquireP4();
    void moveToP1();
    void moveToP2();
    void moveToP3();
    void moveToP4();
    void setP4InUse(bool on);
    void calibrateRef();
    void onCmbToolChanged(int index);
    void init(bool single) override;
    bool tryNext() override;
    bool tryConfirm() override;

protected:
    void changeEvent(QEvent *event) override;

private:
    void accquirePos(const QString &name, QGroupBox *box);
    void moveToPoint(const QString &name);
    void connectSpinChangeToNode(QGroupBox *box, orba::ModuleObject *node);
    QGroupBox *boxOf(const QString &name) const;
    orba::ModuleObject *calibrateNode() const;
    orba::ModuleObject *toolsetNode() const;

    Ui::CalibrateSetWizard *m_ui;
};
