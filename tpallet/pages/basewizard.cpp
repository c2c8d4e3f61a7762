#include "basewizard.h"

#include <orba/moduleobject.h>

#include <QAbstractButton>
#include <QMap>
#include <QPushButton>

BaseWizard::BaseWizard(orba::ModuleObject *pallet, QWidget *parent)
    : QWidget(parent)
    , m_pallet(pallet)
{
}

BaseWizard::~BaseWizard() = default;

orba::ModuleObject *BaseWizard::pallet() const
{
    return m_pallet.data();
}

void BaseWizard::setButtonNoFocus(QWidget *widget)
{
    if (!widget)
        return;
    const QList<QPushButton *> buttons = widget->findChildren<QPushButton *>();
    for (QPushButton *button : buttons)
        button->setFocusPolicy(Qt::NoFocus);
}

bool BaseWizard::tryNext()
{
    return true;
}

bool BaseWizard::tryPrevious()
{
    return true;
}

bool BaseWizard::tryCancel()
{
    return true;
}

bool BaseWizard::tryConfirm()
{
    return true;
}

void BaseWizard::init(bool)
{
}

void BaseWizard::updateAvailability()
{
}

namespace tpallet {

namespace {

QMap<int, WizardCreator> &creators()
{
    static QMap<int, WizardCreator> map;
    return map;
}

} // namespace

void registerWizard(int step, const WizardCreator &creator)
{
    creators().insert(step, creator);
}

void unregisterWizard(int step)
{
    creators().remove(step);
}

BaseWizard *createWizard(int step, orba::ModuleObject *pallet, QWidget *parent)
{
    const auto it = creators().constFind(step);
    if (it != creators().constEnd() && it.value())
        return it.value()(pallet, parent);
    return new BaseWizard(pallet, parent);
}

} // namespace tpallet
