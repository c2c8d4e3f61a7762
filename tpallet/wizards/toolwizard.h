#pragma once

#include "toolstep.h"

namespace Ui {
class ToolWizard;
}

// The earlier form of the tool step: project tools only, tool frame before the load.
class TPALLET_EXPORT ToolWizard : public ToolStep
{
    Q_OBJECT

public:
    ToolWizard(orba::ModuleObject *pallet, QWidget *parent = nullptr);
    ~ToolWizard() override;

protected:
    void retranslateForm() override;

private:
    Ui::ToolWizard *m_ui;
};
