#pragma once

#include "pages/basewizard.h"

#include <QPointer>

class QGroupBox;
class QProgressDialog;

namespace Ui {
class PointAdjustWizard;
}

// The point check step: the generated places one index at a time, with their approach (P5),
// place (P6) and retract (P7) poses to look at, adjust by hand or by teaching, and drive to; a
// reset to freshly generated places; and the controller's check that every P5 -> P6 and
// P6 -> P7 path can be driven as a linear move.
class TPALLET_EXPORT PointAdjustWizard : public BaseWizard
{
    Q_OBJECT

public:
    PointAdjustWizard(orba::ModuleObject *pallet, QWidget *parent = nullptr);
    ~PointAdjustWizard() override;

    // The node the last move-to drives to (null before the first one); owned by the step.
    orba::ModuleObject *moveTarget() const;
    // The progress dialog of the check under way, null otherwise.
    QProgressDialog *checkProgress() const;
    bool isChecking() const { return m_checking; }

public slots:
    void onCmbPointIndexChanged(int index);
    void addCmbIndex();
    void subCmbIndex();
    void resetPoint();
    void saveApproach();
    void saveWobj();
    void saveRetract();
    void accquireApproach();
    void accquireWobj();
    void accquireRetract();
    void moveToApproach();
    void moveToWobj();
    void moveToRetract();
    void checkAccess();
    // Moves the place of the current index to the approach editors' values and shifts its
    // approach and retract by the same horizontal offset. No button calls it; the enclosing
    // dialog may, through the meta-object system.
    Q_INVOKABLE void adjustPoint();
    void init(bool single) override;

protected:
    void changeEvent(QEvent *event) override;

private:
    void showIndex(int index);
    void accquirePos(QGroupBox *box);
    void savePoint(const QString &child, QGroupBox *box, const QString &question);
    void moveToPoint(const QString &child, const QString &tag, QGroupBox *box);
    orba::ModuleObject *pointOf(int index, const QString &child) const;

    Ui::PointAdjustWizard *m_ui;
    orba::MobjPtr m_moveTarget;
    QPointer<QProgressDialog> m_progress;
    bool m_checking = false;
};
