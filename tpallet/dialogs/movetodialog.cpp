#include "dialogs/movetodialog.h"
#include "ui_movetodialog.h"

#include "modulelog.h"
#include "tpallet.h"

#include <orba/moduleobject.h>
#include <orbat/controllermanager.h>
#include <orbat/tservice.h>
#include <tcore/managerhelper.h>
#include <tcore/widgets.h>

#include <QDoubleValidator>
#include <QEvent>
#include <QLabel>
#include <QLayoutItem>
#include <QLineEdit>
#include <QLocale>
#include <QStyledItemDelegate>
#include <QTimer>

#include <cmath>

namespace {

const char *const kMoveError = "move.last_error_with_setting";
constexpr int kMonitorIntervalMs = 200;
// Columns of the monitor grid.
constexpr int kColLabel = 0;
constexpr int kColCurrent = 1;
constexpr int kColTarget = 3;
constexpr int kColOffset = 4;
constexpr int kColumns = 5;
constexpr int kMonitorRows = 7;
constexpr int kTouchRowHeight = 44;
constexpr double kMaxOffset = 10000.0; // mm

const int kSpeeds[] = {5,   10,  25,  30,  40,   50,   60,   80,   100,  150,  200,  250, 300,
                       400, 500, 600, 800, 1000, 1500, 2000, 3000, 4000, 5000, 6000, 7000};

QString angleUnit()
{
    return QString(QChar(0x00B0));
}

QString number(double value)
{
    return QString::number(value, 'f', 3);
}

double toDegrees(double radians)
{
    return radians / M_PI * 180.0;
}

// List rows a finger can hit, whatever style sheets the pages around the dialog carry.
class TouchItemDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        return QStyledItemDelegate::sizeHint(option, index).expandedTo(QSize(0, kTouchRowHeight));
    }
};

orbat::ControllerManager *controllerManager()
{
    return tcore::ManagerHelper::instance()->controllerManager();
}

} // namespace

