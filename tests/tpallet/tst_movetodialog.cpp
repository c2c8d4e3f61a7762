#include "palletfixture.h"

#include "dialogs/movetodialog.h"

#include <controller.h>
#include <kx/kx.h>
#include <orbat/controllermanager.h>
#include <orbat/inprocesstransport.h>
#include <orbat/tcptransport.h>
#include <tcore/settingmanager.h>
#include <tcore/widgets.h>

#ifdef TPALLET_WITH_JOGPANEL
#include "jogpanel.h"
#endif

#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QDoubleValidator>
#include <QElapsedTimer>
#include <QGridLayout>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QProcess>
#include <QPushButton>
#include <QRadioButton>
#include <QRegularExpression>
#include <QStackedWidget>
#include <QStyle>
#include <QTemporaryDir>
#include <QTimer>
#include <QVBoxLayout>
#include <QtTest>

#include <array>
#include <cmath>
#include <memory>

namespace {

const QString kMoveError = QStringLiteral("move.last_error_with_setting");
constexpr double kDeg = M_PI / 180.0;

template<typename T>
T *child(QObject *parent, const char *name)
{
    T *found = parent->findChild<T *>(QLatin1String(name));
    if (!found)
        qFatal("widget %s missing", name);
    return found;
}

struct Posture
{
    std::array<double, 3> trans{{0, 0, 0}};
    std::array<double, 3> rot{{0, 0, 0}};
    QVector<double> near;
    bool valid = false;
};

Posture postureOf(orba::ModuleObject *node)
{
    Posture p;
    for (int i = 0; i < 3; ++i) {
        p.trans[i] = node->r(QStringLiteral("trans.#%1").arg(i))->getDouble();
        p.rot[i] = node->r(QStringLiteral("rot.#%1").arg(i))->getDouble();
    }
    for (orba::ModuleObject *q : node->c(QStringLiteral("near"))->cmobjs())
        p.near.append(q->getDouble());
    p.valid = node->c(QStringLiteral("trans"))->cmobjCount() == 3;
    return p;
}

Posture robotPosture()
{
    orba::MobjPtr reply = tservice()->get(nullptr, QStringLiteral("sys.posture"));
    Posture p = postureOf(reply.get());
    p.valid = p.valid && tservice()->lastStatus() == 0;
    return p;
}

// A pose node; near may be empty.
std::unique_ptr<orba::ModuleObject> makePoint(const QString &name, const std::array<double, 3> &trans,
                                              const std::array<double, 3> &rot, const QVector<double> &near,
                                              const QString &tag = QString())
{
    auto point = std::make_unique<orba::ModuleObject>(name);
    for (int i = 0; i < 3; ++i) {
        point->set(nullptr, QStringLiteral("trans.#%1").arg(i), trans[i], true);
        point->set(nullptr, QStringLiteral("rot.#%1").arg(i), rot[i], true);
    }
    for (int i = 0; i < near.size(); ++i)
        point->set(nullptr, QStringLiteral("near.#%1").arg(i), near[i], true);
    if (!tag.isNull())
        point->set(nullptr, QStringLiteral("tag"), tag, true);
    return point;
}

std::unique_ptr<orba::ModuleObject> motionRequest(const QString &type, const QString &toolset, int speed)
{
    auto motion = std::make_unique<orba::ModuleObject>();
    motion->set(nullptr, QStringLiteral("type"), type, true);
    motion->set(nullptr, QStringLiteral("motion.toolset"), toolset, true);
    motion->set(nullptr, QStringLiteral("motion.speed"), speed, true);
    return motion;
}

double distance(const std::array<double, 3> &a, const std::array<double, 3> &b)
{
    return std::sqrt((a[0] - b[0]) * (a[0] - b[0]) + (a[1] - b[1]) * (a[1] - b[1]) + (a[2] - b[2]) * (a[2] - b[2]));
}

// Distance of p from the segment a-b.
double distanceToSegment(const std::array<double, 3> &p, const std::array<double, 3> &a, const std::array<double, 3> &b)
{
    double ab2 = 0, t = 0;
    for (int i = 0; i < 3; ++i) {
        ab2 += (b[i] - a[i]) * (b[i] - a[i]);
        t += (p[i] - a[i]) * (b[i] - a[i]);
    }
    t = ab2 > 0 ? qBound(0.0, t / ab2, 1.0) : 0.0;
    std::array<double, 3> q;
    for (int i = 0; i < 3; ++i)
        q[i] = a[i] + t * (b[i] - a[i]);
    return distance(p, q);
}

QString fmt(double v)
{
    return QString::number(v, 'f', 3);
}

// The embedded controller simulator in its own thread, linked to the command service.
class SimLink
{
public:
    bool start()
    {
        rc::Controller::Options options;
        options.dataDir = m_dir.path();
        m_controller = std::make_unique<rc::EmbeddedController>(options);
        if (!m_dir.isValid() || !m_controller->start(&m_error))
            return false;
        m_transport = std::make_unique<orbat::InProcessTransport>(m_controller->endpoint());
        tservice()->setTransport(m_transport.get());
        m_transport->open();
        QElapsedTimer clock;
        clock.start();
        while (!tservice()->controllerManager()->isConnected() && clock.elapsed() < 5000)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        return tservice()->controllerManager()->isConnected();
    }
    ~SimLink()
    {
        if (tservice()->transport() == m_transport.get())
            tservice()->setTransport(nullptr);
        m_transport.reset();
        m_controller.reset();
    }
    QString error() const { return m_error; }

private:
    QTemporaryDir m_dir;
    QString m_error;
    std::unique_ptr<rc::EmbeddedController> m_controller;
    std::unique_ptr<orbat::InProcessTransport> m_transport;
};

} // namespace

class TstMoveToDialog : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    // conversions
    void conversions_data();
    void conversions();

    // form and set-up
    void formWidgetsAndTexts();
    void titleNamesPoint_data();
    void titleNamesPoint();
    void initialMoveType_data();
    void initialMoveType();
    void moveTypeFollowsCombo_data();
    void moveTypeFollowsCombo();
    void speedSelection_data();
    void speedSelection();
    void offsetEditsValidate_data();
    void offsetEditsValidate();
    void reltoolNeverShown();
    void setOffsetFillsEditors();
    void moveToPointOpensModelessDialog();
    void readableAndTouchSizedUnderPageStyles();
    void newMoveDialogReplacesOld();
    void moduleDialogLeavesMoveDialogOpen();
    void closesWhenPointDestroyed();
    void textsFollowHostLanguage();

    // confirm
    void confirmRefusedWhenPowerOff();
    void confirmShowsCartesianMonitor();
    void confirmShowsJointMonitor_data();
    void confirmShowsJointMonitor();
    void confirmReadsControllerVariable_data();
    void confirmReadsControllerVariable();
    void confirmRefusedWhenVariableMissing();
    void confirmRefusedWhenOffsetOutOfRange();
    void backReturnsToParameters();

    // hold to run against the scripted controller
    void pressAndReleaseCommands_data();
    void pressAndReleaseCommands();
    void absJointTakesNoOffset();
    void releaseAlwaysSendsStop_data();
    void releaseAlwaysSendsStop();
    void tapDoesNotMove();
    void pressLostStopsMove_data();
    void pressLostStopsMove();
    void linkLossStopsAndNeedsNewPress();
    void monitorUpdatesCurrentColumn();
    void moveErrorIsLogged_data();
    void moveErrorIsLogged();

    // with the controller simulator
    void simLinearMoveAtSpeedOnLine();
    void simAbsJointEndsOnNear();
    void simOffsShiftsEnd();
    void simMoveErrors_data();
    void simMoveErrors();
    void simDestroyedMidMoveStops_data();
    void simDestroyedMidMoveStops();
    void tcpLinkDropStopsRobot();
    void jogPanelWorksBesideDialog();

private:
    MoveToDialog *open(orba::ModuleObject *point, const QString &type = QStringLiteral("l"),
                       const QString &toolset = QStringLiteral("no use"), int speed = 300);
    bool confirm();
    bool press();
    void release();
    QStringList moveMethods() const;
    QList<orbat::ScriptedTransport::Request> sent() const;
    QLabel *cell(int row, int column) const;
    QList<QVariantMap> errorEntries() const;
    void scriptController(const QString &power = QStringLiteral("on"));
    bool startSim();
    Posture waitStill(int ms = 40);

    PalletFixture m_fx;
    QPointer<MoveToDialog> m_dialog;
    std::unique_ptr<orba::ModuleObject> m_point;
    std::unique_ptr<SimLink> m_sim;
    QByteArray m_postureJson;
};

void TstMoveToDialog::init()
{
    m_fx.setUp();
    tcore::SettingManager::instance()->setStorage(QString());
    scriptController();
    m_fx.connectController();
    m_fx.transport()->clearRequests();
    tcore::ManagerHelper::instance()->clearLogHistory();
    m_point = makePoint(QStringLiteral("wobj"), {{0.6, -0.1, 0.3}}, {{M_PI, 0.0, M_PI / 2}},
                        {0.2, -1.1, 1.4, -1.8, -1.5, 0.3}, QStringLiteral("P6"));
}

void TstMoveToDialog::cleanup()
{
    if (m_dialog) {
        // Any press a failed test left behind.
        auto *move = m_dialog->findChild<TouchButton *>(QStringLiteral("btnMove"));
        if (move && move->isHeld())
            QTest::mouseRelease(move, Qt::LeftButton);
    }
    delete m_dialog.data();
    PalletFixture::flushDeletes();
    m_point.reset();
    m_sim.reset();
    m_fx.tearDown();
}

