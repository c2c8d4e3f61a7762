#include "calibratesetwizard.h"
#include "ui_calibratesetwizard.h"

#include "calibration.h"
#include "patternwizard.h"

#include "dialogs/movetodialog.h"
#include "module/pointgen.h"
#include "module/posenode.h"
#include "module/registration.h"
#include "module/toolset.h"
#include "module/tpallet.h"

#include <kx/calc.h>
#include <orba/modulemanager.h>
#include <orba/moduleobject.h>
#include <orbat/tservice.h>
#include <tcore/managerhelper.h>

#include <QEvent>
#include <QPixmap>
#include <QPointer>

namespace {

const tpallet::Registration s_step(
    [] {
        tpallet::registerWizard(2, [](orba::ModuleObject *pallet, QWidget *parent) { return new CalibrateSetWizard(pallet, parent); });
    },
    [] { tpallet::unregisterWizard(2); });

tpallet::Vec3 transOf(orba::ModuleObject *point)
{
    return {point->r(QStringLiteral("trans.#0"))->getDouble(0.0), point->r(QStringLiteral("trans.#1"))->getDouble(0.0),
            point->r(QStringLiteral("trans.#2"))->getDouble(0.0)};
}

} // namespace

CalibrateSetWizard::CalibrateSetWizard(orba::ModuleObject *pallet, QWidget *parent)
    : BaseWizard(pallet, parent)
    , m_ui(new Ui::CalibrateSetWizard)
{
    m_ui->setupUi(this);
    initParamPointNode(pallet);

    orba::ModuleObject *cal = calibrateNode();
    for (int i = 1; i <= 4; ++i) {
        const QString name = QStringLiteral("p%1").arg(i);
        tpallet::pointToGroupSpin(cal->c(name, false), boxOf(name), true);
        connectSpinChangeToNode(boxOf(name), cal->c(name, false));
    }
    tpallet::pointToGroupSpin(toolsetNode()->c(QStringLiteral("ref"), false), m_ui->grbRef, true);
    // The frame is computed, never typed: its boxes look like read-outs.
    for (QDoubleSpinBox *spin : m_ui->grbRef->findChildren<QDoubleSpinBox *>())
        spin->setStyleSheet(QStringLiteral("background: #4b5461; color: #e6e9ee; border: 1px solid #5b6471;"));

    const bool useP4 = cal->c(QStringLiteral("use_p4"), false)->getBool(true);
    m_ui->btnP4InUse->setIsEnabled(useP4, false);
    m_ui->grbP4->setEnabled(useP4);
    connect(m_ui->btnP4InUse, &EnableButton::enabled, this, &CalibrateSetWizard::setP4InUse);

    connect(m_ui->btnAccquireP1, &QPushButton::clicked, this, &CalibrateSetWizard::accquireP1);
    connect(m_ui->btnAccquireP2, &QPushButton::clicked, this, &CalibrateSetWizard::accquireP2);
    connect(m_ui->btnAccquireP3, &QPushButton::clicked, this, &CalibrateSetWizard::accquireP3);
    connect(m_ui->btnAccquireP4, &QPushButton::clicked, this, &CalibrateSetWizard::accquireP4);
    connect(m_ui->btnMoveToP1, &QPushButton::clicked, this, &CalibrateSetWizard::moveToP1);
    connect(m_ui->btnMoveToP2, &QPushButton::clicked, this, &CalibrateSetWizard::moveToP2);
    connect(m_ui->btnMoveToP3, &QPushButton::clicked, this, &CalibrateSetWizard::moveToP3);
    connect(m_ui->btnMoveToP4, &QPushButton::clicked, this, &CalibrateSetWizard::moveToP4);

    orba::ModuleObject *node = pallet ? pallet : orba::ModuleManager::emptyMobj();
    m_ui->wgtImage->setPixmap(QPixmap(tpallet::axisImagePath(node->r(QStringLiteral("pattern.origin"))->getInt(0),
                                                             node->r(QStringLiteral("pattern.s_type"))->getBool(false),
                                                             node->r(QStringLiteral("pattern.rank_v"))->getBool(false))));

    connect(m_ui->btnCalibrate, &QPushButton::clicked, this, [this] {
        const bool ok = calibrateRef1(m_ui->btnP4InUse->getIsEnabled());
        if (ok && m_pallet)
            tpallet::genPointsAndSaveToRC(m_pallet);
    });
    setButtonNoFocus(this);
}

CalibrateSetWizard::~CalibrateSetWizard()
{
    delete m_ui;
}

