#include "pointadjustwizard.h"
#include "ui_pointadjustwizard.h"

#include "pointcheck.h"

#include "dialogs/movetodialog.h"
#include "module/modulelog.h"
#include "module/pointgen.h"
#include "module/posenode.h"
#include "module/registration.h"
#include "module/toolset.h"
#include "module/tpallet.h"

#include <orba/creatormanager.h>
#include <orba/modulemanager.h>
#include <orba/moduleobject.h>
#include <orba/names.h>
#include <orbat/tservice.h>
#include <tcore/managerhelper.h>
#include <tcore/settingmanager.h>

#include <QCoreApplication>
#include <QEvent>
#include <QListView>
#include <QPixmap>
#include <QProgressBar>
#include <QProgressDialog>
#include <QPushButton>

namespace {

const tpallet::Registration s_step(
    [] { tpallet::registerWizard(4, [](orba::ModuleObject *pallet, QWidget *parent) { return new PointAdjustWizard(pallet, parent); }); },
    [] { tpallet::unregisterWizard(4); });

const tpallet::Registration s_version(
    [] { orba::versionManager()->regist(mName(QStringLiteral("tpallet"), QStringLiteral("wizard.pointadjust")), [] { return 3; }); },
    [] { orba::versionManager()->unregist(mName(QStringLiteral("tpallet"), QStringLiteral("wizard.pointadjust"))); });

QString wayPointPicture()
{
    const bool chinese = tcore::SettingManager::getStr(QStringLiteral("language"), QString()) == QLatin1String("cn");
    return QStringLiteral(":/tpallet/images/pallet/%1.png").arg(chinese ? QStringLiteral("waypoint") : QStringLiteral("waypoint_en"));
}

// The controller's own words for a refused segment: its message, or the link's error.
QString refusalReason(const orba::ModuleObject *reply)
{
    QString reason = reply->r(QStringLiteral("data.msg"))->getString();
    if (reason.isEmpty())
        reason = reply->r(QStringLiteral("error.message"))->getString();
    return QStringLiteral("status %1%2").arg(reply->getInt(0)).arg(reason.isEmpty() ? QString() : QStringLiteral(", ") + reason);
}

} // namespace

PointAdjustWizard::PointAdjustWizard(orba::ModuleObject *pallet, QWidget *parent)
    : BaseWizard(pallet, parent)
    , m_ui(new Ui::PointAdjustWizard)
{
    m_ui->setupUi(this);
    m_ui->wgtImage->setPixmap(QPixmap(wayPointPicture()));

    // A plain list view takes the style sheet the default delegate ignores.
    m_ui->cmbPoint->setView(new QListView(m_ui->cmbPoint));
    const int count = pallet ? pallet->c(QStringLiteral("points"), false)->cmobjCount() : 0;
    QStringList numbers;
    numbers.reserve(count);
    for (int i = 0; i < count; ++i)
        numbers << QString::number(i + 1);
    m_ui->cmbPoint->addItems(numbers);
    // addItems selected the first index before anything was connected.
    showIndex(m_ui->cmbPoint->currentIndex());

    connect(m_ui->cmbPoint, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            &PointAdjustWizard::onCmbPointIndexChanged);
    connect(m_ui->btnAddIndex, &QPushButton::clicked, this, &PointAdjustWizard::addCmbIndex);
    connect(m_ui->btnSubIndex, &QPushButton::clicked, this, &PointAdjustWizard::subCmbIndex);
    connect(m_ui->btnReset, &QPushButton::clicked, this, &PointAdjustWizard::resetPoint);
    connect(m_ui->btnCheck, &QPushButton::clicked, this, &PointAdjustWizard::checkAccess);
    connect(m_ui->btnSaveApproach, &QPushButton::clicked, this, &PointAdjustWizard::saveApproach);
    connect(m_ui->btnSaveWobj, &QPushButton::clicked, this, &PointAdjustWizard::saveWobj);
    connect(m_ui->btnSaveRetract, &QPushButton::clicked, this, &PointAdjustWizard::saveRetract);
    connect(m_ui->btnAccquireApproach, &QPushButton::clicked, this, &PointAdjustWizard::accquireApproach);
    connect(m_ui->btnAccquireWobj, &QPushButton::clicked, this, &PointAdjustWizard::accquireWobj);
    connect(m_ui->btnAccquireRetract, &QPushButton::clicked, this, &PointAdjustWizard::accquireRetract);
    connect(m_ui->btnMoveToWobj, &QPushButton::clicked, this, &PointAdjustWizard::moveToWobj);
    connect(m_ui->btnMoveToRetract, &QPushButton::clicked, this, &PointAdjustWizard::moveToRetract);
    setButtonNoFocus(this);
}

