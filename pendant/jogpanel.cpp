#include "jogpanel.h"

#include "statusbar.h"

#include <orba/moduleobject.h>
#include <orbat/controllermanager.h>
#include <orbat/tservice.h>
#include <tcore/widgets.h>

#include <QComboBox>
#include <QCoreApplication>
#include <QEvent>
#include <QGridLayout>
#include <QLabel>
#include <QTimer>
#include <QVBoxLayout>

#include <cmath>
#include <iterator>
#include <utility>

namespace {

constexpr double Pi = 3.141592653589793;
constexpr double DegToRad = Pi / 180.0;

struct Step
{
    const char *text;
    double linear;  // m
    double angular; // rad
};

// Index 0 is continuous jogging.
const Step Steps[] = {
    {QT_TRANSLATE_NOOP("JogPanel", "Continuous"), 0.0, 0.0},
    {"0.1 mm / 0.1°", 0.0001, 0.1 * DegToRad},
    {"1 mm / 1°", 0.001, 1.0 * DegToRad},
    {"10 mm / 5°", 0.01, 5.0 * DegToRad},
};

const int SpeedPercents[] = {1, 10, 25, 50, 100};

// A stop reported this long after the jog button was released still belongs to that jog.
constexpr qint64 LateStopMs = 1000;

const QString kErrorEvent = QStringLiteral("move.last_error_with_setting");

} // namespace