MoveToDialog::MoveToDialog(orba::ModuleObject *motion, orba::ModuleObject *point, QWidget *parent)
    : QDialog(parent)
    , m_ui(new Ui::MoveToDialog)
    , m_point(point)
    , m_timer(new QTimer(this))
{
    m_isJoint = motion && motion->c(QStringLiteral("type"))->getString() == QLatin1String("j");
    m_motionToolset = motion ? motion->r(QStringLiteral("motion.toolset"))->getString() : QString();

    tpallet::makeUniqueMoveDialog(this);
    tpallet::bindDialogToNode(this, point);

    // The dialog's own rules win over those of the pages it opens from: the dark look of the
    // module's dialogs whatever it is opened from, and touch-sized radio indicators. Set before
    // the form is built, so that its widgets are polished with them.
    setStyleSheet(QStringLiteral(
        "QDialog#MoveToDialog { background: #262b32; }"
        "QLabel, QRadioButton { color: #e6e9ee; }"
        "#lblTitle { color: #ffffff; }"
        "QRadioButton::indicator { width: 26px; height: 26px; border: 2px solid #8a929c; border-radius: 15px;"
        " background: #262b32; }"
        "QRadioButton::indicator:checked { border-color: #2f80ed; background: qradialgradient(cx:0.5, cy:0.5,"
        " radius:0.5, fx:0.5, fy:0.5, stop:0 #2f80ed, stop:0.5 #2f80ed, stop:0.58 #262b32, stop:1 #262b32); }"
        "#lblHeadCurrent, #lblHeadTarget, #lblHeadOffset { font-weight: bold; }"));
    m_ui->setupUi(this);
    for (QComboBox *combo : {m_ui->cmbMoveType, m_ui->cmbSpeed})
        combo->setItemDelegate(new TouchItemDelegate(combo));
    // Modeless: the jog panel and the rest of the pendant stay usable beside it.
    setModal(false);
    m_ui->stackedWidget->setCurrentWidget(m_ui->pgMotion);
    m_ui->stkWgtOperations->setCurrentIndex(0);
    for (QLineEdit *edit : {m_ui->edtOffsetX, m_ui->edtOffsetY, m_ui->edtOffsetZ, m_ui->edtOffsetA,
                            m_ui->edtOffsetB, m_ui->edtOffsetC}) {
        auto *validator = new QDoubleValidator(-kMaxOffset, kMaxOffset, 3, edit);
        validator->setNotation(QDoubleValidator::StandardNotation);
        // The value is read back with QString::toDouble: the same decimal point in every language.
        validator->setLocale(QLocale::c());
        edit->setValidator(validator);
    }
    m_ui->rdbOffsetXyzAbc->hide();
    updateTitle();

    connect(m_ui->btnConfirm, &QPushButton::clicked, this, &MoveToDialog::confirmMotion);
    connect(m_ui->btnBack, &QPushButton::clicked, this, &MoveToDialog::goBack);
    connect(m_ui->btnClose, &QPushButton::clicked, this, &QDialog::reject);
    // Queued: the move starts and stops after the touch event has been handled.
    connect(m_ui->btnMove, &TouchButton::touchBegun, this, &MoveToDialog::startMoving, Qt::QueuedConnection);
    connect(m_ui->btnMove, &TouchButton::touchEnded, this, &MoveToDialog::stopMoving, Qt::QueuedConnection);
    m_ui->btnMove->setProperty("func", QStringLiteral("red"));

    if (m_isJoint && m_motionToolset == QLatin1String("joint")) {
        m_isAbsJoint = true;
        m_ui->cmbMoveType->setCurrentIndex(0);
    } else if (m_isJoint) {
        m_isAbsJoint = false;
        m_ui->cmbMoveType->setCurrentIndex(1);
    } else {
        m_isAbsJoint = false;
        m_ui->cmbMoveType->setCurrentIndex(2);
    }
    refreshMoveType(m_ui->cmbMoveType->currentIndex());
    connect(m_ui->cmbMoveType, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            &MoveToDialog::refreshMoveType);

    for (int speed : kSpeeds)
        m_ui->cmbSpeed->addItem(tpallet::int2speed(speed));
    const int speed = motion ? motion->r(QStringLiteral("motion.speed"))->getInt() : 0;
    // A speed that is not offered selects nothing (and moves at speed 0, which the controller refuses).
    m_ui->cmbSpeed->setCurrentIndex(m_ui->cmbSpeed->findText(tpallet::int2speed(speed), Qt::MatchFixedString));

    m_ui->cmbPointName->lineEdit()->setText(point ? point->name() : QString());
    m_ui->cmbPointName->setEnabled(false);

    for (QRadioButton *button : {m_ui->rdbOffsetNone, m_ui->rdbOffsetXyz, m_ui->rdbOffsetXyzAbc})
        connect(button, &QAbstractButton::toggled, this, &MoveToDialog::changeOffs);
    changeOffs();

    alignGridLabels();
    connect(m_timer, &QTimer::timeout, this, &MoveToDialog::monitorPosture);
    m_errorNode = tservice()->watchNode(QString::fromLatin1(kMoveError));
    m_errorConnection = connect(m_errorNode.data(), &orba::ModuleObject::changed, this, &MoveToDialog::onMoveError);

    // Without a link nothing can be started; losing it ends a move (the controller stops the motion
    // of a connection that ends), and coming back needs a new press.
    orbat::ControllerManager *manager = controllerManager();
    connect(manager, &orbat::ControllerManager::rcDisconnected, this, &MoveToDialog::onLinkLost);
    connect(manager, &orbat::ControllerManager::rcConnected, this, &MoveToDialog::onLinkBack);
    m_ui->btnMove->setEnabled(manager->isConnected());
}

MoveToDialog::~MoveToDialog()
{
    disconnect(m_errorConnection);
    // Replaced through the registry or deleted with its parent while the button is held: the
    // queued release would never arrive.
    endMotion();
    delete m_ui;
}

void MoveToDialog::setOffset(orba::ModuleObject *offset)
{
    if (!offset || offset->isNull()) {
        m_ui->rdbOffsetNone->setChecked(true);
        return;
    }
    const QList<QLineEdit *> trans{m_ui->edtOffsetX, m_ui->edtOffsetY, m_ui->edtOffsetZ};
    const QList<QLineEdit *> rot{m_ui->edtOffsetA, m_ui->edtOffsetB, m_ui->edtOffsetC};
    for (int i = 0; i < 3; ++i) {
        trans[i]->setText(number(offset->r(QStringLiteral("trans.#%1").arg(i))->getDouble() * 1000.0));
        rot[i]->setText(number(toDegrees(offset->r(QStringLiteral("rot.#%1").arg(i))->getDouble())));
    }
    m_ui->rdbOffsetXyz->setChecked(true);
}