void TstMoveToDialog::scriptController(const QString &power)
{
    orbat::ScriptedTransport *t = m_fx.transport();
    t->setReply(QStringLiteral("sys.power"), 0, orba::json::fromVariant(power));
    auto posture = makePoint(QStringLiteral("posture"), {{0.5, -0.2, 0.4}}, {{M_PI, 0.0, M_PI / 2}},
                             {0.1, -1.2, 1.3, -1.6, -1.5, 0.2});
    m_postureJson = orba::json::write(posture.get());
    t->setReply(QStringLiteral("sys.posture"), 0, m_postureJson);
}

bool TstMoveToDialog::startSim()
{
    m_sim = std::make_unique<SimLink>();
    if (!m_sim->start()) {
        qWarning("simulator: %s", qPrintable(m_sim->error()));
        return false;
    }
    return true;
}

MoveToDialog *TstMoveToDialog::open(orba::ModuleObject *point, const QString &type, const QString &toolset, int speed)
{
    auto motion = motionRequest(type, toolset, speed);
    m_dialog = new MoveToDialog(motion.get(), point);
    m_dialog->show();
    QApplication::setActiveWindow(m_dialog);
    if (!QTest::qWaitForWindowActive(m_dialog))
        qWarning("move dialog not active");
    return m_dialog;
}

bool TstMoveToDialog::confirm()
{
    QTest::mouseClick(child<QPushButton>(m_dialog, "btnConfirm"), Qt::LeftButton);
    return child<QStackedWidget>(m_dialog, "stackedWidget")->currentWidget()->objectName() == QLatin1String("pgMonitor");
}

// Presses "Start Moving" and lets the queued start run.
bool TstMoveToDialog::press()
{
    auto *move = child<TouchButton>(m_dialog, "btnMove");
    QTest::mousePress(move, Qt::LeftButton);
    QCoreApplication::processEvents();
    return move->isHeld() && m_dialog->isMoving();
}

void TstMoveToDialog::release()
{
    QTest::mouseRelease(child<TouchButton>(m_dialog, "btnMove"), Qt::LeftButton);
    QCoreApplication::processEvents();
}

QList<orbat::ScriptedTransport::Request> TstMoveToDialog::sent() const
{
    QList<orbat::ScriptedTransport::Request> out;
    for (const auto &r : m_fx.transport()->requests()) {
        // The posture poll runs on its own clock; the sequences below are about the rest.
        if (r.method != QLatin1String("sys.posture") || r.op != QLatin1String("get"))
            out.append(r);
    }
    return out;
}

QStringList TstMoveToDialog::moveMethods() const
{
    QStringList methods;
    for (const auto &r : sent()) {
        if (r.method.startsWith(QLatin1String("move.")))
            methods << (r.op == QLatin1String("watch") ? QStringLiteral("watch %1 %2").arg(r.method, QString::fromUtf8(r.paramsJson))
                                                       : r.method);
    }
    return methods;
}

QLabel *TstMoveToDialog::cell(int row, int column) const
{
    auto *grid = child<QWidget>(m_dialog, "pgMonitor")->findChild<QGridLayout *>(QStringLiteral("glMonitor"));
    if (!grid || !grid->itemAtPosition(row, column))
        return nullptr;
    return qobject_cast<QLabel *>(grid->itemAtPosition(row, column)->widget());
}

QList<QVariantMap> TstMoveToDialog::errorEntries() const
{
    QList<QVariantMap> out;
    for (const QVariantMap &e : tcore::ManagerHelper::instance()->logHistory()) {
        if (e.value(QStringLiteral("level")).toString() == QLatin1String("error"))
            out.append(e);
    }
    return out;
}

// The robot's posture once it has stopped changing.
Posture TstMoveToDialog::waitStill(int ms)
{
    Posture last = robotPosture();
    for (int i = 0; i < 100; ++i) {
        QTest::qWait(ms);
        const Posture now = robotPosture();
        if (distance(now.trans, last.trans) < 1e-12 && now.near == last.near)
            return now;
        last = now;
    }
    return last;
}

// ----------------------------------------------------------------------------------------------

void TstMoveToDialog::conversions_data()
{
    QTest::addColumn<QString>("what");
    QTest::addColumn<QString>("got");
    QTest::addColumn<QString>("expected");
    QTest::newRow("int2zone(0) is fine") << "" << tpallet::int2zone(0) << "fine";
    QTest::newRow("int2zone(50)") << "" << tpallet::int2zone(50) << "z50";
    QTest::newRow("zone2int(fine) is 0") << "" << QString::number(tpallet::zone2int(QStringLiteral("fine"))) << "0";
    QTest::newRow("zone2int(int2zone(50))") << "" << QString::number(tpallet::zone2int(tpallet::int2zone(50))) << "50";
    QTest::newRow("speed2int(v1000)") << "" << QString::number(tpallet::speed2int(QStringLiteral("v1000"))) << "1000";
    QTest::newRow("int2speed(300)") << "" << tpallet::int2speed(300) << "v300";
    QTest::newRow("speed2int of no number") << "" << QString::number(tpallet::speed2int(QStringLiteral("vmax"))) << "0";
    QTest::newRow("speed2int of empty text") << "" << QString::number(tpallet::speed2int(QString())) << "0";
    QTest::newRow("speed2int round trip") << "" << QString::number(tpallet::speed2int(tpallet::int2speed(7000))) << "7000";
}

void TstMoveToDialog::conversions()
{
    QFETCH(QString, got);
    QFETCH(QString, expected);
    QCOMPARE(got, expected);
}

void TstMoveToDialog::formWidgetsAndTexts()
{
    open(m_point.get());
    QCOMPARE(child<QStackedWidget>(m_dialog, "stackedWidget")->currentWidget(), child<QWidget>(m_dialog, "pgMotion"));
    QVERIFY(child<QWidget>(m_dialog, "pgMonitor"));
    auto *type = child<QComboBox>(m_dialog, "cmbMoveType");
    QCOMPARE(type->count(), 3);
    QCOMPARE(type->itemText(0), QStringLiteral("Move AbsJ"));
    QCOMPARE(type->itemText(1), QStringLiteral("Move J"));
    QCOMPARE(type->itemText(2), QStringLiteral("Move L"));

    const QStringList speeds{"v5",   "v10",  "v25",  "v30",   "v40",   "v50",   "v60",   "v80",   "v100",
                             "v150", "v200", "v250", "v300",  "v400",  "v500",  "v600",  "v800",  "v1000",
                             "v1500", "v2000", "v3000", "v4000", "v5000", "v6000", "v7000"};
    auto *speed = child<QComboBox>(m_dialog, "cmbSpeed");
    QStringList shown;
    for (int i = 0; i < speed->count(); ++i)
        shown << speed->itemText(i);
    QCOMPARE(shown, speeds);

    QCOMPARE(child<QRadioButton>(m_dialog, "rdbOffsetNone")->text(), QStringLiteral("None"));
    QCOMPARE(child<QRadioButton>(m_dialog, "rdbOffsetXyz")->text(), QStringLiteral("Offs"));
    QCOMPARE(child<QRadioButton>(m_dialog, "rdbOffsetXyzAbc")->text(), QStringLiteral("Reltool"));
    QVERIFY(child<QRadioButton>(m_dialog, "rdbOffsetNone")->isChecked());
    QVERIFY(m_dialog->findChild<QGridLayout *>(QStringLiteral("glOffs")));
    for (const char *name : {"edtOffsetX", "edtOffsetY", "edtOffsetZ", "edtOffsetA", "edtOffsetB", "edtOffsetC"}) {
        auto *validator = qobject_cast<const QDoubleValidator *>(child<QLineEdit>(m_dialog, name)->validator());
        QVERIFY2(validator, name);
        QCOMPARE(validator->bottom(), -10000.0);
        QCOMPARE(validator->top(), 10000.0);
        QCOMPARE(validator->decimals(), 3);
    }

    auto *point = child<QComboBox>(m_dialog, "cmbPointName");
    QVERIFY(point->isEditable());
    QVERIFY(!point->isEnabled());
    QCOMPARE(point->currentText(), QStringLiteral("wobj"));
    QCOMPARE(child<QLabel>(m_dialog, "lblWarning")->text(),
             QStringLiteral("Caution: Jog and Move will be effected according to selected coordinate system and payload."));

    QCOMPARE(child<QPushButton>(m_dialog, "btnConfirm")->text(), QStringLiteral("Confirm"));
    QCOMPARE(child<QPushButton>(m_dialog, "btnBack")->text(), QStringLiteral("Back"));
    QCOMPARE(child<QPushButton>(m_dialog, "btnClose")->text(), QStringLiteral("Close"));
    auto *move = child<TouchButton>(m_dialog, "btnMove");
    QCOMPARE(move->text(), QStringLiteral("Start Moving"));
    QCOMPARE(move->property("func").toString(), QStringLiteral("red"));
    QCOMPARE(child<QStackedWidget>(m_dialog, "stkWgtOperations")->currentIndex(), 0);
    QCOMPARE(child<QPushButton>(m_dialog, "btnConfirm")->parentWidget(),
             child<QStackedWidget>(m_dialog, "stkWgtOperations")->widget(0));
    for (const char *name : {"btnBack", "btnMove", "btnClose"})
        QCOMPARE(child<QPushButton>(m_dialog, name)->parentWidget(), child<QStackedWidget>(m_dialog, "stkWgtOperations")->widget(1));

    // Monitor grid: header and seven rows, labels right-aligned in column 0, centred elsewhere.
    QCOMPARE(cell(0, 1)->text(), QStringLiteral("Current"));
    QCOMPARE(cell(0, 2)->text(), QStringLiteral("→"));
    QCOMPARE(cell(0, 3)->text(), QStringLiteral("Target"));
    QCOMPARE(cell(0, 4)->text(), QStringLiteral("Offset"));
    for (int row = 1; row <= 7; ++row) {
        QVERIFY(cell(row, 0) && cell(row, 1) && cell(row, 3));
        QCOMPARE(cell(row, 0)->alignment(), Qt::AlignRight | Qt::AlignVCenter);
        QCOMPARE(cell(row, 1)->alignment(), Qt::Alignment(Qt::AlignCenter));
        QCOMPARE(cell(row, 3)->alignment(), Qt::Alignment(Qt::AlignCenter));
    }

    // Modeless, deleted on close, registered as the one move dialog.
    QVERIFY(!m_dialog->isModal());
    QCOMPARE(m_dialog->windowModality(), Qt::NonModal);
    QVERIFY(!QApplication::activeModalWidget());
    QVERIFY(m_dialog->testAttribute(Qt::WA_DeleteOnClose));
    QCOMPARE(kx::globalNode(QStringLiteral("tpallet.move.dialog"))->value().value<QObject *>(), m_dialog.data());

    // Touch sizes.
    for (const char *name : {"btnConfirm", "cmbMoveType", "cmbSpeed", "rdbOffsetNone", "rdbOffsetXyz", "edtOffsetX"})
        QVERIFY2(child<QWidget>(m_dialog, name)->height() >= 36, name);
    QVERIFY(speed->view()->sizeHintForRow(0) >= 36);
}