PointAdjustWizard::~PointAdjustWizard()
{
    delete m_ui;
}

orba::ModuleObject *PointAdjustWizard::moveTarget() const
{
    return m_moveTarget.get();
}

QProgressDialog *PointAdjustWizard::checkProgress() const
{
    return m_progress.data();
}

orba::ModuleObject *PointAdjustWizard::pointOf(int index, const QString &child) const
{
    if (!m_pallet || index < 0)
        return orba::ModuleManager::emptyMobj();
    return m_pallet->c(QStringLiteral("points"), false)->c(index)->c(child, false);
}

void PointAdjustWizard::init(bool single)
{
    Q_UNUSED(single)
    if (!m_pallet)
        return;
    if (tpallet::switchToToolset(m_pallet->r(QStringLiteral("calibrate.toolset")), false, false))
        tpallet::recordCfgLog(tr("Swithed to pallet wobj"), false);
    else
        tpallet::recordCfgLog(tr("swith to pallet wobj failed"), true);
    if (!m_pallet)
        return;
    const QString warning = tpallet::checkCalibrated(m_pallet);
    if (!warning.isEmpty())
        tpallet::recordCfgLog(warning, false);
}

void PointAdjustWizard::showIndex(int index)
{
    tpallet::pointToGroupSpin(pointOf(index, QStringLiteral("wobj")), m_ui->grbWobj, true);
    tpallet::pointToGroupSpin(pointOf(index, QStringLiteral("approach")), m_ui->grbApproach, true);
    tpallet::pointToGroupSpin(pointOf(index, QStringLiteral("retract")), m_ui->grbRetract, true);
}

void PointAdjustWizard::onCmbPointIndexChanged(int index)
{
    showIndex(index);
}

void PointAdjustWizard::addCmbIndex()
{
    const int current = m_ui->cmbPoint->currentIndex();
    if (current >= m_ui->cmbPoint->count() - 1)
        return;
    m_ui->cmbPoint->setCurrentIndex(current + 1);
}

void PointAdjustWizard::subCmbIndex()
{
    const int current = m_ui->cmbPoint->currentIndex();
    if (current <= 0)
        return;
    m_ui->cmbPoint->setCurrentIndex(current - 1);
}

void PointAdjustWizard::resetPoint()
{
    if (!m_pallet)
        return;
    QPointer<PointAdjustWizard> self(this);
    tpallet::genPointsAndSaveToRC(m_pallet);
    if (self)
        showIndex(m_ui->cmbPoint->currentIndex());
}

void PointAdjustWizard::savePoint(const QString &child, QGroupBox *box, const QString &question)
{
    const int index = m_ui->cmbPoint->currentIndex();
    QPointer<orba::ModuleObject> node = pointOf(index, child);
    if (node->isEmpty())
        return;
    QPointer<PointAdjustWizard> self(this);
    const bool confirmed = tcore::ManagerHelper::instance()->execMsgOk(QStringLiteral("q"), question.arg(index + 1),
                                                                       QStringLiteral("_"));
    // The question runs the event loop: the step or the pallet may be gone.
    if (!self || !node || !m_pallet)
        return;
    if (!confirmed) {
        tpallet::pointToGroupSpin(node, box, true);
        return;
    }
    tpallet::groupSpinToPoint(node, box);
    tpallet::saveToRC(m_pallet);
}

void PointAdjustWizard::saveApproach()
{
    savePoint(QStringLiteral("approach"), m_ui->grbApproach, tr("Are you sure to adjust Approach Point %1?"));
}

void PointAdjustWizard::saveWobj()
{
    savePoint(QStringLiteral("wobj"), m_ui->grbWobj, tr("Are you sure to adjust Wobj Point %1?"));
}