JogPanel::JogPanel(QWidget *parent)
    : QFrame(parent)
{
    setObjectName(QStringLiteral("jogPanel"));
    auto *layout = new QVBoxLayout(this);
    // Fits the 740 pixels under the status bar with room to spare: the CJK fonts' taller lines
    // included.
    layout->setContentsMargins(10, 8, 10, 8);
    layout->setSpacing(6);

    m_heading = new QLabel(this);
    m_heading->setObjectName(QStringLiteral("lblJogTitle"));
    layout->addWidget(m_heading);

    // Each caption above its selector: the selectors get the panel's whole width, which the
    // longest step and the longest translated caption could not share.
    auto *selectors = new QGridLayout;
    selectors->setHorizontalSpacing(0);
    selectors->setVerticalSpacing(2);
    m_frame = new QComboBox(this);
    m_frame->setObjectName(QStringLiteral("cmbJogFrame"));
    for (const char *frame : {"joint", "base", "tool"})
        m_frame->addItem(QString(), QLatin1String(frame));
    m_step = new QComboBox(this);
    m_step->setObjectName(QStringLiteral("cmbJogStep"));
    for (const Step &s : Steps)
        m_step->addItem(QCoreApplication::translate("JogPanel", s.text));
    m_step->setCurrentIndex(2);
    m_speed = new QComboBox(this);
    m_speed->setObjectName(QStringLiteral("cmbJogSpeed"));
    for (int p : SpeedPercents)
        m_speed->addItem(QStringLiteral("%1 %").arg(p), p);
    m_speed->setCurrentIndex(2);
    m_frameLabel = new QLabel(this);
    m_stepLabel = new QLabel(this);
    m_speedLabel = new QLabel(this);
    int row = 0;
    for (auto [caption, selector] : {std::pair<QLabel *, QComboBox *>{m_frameLabel, m_frame},
                                     {m_stepLabel, m_step},
                                     {m_speedLabel, m_speed}}) {
        caption->setObjectName(QStringLiteral("lblJogCaption"));
        if (row > 0)
            selectors->setRowMinimumHeight(row++, 2);
        selectors->addWidget(caption, row++, 0);
        selectors->addWidget(selector, row++, 0);
    }
    layout->addLayout(selectors);

    auto *axes = new QGridLayout;
    axes->setHorizontalSpacing(6);
    axes->setVerticalSpacing(4);
    for (int axis = 0; axis < 6; ++axis) {
        auto *minus = new TouchButton(this);
        minus->setObjectName(QStringLiteral("btnJogMinus%1").arg(axis));
        minus->setText(QStringLiteral("−"));
        minus->setMinimumSize(60, 40);
        auto *label = new QLabel(this);
        label->setObjectName(QStringLiteral("lblJogAxis%1").arg(axis));
        label->setAlignment(Qt::AlignCenter);
        label->setMinimumWidth(40);
        auto *plus = new TouchButton(this);
        plus->setObjectName(QStringLiteral("btnJogPlus%1").arg(axis));
        plus->setText(QStringLiteral("+"));
        plus->setMinimumSize(60, 40);
        axes->addWidget(minus, axis, 0);
        axes->addWidget(label, axis, 1);
        axes->addWidget(plus, axis, 2);
        m_axisLabels.append(label);
        connect(minus, &TouchButton::touchBegun, this, [this, axis] { onPressed(axis, -1); });
        connect(plus, &TouchButton::touchBegun, this, [this, axis] { onPressed(axis, +1); });
        connect(minus, &TouchButton::touchEnded, this, &JogPanel::onReleased);
        connect(plus, &TouchButton::touchEnded, this, &JogPanel::onReleased);
    }
    layout->addLayout(axes);

    auto *readout = new QGridLayout;
    readout->setHorizontalSpacing(6);
    readout->setVerticalSpacing(2);
    const char *cartNames[] = {"X", "Y", "Z", "A", "B", "C"};
    for (int i = 0; i < 6; ++i) {
        auto *name = new QLabel(QLatin1String(cartNames[i]), this);
        auto *value = new QLabel(QStringLiteral("-"), this);
        value->setObjectName(QStringLiteral("lblPos%1").arg(QLatin1String(cartNames[i])));
        value->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        readout->addWidget(name, i, 0);
        readout->addWidget(value, i, 1);
        m_cartLabels.append(value);

        auto *jname = new QLabel(QStringLiteral("J%1").arg(i + 1), this);
        auto *jvalue = new QLabel(QStringLiteral("-"), this);
        jvalue->setObjectName(QStringLiteral("lblJoint%1").arg(i + 1));
        jvalue->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        readout->addWidget(jname, i, 2);
        readout->addWidget(jvalue, i, 3);
        m_jointLabels.append(jvalue);
    }
    readout->setColumnStretch(1, 1);
    readout->setColumnStretch(3, 1);
    auto *readoutFrame = new QFrame(this);
    readoutFrame->setObjectName(QStringLiteral("frmPosture"));
    readoutFrame->setLayout(readout);
    layout->addWidget(readoutFrame);

    m_status = new QLabel(this);
    m_status->setObjectName(QStringLiteral("lblJogStatus"));
    m_status->setWordWrap(true);
    layout->addWidget(m_status);
    layout->addStretch(1);

    m_poll = new QTimer(this);
    m_poll->setInterval(PollIntervalMs);
    connect(m_poll, &QTimer::timeout, this, &JogPanel::refreshPosture);

    connect(m_frame, QOverload<int>::of(&QComboBox::currentIndexChanged), this, &JogPanel::updateAxisNames);
    orbat::ControllerManager *manager = tservice()->controllerManager();
    connect(manager, &orbat::ControllerManager::rcConnected, this, &JogPanel::onConnected);
    connect(manager, &orbat::ControllerManager::rcDisconnected, this, [this] {
        m_jogging = false;
        m_powerKnown = false;
        updatePolling();
        updateStatus();
    });
    connect(tservice(), &TService::watchEvent, this, &JogPanel::onWatchEvent);
    retranslate();
    updateAxisNames();
    if (manager->isConnected())
        onConnected();
    else
        updateStatus();
}

JogPanel::~JogPanel()
{
    if (m_jogging)
        stopJog();
}

void JogPanel::changeEvent(QEvent *event)
{
    QFrame::changeEvent(event);
    if (event->type() == QEvent::LanguageChange)
        retranslate();
}

void JogPanel::retranslate()
{
    m_heading->setText(tr("Jog"));
    m_frameLabel->setText(tr("Frame"));
    m_stepLabel->setText(tr("Step"));
    m_speedLabel->setText(tr("Speed"));
    m_frame->setItemText(0, tr("Joint"));
    m_frame->setItemText(1, tr("Base"));
    m_frame->setItemText(2, tr("Tool"));
    m_step->setItemText(0, QCoreApplication::translate("JogPanel", Steps[0].text));
    updateStatus();
}

void JogPanel::onConnected()
{
    // Both are sent at once on subscription and then on every change.
    tservice()->watch(this, QStringLiteral("sys.power"), true);
    tservice()->watch(this, kErrorEvent, true);
    if (m_refusalId == QLatin1String("nolink") || m_refusalId == QLatin1String("timeout")) {
        m_refusalId.clear();
        m_refusal.clear();
    }
    readPower();
    updatePolling();
    refreshPosture();
    updateStatus();
}

