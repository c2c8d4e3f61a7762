#pragma once

#include "pages/basewizard.h"

class QGroupBox;

namespace Ui {
class WayPointWizard;
}

// The path point step: approach P5, place P6 and retract P7 of the first place, taught in the
// pallet frame; every other place's poses follow from them.
class TPALLET_EXPORT WayPointWizard : public BaseWizard
{
    Q_OBJECT

public:
    WayPointWizard(orba::ModuleObject *pallet, QWidget *parent = nullptr);
    ~WayPointWizard() override;

    // Hides the A, B, C editors and their labels of the three boxes.
    void hideAbcVisible();

public slots:
    void accquireWobj();
    void accquireApproach();
    void accquireRetract();
    void moveToWobj();
    void moveToAppraoch();
    void moveToRetract();
    void init(bool single) override;
    bool tryNext() override;
    bool tryConfirm() override;

protected:
    void changeEvent(QEvent *event) override;

private:
    void accquirePos(const QString &name, QGroupBox *box);
    void moveToPoint(const QString &name, const QString &label);
    void connectSpinChangeToNode(QGroupBox *box, orba::ModuleObject *node);
    void saveToNode();
    QGroupBox *boxOf(const QString &name) const;
    orba::ModuleObject *wayPoint(const QString &name) const;

    Ui::WayPointWizard *m_ui;
};