void CalibrateSetWizard::initParamPointNode(orba::ModuleObject *pallet)
{
    if (!pallet || pallet->isEmpty())
        return;
    orba::ModuleObject *cal = pallet->c(QStringLiteral("calibrate"), true);
    for (int i = 1; i <= 4; ++i) {
        const QString name = QStringLiteral("p%1").arg(i);
        if (cal->hasCmobj(name, false) && !cal->c(name, false)->isNull())
            continue;
        if (cal->hasCmobj(name, false)) {
            tpallet::identityPointNode(cal->c(name, false));
            continue;
        }
        auto *point = new orba::ModuleObject(name);
        tpallet::identityPointNode(point);
        cal->append(nullptr, point);
    }
    // A toolset the tool step filled keeps its values; only what is missing is completed.
    orba::ModuleObject *toolset = cal->c(QStringLiteral("toolset"), true);
    if (toolset->isNull()) {
        tpallet::identityToolsetNode(toolset);
        return;
    }
    orba::ModuleObject complete(QStringLiteral("toolset"));
    tpallet::identityToolsetNode(&complete);
    for (const QString &path : complete.cmobjNames(true)) {
        const orba::ModuleObject *leaf = complete.r(path);
        if (leaf->cmobjCount() == 0 && !toolset->hasRmobj(path))
            toolset->set(nullptr, path, 0.0, true);
    }
}

orba::ModuleObject *CalibrateSetWizard::calibrateNode() const
{
    return m_pallet ? m_pallet->r(QStringLiteral("calibrate")) : orba::ModuleManager::emptyMobj();
}

orba::ModuleObject *CalibrateSetWizard::toolsetNode() const
{
    return calibrateNode()->r(QStringLiteral("toolset"));
}

QGroupBox *CalibrateSetWizard::boxOf(const QString &name) const
{
    if (name == QLatin1String("p1"))
        return m_ui->grbP1;
    if (name == QLatin1String("p2"))
        return m_ui->grbP2;
    if (name == QLatin1String("p3"))
        return m_ui->grbP3;
    return m_ui->grbP4;
}

void CalibrateSetWizard::connectSpinChangeToNode(QGroupBox *box, orba::ModuleObject *node)
{
    tpallet::connectSpinChangeToPoint(box, node, this);
}

void CalibrateSetWizard::accquirePos(const QString &name, QGroupBox *box)
{
    if (!m_pallet)
        return;
    QPointer<orba::ModuleObject> point = calibrateNode()->c(name, true);
    tservice()->getAt(this, QStringLiteral("sys.posture"), point, 0);
    if (point)
        tpallet::pointToGroupSpin(point, box, true);
}

void CalibrateSetWizard::accquireP1()
{
    accquirePos(QStringLiteral("p1"), m_ui->grbP1);
}

void CalibrateSetWizard::accquireP2()
{
    accquirePos(QStringLiteral("p2"), m_ui->grbP2);
}

void CalibrateSetWizard::accquireP3()
{
    accquirePos(QStringLiteral("p3"), m_ui->grbP3);
}

void CalibrateSetWizard::accquireP4()
{
    accquirePos(QStringLiteral("p4"), m_ui->grbP4);
}

void CalibrateSetWizard::moveToPoint(const QString &name)
{
    orba::ModuleObject *point = calibrateNode()->c(name, false);
    if (point->isEmpty())
        return;
    tpallet::groupSpinToPoint(point, boxOf(name));
    tpallet::moveToPoint(point, this);
}

void CalibrateSetWizard::moveToP1()
{
    moveToPoint(QStringLiteral("p1"));
}

void CalibrateSetWizard::moveToP2()
{
    moveToPoint(QStringLiteral("p2"));
}

void CalibrateSetWizard::moveToP3()
{
    moveToPoint(QStringLiteral("p3"));
}

void CalibrateSetWizard::moveToP4()
{
    moveToPoint(QStringLiteral("p4"));
}

void CalibrateSetWizard::setP4InUse(bool on)
{
    m_ui->grbP4->setEnabled(on);
    if (m_pallet)
        m_pallet->set(this, QStringLiteral("calibrate.use_p4"), on, true);
}

void CalibrateSetWizard::onCmbToolChanged(int)
{
}

bool CalibrateSetWizard::checkPoints()
{
    orba::ModuleObject *cal = calibrateNode();
    const bool useP4 = cal->c(QStringLiteral("use_p4"), false)->getBool(true);
    const QStringList close = tpallet::closeCornerPairs(transOf(cal->c(QStringLiteral("p1"), false)),
                                                        transOf(cal->c(QStringLiteral("p2"), false)),
                                                        transOf(cal->c(QStringLiteral("p3"), false)),
                                                        transOf(cal->c(QStringLiteral("p4"), false)), useP4);
    if (close.isEmpty())
        return true;
    const QString question = close.join(QStringLiteral("; ")) + tr(" is too close to each other, are you sure to calibrate?");
    return tcore::ManagerHelper::instance()->execMsgOk(QStringLiteral("q"), question);
}

