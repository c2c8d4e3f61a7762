#include "toolwizard.h"
#include "ui_toolwizard.h"

ToolWizard::ToolWizard(orba::ModuleObject *pallet, QWidget *parent)
    : ToolStep(pallet, {QStringLiteral("tormo.project.tool._list")}, parent)
    , m_ui(new Ui::ToolWizard)
{
    m_ui->setupUi(this);
    bindForm();
}

ToolWizard::~ToolWizard()
{
    delete m_ui;
}

void ToolWizard::retranslateForm()
{
    m_ui->retranslateUi(this);
}