void TstMoveToDialog::titleNamesPoint_data()
{
    QTest::addColumn<QString>("tag");
    QTest::addColumn<QString>("title");
    QTest::newRow("tag given") << "P5" << "<h2>Move Robot into Position: P5 </h2>";
    QTest::newRow("empty tag: node name") << "" << "<h2>Move Robot into Position: wobj </h2>";
    QTest::newRow("no tag: node name") << QString() << "<h2>Move Robot into Position: wobj </h2>";
}

void TstMoveToDialog::titleNamesPoint()
{
    QFETCH(QString, tag);
    QFETCH(QString, title);
    m_point = makePoint(QStringLiteral("wobj"), {{0.5, 0, 0.3}}, {{0, 0, 0}}, {}, tag);
    open(m_point.get());
    QCOMPARE(child<QLabel>(m_dialog, "lblTitle")->text(), title);
}

void TstMoveToDialog::initialMoveType_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("toolset");
    QTest::addColumn<int>("index");
    QTest::addColumn<bool>("joint");
    QTest::addColumn<bool>("absJoint");
    QTest::newRow("joint point, joint toolset: Move AbsJ") << "j" << "joint" << 0 << true << true;
    QTest::newRow("joint point: Move J") << "j" << "no use" << 1 << true << false;
    QTest::newRow("module request: Move L") << "l" << "no use" << 2 << false << false;
    QTest::newRow("cartesian point, joint toolset: Move L") << "l" << "joint" << 2 << false << false;
    QTest::newRow("empty request: Move L") << "" << "" << 2 << false << false;
}

void TstMoveToDialog::initialMoveType()
{
    QFETCH(QString, type);
    QFETCH(QString, toolset);
    QFETCH(int, index);
    QFETCH(bool, joint);
    QFETCH(bool, absJoint);
    open(m_point.get(), type, toolset);
    QCOMPARE(child<QComboBox>(m_dialog, "cmbMoveType")->currentIndex(), index);
    QCOMPARE(m_dialog->isJoint(), joint);
    QCOMPARE(m_dialog->isAbsJoint(), absJoint);
}

void TstMoveToDialog::moveTypeFollowsCombo_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<bool>("joint");
    QTest::addColumn<bool>("absJoint");
    QTest::newRow("Move AbsJ") << 0 << true << true;
    QTest::newRow("Move J") << 1 << true << false;
    QTest::newRow("Move L") << 2 << false << false;
}

void TstMoveToDialog::moveTypeFollowsCombo()
{
    QFETCH(int, index);
    QFETCH(bool, joint);
    QFETCH(bool, absJoint);
    open(m_point.get(), QStringLiteral("j"), QStringLiteral("joint"));
    auto *type = child<QComboBox>(m_dialog, "cmbMoveType");
    type->setCurrentIndex(index == 0 ? 2 : 0);
    type->setCurrentIndex(index);
    QCOMPARE(m_dialog->isJoint(), joint);
    QCOMPARE(m_dialog->isAbsJoint(), absJoint);
}

void TstMoveToDialog::speedSelection_data()
{
    QTest::addColumn<int>("speed");
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("text");
    QTest::newRow("v300 from the module") << 300 << 12 << "v300";
    QTest::newRow("slowest") << 5 << 0 << "v5";
    QTest::newRow("fastest") << 7000 << 24 << "v7000";
    QTest::newRow("350 is not offered: nothing selected") << 350 << -1 << "";
    QTest::newRow("0 is not offered") << 0 << -1 << "";
}

void TstMoveToDialog::speedSelection()
{
    QFETCH(int, speed);
    QFETCH(int, index);
    QFETCH(QString, text);
    open(m_point.get(), QStringLiteral("l"), QStringLiteral("no use"), speed);
    auto *combo = child<QComboBox>(m_dialog, "cmbSpeed");
    QCOMPARE(combo->currentIndex(), index);
    QCOMPARE(combo->currentText(), text);
}

void TstMoveToDialog::offsetEditsValidate_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("kept");
    QTest::newRow("three decimals") << "12.345" << "12.345";
    QTest::newRow("a fourth decimal is refused") << "1.2345" << "1.234";
    QTest::newRow("negative") << "-250.5" << "-250.5";
    QTest::newRow("letters are refused") << "ab1c" << "1";
    QTest::newRow("exponent is refused") << "1e3" << "13";
    QTest::newRow("limit") << "10000" << "10000";
}

void TstMoveToDialog::offsetEditsValidate()
{
    QFETCH(QString, typed);
    QFETCH(QString, kept);
    open(m_point.get());
    QTest::mouseClick(child<QRadioButton>(m_dialog, "rdbOffsetXyz"), Qt::LeftButton);
    auto *edit = child<QLineEdit>(m_dialog, "edtOffsetY");
    edit->clear();
    QTest::keyClicks(edit, typed);
    QCOMPARE(edit->text(), kept);
}

void TstMoveToDialog::reltoolNeverShown()
{
    open(m_point.get());
    auto *grid = m_dialog->findChild<QGridLayout *>(QStringLiteral("glOffs"));
    QVERIFY(grid);
    const auto rowVisible = [grid](int row) {
        bool any = false, all = true;
        for (int column = 0; column < grid->columnCount(); ++column) {
            QLayoutItem *item = grid->itemAtPosition(row, column);
            if (!item || !item->widget())
                continue;
            any = any || item->widget()->isVisible();
            all = all && item->widget()->isVisible();
        }
        return any ? (all ? 1 : -1) : 0;
    };
    auto *reltool = child<QRadioButton>(m_dialog, "rdbOffsetXyzAbc");
    QVERIFY(!reltool->isVisible());
    QCOMPARE(rowVisible(0), 0);
    QCOMPARE(rowVisible(1), 0);
    QTest::mouseClick(child<QRadioButton>(m_dialog, "rdbOffsetXyz"), Qt::LeftButton);
    QCOMPARE(rowVisible(0), 1);
    QCOMPARE(rowVisible(1), 0);
    QCOMPARE(child<QLabel>(m_dialog, "lblOffsXyz")->text(), QStringLiteral("XYZ(mm)"));
    QTest::mouseClick(child<QRadioButton>(m_dialog, "rdbOffsetNone"), Qt::LeftButton);
    QCOMPARE(rowVisible(0), 0);
    QCOMPARE(rowVisible(1), 0);
    QVERIFY(!reltool->isVisible());
    // Only the angle row's existence is in the form; it is never offered.
    QCOMPARE(child<QLabel>(m_dialog, "lblOffsAbc")->text(), QStringLiteral("ABC(°)"));
}

void TstMoveToDialog::setOffsetFillsEditors()
{
    open(m_point.get());
    auto offset = makePoint(QStringLiteral("offset"), {{0.01, -0.02, 0.0305}}, {{M_PI / 2, 0, -M_PI / 4}}, {});
    m_dialog->setOffset(offset.get());
    QVERIFY(child<QRadioButton>(m_dialog, "rdbOffsetXyz")->isChecked());
    QCOMPARE(child<QLineEdit>(m_dialog, "edtOffsetX")->text(), QStringLiteral("10.000"));
    QCOMPARE(child<QLineEdit>(m_dialog, "edtOffsetY")->text(), QStringLiteral("-20.000"));
    QCOMPARE(child<QLineEdit>(m_dialog, "edtOffsetZ")->text(), QStringLiteral("30.500"));
    QCOMPARE(child<QLineEdit>(m_dialog, "edtOffsetA")->text(), QStringLiteral("90.000"));
    QCOMPARE(child<QLineEdit>(m_dialog, "edtOffsetC")->text(), QStringLiteral("-45.000"));
    QVERIFY(child<QLineEdit>(m_dialog, "edtOffsetX")->isVisible());
    m_dialog->setOffset(nullptr);
    QVERIFY(child<QRadioButton>(m_dialog, "rdbOffsetNone")->isChecked());
    QVERIFY(!child<QLineEdit>(m_dialog, "edtOffsetX")->isVisible());
}