QLabel *MoveToDialog::gridLabel(int row, int column) const
{
    QLayoutItem *item = m_ui->glMonitor->itemAtPosition(row, column);
    return item ? qobject_cast<QLabel *>(item->widget()) : nullptr;
}

void MoveToDialog::setGridLblText(int row, int column, const QString &text)
{
    if (QLabel *label = gridLabel(row, column))
        label->setText(text);
}

void MoveToDialog::setGridLblVisible(int row, int column, bool visible)
{
    if (QLabel *label = gridLabel(row, column))
        label->setVisible(visible);
}

void MoveToDialog::alignGridLabels()
{
    for (int row = 0; row < m_ui->glMonitor->rowCount(); ++row) {
        for (int column = 0; column < m_ui->glMonitor->columnCount(); ++column) {
            if (QLabel *label = gridLabel(row, column))
                label->setAlignment(column == kColLabel ? Qt::AlignRight | Qt::AlignVCenter : Qt::AlignCenter);
        }
    }
}

void MoveToDialog::updateTitle()
{
    QString name;
    if (m_point) {
        name = m_point->c(QStringLiteral("tag"))->getString();
        if (name.isEmpty())
            name = m_point->name();
    }
    m_ui->lblTitle->setText(tr("<h2>Move Robot into Position: %1 </h2>").arg(name.toHtmlEscaped()));
}

void MoveToDialog::showRowLabels()
{
    const QString unit = angleUnit();
    if (m_isAbsJoint) {
        const QString joints[kMonitorRows] = {tr("J1(%1)"), tr("J2(%1)"), tr("J3(%1)"), tr("J4(%1)"),
                                              tr("J5(%1)"), tr("J6(%1)"), tr("J7(%1)")};
        for (int row = 1; row <= kMonitorRows; ++row)
            setGridLblText(row, kColLabel, joints[row - 1].arg(unit));
    } else {
        const QString cart[6] = {tr("X(mm)"), tr("Y(mm)"), tr("Z(mm)"),
                                 tr("A(%1)").arg(unit), tr("B(%1)").arg(unit), tr("C(%1)").arg(unit)};
        for (int row = 1; row <= 6; ++row)
            setGridLblText(row, kColLabel, cart[row - 1]);
    }
}

void MoveToDialog::refreshMoveType(int index)
{
    m_isAbsJoint = index == 0;
    m_isJoint = index <= 1;
}

void MoveToDialog::changeOffs()
{
    const bool xyz = m_ui->rdbOffsetXyz->isChecked() || m_ui->rdbOffsetXyzAbc->isChecked();
    const bool abc = m_ui->rdbOffsetXyzAbc->isChecked();
    for (int i = 0; i < m_ui->glOffs->count(); ++i) {
        int row, column, rowSpan, columnSpan;
        m_ui->glOffs->getItemPosition(i, &row, &column, &rowSpan, &columnSpan);
        if (QWidget *widget = m_ui->glOffs->itemAt(i)->widget())
            widget->setVisible(row == 0 ? xyz : abc);
    }
}

double MoveToDialog::offsetValue(int axis) const
{
    const QLineEdit *edits[] = {m_ui->edtOffsetX, m_ui->edtOffsetY, m_ui->edtOffsetZ};
    bool ok = false;
    const double value = edits[axis]->text().toDouble(&ok);
    return ok && std::isfinite(value) ? value : 0.0;
}