void PointAdjustWizard::saveRetract()
{
    savePoint(QStringLiteral("retract"), m_ui->grbRetract, tr("Are you sure to adjust Retract Point %1?"));
}

void PointAdjustWizard::adjustPoint()
{
    const int index = m_ui->cmbPoint->currentIndex();
    QPointer<PointAdjustWizard> self(this);
    const bool confirmed = tcore::ManagerHelper::instance()->execMsgOk(
        QStringLiteral("q"), tr("Are you sure to adjust Point %1?").arg(index + 1), QStringLiteral("_"));
    if (!confirmed || !self)
        return;
    QPointer<orba::ModuleObject> wobj = pointOf(index, QStringLiteral("wobj"));
    if (wobj->isEmpty())
        return;
    const double x0 = wobj->r(QStringLiteral("trans.#0"))->getDouble(0.0);
    const double y0 = wobj->r(QStringLiteral("trans.#1"))->getDouble(0.0);
    // The place takes the approach editors' values: that is how this adjustment is meant.
    tpallet::groupSpinToPoint(wobj, m_ui->grbApproach);
    if (!self || !wobj)
        return;
    const double dx = wobj->r(QStringLiteral("trans.#0"))->getDouble(0.0) - x0;
    const double dy = wobj->r(QStringLiteral("trans.#1"))->getDouble(0.0) - y0;
    for (const char *name : {"approach", "retract"}) {
        QPointer<orba::ModuleObject> pose = pointOf(index, QLatin1String(name));
        if (!self || !pose || pose->isEmpty())
            return;
        const double x = pose->r(QStringLiteral("trans.#0"))->getDouble(0.0);
        pose->set(this, QStringLiteral("trans.#0"), x + dx, true);
        if (!self || !pose)
            return;
        const double y = pose->r(QStringLiteral("trans.#1"))->getDouble(0.0);
        pose->set(this, QStringLiteral("trans.#1"), y + dy, true);
    }
}

void PointAdjustWizard::accquirePos(QGroupBox *box)
{
    orba::ModuleObject point(QStringLiteral("temp_point"));
    const int status = tservice()->getAt(this, QStringLiteral("sys.posture"), &point, 0);
    // A failed read would show zeros as if the robot stood there: the editors keep their values.
    if (status < 0) {
        tpallet::logError(QStringLiteral("point adjust: reading sys.posture failed (%1)").arg(status));
        return;
    }
    // Only the editors change; "Adjust" stores them.
    tpallet::pointToGroupSpin(&point, box, true);
}

void PointAdjustWizard::accquireApproach()
{
    accquirePos(m_ui->grbApproach);
}

void PointAdjustWizard::accquireWobj()
{
    accquirePos(m_ui->grbWobj);
}

void PointAdjustWizard::accquireRetract()
{
    accquirePos(m_ui->grbRetract);
}

void PointAdjustWizard::moveToPoint(const QString &child, const QString &tag, QGroupBox *box)
{
    orba::ModuleObject *node = pointOf(m_ui->cmbPoint->currentIndex(), child);
    if (node->isEmpty())
        return;
    // Deleting the old target closes a move dialog still open on it.
    m_moveTarget.reset();
    m_moveTarget.reset(new orba::ModuleObject);
    m_moveTarget->copyFrom(this, node, true);
    m_moveTarget->set(this, QStringLiteral("tag"), tag, true);
    // The robot goes where the editors say, stored or not.
    tpallet::groupSpinToPoint(m_moveTarget.get(), box);

    // A linear move at v300 in the active toolset, the dialog beside the configuration dialog.
    tpallet::moveToPoint(m_moveTarget.get(), this);
}

void PointAdjustWizard::moveToApproach()
{
    moveToPoint(QStringLiteral("approach"), tr("Approach Point"), m_ui->grbApproach);
}

void PointAdjustWizard::moveToWobj()
{
    moveToPoint(QStringLiteral("wobj"), tr("Wobj Point"), m_ui->grbWobj);
}

void PointAdjustWizard::moveToRetract()
{
    moveToPoint(QStringLiteral("retract"), tr("Retract Point"), m_ui->grbRetract);
}

