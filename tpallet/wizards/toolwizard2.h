#pragma once

#include "toolstep.h"

namespace Ui {
class ToolWizard2;
}

// The tool step of the configuration dialog: tools of the controller's project and of the
// pendant's global settings can be imported; the page needs level 3.
class TPALLET_EXPORT ToolWizard2 : public ToolStep
{
    Q_OBJECT

public:
    ToolWizard2(orba::ModuleObject *pallet, QWidget *parent = nullptr);
    ~ToolWizard2() override;

public slots:
    void updateAvailability() override;

protected:
    void retranslateForm() override;

private:
    Ui::ToolWizard2 *m_ui;
};
