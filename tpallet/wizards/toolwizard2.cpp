#include "toolwizard2.h"
#include "ui_toolwizard2.h"

#include "module/registration.h"

#include <orba/modulemanager.h>
#include <orba/moduleobject.h>

namespace {

const tpallet::Registration s_step(
    [] { tpallet::registerWizard(1, [](orba::ModuleObject *pallet, QWidget *parent) { return new ToolWizard2(pallet, parent); }); },
    [] { tpallet::unregisterWizard(1); });

} // namespace

ToolWizard2::ToolWizard2(orba::ModuleObject *pallet, QWidget *parent)
    : ToolStep(pallet, {QStringLiteral("tormo.project.tool._list"), QStringLiteral("tormo.setting.g_tool.g_tools")}, parent)
    , m_ui(new Ui::ToolWizard2)
{
    m_ui->setupUi(this);
    bindForm();
    updateAvailability();
}

ToolWizard2::~ToolWizard2()
{
    delete m_ui;
}

void ToolWizard2::updateAvailability()
{
    setEnabled(orba::m(QStringLiteral("tcore.r.level"))->getInt(0) >= 3);
}

void ToolWizard2::retranslateForm()
{
    m_ui->retranslateUi(this);
}