void JogPanel::readPower()
{
    orba::MobjPtr reply = tservice()->get(this, QStringLiteral("sys.power"));
    const int power = reply && tservice()->lastStatus() >= 0 ? StatusBar::parsePower(reply->value()) : -1;
    m_powerKnown = power >= 0;
    if (m_powerKnown)
        m_powerOn = power == 1;
}

void JogPanel::onWatchEvent(const QString &name, const QVariant &data)
{
    if (name == QLatin1String("sys.power")) {
        const int power = StatusBar::parsePower(data);
        if (power < 0)
            return;
        m_powerKnown = true;
        m_powerOn = power == 1;
        if (m_powerOn && describeRefusal(m_refusalId, m_refusal) == describeRefusal(QStringLiteral("power"), QString())) {
            m_refusalId.clear();
            m_refusal.clear();
        }
        updateStatus();
        return;
    }
    if (name != kErrorEvent)
        return;
    // Only the stop of this panel's own continuous jog: the module's moves report their errors.
    if (!m_jogging && !(m_sinceJog.isValid() && m_sinceJog.elapsed() < LateStopMs))
        return;
    const QVariantMap event = data.toMap();
    const QVariantMap detail = event.value(QStringLiteral("data")).toMap();
    const QString id = detail.value(QStringLiteral("id")).toString();
    const QString message = detail.value(QStringLiteral("msg")).toString();
    if (event.value(QStringLiteral("error")).toInt() == 0 && id.isEmpty() && message.isEmpty())
        return;
    m_refusalId = id;
    m_refusal = message;
    updateStatus();
    refreshPosture();
}

QString JogPanel::describeRefusal(const QString &id, const QString &message)
{
    const QString m = message.toLower();
    if (id == QLatin1String("nolink"))
        return tr("No controller");
    if (id == QLatin1String("timeout"))
        return tr("The controller did not answer");
    if (id == QLatin1String("power") || m.contains(QLatin1String("powered off")))
        return tr("The robot is powered off");
    if (id == QLatin1String("unreachable") || m.contains(QLatin1String("out of reach")))
        return tr("Edge of the workspace: the robot cannot go further this way");
    if (id == QLatin1String("limit") || m.contains(QLatin1String("limits")))
        return tr("Joint limit: the robot cannot go further this way");
    if (id == QLatin1String("singular") || m.contains(QLatin1String("singular")))
        return tr("Singularity: the robot cannot go further this way");
    if (id == QLatin1String("jump") || m.contains(QLatin1String("configuration jump")))
        return tr("The arm would change its configuration: jog the joints instead");
    if (m.contains(QLatin1String("moving")))
        return tr("The robot is moving");
    if (message.isEmpty())
        return tr("Refused");
    return tr("Refused: %1").arg(message);
}

QString JogPanel::statusText() const
{
    return m_status->text();
}

void JogPanel::updateStatus()
{
    QString text;
    if (!tservice()->controllerManager()->isConnected())
        text = tr("No controller");
    else if (m_powerKnown && !m_powerOn)
        text = tr("The robot is powered off");
    else if (!m_refusalId.isEmpty() || !m_refusal.isEmpty())
        text = describeRefusal(m_refusalId, m_refusal);
    m_status->setText(text);
}

QString JogPanel::frame() const
{
    return m_frame->currentData().toString();
}

bool JogPanel::isContinuous() const
{
    return m_step->currentIndex() == 0;
}

double JogPanel::stepFor(int axis) const
{
    const Step &s = Steps[qBound(0, m_step->currentIndex(), int(std::size(Steps)) - 1)];
    const bool linear = frame() != QLatin1String("joint") && axis < 3;
    return linear ? s.linear : s.angular;
}

double JogPanel::speedFraction() const
{
    return m_speed->currentData().toInt() / 100.0;
}

bool JogPanel::isPolling() const
{
    return m_poll->isActive();
}

QString JogPanel::axisName(const QString &frame, int axis)
{
    static const char *cart[] = {"X", "Y", "Z", "A", "B", "C"};
    if (axis < 0 || axis > 5)
        return QString();
    if (frame == QLatin1String("joint"))
        return QStringLiteral("J%1").arg(axis + 1);
    return QLatin1String(cart[axis]);
}

void JogPanel::updateAxisNames()
{
    for (int axis = 0; axis < m_axisLabels.size(); ++axis)
        m_axisLabels[axis]->setText(axisName(frame(), axis));
}

