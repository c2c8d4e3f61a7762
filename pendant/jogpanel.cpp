#include "jogpanel.h"

#include <orba/moduleobject.h>
#include <orbat/controllermanager.h>
#include <orbat/tservice.h>
#include <tcore/widgets.h>

#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QTimer>
#include <QVBoxLayout>

#include <cmath>
#include <iterator>

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
    {"Continuous", 0.0, 0.0},
    {"0.1 mm / 0.1°", 0.0001, 0.1 * DegToRad},
    {"1 mm / 1°", 0.001, 1.0 * DegToRad},
    {"10 mm / 5°", 0.01, 5.0 * DegToRad},
};

const int SpeedPercents[] = {1, 10, 25, 50, 100};

} // namespace

JogPanel::JogPanel(QWidget *parent)
    : QFrame(parent)
{
    setObjectName(QStringLiteral("jogPanel"));
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(10, 10, 10, 10);
    layout->setSpacing(8);

    auto *heading = new QLabel(QStringLiteral("Jog"), this);
    heading->setObjectName(QStringLiteral("lblJogTitle"));
    layout->addWidget(heading);

    auto *selectors = new QGridLayout;
    selectors->setHorizontalSpacing(8);
    selectors->setVerticalSpacing(6);
    m_frame = new QComboBox(this);
    m_frame->setObjectName(QStringLiteral("cmbJogFrame"));
    m_frame->addItem(QStringLiteral("Joint"), QStringLiteral("joint"));
    m_frame->addItem(QStringLiteral("Base"), QStringLiteral("base"));
    m_frame->addItem(QStringLiteral("Tool"), QStringLiteral("tool"));
    m_step = new QComboBox(this);
    m_step->setObjectName(QStringLiteral("cmbJogStep"));
    for (const Step &s : Steps)
        m_step->addItem(QString::fromUtf8(s.text));
    m_step->setCurrentIndex(2);
    m_speed = new QComboBox(this);
    m_speed->setObjectName(QStringLiteral("cmbJogSpeed"));
    for (int p : SpeedPercents)
        m_speed->addItem(QStringLiteral("%1 %").arg(p), p);
    m_speed->setCurrentIndex(2);
    selectors->addWidget(new QLabel(QStringLiteral("Frame"), this), 0, 0);
    selectors->addWidget(m_frame, 0, 1);
    selectors->addWidget(new QLabel(QStringLiteral("Step"), this), 1, 0);
    selectors->addWidget(m_step, 1, 1);
    selectors->addWidget(new QLabel(QStringLiteral("Speed"), this), 2, 0);
    selectors->addWidget(m_speed, 2, 1);
    selectors->setColumnStretch(1, 1);
    layout->addLayout(selectors);

    auto *axes = new QGridLayout;
    axes->setHorizontalSpacing(6);
    axes->setVerticalSpacing(6);
    for (int axis = 0; axis < 6; ++axis) {
        auto *minus = new TouchButton(this);
        minus->setObjectName(QStringLiteral("btnJogMinus%1").arg(axis));
        minus->setText(QStringLiteral("−"));
        minus->setMinimumSize(60, 44);
        auto *label = new QLabel(this);
        label->setObjectName(QStringLiteral("lblJogAxis%1").arg(axis));
        label->setAlignment(Qt::AlignCenter);
        label->setMinimumWidth(40);
        auto *plus = new TouchButton(this);
        plus->setObjectName(QStringLiteral("btnJogPlus%1").arg(axis));
        plus->setText(QStringLiteral("+"));
        plus->setMinimumSize(60, 44);
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
    connect(manager, &orbat::ControllerManager::rcConnected, this, [this] {
        updatePolling();
        refreshPosture();
    });
    connect(manager, &orbat::ControllerManager::rcDisconnected, this, [this] {
        m_jogging = false;
        updatePolling();
    });
    updateAxisNames();
}

JogPanel::~JogPanel()
{
    if (m_jogging)
        stopJog();
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
    if (status >= 0) {
        m_status->clear();
        return;
    }
    QString text = message;
    if (text.isEmpty()) {
        switch (status) {
        case TService::StatusNoLink: text = QStringLiteral("No controller"); break;
        case TService::StatusTimeout: text = QStringLiteral("The controller did not answer"); break;
        default: text = QStringLiteral("Refused (%1)").arg(status); break;
        }
    }
    m_status->setText(text);
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