void TstMoveToDialog::moveToPointOpensModelessDialog()
{
    QWidget top;
    auto *middle = new QWidget(&top);
    auto *button = new QPushButton(middle);
    top.show();
    m_dialog = tpallet::moveToPoint(m_point.get(), button);
    QVERIFY(m_dialog);
    QCOMPARE(m_dialog->parentWidget(), &top);
    QVERIFY(m_dialog->isVisible());
    QVERIFY(!m_dialog->isModal());
    QVERIFY(!QApplication::activeModalWidget());
    // The module's request: Move L at v300, the active toolset kept.
    QCOMPARE(child<QComboBox>(m_dialog, "cmbMoveType")->currentText(), QStringLiteral("Move L"));
    QCOMPARE(child<QComboBox>(m_dialog, "cmbSpeed")->currentText(), QStringLiteral("v300"));
    QVERIFY(!m_dialog->isJoint());
    QVERIFY(!m_dialog->isAbsJoint());
    // Nothing is sent before the operator confirms.
    QVERIFY(sent().isEmpty());
    // Without a widget there is no parent.
    QPointer<MoveToDialog> orphan = tpallet::moveToPoint(m_point.get(), nullptr);
    QVERIFY(orphan);
    QVERIFY(!orphan->parentWidget());
    QVERIFY(!m_dialog); // replaced
    m_dialog = orphan;
}

void TstMoveToDialog::readableAndTouchSizedUnderPageStyles()
{
    // Whatever the page it opens from says of titles, the dialog keeps the module's dark look with
    // a light title, so the title always stands out from the dialog's background.
    QWidget top;
    top.setStyleSheet(QStringLiteral("QWidget { font-size: 16px; }"
                                     "#lblTitle { font-size: 20px; color: #ffffff; }"
                                     "QPushButton { min-height: 32px; padding: 6px 4px; }"));
    auto *middle = new QWidget(&top);
    auto *button = new QPushButton(middle);
    top.show();
    m_dialog = tpallet::moveToPoint(m_point.get(), button);
    QVERIFY(QTest::qWaitForWindowExposed(m_dialog));
    auto *title = child<QLabel>(m_dialog, "lblTitle");
    const QColor text = title->palette().color(QPalette::WindowText);
    const QColor background = m_dialog->palette().color(QPalette::Window);
    QVERIFY2(text.lightness() - background.lightness() > 128,
             qPrintable(QStringLiteral("%1 on %2").arg(text.name(), background.name())));
    auto *offs = child<QRadioButton>(m_dialog, "rdbOffsetXyz");
    QVERIFY(offs->style()->pixelMetric(QStyle::PM_ExclusiveIndicatorWidth, nullptr, offs) >= 24);
    QVERIFY(child<QComboBox>(m_dialog, "cmbSpeed")->view()->sizeHintForRow(0) >= 36);
    QVERIFY(confirm());
    for (const char *name : {"btnBack", "btnMove", "btnClose"})
        QVERIFY2(child<QWidget>(m_dialog, name)->height() >= 36, name);
    delete m_dialog.data();
}

void TstMoveToDialog::newMoveDialogReplacesOld()
{
    open(m_point.get());
    QPointer<MoveToDialog> first = m_dialog;
    auto other = makePoint(QStringLiteral("approach"), {{0.5, 0, 0.4}}, {{0, 0, 0}}, {});
    open(other.get());
    QVERIFY(!first);
    QVERIFY(m_dialog);
    QCOMPARE(kx::globalNode(QStringLiteral("tpallet.move.dialog"))->value().value<QObject *>(), m_dialog.data());
    delete m_dialog.data();
    QVERIFY(!kx::globalNode(QStringLiteral("tpallet.move.dialog"))->value().value<QObject *>());
}

void TstMoveToDialog::moduleDialogLeavesMoveDialogOpen()
{
    open(m_point.get());
    QPointer<QDialog> module = new QDialog;
    tpallet::makeUniqueDialog(module);
    QPointer<QDialog> next = new QDialog;
    tpallet::makeUniqueDialog(next);
    QVERIFY(!module);
    QVERIFY(m_dialog);
    QVERIFY(m_dialog->isVisible());
    delete next.data();
}

void TstMoveToDialog::closesWhenPointDestroyed()
{
    open(m_point.get());
    QSignalSpy rejected(m_dialog.data(), &QDialog::rejected);
    m_point.reset();
    QCOMPARE(rejected.count(), 1);
    QVERIFY(!m_dialog->isVisible());
    PalletFixture::flushDeletes();
    QVERIFY(!m_dialog);
}

void TstMoveToDialog::textsFollowHostLanguage()
{
    open(m_point.get());
    QVERIFY(confirm());
    tcore::SettingManager::setStr(QStringLiteral("language"), QStringLiteral("cn"));
    QCoreApplication::processEvents();
    const QString move = child<QPushButton>(m_dialog, "btnMove")->text();
    const QString title = child<QLabel>(m_dialog, "lblTitle")->text();
    const QString current = cell(0, 1)->text();
    const QString type = child<QComboBox>(m_dialog, "cmbMoveType")->currentText();
    const int typeIndex = child<QComboBox>(m_dialog, "cmbMoveType")->currentIndex();
    tcore::SettingManager::setStr(QStringLiteral("language"), QStringLiteral("ru"));
    QCoreApplication::processEvents();
    const QString russianX = cell(1, 0)->text();
    tcore::SettingManager::setStr(QStringLiteral("language"), QStringLiteral("en"));
    QCoreApplication::processEvents();
    QCOMPARE(move, QString::fromUtf8("开始运动"));
    QCOMPARE(title, QString::fromUtf8("<h2>移动机器人到位置：P6 </h2>"));
    QCOMPARE(current, QString::fromUtf8("当前"));
    QCOMPARE(type, QStringLiteral("Move L"));
    QCOMPARE(typeIndex, 2);
    QCOMPARE(russianX, QString::fromUtf8("X(мм)"));
    QCOMPARE(child<QPushButton>(m_dialog, "btnMove")->text(), QStringLiteral("Start Moving"));
    QCOMPARE(cell(1, 0)->text(), QStringLiteral("X(mm)"));
}

// ----------------------------------------------------------------------------------------------

void TstMoveToDialog::confirmRefusedWhenPowerOff()
{
    scriptController(QStringLiteral("off"));
    open(m_point.get());
    QVERIFY(!confirm());
    QCOMPARE(child<QStackedWidget>(m_dialog, "stkWgtOperations")->currentIndex(), 0);
    const QList<QVariantMap> errors = errorEntries();
    QCOMPARE(errors.size(), 1);
    QCOMPARE(errors.first().value("title").toString(), QStringLiteral("The robot is power off!"));
    QCOMPARE(m_fx.transport()->methods(), QStringList{"sys.power"});
}

void TstMoveToDialog::confirmShowsCartesianMonitor()
{
    open(m_point.get());
    QVERIFY(confirm());
    QCOMPARE(m_fx.transport()->methods(), (QStringList{"sys.power", "sys.posture"}));
    QCOMPARE(child<QStackedWidget>(m_dialog, "stkWgtOperations")->currentIndex(), 1);
    const QStringList labels{"X(mm)", "Y(mm)", "Z(mm)", "A(°)", "B(°)", "C(°)"};
    const double current[] = {500.0, -200.0, 400.0, 180.0, 0.0, 90.0};
    const double target[] = {600.0, -100.0, 300.0, 180.0, 0.0, 90.0};
    for (int row = 1; row <= 6; ++row) {
        QCOMPARE(cell(row, 0)->text(), labels.at(row - 1));
        QCOMPARE(cell(row, 1)->text(), fmt(current[row - 1]));
        QCOMPARE(cell(row, 3)->text(), fmt(target[row - 1]));
        QVERIFY(cell(row, 0)->isVisible() && cell(row, 1)->isVisible() && cell(row, 3)->isVisible());
    }
    QVERIFY(!cell(7, 0)->isVisible());
    QVERIFY(!cell(7, 1)->isVisible());
    QVERIFY(!cell(7, 3)->isVisible());
}

void TstMoveToDialog::confirmShowsJointMonitor_data()
{
    QTest::addColumn<int>("axes");
    QTest::newRow("six axes") << 6;
    QTest::newRow("seven axes") << 7;
}

void TstMoveToDialog::confirmShowsJointMonitor()
{
    QFETCH(int, axes);
    QVector<double> near{0.1, -1.2, 1.3, -1.6, -1.5, 0.2};
    if (axes == 7)
        near.append(0.5);
    auto posture = makePoint(QStringLiteral("posture"), {{0.5, -0.2, 0.4}}, {{M_PI, 0, 0}}, near);
    m_fx.transport()->setReply(QStringLiteral("sys.posture"), 0, orba::json::write(posture.get()));
    QVector<double> targetNear{0.3, -1.0, 1.1, -1.4, -1.3, 0.4, 0.25};
    m_point = makePoint(QStringLiteral("wobj"), {{0.6, -0.1, 0.3}}, {{M_PI, 0, 0}}, targetNear);
    open(m_point.get(), QStringLiteral("j"), QStringLiteral("joint"));
    QVERIFY(confirm());
    for (int row = 1; row <= 7; ++row) {
        const bool used = row <= axes;
        QCOMPARE(cell(row, 0)->isVisible(), used);
        QCOMPARE(cell(row, 1)->isVisible(), used);
        QCOMPARE(cell(row, 3)->isVisible(), used);
        if (!used)
            continue;
        QCOMPARE(cell(row, 0)->text(), QStringLiteral("J%1(°)").arg(row));
        QCOMPARE(cell(row, 1)->text(), fmt(near[row - 1] / M_PI * 180.0));
        QCOMPARE(cell(row, 3)->text(), fmt(targetNear[row - 1] / M_PI * 180.0));
    }
}