void MoveToDialog::confirmMotion()
{
    tcore::ManagerHelper *helper = tcore::ManagerHelper::instance();
    // The validator lets a number beyond the limits be typed (it may still be edited down): such
    // an offset is refused here rather than driven to.
    if (m_ui->rdbOffsetXyz->isChecked()) {
        for (int axis = 0; axis < 3; ++axis) {
            if (std::abs(offsetValue(axis)) > kMaxOffset) {
                helper->throwLog(this, QStringLiteral("error"), tr("The offset is out of range!"));
                return;
            }
        }
    }
    if (tservice()->get(this, QStringLiteral("sys.power"))->getString() != QLatin1String("on")) {
        helper->throwLog(this, QStringLiteral("error"), tr("The robot is power off!"));
        return;
    }
    orba::MobjPtr current = tservice()->get(this, QStringLiteral("sys.posture"));
    if (tservice()->lastStatus() < 0) {
        helper->throwLog(this, QStringLiteral("error"), tr("Can not read the robot posture!"));
        return;
    }

    if (!m_point || m_point->isNull()) {
        // No taught point: the target is the controller's variable of that name.
        const QString name = m_ui->cmbPointName->currentText();
        orba::MobjPtr posture(new orba::ModuleObject(QStringLiteral("posture")));
        posture->set(this, QStringLiteral("type"), m_isJoint ? QStringLiteral("joint") : QStringLiteral("cart"), true);
        if (tservice()->getAt(this, QStringLiteral("data.var"), name, posture.get()) < 0) {
            helper->throwLog(this, QStringLiteral("error"), tr("Can not read the point %1 from the controller!").arg(name));
            return;
        }
        m_variable = std::move(posture);
        m_target = m_variable.get();
    } else {
        m_target = m_point.data();
    }
    orba::ModuleObject *target = m_target;

    m_jointCount = qMin(current->c(QStringLiteral("near"))->cmobjCount(), kMonitorRows);
    showRowLabels();
    if (m_isAbsJoint) {
        for (int row = 1; row <= kMonitorRows; ++row) {
            const bool used = row <= m_jointCount;
            for (int column = 0; column < kColumns; ++column)
                setGridLblVisible(row, column, used);
            if (!used)
                continue;
            const QString path = QStringLiteral("near.#%1").arg(row - 1);
            setGridLblText(row, kColCurrent, number(toDegrees(current->r(path)->getDouble())));
            setGridLblText(row, kColTarget, number(toDegrees(target->r(path)->getDouble())));
            // Joint targets take no offset.
            setGridLblText(row, kColOffset, number(0.0));
        }
    } else {
        const bool offs = m_ui->rdbOffsetXyz->isChecked();
        for (int row = 1; row <= 6; ++row) {
            for (int column = 0; column < kColumns; ++column)
                setGridLblVisible(row, column, true);
            const bool isTrans = row <= 3;
            const QString path = QStringLiteral("%1.#%2").arg(isTrans ? QStringLiteral("trans") : QStringLiteral("rot")).arg((row - 1) % 3);
            const double factor = isTrans ? 1000.0 : 180.0 / M_PI;
            setGridLblText(row, kColCurrent, number(current->r(path)->getDouble() * factor));
            setGridLblText(row, kColTarget, number(target->r(path)->getDouble() * factor));
            setGridLblText(row, kColOffset, number(isTrans && offs ? offsetValue(row - 1) : 0.0));
        }
        for (int column = 0; column < kColumns; ++column)
            setGridLblVisible(kMonitorRows, column, false);
    }
    m_confirmed = true;
    m_ui->stackedWidget->setCurrentWidget(m_ui->pgMonitor);
    m_ui->stkWgtOperations->setCurrentIndex(1);
}

void MoveToDialog::goBack()
{
    endMotion();
    m_confirmed = false;
    m_ui->stackedWidget->setCurrentWidget(m_ui->pgMotion);
    m_ui->stkWgtOperations->setCurrentIndex(0);
}

void MoveToDialog::startMoving()
{
    // The press is handled first; by now it may be over (a tap) or the page may have changed.
    // Only a press still held starts anything; its release stops it.
    if (m_moving || !m_confirmed || !m_target || !m_ui->btnMove->isHeld())
        return;
    m_moving = true;
    tservice()->execCommand(this, QStringLiteral("move.reset"));
    tservice()->watch(this, QString::fromLatin1(kMoveError), true);

    orba::ModuleObject *target = m_target;
    if (!target) // gone during the calls above
        return;
    orba::ModuleObject move(QStringLiteral("tmp"));
    orba::ModuleObject *point = move.append(this, QStringLiteral("point"));
    point->copyFrom(this, m_isAbsJoint ? target->c(QStringLiteral("near")) : target, true, false);
    move.set(this, QStringLiteral("traj.speed"), tpallet::speed2int(m_ui->cmbSpeed->currentText()) / 1000.0, true);
    if (!m_isAbsJoint && m_ui->rdbOffsetXyz->isChecked()) {
        for (int i = 0; i < 3; ++i) {
            const QString path = QStringLiteral("point.trans.#%1").arg(i);
            move.set(this, path, move.r(path)->getDouble() + offsetValue(i) / 1000.0, true);
        }
    }
    tservice()->command(this, QStringLiteral("move.%1").arg(m_isJoint ? QStringLiteral("j") : QStringLiteral("l")), &move);
    tservice()->command(this, QStringLiteral("move.opr.enough"));

    m_timer->start(kMonitorIntervalMs);
    m_ui->btnMove->setStyleSheet(QStringLiteral("background-color:#FF0000"));
}

