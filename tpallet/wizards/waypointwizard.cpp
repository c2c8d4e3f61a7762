#include "waypointwizard.h"
#include "ui_waypointwizard.h"

#include "dialogs/movetodialog.h"
#include "module/pointgen.h"
#include "module/posenode.h"
#include "module/registration.h"
#include "module/toolset.h"
#include "module/tpallet.h"

#include <orba/modulemanager.h>
#include <orba/moduleobject.h>
#include <orbat/tservice.h>

#include <QEvent>
#include <QLabel>
#include <QPixmap>
#include <QPointer>

namespace {

const tpallet::Registration s_step(
    [] { tpallet::registerWizard(3, [](orba::ModuleObject *pallet, QWidget *parent) { return new WayPointWizard(pallet, parent); }); },
    [] { tpallet::unregisterWizard(3); });

} // namespace

WayPointWizard::WayPointWizard(orba::ModuleObject *pallet, QWidget *parent)
    : BaseWizard(pallet, parent)
    , m_ui(new Ui::WayPointWizard)
{
    m_ui->setupUi(this);
    tpallet::initWayPointNode(pallet);

    for (const char *name : {"approach", "wobj", "retract"}) {
        const QString key = QLatin1String(name);
        tpallet::pointToGroupSpin(wayPoint(key), boxOf(key), true);
    }
    m_ui->wgtImageApproach->setPixmap(QPixmap(QStringLiteral(":/tpallet/images/pallet/p5.png")));
    m_ui->wgtImageWobj->setPixmap(QPixmap(QStringLiteral(":/tpallet/images/pallet/p1.png")));
    m_ui->wgtImageRetract->setPixmap(QPixmap(QStringLiteral(":/tpallet/images/pallet/p6.png")));

    connect(m_ui->btnAccquireApproach, &QPushButton::clicked, this, &WayPointWizard::accquireApproach);
    connect(m_ui->btnAccquireWobj, &QPushButton::clicked, this, &WayPointWizard::accquireWobj);
    connect(m_ui->btnAccquireRetract, &QPushButton::clicked, this, &WayPointWizard::accquireRetract);
    connect(m_ui->btnMoveToApproach, &QPushButton::clicked, this, &WayPointWizard::moveToAppraoch);
    connect(m_ui->btnMoveToWobj, &QPushButton::clicked, this, &WayPointWizard::moveToWobj);
    connect(m_ui->btnMoveToRetract, &QPushButton::clicked, this, &WayPointWizard::moveToRetract);
    for (const char *name : {"approach", "wobj", "retract"}) {
        const QString key = QLatin1String(name);
        connectSpinChangeToNode(boxOf(key), wayPoint(key));
    }
    setButtonNoFocus(this);
}

WayPointWizard::~WayPointWizard()
{
    delete m_ui;
}

orba::ModuleObject *WayPointWizard::wayPoint(const QString &name) const
{
    return m_pallet ? m_pallet->r(QStringLiteral("waypoint.") + name) : orba::ModuleManager::emptyMobj();
}

QGroupBox *WayPointWizard::boxOf(const QString &name) const
{
    if (name == QLatin1String("approach"))
        return m_ui->grbApproach;
    if (name == QLatin1String("wobj"))
        return m_ui->grbWobj;
    return m_ui->grbRetract;
}

void WayPointWizard::connectSpinChangeToNode(QGroupBox *box, orba::ModuleObject *node)
{
    tpallet::connectSpinChangeToPoint(box, node, this);
}

void WayPointWizard::hideAbcVisible()
{
    for (QGroupBox *box : {m_ui->grbApproach, m_ui->grbWobj, m_ui->grbRetract}) {
        for (const char *key : {"A", "B", "C"}) {
            for (QWidget *w : box->findChildren<QWidget *>()) {
                const QString name = w->objectName();
                if (name.startsWith(QStringLiteral("dspn%1").arg(QLatin1String(key)))
                    || name.startsWith(QStringLiteral("lbl%1").arg(QLatin1String(key))))
                    w->setVisible(false);
            }
        }
    }
}

void WayPointWizard::accquirePos(const QString &name, QGroupBox *box)
{
    if (!m_pallet)
        return;
    QPointer<orba::ModuleObject> point = m_pallet->c(QStringLiteral("waypoint"), true)->c(name, true);
    tservice()->getAt(this, QStringLiteral("sys.posture"), point, 0);
    if (point)
        tpallet::pointToGroupSpin(point, box, true);
}

void WayPointWizard::accquireWobj()
{
    accquirePos(QStringLiteral("wobj"), m_ui->grbWobj);
}

void WayPointWizard::accquireApproach()
{
    accquirePos(QStringLiteral("approach"), m_ui->grbApproach);
}

void WayPointWizard::accquireRetract()
{
    accquirePos(QStringLiteral("retract"), m_ui->grbRetract);
}

void WayPointWizard::moveToPoint(const QString &name, const QString &label)
{
    orba::ModuleObject *point = wayPoint(name);
    if (point->isEmpty())
        return;
    tpallet::groupSpinToPoint(point, boxOf(name));
    // The dialog names the point by its P number, read from "tag" when it opens; the tag is not
    // part of the pallet and goes again at once, before anything could store or copy it.
    const bool tagged = point->hasCmobj(QStringLiteral("tag"), false);
    if (!tagged)
        point->set(this, QStringLiteral("tag"), label, true);
    tpallet::moveToPoint(point, this);
    if (!tagged)
        point->remove(this, point->c(QStringLiteral("tag"), false));
}

void WayPointWizard::moveToWobj()
{
    moveToPoint(QStringLiteral("wobj"), QStringLiteral("P6"));
}

void WayPointWizard::moveToAppraoch()
{
    moveToPoint(QStringLiteral("approach"), QStringLiteral("P5"));
}

void WayPointWizard::moveToRetract()
{
    moveToPoint(QStringLiteral("retract"), QStringLiteral("P7"));
}

void WayPointWizard::init(bool)
{
    if (!m_pallet)
        return;
    if (tpallet::switchToToolset(m_pallet->r(QStringLiteral("calibrate.toolset")), false, false))
        tpallet::recordCfgLog(tr("Swithed to pallet wobj"), false);
    else
        tpallet::recordCfgLog(tr("swith to pallet wobj failed"), true);
    const QString warning = tpallet::checkCalibrated(m_pallet);
    if (!warning.isEmpty())
        tpallet::recordCfgLog(warning, false);
}

void WayPointWizard::saveToNode()
{
    for (const char *name : {"wobj", "approach", "retract"}) {
        const QString key = QLatin1String(name);
        tpallet::groupSpinToPoint(wayPoint(key), boxOf(key));
    }
}

bool WayPointWizard::tryNext()
{
    if (!m_pallet)
        return true;
    saveToNode();
    tpallet::genPointsAndSaveToRC(m_pallet);
    return true;
}

bool WayPointWizard::tryConfirm()
{
    return tryNext();
}

void WayPointWizard::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange)
        m_ui->retranslateUi(this);
    BaseWizard::changeEvent(event);
}