bool CalibrateSetWizard::calibrateRef1(bool useP4)
{
    if (!m_pallet)
        return false;
    orba::ModuleObject *cal = calibrateNode();
    for (int i = 1; i <= (useP4 ? 4 : 3); ++i) {
        const QString name = QStringLiteral("p%1").arg(i);
        tpallet::groupSpinToPoint(cal->c(name, false), boxOf(name));
    }
    const tpallet::Vec3 p1 = transOf(cal->c(QStringLiteral("p1"), false));
    const tpallet::Vec3 p2 = transOf(cal->c(QStringLiteral("p2"), false));
    const tpallet::Vec3 p3 = transOf(cal->c(QStringLiteral("p3"), false));
    const tpallet::Vec3 p4 = transOf(cal->c(QStringLiteral("p4"), false));

    // The question runs the event loop: the pallet may be gone when it returns.
    QPointer<BaseWizard> self(this);
    if (!checkPoints() || !self || !m_pallet)
        return false;

    const tpallet::PalletCalibration frame = tpallet::calibratePallet(p1, p2, p3, p4, useP4);
    orba::ModuleObject *ref = toolsetNode()->c(QStringLiteral("ref"), true);
    for (int i = 0; i < 3; ++i)
        ref->set(this, QStringLiteral("rot.#%1").arg(i), frame.rot[size_t(i)], true);
    for (int i = 0; i < 3; ++i)
        ref->set(this, QStringLiteral("trans.#%1").arg(i), frame.trans[size_t(i)], true);
    tpallet::pointToGroupSpin(ref, m_ui->grbRef, true);

    cal->set(this, QStringLiteral("x_span"), frame.xSpan, true);
    cal->set(this, QStringLiteral("y_span"), frame.ySpan, true);
    cal->set(this, QStringLiteral("x_offset_13"), frame.xOffset13, true);
    cal->set(this, QStringLiteral("x_offset_24"), frame.xOffset24, true);
    cal->set(this, QStringLiteral("y_offset_34"), frame.yOffset34, true);

    changeWayPoint();
    return true;
}

void CalibrateSetWizard::calibrateRef()
{
    if (!m_pallet)
        return;
    orba::ModuleObject origin(QStringLiteral("o_point"));
    orba::ModuleObject xPoint(QStringLiteral("x_point"));
    orba::ModuleObject yPoint(QStringLiteral("y_point"));
    tpallet::identityPointNode(&origin);
    tpallet::identityPointNode(&xPoint);
    tpallet::identityPointNode(&yPoint);
    tpallet::groupSpinToPoint(&origin, m_ui->grbP1);
    tpallet::groupSpinToPoint(&xPoint, m_ui->grbP2);
    tpallet::groupSpinToPoint(&yPoint, m_ui->grbP3);
    orba::ModuleObject result(QStringLiteral("ref"));
    if (!kx::calc::calibrateOXY(&origin, &xPoint, &yPoint, &result))
        return;
    orba::ModuleObject *ref = toolsetNode()->c(QStringLiteral("ref"), true);
    for (int i = 0; i < 3; ++i) {
        ref->set(this, QStringLiteral("trans.#%1").arg(i), result.r(QStringLiteral("trans.#%1").arg(i))->getDouble(0.0), true);
        ref->set(this, QStringLiteral("rot.#%1").arg(i), result.r(QStringLiteral("rot.#%1").arg(i))->getDouble(0.0), true);
    }
    tpallet::pointToGroupSpin(ref, m_ui->grbRef, true);
    changeWayPoint();
}

void CalibrateSetWizard::changeWayPoint()
{
    if (!m_pallet)
        return;
    orba::ModuleObject inverse(QStringLiteral("inverse_end"));
    kx::calc::inverseFrame(toolsetNode()->c(QStringLiteral("ref"), false), &inverse);
    orba::ModuleObject p1Ref(QStringLiteral("p1_ref"));
    kx::calc::transformFrame(&inverse, calibrateNode()->c(QStringLiteral("p1"), false), &p1Ref);
    tpallet::initWayPointNode(m_pallet);
    // Every way point takes P1's orientation as seen from the pallet frame.
    orba::ModuleObject *waypoint = m_pallet->c(QStringLiteral("waypoint"), false);
    const orba::ModuleObject *rot = p1Ref.r(QStringLiteral("rot"));
    for (orba::ModuleObject *point : waypoint->cmobjs(false))
        point->c(QStringLiteral("rot"), true)->copyFrom(this, rot, true, false);
}

void CalibrateSetWizard::saveToNode()
{
    orba::ModuleObject *cal = calibrateNode();
    for (int i = 1; i <= 4; ++i) {
        const QString name = QStringLiteral("p%1").arg(i);
        tpallet::groupSpinToPoint(cal->c(name, false), boxOf(name));
    }
    if (m_pallet)
        m_pallet->set(this, QStringLiteral("calibrate.use_p4"), m_ui->btnP4InUse->getIsEnabled(), true);
}

void CalibrateSetWizard::init(bool)
{
    // Corners are taught in the robot's base frame: the reference is reset on the copy sent.
    if (tpallet::switchToToolset(toolsetNode(), true, false))
        tpallet::recordCfgLog(tr("Swithed to pallet wobj"), false);
    else
        tpallet::recordCfgLog(tr("swith to pallet toolset failed"), true);
}

bool CalibrateSetWizard::tryNext()
{
    saveToNode();
    if (m_pallet)
        tpallet::saveToRC(m_pallet);
    return true;
}

bool CalibrateSetWizard::tryConfirm()
{
    return tryNext();
}

void CalibrateSetWizard::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange)
        m_ui->retranslateUi(this);
    BaseWizard::changeEvent(event);
}
