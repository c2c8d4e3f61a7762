#include "toolstep.h"

#include "module/toolset.h"
#include "module/tpallet.h"

#include <kx/calc.h>
#include <orba/modulemanager.h>
#include <orba/moduleobject.h>
#include <tcore/managerhelper.h>

#include <QComboBox>
#include <QDoubleSpinBox>
#include <QEvent>
#include <QLabel>
#include <QListView>
#include <QPushButton>
#include <QRadioButton>
#include <QStackedWidget>

namespace {

constexpr double kPi = 3.141592653589793;
constexpr double kLength = 1000.0;
constexpr double kInertia = 1000000.0;

const char *const kTrans[3] = {"dspnX", "dspnY", "dspnZ"};
const char *const kEuler[3] = {"dspnA", "dspnB", "dspnC"};
const char *const kQuat[4] = {"dspnQ1", "dspnQ2", "dspnQ3", "dspnQ4"};
const char *const kCog[3] = {"dspnCogX", "dspnCogY", "dspnCogZ"};
const char *const kInertiaSpins[3] = {"dspnInertiaX", "dspnInertiaY", "dspnInertiaZ"};

QString element(const char *array, int i)
{
    return QStringLiteral("%1.#%2").arg(QLatin1String(array)).arg(i);
}

} // namespace

ToolStep::ToolStep(orba::ModuleObject *pallet, const QStringList &lists, QWidget *parent)
    : BaseWizard(pallet, parent)
    , m_lists(lists)
{
    if (pallet)
        m_toolset = pallet->r(QStringLiteral("calibrate.toolset"));
}

ToolStep::~ToolStep() = default;

void ToolStep::bindForm()
{
    m_cmbTool = findChild<QComboBox *>(QStringLiteral("cmbTool"));
    m_rdbEuler = findChild<QRadioButton *>(QStringLiteral("rdbEuler"));
    m_rdbQuat = findChild<QRadioButton *>(QStringLiteral("rdbQuat"));
    m_stack = findChild<QStackedWidget *>(QStringLiteral("stackedWidget"));
    m_pageEuler = findChild<QWidget *>(QStringLiteral("pageEuler"));
    m_pageQuat = findChild<QWidget *>(QStringLiteral("pageQuat"));
    Q_ASSERT(m_cmbTool && m_rdbEuler && m_rdbQuat && m_stack && m_pageEuler && m_pageQuat);

    m_rdbEuler->setChecked(true);
    m_stack->setCurrentWidget(m_pageEuler);
    connect(m_rdbEuler, &QRadioButton::clicked, this, &ToolStep::switchRotation);
    connect(m_rdbQuat, &QRadioButton::clicked, this, &ToolStep::switchRotation);
    connect(findChild<QPushButton *>(QStringLiteral("btnImport")), &QPushButton::clicked, this, &ToolStep::importTool);

    m_cmbTool->setView(new QListView(m_cmbTool));
    m_cmbTool->addItems(offeredTools(m_lists));
    setButtonNoFocus(this);
    refreshTool();
}

QStringList ToolStep::offeredTools(const QStringList &lists)
{
    QStringList names{QStringLiteral("tool0")};
    for (const QString &path : lists) {
        const orba::ModuleObject *list = orba::m(path);
        for (int i = 0; i < list->cmobjCount(); ++i) {
            const orba::ModuleObject *record = list->c(i);
            if (record->r(QStringLiteral("robhold"))->getBool(false))
                names << record->r(QStringLiteral("name"))->getString();
        }
    }
    return names;
}

orba::ModuleObject *ToolStep::findTool(const QStringList &lists, const QString &name)
{
    for (const QString &path : lists) {
        const orba::ModuleObject *list = orba::m(path);
        for (int i = 0; i < list->cmobjCount(); ++i) {
            orba::ModuleObject *record = list->c(i);
            if (record->c(QStringLiteral("name"), false)->getString() == name)
                return record;
        }
    }
    return orba::ModuleManager::emptyMobj();
}

QDoubleSpinBox *ToolStep::spin(const char *name) const
{
    return findChild<QDoubleSpinBox *>(QLatin1String(name));
}

void ToolStep::refreshTool()
{
    node2Dspn();
    dspn2Lbl();
}

void ToolStep::node2Dspn()
{
    orba::ModuleObject *toolset = m_toolset ? m_toolset.data() : orba::ModuleManager::emptyMobj();
    orba::ModuleObject *end = toolset->c(QStringLiteral("end"), false);
    for (int i = 0; i < 3; ++i)
        spin(kTrans[i])->setValue(end->r(element("trans", i))->getDouble(0.0) * kLength);
    rotNode2Dspn(end->c(QStringLiteral("rot"), false));
    orba::ModuleObject quat(QStringLiteral("quat"));
    kx::calc::rot2Quaternion(end->c(QStringLiteral("rot"), false), &quat);
    quatNode2Dspn(&quat);

    orba::ModuleObject *load = toolset->c(QStringLiteral("load"), false);
    spin("dspnMass")->setValue(load->c(QStringLiteral("mass"), false)->getDouble(0.0));
    for (int i = 0; i < 3; ++i) {
        spin(kCog[i])->setValue(load->r(element("cog", i))->getDouble(0.0) * kLength);
        spin(kInertiaSpins[i])->setValue(load->r(element("inertia", i))->getDouble(0.0) * kInertia);
    }
}

