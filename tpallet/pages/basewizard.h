#pragma once

#include "module/tpallet_export.h"

#include <orba/moduleobject.h>

#include <QPointer>
#include <QWidget>

#include <functional>

// One step of the pallet configuration dialog. The dialog asks the step whether it may be left
// before it moves on, goes back, cancels or confirms; a step that refuses says why itself.
class TPALLET_EXPORT BaseWizard : public QWidget
{
    Q_OBJECT

public:
    explicit BaseWizard(orba::ModuleObject *pallet, QWidget *parent = nullptr);
    ~BaseWizard() override;

    // The pallet the step works on; null once the node is gone (list reloaded, pallet deleted).
    orba::ModuleObject *pallet() const;

    // Every push button inside `widget` stops taking focus, so a tap does not steal the editor's.
    void setButtonNoFocus(QWidget *widget);

public slots:
    virtual bool tryNext();
    virtual bool tryPrevious();
    virtual bool tryCancel();
    virtual bool tryConfirm();
    // Called once the step sits in the dialog; `single` is true when the dialog shows this step only.
    virtual void init(bool single);
    virtual void updateAvailability();

protected:
    QPointer<orba::ModuleObject> m_pallet;
};

namespace tpallet {

using WizardCreator = std::function<BaseWizard *(orba::ModuleObject *pallet, QWidget *parent)>;

// Each step's unit registers the page class of its step number when the library loads, so the
// dialog creates steps without knowing their classes.
TPALLET_EXPORT void registerWizard(int step, const WizardCreator &creator);
TPALLET_EXPORT void unregisterWizard(int step);
// The registered page of `step`, or a plain BaseWizard when the step has no page class.
TPALLET_EXPORT BaseWizard *createWizard(int step, orba::ModuleObject *pallet, QWidget *parent);

} // namespace tpallet