void TstMoveToDialog::confirmReadsControllerVariable_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("varType");
    QTest::newRow("cartesian") << "l" << "cart";
    QTest::newRow("joint") << "j" << "joint";
}

void TstMoveToDialog::confirmReadsControllerVariable()
{
    QFETCH(QString, type);
    QFETCH(QString, varType);
    // A point node that was never filled stands for the controller variable of its name.
    m_point = std::make_unique<orba::ModuleObject>(QStringLiteral("home"));
    auto home = makePoint(QStringLiteral("home"), {{0.7, 0.05, 0.2}}, {{M_PI, 0, 0}}, {0, -1.5, 1.5, -1.5, -1.5, 0});
    m_fx.transport()->setReply(QStringLiteral("data.var"), 0, orba::json::write(home.get()));
    open(m_point.get(), type);
    QVERIFY(confirm());
    const auto vars = m_fx.transport()->requests();
    QCOMPARE(m_fx.transport()->methods(), (QStringList{"sys.power", "sys.posture", "data.var"}));
    QCOMPARE(vars.at(2).op, QStringLiteral("get"));
    QCOMPARE(vars.at(2).key, QStringLiteral("home"));
    QCOMPARE(vars.at(2).params->c(QStringLiteral("type"))->getString(), varType);
    QCOMPARE(cell(1, 3)->text(), fmt(700.0));
    QCOMPARE(cell(3, 3)->text(), fmt(200.0));
    // The move carries the variable's values.
    m_fx.transport()->clearRequests();
    QVERIFY(press());
    release();
    const auto moves = sent();
    orba::ModuleObject *movePoint = nullptr;
    for (const auto &r : moves) {
        if (r.method == QStringLiteral("move.%1").arg(type))
            movePoint = r.params->c(QStringLiteral("point"));
    }
    QVERIFY(movePoint);
    QCOMPARE(movePoint->r(QStringLiteral("trans.#0"))->getDouble(), 0.7);
}

void TstMoveToDialog::confirmRefusedWhenVariableMissing()
{
    m_point = std::make_unique<orba::ModuleObject>(QStringLiteral("nowhere"));
    m_fx.transport()->setReply(QStringLiteral("data.var"), -1, "{\"msg\":\"no variable\"}");
    open(m_point.get());
    QVERIFY(!confirm());
    QCOMPARE(child<QStackedWidget>(m_dialog, "stkWgtOperations")->currentIndex(), 0);
    QCOMPARE(errorEntries().value(0).value("title").toString(),
             QStringLiteral("Can not read the point nowhere from the controller!"));
}

void TstMoveToDialog::confirmRefusedWhenOffsetOutOfRange()
{
    open(m_point.get());
    QTest::mouseClick(child<QRadioButton>(m_dialog, "rdbOffsetXyz"), Qt::LeftButton);
    auto *edit = child<QLineEdit>(m_dialog, "edtOffsetZ");
    edit->clear();
    // Five digits pass the validator while typing (the value might still be edited down).
    QTest::keyClicks(edit, QStringLiteral("12345"));
    QCOMPARE(edit->text(), QStringLiteral("12345"));
    QVERIFY(!confirm());
    QCOMPARE(errorEntries().value(0).value("title").toString(), QStringLiteral("The offset is out of range!"));
    QVERIFY(m_fx.transport()->methods().isEmpty());
    // With "None" the offset is not used and nothing is refused.
    QTest::mouseClick(child<QRadioButton>(m_dialog, "rdbOffsetNone"), Qt::LeftButton);
    QVERIFY(confirm());
}

void TstMoveToDialog::backReturnsToParameters()
{
    open(m_point.get());
    QVERIFY(confirm());
    QTest::mouseClick(child<QPushButton>(m_dialog, "btnBack"), Qt::LeftButton);
    QCOMPARE(child<QStackedWidget>(m_dialog, "stackedWidget")->currentWidget()->objectName(), QStringLiteral("pgMotion"));
    QCOMPARE(child<QStackedWidget>(m_dialog, "stkWgtOperations")->currentIndex(), 0);
    QVERIFY(!child<QWidget>(m_dialog, "btnMove")->isVisible());
    // Close ends the dialog.
    QVERIFY(confirm());
    QTest::mouseClick(child<QPushButton>(m_dialog, "btnClose"), Qt::LeftButton);
    PalletFixture::flushDeletes();
    QVERIFY(!m_dialog);
}

// ----------------------------------------------------------------------------------------------

void TstMoveToDialog::pressAndReleaseCommands_data()
{
    QTest::addColumn<int>("typeIndex");
    QTest::addColumn<QString>("speed");
    QTest::addColumn<bool>("offs");
    QTest::addColumn<QString>("method");
    QTest::addColumn<QString>("pointJson");
    QTest::addColumn<double>("trajSpeed");
    const QString pose = QStringLiteral("{\"trans\":[%1,%2,%3],\"rot\":[3.141592653589793,0.0,1.5707963267948966],"
                                        "\"near\":[0.2,-1.1,1.4,-1.8,-1.5,0.3],\"tag\":\"P6\"}");
    QTest::newRow("Move L at v300") << 2 << "v300" << false << "move.l" << pose.arg("0.6", "-0.1", "0.3") << 0.3;
    QTest::newRow("Move J at v1000") << 1 << "v1000" << false << "move.j" << pose.arg("0.6", "-0.1", "0.3") << 1.0;
    QTest::newRow("Move AbsJ at v50") << 0 << "v50" << false << "move.j" << "[0.2,-1.1,1.4,-1.8,-1.5,0.3]" << 0.05;
    QTest::newRow("Move L with Offs") << 2 << "v5" << true << "move.l"
                                      << pose.arg(QString::number(0.6 + 0.0125, 'g', 17), QString::number(-0.1 - 0.2, 'g', 17),
                                                  QString::number(0.3 + 0.0, 'g', 17))
                                      << 0.005;
    QTest::newRow("Move J with Offs") << 1 << "v7000" << true << "move.j"
                                      << pose.arg(QString::number(0.6 + 0.0125, 'g', 17), QString::number(-0.1 - 0.2, 'g', 17),
                                                  QString::number(0.3 + 0.0, 'g', 17))
                                      << 7.0;
}

void TstMoveToDialog::pressAndReleaseCommands()
{
    QFETCH(int, typeIndex);
    QFETCH(QString, speed);
    QFETCH(bool, offs);
    QFETCH(QString, method);
    QFETCH(QString, pointJson);
    QFETCH(double, trajSpeed);
    open(m_point.get());
    child<QComboBox>(m_dialog, "cmbMoveType")->setCurrentIndex(typeIndex);
    child<QComboBox>(m_dialog, "cmbSpeed")->setCurrentText(speed);
    if (offs) {
        QTest::mouseClick(child<QRadioButton>(m_dialog, "rdbOffsetXyz"), Qt::LeftButton);
        child<QLineEdit>(m_dialog, "edtOffsetX")->setText(QStringLiteral("12.5"));
        child<QLineEdit>(m_dialog, "edtOffsetY")->setText(QStringLiteral("-200"));
        // Not a number: no offset.
        child<QLineEdit>(m_dialog, "edtOffsetZ")->setText(QStringLiteral("-"));
        // Angles are never applied.
        child<QLineEdit>(m_dialog, "edtOffsetA")->setText(QStringLiteral("45"));
    }
    QVERIFY(confirm());
    QCOMPARE(m_fx.transport()->methods(), (QStringList{"sys.power", "sys.posture"}));
    m_fx.transport()->clearRequests();

    QVERIFY(press());
    QCOMPARE(moveMethods(), (QStringList{"move.reset", "watch move.last_error_with_setting true", method, "move.opr.enough"}));
    const auto requests = sent();
    QCOMPARE(requests.at(0).op, QStringLiteral("exec"));
    QCOMPARE(requests.at(0).paramsJson, QByteArray("null"));
    QCOMPARE(requests.at(2).op, QStringLiteral("exec"));
    QCOMPARE(requests.at(3).op, QStringLiteral("exec"));
    QCOMPARE(requests.at(3).paramsJson, QByteArray("null"));
    orba::ModuleObject *move = requests.at(2).params.get();
    QCOMPARE(move->cmobjNames(), (QStringList{"point", "traj"}));
    QCOMPARE(move->r(QStringLiteral("traj.speed"))->getDouble(), trajSpeed);
    orba::ModuleObject expected;
    QVERIFY(expected.importFromJson(nullptr, pointJson.toUtf8()));
    QVERIFY2(move->c(QStringLiteral("point"))->equals(&expected), move->c(QStringLiteral("point"))->exportToJson().constData());
    QVERIFY(m_dialog->isMoving());
    QCOMPARE(child<TouchButton>(m_dialog, "btnMove")->styleSheet(), QStringLiteral("background-color:#FF0000"));

    m_fx.transport()->clearRequests();
    const int linesBefore = m_fx.logLines().size();
    release();
    QCOMPARE(moveMethods(), (QStringList{"watch move.last_error_with_setting false", "move.stop"}));
    QVERIFY(!m_dialog->isMoving());
    QCOMPARE(child<TouchButton>(m_dialog, "btnMove")->styleSheet(), QStringLiteral("background-color:#646464"));
    bool logged = false;
    for (int i = linesBefore; i < m_fx.logLines().size(); ++i) {
        const orba::LogLine &line = m_fx.logLines().at(i);
        if (line.message == QLatin1String("stopMoving------------")) {
            logged = true;
            QVERIFY2(line.tag.startsWith(QLatin1String("[E|")), qPrintable(line.tag));
            QVERIFY(line.filePath.endsWith(QLatin1String("log/tpallet.log")));
        }
    }
    QVERIFY(logged);
    // The poll stops with the release.
    m_fx.transport()->clearRequests();
    QTest::qWait(450);
    QVERIFY(m_fx.transport()->methods().isEmpty());
}