void ToolStep::dspn2Node()
{
    if (!m_toolset)
        return;
    orba::ModuleObject *toolset = m_toolset.data();
    for (int i = 0; i < 3; ++i)
        toolset->set(this, QStringLiteral("end.") + element("trans", i), spin(kTrans[i])->value() / kLength, true);
    orba::ModuleObject *end = toolset->c(QStringLiteral("end"), true);
    if (m_rdbEuler->isChecked()) {
        dspn2RotNode(end->c(QStringLiteral("rot"), true));
    } else {
        orba::ModuleObject quat(QStringLiteral("quat"));
        dspn2QuatNode(&quat);
        orba::ModuleObject rot(QStringLiteral("rot"));
        kx::calc::quaternion2Rot(&quat, &rot);
        for (int i = 0; i < 3; ++i)
            end->set(this, element("rot", i), rot.c(i)->getDouble(0.0), true);
    }
    toolset->set(this, QStringLiteral("load.mass"), spin("dspnMass")->value(), true);
    for (int i = 0; i < 3; ++i)
        toolset->set(this, QStringLiteral("load.") + element("cog", i), spin(kCog[i])->value() / kLength, true);
    for (int i = 0; i < 3; ++i)
        toolset->set(this, QStringLiteral("load.") + element("inertia", i), spin(kInertiaSpins[i])->value() / kInertia, true);
}

void ToolStep::dspn2Lbl()
{
    const QList<QDoubleSpinBox *> spins = findChildren<QDoubleSpinBox *>();
    for (QDoubleSpinBox *box : spins) {
        // "dspnX" shows its value in "lblX".
        const QString name = QStringLiteral("lbl") + box->objectName().mid(4);
        if (QLabel *label = findChild<QLabel *>(name))
            label->setText(box->text());
    }
}

void ToolStep::rotNode2Dspn(orba::ModuleObject *rot)
{
    for (int i = 0; i < 3; ++i)
        spin(kEuler[i])->setValue(rot->c(QStringLiteral("#%1").arg(i), false)->getDouble(0.0) / kPi * 180.0);
}

void ToolStep::dspn2RotNode(orba::ModuleObject *rot)
{
    for (int i = 0; i < 3; ++i)
        rot->set(this, QStringLiteral("#%1").arg(i), spin(kEuler[i])->value() * kPi / 180.0, true);
}

void ToolStep::quatNode2Dspn(orba::ModuleObject *quat)
{
    for (int i = 0; i < 4; ++i)
        spin(kQuat[i])->setValue(quat->c(QStringLiteral("#%1").arg(i), false)->getDouble(0.0));
}

void ToolStep::dspn2QuatNode(orba::ModuleObject *quat)
{
    for (int i = 0; i < 4; ++i)
        quat->set(this, QStringLiteral("#%1").arg(i), spin(kQuat[i])->value(), true);
}

void ToolStep::switchRotation()
{
    orba::ModuleObject rot(QStringLiteral("rot_temp"));
    orba::ModuleObject quat(QStringLiteral("quat_temp"));
    if (m_rdbEuler->isChecked()) {
        m_stack->setCurrentWidget(m_pageEuler);
        dspn2QuatNode(&quat);
        kx::calc::quaternion2Rot(&quat, &rot);
        rotNode2Dspn(&rot);
    } else {
        m_stack->setCurrentWidget(m_pageQuat);
        dspn2RotNode(&rot);
        kx::calc::rot2Quaternion(&rot, &quat);
        quatNode2Dspn(&quat);
    }
}

void ToolStep::load2XLoad(const orba::ModuleObject *source, orba::ModuleObject *target, QObject *sender)
{
    target->set(sender, QStringLiteral("mass"), source->r(QStringLiteral("mass"))->getDouble(0.0), true);
    for (int i = 0; i < 3; ++i)
        target->set(sender, element("inertia", i), source->r(element("moment", i))->getDouble(0.0) / kInertia, true);
    const char *cog[3] = {"pose.pos.x", "pose.pos.y", "pose.pos.z"};
    for (int i = 0; i < 3; ++i)
        target->set(sender, element("cog", i), source->r(QLatin1String(cog[i]))->getDouble(0.0) / kLength, true);
}

void ToolStep::frame2Point(const orba::ModuleObject *source, orba::ModuleObject *target, QObject *sender)
{
    const char *euler[3] = {"ori.euler.a", "ori.euler.b", "ori.euler.c"};
    for (int i = 0; i < 3; ++i)
        target->set(sender, element("rot", i), source->r(QLatin1String(euler[i]))->getDouble(0.0) / 180.0 * kPi, true);
    const char *pos[3] = {"pos.x", "pos.y", "pos.z"};
    for (int i = 0; i < 3; ++i)
        target->set(sender, element("trans", i), source->r(QLatin1String(pos[i]))->getDouble(0.0) / kLength, true);
}

void ToolStep::importTool()
{
    if (!tcore::ManagerHelper::instance()->execMsgOk(QStringLiteral("q"),
                                                     tr("Tray tool will be replaced, are you sure to import?")))
        return;
    // The question ran the event loop: the pallet may have gone meanwhile.
    if (!m_toolset || !m_pallet)
        return;
    const QString name = m_cmbTool->currentText();
    if (name == QLatin1String("tool0")) {
        tpallet::identityToolNode(m_toolset);
        refreshTool();
        tpallet::saveToRC(m_pallet);
        return;
    }
    const orba::ModuleObject *record = findTool(m_lists, name);
    if (record->isEmpty()) {
        tpallet::recordCfgLog(tr("Invalid tool: %1").arg(name), false);
        return;
    }
    load2XLoad(record->r(QStringLiteral("load")), m_toolset->c(QStringLiteral("load"), true), this);
    frame2Point(record->r(QStringLiteral("frame")), m_toolset->c(QStringLiteral("end"), true), this);
    refreshTool();
    tpallet::saveToRC(m_pallet);
}

bool ToolStep::tryNext()
{
    dspn2Node();
    if (m_pallet)
        tpallet::saveToRC(m_pallet);
    return true;
}

void ToolStep::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslateForm();
    BaseWizard::changeEvent(event);
}