void MoveToDialog::stopMoving()
{
    tpallet::logError(QStringLiteral("stopMoving------------"));
    tservice()->watch(this, QString::fromLatin1(kMoveError), false);
    m_timer->stop();
    tservice()->command(this, QStringLiteral("move.stop"));
    m_ui->btnMove->setStyleSheet(QStringLiteral("background-color:#646464"));
    m_moving = false;
}

void MoveToDialog::endMotion()
{
    if (m_moving)
        stopMoving();
}

void MoveToDialog::monitorPosture()
{
    orba::MobjPtr current = tservice()->get(this, QStringLiteral("sys.posture"));
    if (tservice()->lastStatus() < 0)
        return;
    for (int row = 1; row < m_ui->glMonitor->rowCount(); ++row) {
        if (m_isAbsJoint) {
            if (row > m_jointCount)
                break;
            setGridLblText(row, kColCurrent, number(toDegrees(current->r(QStringLiteral("near.#%1").arg(row - 1))->getDouble())));
        } else if (row <= 3) {
            setGridLblText(row, kColCurrent, number(current->r(QStringLiteral("trans.#%1").arg(row - 1))->getDouble() * 1000.0));
        } else if (row <= 6) {
            setGridLblText(row, kColCurrent, number(toDegrees(current->r(QStringLiteral("rot.#%1").arg(row - 4))->getDouble())));
        }
    }
}

void MoveToDialog::onMoveError()
{
    if (!m_errorNode)
        return;
    orba::ModuleObject error(QStringLiteral("move_error"));
    error.importFromVariant(this, m_errorNode->value(), true, true, false);
    const QString id = error.r(QStringLiteral("data.id"))->getString();
    const int code = error.c(QStringLiteral("error"))->getInt(0);
    if (code == 0)
        return;
    const QString message = error.r(QStringLiteral("data.msg"))->getString();
    tpallet::logError(QStringLiteral("move error %1 (%2): %3").arg(code).arg(id, message));
    tcore::ManagerHelper::instance()->throwLog(this, QStringLiteral("error"), tr("SDK Move Error"), message, 1);
}

void MoveToDialog::onLinkLost()
{
    const bool wasMoving = m_moving;
    endMotion();
    // Disabling ends a press still held, so coming back needs a new one.
    m_ui->btnMove->setEnabled(false);
    if (wasMoving)
        tcore::ManagerHelper::instance()->throwLog(this, QStringLiteral("error"),
                                                   tr("The controller link is lost, the move is stopped!"));
}

void MoveToDialog::onLinkBack()
{
    m_ui->btnMove->setEnabled(true);
}

void MoveToDialog::hideEvent(QHideEvent *event)
{
    // Closing, rejecting or hiding the dialog ends the move at once.
    endMotion();
    QDialog::hideEvent(event);
}

void MoveToDialog::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange) {
        m_ui->retranslateUi(this);
        updateTitle();
        if (m_confirmed)
            showRowLabels();
    }
    QDialog::changeEvent(event);
}

namespace tpallet {

QString int2speed(int n)
{
    return QStringLiteral("v%1").arg(n);
}

int speed2int(const QString &s)
{
    return zone2int(s);
}

QString int2zone(int n)
{
    return n == 0 ? QStringLiteral("fine") : QStringLiteral("z%1").arg(n);
}

int zone2int(const QString &s)
{
    // toInt() gives 0 for anything that is not a decimal integer ("ine" of "fine").
    return s.mid(1).toInt();
}

MoveToDialog *moveToPoint(orba::ModuleObject *point, QWidget *widget)
{
    orba::ModuleObject request;
    request.set(nullptr, QStringLiteral("type"), QStringLiteral("l"), true);
    request.set(nullptr, QStringLiteral("motion.toolset"), QStringLiteral("no use"), true);
    request.set(nullptr, QStringLiteral("motion.speed"), 300, true);
    QWidget *parent = widget && widget->parentWidget() ? widget->parentWidget()->parentWidget() : nullptr;
    auto *dialog = new MoveToDialog(&request, point, parent);
    dialog->show();
    return dialog;
}

} // namespace tpallet