void TstMoveToDialog::absJointTakesNoOffset()
{
    open(m_point.get(), QStringLiteral("j"), QStringLiteral("joint"));
    QTest::mouseClick(child<QRadioButton>(m_dialog, "rdbOffsetXyz"), Qt::LeftButton);
    child<QLineEdit>(m_dialog, "edtOffsetX")->setText(QStringLiteral("100"));
    QVERIFY(confirm());
    // The offset column tells the operator that nothing is added to joints.
    QCOMPARE(cell(1, 4)->text(), fmt(0.0));
    m_fx.transport()->clearRequests();
    QVERIFY(press());
    release();
    orba::ModuleObject *point = nullptr;
    for (const auto &r : sent()) {
        if (r.method == QLatin1String("move.j"))
            point = r.params->c(QStringLiteral("point"));
    }
    QVERIFY(point);
    QVERIFY(point->isArray());
    orba::ModuleObject expected;
    QVERIFY(expected.importFromJson(nullptr, "[0.2,-1.1,1.4,-1.8,-1.5,0.3]"));
    QVERIFY2(point->equals(&expected), point->exportToJson().constData());
}

void TstMoveToDialog::releaseAlwaysSendsStop_data()
{
    QTest::addColumn<int>("failure");
    QTest::newRow("reset refused") << 0;
    QTest::newRow("move refused with an error reply") << 1;
    QTest::newRow("start refused") << 2;
    QTest::newRow("controller hangs on the reset") << 3;
}

void TstMoveToDialog::releaseAlwaysSendsStop()
{
    QFETCH(int, failure);
    orbat::ScriptedTransport *t = m_fx.transport();
    switch (failure) {
    case 0:
        t->setReply(QStringLiteral("move.reset"), -1);
        break;
    case 1: {
        orbat::ScriptedTransport::Reply r;
        r.errorCode = -32602;
        r.errorMessage = QStringLiteral("bad point");
        t->setReply(QStringLiteral("move.l"), r);
        break;
    }
    case 2:
        t->setReply(QStringLiteral("move.opr.enough"), -1, "{\"msg\":\"no motion armed\"}");
        break;
    case 3:
        tservice()->setTimeout(QStringLiteral("move.reset"), 100);
        t->setSilent(QStringLiteral("move.reset"));
        break;
    }
    open(m_point.get());
    QVERIFY(confirm());
    m_fx.transport()->clearRequests();
    press();
    release();
    tservice()->setTimeout(QStringLiteral("move.reset"), tservice()->defaultTimeoutMs());
    QVERIFY2(moveMethods().endsWith(QStringLiteral("move.stop")), qPrintable(moveMethods().join(',')));
    QVERIFY(!m_dialog->isMoving());
}

void TstMoveToDialog::tapDoesNotMove()
{
    open(m_point.get());
    QVERIFY(confirm());
    m_fx.transport()->clearRequests();
    auto *move = child<TouchButton>(m_dialog, "btnMove");
    // Press and release handled before the queued start runs: the start finds no press held.
    QTest::mousePress(move, Qt::LeftButton);
    QTest::mouseRelease(move, Qt::LeftButton);
    QCoreApplication::processEvents();
    const QStringList methods = moveMethods();
    QVERIFY2(!methods.contains(QStringLiteral("move.l")), qPrintable(methods.join(',')));
    QVERIFY(!methods.contains(QStringLiteral("move.opr.enough")));
    QVERIFY(methods.contains(QStringLiteral("move.stop")));
    QVERIFY(!m_dialog->isMoving());
}

void TstMoveToDialog::pressLostStopsMove_data()
{
    QTest::addColumn<QString>("how");
    QTest::newRow("released") << "release";
    QTest::newRow("button hidden") << "hide";
    QTest::newRow("button disabled") << "disable";
    QTest::newRow("focus moved to another button") << "focus";
    QTest::newRow("another window activated") << "window";
    QTest::newRow("back to the parameters") << "back";
    QTest::newRow("dialog closed") << "close";
    QTest::newRow("dialog rejected") << "reject";
    QTest::newRow("dialog hidden") << "hidedialog";
    QTest::newRow("dialog deleted") << "delete";
    QTest::newRow("replaced by a new move dialog") << "replace";
    QTest::newRow("point node destroyed") << "point";
}

void TstMoveToDialog::pressLostStopsMove()
{
    QFETCH(QString, how);
    open(m_point.get());
    QVERIFY(confirm());
    m_fx.transport()->clearRequests();
    QVERIFY(press());
    auto *move = child<TouchButton>(m_dialog, "btnMove");
    QCOMPARE(QApplication::focusWidget(), static_cast<QWidget *>(move));
    m_fx.transport()->clearRequests();

    QWidget other;
    std::unique_ptr<orba::ModuleObject> otherPoint;
    if (how == QLatin1String("release")) {
        QTest::mouseRelease(move, Qt::LeftButton);
    } else if (how == QLatin1String("hide")) {
        move->hide();
    } else if (how == QLatin1String("disable")) {
        move->setEnabled(false);
    } else if (how == QLatin1String("focus")) {
        child<QPushButton>(m_dialog, "btnClose")->setFocus();
    } else if (how == QLatin1String("window")) {
        other.show();
        QApplication::setActiveWindow(&other);
        QVERIFY(QTest::qWaitForWindowActive(&other));
    } else if (how == QLatin1String("back")) {
        m_dialog->goBack();
    } else if (how == QLatin1String("close")) {
        m_dialog->close();
    } else if (how == QLatin1String("reject")) {
        m_dialog->reject();
    } else if (how == QLatin1String("hidedialog")) {
        m_dialog->hide();
    } else if (how == QLatin1String("delete")) {
        delete m_dialog.data();
    } else if (how == QLatin1String("replace")) {
        otherPoint = makePoint(QStringLiteral("retract"), {{0.5, 0, 0.5}}, {{0, 0, 0}}, {});
        auto motion = motionRequest(QStringLiteral("l"), QStringLiteral("no use"), 300);
        QPointer<MoveToDialog> old = m_dialog;
        m_dialog = new MoveToDialog(motion.get(), otherPoint.get());
        QVERIFY(!old);
    } else if (how == QLatin1String("point")) {
        m_point.reset();
    }
    QCoreApplication::processEvents();
    QVERIFY2(moveMethods().contains(QStringLiteral("move.stop")), qPrintable(moveMethods().join(',')));
    if (m_dialog && how != QLatin1String("replace")) {
        QVERIFY(!m_dialog->isMoving());
        QVERIFY(!child<TouchButton>(m_dialog, "btnMove")->isHeld());
    }
    // Nothing resumes without a new press.
    m_fx.transport()->clearRequests();
    QTest::qWait(300);
    QVERIFY2(moveMethods().isEmpty(), qPrintable(moveMethods().join(',')));
    QVERIFY(m_fx.transport()->methods().isEmpty()); // no poll either
    if (m_dialog && how != QLatin1String("replace") && m_dialog->isVisible())
        QTest::mouseRelease(child<TouchButton>(m_dialog, "btnMove"), Qt::LeftButton);
}

void TstMoveToDialog::linkLossStopsAndNeedsNewPress()
{
    open(m_point.get());
    QVERIFY(confirm());
    QVERIFY(press());
    auto *move = child<TouchButton>(m_dialog, "btnMove");
    m_fx.transport()->clearRequests();
    m_fx.disconnectController();
    QVERIFY(!m_dialog->isMoving());
    QVERIFY(!move->isHeld());
    QVERIFY(!move->isEnabled());
    QCOMPARE(errorEntries().value(0).value("title").toString(), QStringLiteral("The controller link is lost, the move is stopped!"));
    // No link: nothing could be sent, and the poll has stopped.
    QTest::qWait(300);
    QVERIFY(m_fx.transport()->methods().isEmpty());

    m_fx.connectController();
    QVERIFY(move->isEnabled());
    m_fx.transport()->clearRequests();
    QTest::qWait(300);
    QVERIFY2(moveMethods().isEmpty(), qPrintable(moveMethods().join(',')));
    QVERIFY(!m_dialog->isMoving());
    // The operator lets go and presses again: a new move.
    QTest::mouseRelease(move, Qt::LeftButton);
    QVERIFY(press());
    QVERIFY(moveMethods().contains(QStringLiteral("move.opr.enough")));
    release();
}

void TstMoveToDialog::monitorUpdatesCurrentColumn()
{
    open(m_point.get());
    QVERIFY(confirm());
    QCOMPARE(cell(1, 1)->text(), fmt(500.0));
    QVERIFY(press());
    auto moved = makePoint(QStringLiteral("posture"), {{0.55, -0.15, 0.35}}, {{M_PI, 0.0, 1.0}}, {0.1, -1.2, 1.3, -1.6, -1.5, 0.2});
    m_fx.transport()->setReply(QStringLiteral("sys.posture"), 0, orba::json::write(moved.get()));
    QTRY_COMPARE_WITH_TIMEOUT(cell(1, 1)->text(), fmt(550.0), 2000);
    QCOMPARE(cell(2, 1)->text(), fmt(-150.0));
    QCOMPARE(cell(3, 1)->text(), fmt(350.0));
    QCOMPARE(cell(6, 1)->text(), fmt(1.0 / M_PI * 180.0));
    // The target column stays.
    QCOMPARE(cell(1, 3)->text(), fmt(600.0));
    release();
    // Released: no more updates.
    moved = makePoint(QStringLiteral("posture"), {{0.1, 0.1, 0.1}}, {{0, 0, 0}}, {0, 0, 0, 0, 0, 0});
    m_fx.transport()->setReply(QStringLiteral("sys.posture"), 0, orba::json::write(moved.get()));
    QTest::qWait(450);
    QCOMPARE(cell(1, 1)->text(), fmt(550.0));
}