void PointAdjustWizard::checkAccess()
{
    if (m_checking || !m_pallet)
        return;
    // Everything the loop holds is guarded: it runs the event loop between places, and meanwhile
    // the dialog may be replaced (the step goes with it), or a reconnection may reload the
    // pallet list (the pallet and its places go). The loop then ends without touching them.
    QPointer<PointAdjustWizard> self(this);
    QPointer<orba::ModuleObject> pallet = m_pallet;
    QPointer<orba::ModuleObject> points = m_pallet->c(QStringLiteral("points"), false);
    const bool hasPoints = !points->isEmpty();
    const int count = hasPoints ? points->cmobjCount() : 0;

    orba::ModuleObject check(QStringLiteral("check"));
    orba::ModuleObject *from = check.append(this, QStringLiteral("point0"));
    orba::ModuleObject *to = check.append(this, QStringLiteral("point1"));
    tpallet::PointCheckReport report;

    m_checking = true;
    auto *progress = new QProgressDialog(tr("Checking..."), tr("Cancel"), 0, count - 1, this);
    progress->setObjectName(QStringLiteral("dlgCheckProgress"));
    progress->setWindowFlag(Qt::FramelessWindowHint, true);
    progress->setWindowModality(Qt::WindowModal);
    // The loop decides when the dialog goes; a value at the maximum must not reset a cancel.
    progress->setAutoReset(false);
    progress->setAutoClose(false);
    // Room for a finger on "Cancel".
    progress->setMinimumWidth(360);
    auto *cancel = new QPushButton(tr("Cancel"), progress);
    // The dialog lays its button out at its size hint, which only a style sheet enlarges.
    cancel->setStyleSheet(QStringLiteral("min-width: 100px; min-height: 40px;"));
    progress->setCancelButton(cancel);
    // The loop moves the bar itself: QProgressDialog::setValue() runs the event loop from inside
    // the dialog, which must not be deleted under its own call.
    QPointer<QProgressBar> bar = new QProgressBar(progress);
    progress->setBar(bar);
    bar->setRange(0, count - 1);
    m_progress = progress;
    progress->show();

    auto segmentRefused = [&](orba::ModuleObject *place, const char *start, const char *end, int index,
                              tpallet::PointCheckReport::Segment segment) {
        from->copyFrom(this, place->c(QLatin1String(start), false), true);
        to->copyFrom(this, place->c(QLatin1String(end), false), true);
        orba::MobjPtr reply = tservice()->execCommand(this, QStringLiteral("move.l.check"), &check);
        if (reply->getInt(0) == 0)
            return;
        const QString text = report.addFailure(index, segment);
        tpallet::logError(QStringLiteral("point check: %1: %2").arg(text, refusalReason(reply.get())));
    };

    bool gone = false;
    // A progress dialog closed by someone else counts as a cancel: the check did not finish.
    auto cancelled = [this] { return !m_progress || m_progress->wasCanceled(); };
    for (int i = 0; i < count; ++i) {
        if (report.full() || cancelled())
            break;
        // A place list that shrank or went is not this pallet's any more.
        if (!pallet || !points || i >= points->cmobjCount()) {
            gone = true;
            break;
        }
        orba::ModuleObject *place = points->c(i);
        segmentRefused(place, "approach", "wobj", i, tpallet::PointCheckReport::ApproachToWobj);
        segmentRefused(place, "wobj", "retract", i, tpallet::PointCheckReport::WobjToRetract);

        if (bar)
            bar->setValue(i);
        QCoreApplication::processEvents();
        if (!self)
            return;
    }
    if (!pallet || (hasPoints && !points))
        gone = true;

    const bool wasCancelled = cancelled();
    if (m_progress) {
        m_progress->close();
        m_progress->deleteLater();
    }
    m_checking = false;
    if (gone) {
        tpallet::logInfo(QStringLiteral("point check ended: the pallet was reloaded or removed"));
        return;
    }
    const QString kind = report.messageKind(wasCancelled);
    if (!kind.isEmpty())
        tcore::ManagerHelper::instance()->execMsgOk(kind, report.messageText(wasCancelled), QStringLiteral("_"));
}

void PointAdjustWizard::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange) {
        m_ui->retranslateUi(this);
        m_ui->wgtImage->setPixmap(QPixmap(wayPointPicture()));
    }
    BaseWizard::changeEvent(event);
}