int JogPanel::jogStep(int axis, int direction)
{
    orba::ModuleObject param(QStringLiteral("jog"));
    param.set(this, QStringLiteral("frame"), frame());
    param.set(this, QStringLiteral("axis"), axis);
    param.set(this, QStringLiteral("delta"), direction * stepFor(axis));
    orba::MobjPtr reply = tservice()->execCommand(this, QStringLiteral("sim.jog"), &param);
    const int status = reply->getInt(TService::StatusBadReply);
    showStatus(status, reply->r(QStringLiteral("data.msg"))->getString());
    refreshPosture();
    return status;
}

int JogPanel::startJog(int axis, int direction)
{
    const bool linear = frame() != QLatin1String("joint") && axis < 3;
    orba::ModuleObject param(QStringLiteral("jog"));
    param.set(this, QStringLiteral("frame"), frame());
    param.set(this, QStringLiteral("axis"), axis);
    param.set(this, QStringLiteral("speed"),
              direction * speedFraction() * (linear ? MaxLinearSpeed : MaxAngularSpeed));
    orba::MobjPtr reply = tservice()->execCommand(this, QStringLiteral("sim.jog.start"), &param);
    const int status = reply->getInt(TService::StatusBadReply);
    m_jogging = status >= 0;
    showStatus(status, reply->r(QStringLiteral("data.msg"))->getString());
    return status;
}

int JogPanel::stopJog()
{
    m_jogging = false;
    m_sinceJog.start();
    orba::MobjPtr reply = tservice()->execCommand(this, QStringLiteral("sim.jog.stop"));
    const int status = reply->getInt(TService::StatusBadReply);
    refreshPosture();
    return status;
}

void JogPanel::onPressed(int axis, int direction)
{
    if (isContinuous())
        startJog(axis, direction);
    else
        jogStep(axis, direction);
}

void JogPanel::onReleased()
{
    if (m_jogging)
        stopJog();
}

void JogPanel::showStatus(int status, const QString &message)
{
    m_refusalId.clear();
    m_refusal.clear();
    if (status < 0) {
        if (status == TService::StatusNoLink)
            m_refusalId = QStringLiteral("nolink");
        else if (status == TService::StatusTimeout)
            m_refusalId = QStringLiteral("timeout");
        else if (message.isEmpty())
            m_refusal = QStringLiteral("status %1").arg(status);
        m_refusal = message.isEmpty() ? m_refusal : message;
        const QString power = describeRefusal(QStringLiteral("power"), QString());
        if (describeRefusal(m_refusalId, m_refusal) == power) {
            // The controller says so: the power state is known from here on.
            m_powerKnown = true;
            m_powerOn = false;
        }
    }
    updateStatus();
}

bool JogPanel::refreshPosture()
{
    if (!tservice()->controllerManager()->isConnected())
        return false;
    orba::MobjPtr reply = tservice()->get(this, QStringLiteral("sys.posture"));
    if (!reply || tservice()->lastStatus() < 0 || reply->c(QStringLiteral("trans"))->size() < 3) {
        m_posture.valid = false;
        return false;
    }
    Posture p;
    p.valid = true;
    for (int i = 0; i < 3; ++i) {
        p.trans[i] = reply->r(QStringLiteral("trans.#%1").arg(i))->getDouble();
        p.rot[i] = reply->r(QStringLiteral("rot.#%1").arg(i))->getDouble();
    }
    for (int i = 0; i < 6; ++i)
        p.near[i] = reply->r(QStringLiteral("near.#%1").arg(i))->getDouble();
    m_posture = p;
    for (int i = 0; i < 3; ++i) {
        m_cartLabels[i]->setText(QString::number(p.trans[i] * 1000.0, 'f', 1));
        m_cartLabels[i + 3]->setText(QString::number(p.rot[i] / DegToRad, 'f', 2) + QStringLiteral("°"));
    }
    for (int i = 0; i < 6; ++i)
        m_jointLabels[i]->setText(QString::number(p.near[i] / DegToRad, 'f', 2) + QStringLiteral("°"));
    return true;
}

void JogPanel::updatePolling()
{
    const bool want = isVisible() && tservice()->controllerManager()->isConnected();
    if (want && !m_poll->isActive())
        m_poll->start();
    else if (!want && m_poll->isActive())
        m_poll->stop();
}

void JogPanel::showEvent(QShowEvent *event)
{
    QFrame::showEvent(event);
    updatePolling();
}

void JogPanel::hideEvent(QHideEvent *event)
{
    QFrame::hideEvent(event);
    if (m_jogging)
        stopJog();
    updatePolling();
}