void TstMoveToDialog::moveErrorIsLogged_data()
{
    QTest::addColumn<QByteArray>("event");
    QTest::addColumn<QString>("text");
    QTest::newRow("error") << QByteArray("{\"error\":1,\"data\":{\"id\":\"unreachable\",\"msg\":\"target out of reach\"}}")
                           << "target out of reach";
    QTest::newRow("error 0 is no error") << QByteArray("{\"error\":0,\"data\":{\"id\":\"\",\"msg\":\"ok\"}}") << "";
    QTest::newRow("no error field") << QByteArray("{\"data\":{\"msg\":\"?\"}}") << "";
}

void TstMoveToDialog::moveErrorIsLogged()
{
    QFETCH(QByteArray, event);
    QFETCH(QString, text);
    open(m_point.get());
    QVERIFY(confirm());
    QVERIFY(press());
    // Twice: a repeated error is still reported.
    m_fx.transport()->emitEvent(kMoveError, event);
    QCoreApplication::processEvents();
    m_fx.transport()->emitEvent(kMoveError, event);
    QCoreApplication::processEvents();
    const QList<QVariantMap> errors = errorEntries();
    if (text.isEmpty()) {
        QVERIFY(errors.isEmpty());
    } else {
        QCOMPARE(errors.size(), 2);
        QCOMPARE(errors.first().value("title").toString(), QStringLiteral("SDK Move Error"));
        QCOMPARE(errors.first().value("text").toString(), text);
    }
    // The move stays governed by the button.
    QVERIFY(m_dialog->isMoving());
    release();
}

// ----------------------------------------------------------------------------------------------

void TstMoveToDialog::simLinearMoveAtSpeedOnLine()
{
    QVERIFY(startSim());
    const Posture start = robotPosture();
    QVERIFY(start.valid);
    std::array<double, 3> target = start.trans;
    target[1] += 0.04;
    target[2] -= 0.12;
    m_point = makePoint(QStringLiteral("wobj"), target, start.rot, start.near, QStringLiteral("P6"));
    open(m_point.get());
    child<QComboBox>(m_dialog, "cmbSpeed")->setCurrentText(QStringLiteral("v100"));
    const double speed = 0.1;
    QVERIFY(confirm());

    QElapsedTimer clock;
    clock.start();
    QVERIFY(press());
    double worst = 0.0;
    int polls = 0;
    Posture last = start;
    qint64 lastAt = 0;
    while (clock.elapsed() < 500) {
        QTest::qWait(15);
        last = robotPosture();
        lastAt = clock.elapsed();
        worst = std::max(worst, distanceToSegment(last.trans, start.trans, target));
        ++polls;
    }
    release();
    const qint64 held = clock.elapsed();
    const Posture stopped = robotPosture();
    QTest::qWait(300);
    const Posture later = robotPosture();

    const double moved = distance(stopped.trans, start.trans);
    const double expected = speed * held / 1000.0;
    qInfo("Move L: held %lld ms, moved %.2f mm (expected %.2f mm at %.0f mm/s), %d polls, worst off-line %.4f mm, "
          "%.3f mm after the last poll %lld ms before the release",
          held, moved * 1000, expected * 1000, speed * 1000, polls, worst * 1000,
          distance(stopped.trans, last.trans) * 1000, held - lastAt);
    QVERIFY(polls >= 5);
    QVERIFY2(worst < 0.001, qPrintable(QString::number(worst)));
    QVERIFY2(distanceToSegment(stopped.trans, start.trans, target) < 0.001, "stopped on the line");
    QVERIFY2(std::abs(moved - expected) <= 0.25 * expected, qPrintable(QStringLiteral("%1 vs %2").arg(moved).arg(expected)));
    // Stopped within a controller tick (10 ms) of the release; still 300 ms later.
    QVERIFY(distance(stopped.trans, last.trans) <= speed * ((held - lastAt) / 1000.0 + 0.02));
    QVERIFY2(distance(later.trans, stopped.trans) < 1e-9, "no motion after the release");
    QCOMPARE(later.near, stopped.near);
    // Far from the end: the release stopped it, not the arrival.
    QVERIFY(distance(stopped.trans, target) > 0.03);
    // The monitor showed the motion.
    QVERIFY(cell(3, 1)->text() != fmt(start.trans[2] * 1000.0));
}

void TstMoveToDialog::simAbsJointEndsOnNear()
{
    QVERIFY(startSim());
    const Posture start = robotPosture();
    QVector<double> near = start.near;
    const double delta[] = {0.2, -0.1, 0.15, 0.0, 0.1, -0.2};
    for (int i = 0; i < 6; ++i)
        near[i] += delta[i];
    // A pose that no arm can reach: only the joints are used.
    m_point = makePoint(QStringLiteral("wobj"), {{5.0, 5.0, 5.0}}, {{0, 0, 0}}, near);
    open(m_point.get(), QStringLiteral("j"), QStringLiteral("joint"));
    QCOMPARE(child<QComboBox>(m_dialog, "cmbMoveType")->currentText(), QStringLiteral("Move AbsJ"));
    child<QComboBox>(m_dialog, "cmbSpeed")->setCurrentText(QStringLiteral("v500"));
    QVERIFY(confirm());
    QVERIFY(press());
    QTRY_VERIFY_WITH_TIMEOUT(robotPosture().near == near, 5000);
    release();
    const Posture end = waitStill();
    for (int i = 0; i < 6; ++i)
        QVERIFY2(std::abs(end.near[i] - near[i]) < 1e-9, qPrintable(QString::number(i)));
    QVERIFY(errorEntries().isEmpty());
}

void TstMoveToDialog::simOffsShiftsEnd()
{
    QVERIFY(startSim());
    const Posture start = robotPosture();
    std::array<double, 3> point = start.trans;
    point[2] -= 0.05;
    m_point = makePoint(QStringLiteral("wobj"), point, start.rot, start.near);
    open(m_point.get());
    child<QComboBox>(m_dialog, "cmbSpeed")->setCurrentText(QStringLiteral("v300"));
    QTest::mouseClick(child<QRadioButton>(m_dialog, "rdbOffsetXyz"), Qt::LeftButton);
    child<QLineEdit>(m_dialog, "edtOffsetX")->setText(QStringLiteral("20"));
    child<QLineEdit>(m_dialog, "edtOffsetY")->setText(QStringLiteral("-10"));
    child<QLineEdit>(m_dialog, "edtOffsetZ")->setText(QStringLiteral("30"));
    QVERIFY(confirm());
    QCOMPARE(cell(1, 4)->text(), fmt(20.0));
    QCOMPARE(cell(3, 4)->text(), fmt(30.0));
    const std::array<double, 3> expected{{point[0] + 0.02, point[1] - 0.01, point[2] + 0.03}};
    QVERIFY(press());
    QTRY_VERIFY_WITH_TIMEOUT(distance(robotPosture().trans, expected) < 1e-6, 5000);
    release();
    const Posture end = waitStill();
    QVERIFY2(distance(end.trans, expected) < 1e-6, qPrintable(QString::number(distance(end.trans, expected))));
    // The point itself is untouched.
    QCOMPARE(m_point->r(QStringLiteral("trans.#0"))->getDouble(), point[0]);
    QVERIFY(errorEntries().isEmpty());
}

void TstMoveToDialog::simMoveErrors_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("reason");
    QTest::newRow("unreachable point") << "unreachable" << "target out of reach";
    QTest::newRow("speed not offered: speed 0") << "speed" << "\"traj.speed\" must be a positive number";
    QTest::newRow("power off after confirming") << "power" << "the robot is powered off";
    QTest::newRow("joint target beyond its limits") << "limit" << "target joint 3 out of its limits";
    QTest::newRow("joint move to a point without joints") << "malformed" << "\"point\": pose \"trans\" must be 3 numbers";
}

void TstMoveToDialog::simMoveErrors()
{
    QFETCH(QString, kind);
    QFETCH(QString, reason);
    QVERIFY(startSim());
    const Posture start = robotPosture();
    int speed = 300;
    QString type = QStringLiteral("l"), toolset = QStringLiteral("no use");
    if (kind == QLatin1String("unreachable")) {
        m_point = makePoint(QStringLiteral("wobj"), {{2.5, 0.0, 0.3}}, start.rot, start.near);
    } else {
        std::array<double, 3> target = start.trans;
        target[2] -= 0.05;
        QVector<double> near = start.near;
        if (kind == QLatin1String("limit"))
            near[2] = 4.0;
        if (kind == QLatin1String("malformed"))
            near.clear();
        m_point = makePoint(QStringLiteral("wobj"), target, start.rot, near);
        if (kind == QLatin1String("speed"))
            speed = 350;
        if (kind == QLatin1String("limit") || kind == QLatin1String("malformed"))
            type = QStringLiteral("j"), toolset = QStringLiteral("joint");
    }
    open(m_point.get(), type, toolset, speed);
    QVERIFY(confirm());
    if (kind == QLatin1String("power")) {
        orba::ModuleObject off(QStringLiteral("power"));
        off.setValue(nullptr, QStringLiteral("off"));
        QCOMPARE(tservice()->set(nullptr, QStringLiteral("sys.power"), &off), 0);
    }
    QVERIFY(press());
    QTRY_VERIFY_WITH_TIMEOUT(!errorEntries().isEmpty(), 3000);
    QTest::qWait(100);
    const QList<QVariantMap> errors = errorEntries();
    // One entry per refused move, with the controller's reason.
    QCOMPARE(errors.size(), 1);
    QCOMPARE(errors.first().value("title").toString(), QStringLiteral("SDK Move Error"));
    QCOMPARE(errors.first().value("text").toString(), reason);
    release();
    const Posture end = waitStill();
    QVERIFY(distance(end.trans, start.trans) < 1e-9);
}

void TstMoveToDialog::simDestroyedMidMoveStops_data()
{
    QTest::addColumn<QString>("how");
    QTest::newRow("deleted") << "delete";
    QTest::newRow("replaced through the registry") << "replace";
    QTest::newRow("closed") << "close";
    QTest::newRow("point removed from the tree") << "point";
}

void TstMoveToDialog::simDestroyedMidMoveStops()
{
    QFETCH(QString, how);
    QVERIFY(startSim());
    const Posture start = robotPosture();
    std::array<double, 3> target = start.trans;
    target[2] -= 0.2;
    m_point = makePoint(QStringLiteral("wobj"), target, start.rot, start.near);
    open(m_point.get());
    child<QComboBox>(m_dialog, "cmbSpeed")->setCurrentText(QStringLiteral("v100"));
    QVERIFY(confirm());
    QVERIFY(press());
    QTRY_VERIFY_WITH_TIMEOUT(distance(robotPosture().trans, start.trans) > 0.005, 3000);
    std::unique_ptr<orba::ModuleObject> other;
    if (how == QLatin1String("delete")) {
        delete m_dialog.data();
    } else if (how == QLatin1String("replace")) {
        other = makePoint(QStringLiteral("approach"), start.trans, start.rot, start.near);
        tpallet::moveToPoint(other.get(), nullptr);
    } else if (how == QLatin1String("close")) {
        m_dialog->close();
    } else {
        m_point.reset();
    }
    const Posture stopped = robotPosture();
    QTest::qWait(300);
    const Posture later = robotPosture();
    QVERIFY2(distance(later.trans, stopped.trans) < 1e-9,
             qPrintable(QStringLiteral("moved %1 mm after the dialog went").arg(distance(later.trans, stopped.trans) * 1000)));
    QVERIFY(distance(stopped.trans, target) > 0.1);
    PalletFixture::flushDeletes();
    if (how != QLatin1String("replace"))
        QVERIFY(!m_dialog);
    // A replacing dialog starts idle.
    if (how == QLatin1String("replace")) {
        QObject *current = kx::globalNode(QStringLiteral("tpallet.move.dialog"))->value().value<QObject *>();
        m_dialog = qobject_cast<MoveToDialog *>(current);
        QVERIFY(m_dialog);
        QVERIFY(!m_dialog->isMoving());
    }
}

void TstMoveToDialog::tcpLinkDropStopsRobot()
{
#ifndef RCSIM_BIN
    QSKIP("rcsim is not built");
#else
    QTemporaryDir data;
    QProcess rcsim;
    rcsim.start(QStringLiteral(RCSIM_BIN), {QStringLiteral("--listen"), QStringLiteral("127.0.0.1:0"),
                                            QStringLiteral("--data"), data.path()});
    QVERIFY(rcsim.waitForStarted(5000));
    QByteArray out;
    QElapsedTimer wait;
    wait.start();
    while (!out.contains('\n') && wait.elapsed() < 5000) {
        rcsim.waitForReadyRead(100);
        out += rcsim.readAllStandardOutput();
    }
    const QRegularExpressionMatch m = QRegularExpression(QStringLiteral("listening on [^:]+:(\\d+)")).match(QString::fromLatin1(out));
    QVERIFY2(m.hasMatch(), out.constData());
    const quint16 port = quint16(m.captured(1).toUInt());

    orbat::TcpTransport link(QStringLiteral("127.0.0.1"), port);
    // Whatever happens below, the service lets go of the link before it goes, and rcsim ends.
    struct Detach
    {
        QProcess *process;
        ~Detach()
        {
            tservice()->setTransport(nullptr);
            process->kill();
            process->waitForFinished(5000);
        }
    } detach{&rcsim};
    tservice()->setTransport(&link);
    link.open();
    QTRY_VERIFY_WITH_TIMEOUT(tservice()->controllerManager()->isConnected(), 5000);
    // A second connection watches the robot, as another pendant would.
    orbat::TcpTransport observer(QStringLiteral("127.0.0.1"), port);
    observer.open();
    QTRY_VERIFY_WITH_TIMEOUT(observer.isConnected(), 5000);
    qint64 id = 0;
    const auto observe = [&observer, &id]() {
        ++id;
        const QByteArray line = "{\"id\":" + QByteArray::number(id) + ",\"op\":\"get\",\"method\":\"sys.posture\"}";
        const std::optional<QByteArray> reply = observer.request(id, line, 3000);
        std::array<double, 3> t{{NAN, NAN, NAN}};
        if (!reply)
            return t;
        const QJsonArray trans = QJsonDocument::fromJson(*reply).object()["result"].toObject()["data"].toObject()["trans"].toArray();
        for (int i = 0; i < 3 && i < trans.size(); ++i)
            t[i] = trans.at(i).toDouble();
        return t;
    };

    const Posture start = robotPosture();
    QVERIFY(start.valid);
    std::array<double, 3> target = start.trans;
    target[2] -= 0.2;
    m_point = makePoint(QStringLiteral("wobj"), target, start.rot, start.near);
    open(m_point.get());
    child<QComboBox>(m_dialog, "cmbSpeed")->setCurrentText(QStringLiteral("v100"));
    QVERIFY(confirm());
    QVERIFY(press());
    QTRY_VERIFY_WITH_TIMEOUT(distance(observe(), start.trans) > 0.01, 3000);

    // The link drops while the button is held: the dialog cannot send "move.stop" any more.
    link.close();
    QTRY_VERIFY_WITH_TIMEOUT(!tservice()->controllerManager()->isConnected(), 3000);
    QVERIFY(!m_dialog->isMoving());
    QVERIFY(!child<TouchButton>(m_dialog, "btnMove")->isEnabled());
    QTest::qWait(100);
    const std::array<double, 3> stopped = observe();
    QTest::qWait(300);
    const std::array<double, 3> later = observe();
    qInfo("link dropped %.1f mm into a 200 mm move; %.6f mm of motion in the 300 ms after",
          distance(stopped, start.trans) * 1000, distance(later, stopped) * 1000);
    QVERIFY2(distance(later, stopped) < 1e-9, "the controller stops the motion of a connection that ends");
    QVERIFY(distance(stopped, target) > 0.1);

    delete m_dialog.data();
    observer.close();
#endif
}

void TstMoveToDialog::jogPanelWorksBesideDialog()
{
#ifndef TPALLET_WITH_JOGPANEL
    QSKIP("the shell's jog panel is not built");
#else
    QVERIFY(startSim());
    // The shell: a window with the page area and the jog panel.
    QWidget shell;
    auto *layout = new QVBoxLayout(&shell);
    auto *page = new QWidget(&shell);
    auto *step = new QWidget(page);
    auto *moveTo = new QPushButton(step);
    layout->addWidget(page);
    auto *jog = new JogPanel(&shell);
    layout->addWidget(jog);
    shell.resize(900, 700);
    shell.show();
    QVERIFY(QTest::qWaitForWindowExposed(&shell));
    jog->findChild<QComboBox *>(QStringLiteral("cmbJogFrame"))->setCurrentIndex(
        jog->findChild<QComboBox *>(QStringLiteral("cmbJogFrame"))->findData(QStringLiteral("joint")));
    jog->findChild<QComboBox *>(QStringLiteral("cmbJogStep"))->setCurrentIndex(2); // 1 degree
    QCOMPARE(jog->frame(), QStringLiteral("joint"));
    QVERIFY(!jog->isContinuous());

    const Posture start = robotPosture();
    m_point = makePoint(QStringLiteral("wobj"), start.trans, start.rot, start.near);
    m_dialog = tpallet::moveToPoint(m_point.get(), moveTo);
    QVERIFY(QTest::qWaitForWindowExposed(m_dialog));
    QVERIFY(confirm());
    QVERIFY(!QApplication::activeModalWidget());

    // A click that goes through the window system, as a finger would: a modal window would eat it.
    auto *plus = jog->findChild<TouchButton *>(QStringLiteral("btnJogPlus0"));
    QVERIFY(plus);
    const auto clickPlus = [&shell, plus] {
        QTest::mouseClick(shell.windowHandle(), Qt::LeftButton, Qt::NoModifier, plus->mapTo(&shell, plus->rect().center()));
        QCoreApplication::processEvents();
    };
    clickPlus();
    const Posture jogged = robotPosture();
    QVERIFY2(std::abs(jogged.near[0] - start.near[0] - kDeg) < 1e-9,
             qPrintable(QStringLiteral("J1 %1 -> %2").arg(start.near[0]).arg(jogged.near[0])));
    QVERIFY(m_dialog->isVisible());

    // The same click with a modal dialog open does not reach the panel: the check above means something.
    QDialog modal(&shell);
    modal.setModal(true);
    modal.show();
    QVERIFY(QTest::qWaitForWindowExposed(&modal));
    clickPlus();
    QCOMPARE(robotPosture().near[0], jogged.near[0]);
    modal.hide();
    QCoreApplication::processEvents();
    clickPlus();
    QVERIFY(std::abs(robotPosture().near[0] - jogged.near[0] - kDeg) < 1e-9);
    delete m_dialog.data();
#endif
}

QTEST_MAIN(TstMoveToDialog)
#include "tst_movetodialog.moc"
