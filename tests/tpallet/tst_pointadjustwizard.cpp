#include "palletfixture.h"
#include "pendanttestutil.h"

#include "dialogs/movetodialog.h"
#include "module/pointgen.h"
#include "module/posenode.h"
#include "module/toolset.h"
#include "pages/newpalletdialog.h"
#include "pages/palletpage.h"
#include "pages/palletsetdialog.h"
#include "wizards/imagewidget.h"
#include "wizards/pointadjustwizard.h"
#include "wizards/pointcheck.h"

#include <controller/armsolver.h>
#include <controller/robotmodel.h>
#include <kx/globaluniqueptr.h>
#include <kx/kx.h>
#include <orba/creatormanager.h>
#include <orba/names.h>
#include <orbat/tcptransport.h>
#include <tcore/settingmanager.h>

#include <QComboBox>
#include <QDoubleSpinBox>
#include <QGroupBox>
#include <QLabel>
#include <QListView>
#include <QPointer>
#include <QProcess>
#include <QProgressDialog>
#include <QPushButton>
#include <QSignalSpy>
#include <QTimer>
#include <QtTest>

#include <cmath>
#include <functional>
#include <memory>

namespace {

const char *const kCheck = "move.l.check";

// Either controller simulator, as a test row asks.
class SimLink
{
public:
    bool start(bool overTcp)
    {
        m_tcp = overTcp;
        return overTcp ? m_tcpLink.start() : m_embedded.start();
    }
    // Drops the link and lets it come back, as a controller restart or a network hiccup would.
    void bounce()
    {
        if (m_tcp) {
            m_tcpLink.transport()->close();
            m_tcpLink.transport()->open();
        } else {
            // An embedded session does not reopen: a new controller on the same store.
            m_embedded.stop();
            m_embedded.start();
        }
    }
    bool overTcp() const { return m_tcp; }

private:
    bool m_tcp = false;
    EmbeddedLink m_embedded;
    RcsimLink m_tcpLink;
};

// The tool of the simulated cell: 120 mm along the flange's z axis, pointing down.
constexpr double kToolLength = 0.12;

rc::Pose poseOf(orba::ModuleObject *node)
{
    rc::Pose pose;
    for (int i = 0; i < 3; ++i) {
        pose.trans[i] = node->r(QStringLiteral("trans.#%1").arg(i))->getDouble();
        pose.rot[i] = node->r(QStringLiteral("rot.#%1").arg(i))->getDouble();
    }
    for (int i = 0; i < 6; ++i)
        pose.near[i] = node->r(QStringLiteral("near.#%1").arg(i))->getDouble();
    pose.hasNear = true;
    return pose;
}

} // namespace

class TestPointAdjustWizard : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    // Form and navigation.
    void formWidgetsAndTexts();
    void pictureFollowsLanguage_data();
    void pictureFollowsLanguage();
    void comboListsEveryPlaceOnce();
    void indexShowsItsThreePoses();
    void stepsStopAtTheEnds_data();
    void stepsStopAtTheEnds();
    void versionIsRegistered();

    // Entering the step.
    void entrySwitchesPalletToolset();
    void entryFailureAndUncalibratedAreLogged();

    // Adjusting one point.
    void resetShowsFreshlyGeneratedValues();
    void adjustConfirmedStoresOnePoint_data();
    void adjustConfirmedStoresOnePoint();
    void adjustRefusedRestoresEditors_data();
    void adjustRefusedRestoresEditors();
    void accquireTeachesEditorsOnly_data();
    void accquireTeachesEditorsOnly();
    void failedAccquireKeepsEditors();
    void adjustPointTakesApproachEditors();
    void adjustPointWithWobjValuesShiftsNothing();
    void adjustPointRefusedChangesNothing();
    void moveToDrivesToShownValues_data();
    void moveToDrivesToShownValues();
    void nextMoveToReplacesTarget();

    // The reachability check against a scripted controller.
    void emptyPalletPasses();
    void checkSendsBothSegmentsOfEveryPlace();
    void refusedSegmentsAreReported();
    void manyFailuresStopTheCheck_data();
    void manyFailuresStopTheCheck();
    void cancelAfterFailuresStillWarns();
    void cancelWithoutFailuresIsQuiet();
    void lostLinkCountsAsRefused();
    void goneUnderneathEndsCleanly_data();
    void goneUnderneathEndsCleanly();

    // The configuration dialog.
    void pointCheckModeShowsThisStep();
    void lastStepOfFullConfiguration();

    // The controller simulator.
    void farPlacesAreReported_data();
    void farPlacesAreReported();
    void palletInReachPasses_data();
    void palletInReachPasses();
    void cancelMidCheckOnSimulator();
    void palletGoesDuringSimulatorCheck_data();
    void palletGoesDuringSimulatorCheck();
    void bigPalletOverTcpKeepsLink();

private:
    PointAdjustWizard *open();
    void addPallet();
    QDoubleSpinBox *spin(const QString &name) const { return m_step->findChild<QDoubleSpinBox *>(name); }
    QPushButton *button(const QString &name) const { return m_step->findChild<QPushButton *>(name); }
    QComboBox *combo() const { return m_step->findChild<QComboBox *>(QStringLiteral("cmbPoint")); }
    void click(const QString &name) { QTest::mouseClick(button(name), Qt::LeftButton); }
    void type(const QString &spinName, const QString &text);
    orba::ModuleObject *point(int index, const QString &child) const
    {
        return m_pallet->r(QStringLiteral("points.#%1.%2").arg(index).arg(child));
    }
    QList<tcore::ManagerHelper::MsgRecord> messages() const { return tcore::ManagerHelper::instance()->msgHistory(); }
    // Runs `action` from the check's event processing once `count` segments were asked.
    void afterChecks(int count, std::function<void()> action);
    void clickCancel();
    // Scripted refusals by place index and segment (0: P5->P6, 1: P6->P7).
    void refuse(const QSet<QPair<int, int>> &segments);
    void buildCellPallet(int row, int col, double xSpan, double ySpan);
    QStringList expectedFailures();

    PalletFixture m_fx;
    QPointer<orba::ModuleObject> m_pallet;
    QPointer<PointAdjustWizard> m_step;
    QPointer<PalletSetDialog> m_dialog;
    int m_checks = 0;
};

void TestPointAdjustWizard::init()
{
    m_fx.setUp();
    tcore::SettingManager::instance()->setStorage(QString());
    tcore::SettingManager::setStr(QStringLiteral("language"), QStringLiteral("en"));
    m_fx.transport()->setReply(QStringLiteral("tray.set.one"), 0);
    m_fx.transport()->setReply(QStringLiteral("sys.toolset"), 0);
    m_fx.connectController();
    orba::m()->set(nullptr, QStringLiteral("tcore.r.level"), 3, true);
    kx::globalNode(QStringLiteral("tormo.toolpage.toolset"))->setValue(nullptr, QString(QLatin1String("")), true);
    addPallet();
    m_checks = 0;
}

void TestPointAdjustWizard::addPallet()
{
    m_pallet = PalletFixture::addLocalPallet(QStringLiteral("tray0"), 2, 3);
    tpallet::identityToolsetNode(m_pallet->c(QStringLiteral("calibrate"))->c(QStringLiteral("toolset"), true));
    m_pallet->set(nullptr, QStringLiteral("calibrate.x_span"), 0.4);
    m_pallet->set(nullptr, QStringLiteral("calibrate.y_span"), 0.3);
    tpallet::initWayPointNode(m_pallet);
    m_pallet->set(nullptr, QStringLiteral("waypoint.wobj.trans.#2"), 0.1);
    m_pallet->set(nullptr, QStringLiteral("waypoint.approach.trans.#2"), 0.3);
    m_pallet->set(nullptr, QStringLiteral("waypoint.retract.trans.#1"), -0.05);
    m_pallet->set(nullptr, QStringLiteral("waypoint.retract.trans.#2"), 0.3);
    tpallet::generatePoints1(m_pallet, nullptr);
}

void TestPointAdjustWizard::cleanup()
{
    delete kx::uniqueObject(QStringLiteral("tpallet.move.dialog"));
    delete m_dialog.data();
    delete m_step.data();
    tcore::ManagerHelper::instance()->setMsgBoxObserver(nullptr);
    m_fx.tearDown();
}

PointAdjustWizard *TestPointAdjustWizard::open()
{
    m_step = new PointAdjustWizard(m_pallet, nullptr);
    m_step->resize(1156, 600);
    m_step->show();
    return m_step;
}

void TestPointAdjustWizard::type(const QString &spinName, const QString &text)
{
    QDoubleSpinBox *box = spin(spinName);
    box->setFocus();
    box->selectAll();
    QTest::keyClicks(box, text);
}

void TestPointAdjustWizard::afterChecks(int count, std::function<void()> action)
{
    auto done = std::make_shared<bool>(false);
    m_fx.transport()->setHandler([this, count, action, done](const orbat::ScriptedTransport::Request &request) {
        orbat::ScriptedTransport::Reply reply;
        if (request.method == QLatin1String(kCheck) && ++m_checks >= count && !*done) {
            *done = true;
            QTimer::singleShot(0, action);
        }
        return reply;
    });
}

void TestPointAdjustWizard::clickCancel()
{
    QProgressDialog *progress = m_step ? m_step->checkProgress() : nullptr;
    QVERIFY(progress);
    auto *cancel = progress->findChild<QPushButton *>();
    QVERIFY(cancel);
    QCOMPARE(cancel->text(), QStringLiteral("Cancel"));
    QTest::mouseClick(cancel, Qt::LeftButton);
}

void TestPointAdjustWizard::refuse(const QSet<QPair<int, int>> &segments)
{
    // The places of the fixture all differ in x or y: find the index by the place's position.
    QList<QPair<double, double>> places;
    for (int i = 0; i < m_pallet->c(QStringLiteral("points"))->cmobjCount(); ++i)
        places.append({point(i, QStringLiteral("wobj.trans.#0"))->getDouble(), point(i, QStringLiteral("wobj.trans.#1"))->getDouble()});
    m_fx.transport()->setHandler([places, segments](const orbat::ScriptedTransport::Request &request) {
        orbat::ScriptedTransport::Reply reply;
        if (request.method != QLatin1String(kCheck))
            return reply;
        // P5 -> P6 ends on the place; P6 -> P7 starts on it.
        orba::ModuleObject *end = request.params->r(QStringLiteral("point1"));
        orba::ModuleObject *start = request.params->r(QStringLiteral("point0"));
        const bool toPlace = end->r(QStringLiteral("trans.#2"))->getDouble() < 0.2;
        orba::ModuleObject *place = toPlace ? end : start;
        const QPair<double, double> xy(place->r(QStringLiteral("trans.#0"))->getDouble(),
                                       place->r(QStringLiteral("trans.#1"))->getDouble());
        const int index = places.indexOf(xy);
        if (segments.contains({index, toPlace ? 0 : 1})) {
            reply.status = 1;
            reply.dataJson = QStringLiteral("{\"id\":\"unreachable\",\"msg\":\"sample 3 of 50: no solution %1\",\"sample\":3}")
                                 .arg(index)
                                 .toUtf8();
        }
        return reply;
    });
}

// ---------------------------------------------------------------------------------------------

void TestPointAdjustWizard::formWidgetsAndTexts()
{
    open();
    QCOMPARE(m_step->findChild<QGroupBox *>(QStringLiteral("grbIndex"))->title(), QStringLiteral("Work Object Index"));
    QCOMPARE(m_step->findChild<QGroupBox *>(QStringLiteral("grbApproach"))->title(), QStringLiteral("Approach Point"));
    QCOMPARE(m_step->findChild<QGroupBox *>(QStringLiteral("grbWobj"))->title(), QStringLiteral("Wobj Point"));
    QCOMPARE(m_step->findChild<QGroupBox *>(QStringLiteral("grbRetract"))->title(), QStringLiteral("Retract Point"));
    QCOMPARE(button(QStringLiteral("btnReset"))->text(), QStringLiteral("Reset"));
    QCOMPARE(button(QStringLiteral("btnCheck"))->text(), QStringLiteral("Check Access"));
    for (const char *name : {"btnAccquireApproach", "btnAccquireWobj", "btnAccquireRetract"})
        QCOMPARE(button(QLatin1String(name))->text(), QStringLiteral("Accquire"));
    for (const char *name : {"btnSaveApproach", "btnSaveWobj", "btnSaveRetract"})
        QCOMPARE(button(QLatin1String(name))->text(), QStringLiteral("Adjust"));
    for (const char *name : {"btnMoveToWobj", "btnMoveToRetract"})
        QCOMPARE(button(QLatin1String(name))->text(), QStringLiteral("Move To"));

    QVERIFY(combo()->minimumWidth() >= 150 && combo()->minimumHeight() >= 36);
    QVERIFY(qobject_cast<QListView *>(combo()->view()));
    QCOMPARE(combo()->view()->metaObject()->className(), "QListView");
    for (const char *name : {"btnAddIndex", "btnSubIndex"}) {
        QPushButton *step = button(QLatin1String(name));
        QVERIFY2(step, name);
        QCOMPARE(step->minimumSize(), QSize(40, 36));
    }

    auto *image = m_step->findChild<ImageWidget *>(QStringLiteral("wgtImage"));
    QVERIFY(image);
    QVERIFY(image->styleSheet().contains(QLatin1String("background: rgb(54, 54, 54);")));

    // Every pose editor: six per box, found by the pose helpers' keys, over the full range.
    const QList<QPair<QString, QString>> boxes{{"grbApproach", ""}, {"grbWobj", "_2"}, {"grbRetract", "_3"}};
    for (const auto &box : boxes) {
        auto *group = m_step->findChild<QGroupBox *>(box.first);
        QCOMPARE(group->findChildren<QDoubleSpinBox *>().size(), 6);
        for (const char *key : {"X", "Y", "Z", "A", "B", "C"}) {
            auto *editor = group->findChild<QDoubleSpinBox *>(QStringLiteral("dspn%1%2").arg(QLatin1String(key), box.second));
            QVERIFY2(editor, qPrintable(box.first + key));
            QCOMPARE(editor->minimum(), -10000.0);
            QCOMPARE(editor->maximum(), 10000.0);
        }
    }
    // A tap on a button leaves the focus in the editor.
    for (QPushButton *b : m_step->findChildren<QPushButton *>())
        QCOMPARE(b->focusPolicy(), Qt::NoFocus);
}

void TestPointAdjustWizard::pictureFollowsLanguage_data()
{
    QTest::addColumn<QString>("language");
    QTest::addColumn<QString>("picture");
    QTest::newRow("chinese") << "cn" << ":/tpallet/images/pallet/waypoint.png";
    QTest::newRow("english") << "en" << ":/tpallet/images/pallet/waypoint_en.png";
    QTest::newRow("japanese") << "jp" << ":/tpallet/images/pallet/waypoint_en.png";
    QTest::newRow("upper-case CN is not cn") << "CN" << ":/tpallet/images/pallet/waypoint_en.png";
}

void TestPointAdjustWizard::pictureFollowsLanguage()
{
    QFETCH(QString, language);
    QFETCH(QString, picture);
    tcore::SettingManager::setStr(QStringLiteral("language"), language);
    open();
    const QImage shown = m_step->findChild<ImageWidget *>(QStringLiteral("wgtImage"))->pixmap().toImage();
    QVERIFY(!shown.isNull());
    QCOMPARE(shown, QImage(picture).convertToFormat(shown.format()));
    tcore::SettingManager::setStr(QStringLiteral("language"), QStringLiteral("en"));
}

void TestPointAdjustWizard::comboListsEveryPlaceOnce()
{
    open();
    QCOMPARE(combo()->count(), 6);
    for (int i = 0; i < 6; ++i)
        QCOMPARE(combo()->itemText(i), QString::number(i + 1));
    // A later regeneration does not refill it.
    m_pallet->set(nullptr, QStringLiteral("pattern.row"), 3);
    click(QStringLiteral("btnReset"));
    QCOMPARE(m_pallet->c(QStringLiteral("points"))->cmobjCount(), 9);
    QCOMPARE(combo()->count(), 6);
}

void TestPointAdjustWizard::indexShowsItsThreePoses()
{
    point(4, QStringLiteral("approach"))->set(nullptr, QStringLiteral("rot.#2"), 0.5);
    open();
    QCOMPARE(combo()->currentIndex(), 0);
    QCOMPARE(spin(QStringLiteral("dspnZ"))->value(), 300.0);
    combo()->setCurrentIndex(4);
    QCOMPARE(spin(QStringLiteral("dspnX_2"))->value(), point(4, QStringLiteral("wobj.trans.#0"))->getDouble() * 1000.0);
    QCOMPARE(spin(QStringLiteral("dspnY_2"))->value(), point(4, QStringLiteral("wobj.trans.#1"))->getDouble() * 1000.0);
    QCOMPARE(spin(QStringLiteral("dspnY"))->value(), point(4, QStringLiteral("approach.trans.#1"))->getDouble() * 1000.0);
    QCOMPARE(spin(QStringLiteral("dspnC"))->value(), std::round(0.5 * 57.29577951308232 * 100.0) / 100.0);
    QCOMPARE(spin(QStringLiteral("dspnY_3"))->value(),
             std::round(point(4, QStringLiteral("retract.trans.#1"))->getDouble() * 1000.0 * 100.0) / 100.0);
    QCOMPARE(spin(QStringLiteral("dspnZ_3"))->value(), 300.0);
}

void TestPointAdjustWizard::stepsStopAtTheEnds_data()
{
    QTest::addColumn<int>("start");
    QTest::addColumn<QString>("buttonName");
    QTest::addColumn<int>("expected");
    QTest::newRow("increment in the middle") << 2 << "btnAddIndex" << 3;
    QTest::newRow("increment on the last index") << 5 << "btnAddIndex" << 5;
    QTest::newRow("decrement in the middle") << 2 << "btnSubIndex" << 1;
    QTest::newRow("decrement on index 0") << 0 << "btnSubIndex" << 0;
}

void TestPointAdjustWizard::stepsStopAtTheEnds()
{
    QFETCH(int, start);
    QFETCH(QString, buttonName);
    QFETCH(int, expected);
    open();
    combo()->setCurrentIndex(start);
    QSignalSpy changed(combo(), QOverload<int>::of(&QComboBox::currentIndexChanged));
    click(buttonName);
    QCOMPARE(combo()->currentIndex(), expected);
    QCOMPARE(changed.count(), start == expected ? 0 : 1);
    QCOMPARE(spin(QStringLiteral("dspnY_2"))->value(), point(expected, QStringLiteral("wobj.trans.#1"))->getDouble() * 1000.0);
}

void TestPointAdjustWizard::versionIsRegistered()
{
    QCOMPARE(orba::versionManager()->create(mName(QStringLiteral("tpallet"), QStringLiteral("wizard.pointadjust"))), 3);
}

void TestPointAdjustWizard::entrySwitchesPalletToolset()
{
    m_pallet->set(nullptr, QStringLiteral("calibrate.toolset.ref.trans.#1"), -0.4);
    open();
    m_fx.transport()->clearRequests();
    tcore::ManagerHelper::instance()->clearLogHistory();
    m_step->init(true);
    const auto sent = m_fx.requestsOf(QStringLiteral("sys.toolset"));
    QCOMPARE(sent.size(), 1);
    // The places are checked in the pallet frame: the reference goes as stored.
    QCOMPARE(sent.at(0).params->r(QStringLiteral("ref.trans.#1"))->getDouble(), -0.4);
    QCOMPARE(sent.at(0).params->r(QStringLiteral("name"))->getString(), QStringLiteral("tray0"));
    const QList<QVariantMap> log = tcore::ManagerHelper::instance()->logHistory();
    QCOMPARE(log.size(), 1);
    QCOMPARE(log.at(0).value(QStringLiteral("title")).toString(), QStringLiteral("Swithed to pallet wobj"));
    QCOMPARE(log.at(0).value(QStringLiteral("level")).toString(), QStringLiteral("warning"));
    // Entering sends nothing else.
    QCOMPARE(m_fx.transport()->methods(), QStringList{QStringLiteral("sys.toolset")});
}

void TestPointAdjustWizard::entryFailureAndUncalibratedAreLogged()
{
    m_fx.transport()->setReply(QStringLiteral("sys.toolset"), -2);
    m_pallet->set(nullptr, QStringLiteral("calibrate.y_span"), 0.005);
    open();
    tcore::ManagerHelper::instance()->clearLogHistory();
    m_step->init(false);
    const QList<QVariantMap> log = tcore::ManagerHelper::instance()->logHistory();
    QCOMPARE(log.size(), 2);
    QCOMPARE(log.at(0).value(QStringLiteral("title")).toString(), QStringLiteral("swith to pallet wobj failed"));
    QCOMPARE(log.at(0).value(QStringLiteral("level")).toString(), QStringLiteral("error"));
    QCOMPARE(log.at(1).value(QStringLiteral("title")).toString(),
             QStringLiteral("The pallet's width or height is too small, it may not be calibrated!"));
    QCOMPARE(log.at(1).value(QStringLiteral("level")).toString(), QStringLiteral("warning"));
    // The step is entered all the same.
    QVERIFY(m_step->isEnabled());
    QVERIFY(m_step->tryNext());
}

void TestPointAdjustWizard::resetShowsFreshlyGeneratedValues()
{
    open();
    combo()->setCurrentIndex(4);
    const double x = point(4, QStringLiteral("wobj.trans.#0"))->getDouble();
    point(4, QStringLiteral("wobj"))->set(nullptr, QStringLiteral("trans.#0"), 0.999);
    point(1, QStringLiteral("retract"))->set(nullptr, QStringLiteral("trans.#2"), 0.777);
    type(QStringLiteral("dspnX_2"), QStringLiteral("555"));
    m_fx.transport()->clearRequests();
    tcore::ManagerHelper::instance()->clearLogHistory();
    click(QStringLiteral("btnReset"));
    // Every adjustment of every index is gone, and the pallet went to the controller.
    QCOMPARE(point(4, QStringLiteral("wobj.trans.#0"))->getDouble(), x);
    QCOMPARE(point(1, QStringLiteral("retract.trans.#2"))->getDouble(), 0.3);
    QCOMPARE(spin(QStringLiteral("dspnX_2"))->value(), x * 1000.0);
    QCOMPARE(combo()->currentIndex(), 4);
    const auto saved = m_fx.requestsOf(QStringLiteral("tray.set.one"));
    QCOMPARE(saved.size(), 1);
    QCOMPARE(saved.at(0).params->r(QStringLiteral("points.#4.wobj.trans.#0"))->getDouble(), x);
    QCOMPARE(tcore::ManagerHelper::instance()->logHistory().last().value(QStringLiteral("title")).toString(),
             QStringLiteral("The way points have regenerated!"));
}

void TestPointAdjustWizard::adjustConfirmedStoresOnePoint_data()
{
    QTest::addColumn<QString>("child");
    QTest::addColumn<QString>("suffix");
    QTest::addColumn<QString>("buttonName");
    QTest::addColumn<QString>("question");
    QTest::newRow("approach") << "approach" << "" << "btnSaveApproach" << "Are you sure to adjust Approach Point 3?";
    QTest::newRow("wobj") << "wobj" << "_2" << "btnSaveWobj" << "Are you sure to adjust Wobj Point 3?";
    QTest::newRow("retract") << "retract" << "_3" << "btnSaveRetract" << "Are you sure to adjust Retract Point 3?";
}

void TestPointAdjustWizard::adjustConfirmedStoresOnePoint()
{
    QFETCH(QString, child);
    QFETCH(QString, suffix);
    QFETCH(QString, buttonName);
    QFETCH(QString, question);
    orba::ModuleObject before(QStringLiteral("before"));
    before.copyFrom(nullptr, m_pallet->c(QStringLiteral("points")));
    open();
    combo()->setCurrentIndex(2);
    type(QStringLiteral("dspnX") + suffix, QStringLiteral("123.4"));
    type(QStringLiteral("dspnC") + suffix, QStringLiteral("90"));
    m_fx.transport()->clearRequests();
    tcore::ManagerHelper::instance()->queueMsgAnswer(true);
    click(buttonName);

    QCOMPARE(messages().size(), 1);
    QCOMPARE(messages().at(0).kind, QStringLiteral("q"));
    QCOMPARE(messages().at(0).text, question);
    QCOMPARE(messages().at(0).button, QStringLiteral("_"));
    QCOMPARE(point(2, child + QStringLiteral(".trans.#0"))->getDouble(), 0.1234);
    QCOMPARE(point(2, child + QStringLiteral(".rot.#2"))->getDouble(), 90.0 * 3.141592653589793 / 180.0);
    // Nothing else of any index changed.
    point(2, child)->set(nullptr, QStringLiteral("trans.#0"), before.r(QStringLiteral("#2.%1.trans.#0").arg(child))->getDouble());
    point(2, child)->set(nullptr, QStringLiteral("rot.#2"), before.r(QStringLiteral("#2.%1.rot.#2").arg(child))->getDouble());
    QVERIFY(m_pallet->c(QStringLiteral("points"))->equals(&before));
    // One save of the whole pallet, carrying the adjusted point.
    const auto saved = m_fx.requestsOf(QStringLiteral("tray.set.one"));
    QCOMPARE(saved.size(), 1);
    QCOMPARE(saved.at(0).params->r(QStringLiteral("points.#2.%1.trans.#0").arg(child))->getDouble(), 0.1234);
    QCOMPARE(m_fx.transport()->methods(), QStringList{QStringLiteral("tray.set.one")});
}

void TestPointAdjustWizard::adjustRefusedRestoresEditors_data()
{
    adjustConfirmedStoresOnePoint_data();
}

void TestPointAdjustWizard::adjustRefusedRestoresEditors()
{
    QFETCH(QString, child);
    QFETCH(QString, suffix);
    QFETCH(QString, buttonName);
    QFETCH(QString, question);
    orba::ModuleObject before(QStringLiteral("before"));
    before.copyFrom(nullptr, m_pallet);
    open();
    combo()->setCurrentIndex(2);
    const double shown = spin(QStringLiteral("dspnY") + suffix)->value();
    type(QStringLiteral("dspnY") + suffix, QStringLiteral("-77"));
    m_fx.transport()->clearRequests();
    tcore::ManagerHelper::instance()->queueMsgAnswer(false);
    click(buttonName);
    QCOMPARE(messages().size(), 1);
    QCOMPARE(messages().at(0).text, question);
    QCOMPARE(spin(QStringLiteral("dspnY") + suffix)->value(), shown);
    QVERIFY(m_pallet->equals(&before));
    QVERIFY(m_fx.transport()->methods().isEmpty());
}

void TestPointAdjustWizard::accquireTeachesEditorsOnly_data()
{
    QTest::addColumn<QString>("buttonName");
    QTest::addColumn<QString>("suffix");
    QTest::newRow("approach") << "btnAccquireApproach" << "";
    QTest::newRow("wobj") << "btnAccquireWobj" << "_2";
    QTest::newRow("retract") << "btnAccquireRetract" << "_3";
}

void TestPointAdjustWizard::accquireTeachesEditorsOnly()
{
    QFETCH(QString, buttonName);
    QFETCH(QString, suffix);
    m_fx.transport()->setReply(QStringLiteral("sys.posture"), 0,
                               "{\"trans\":[0.075,-0.25,0.0005],\"rot\":[3.141592653589793,0.0,0.5],\"near\":[0,0,0,0,0,0.5]}");
    orba::ModuleObject before(QStringLiteral("before"));
    before.copyFrom(nullptr, m_pallet);
    open();
    combo()->setCurrentIndex(1);
    m_fx.transport()->clearRequests();
    click(buttonName);
    QCOMPARE(m_fx.transport()->methods(), QStringList{QStringLiteral("sys.posture")});
    QCOMPARE(spin(QStringLiteral("dspnX") + suffix)->value(), 75.0);
    QCOMPARE(spin(QStringLiteral("dspnY") + suffix)->value(), -250.0);
    QCOMPARE(spin(QStringLiteral("dspnZ") + suffix)->value(), 0.5);
    QCOMPARE(spin(QStringLiteral("dspnA") + suffix)->value(), 180.0);
    // Taught, not stored: "Adjust" keeps it.
    QVERIFY(m_pallet->equals(&before));
    tcore::ManagerHelper::instance()->queueMsgAnswer(true);
    click(buttonName.replace(QLatin1String("Accquire"), QLatin1String("Save")));
    const QString child = suffix.isEmpty() ? QStringLiteral("approach") : suffix == QLatin1String("_2") ? QStringLiteral("wobj") : QStringLiteral("retract");
    QCOMPARE(point(1, child + QStringLiteral(".trans.#0"))->getDouble(), 0.075);
    QCOMPARE(point(1, child + QStringLiteral(".trans.#1"))->getDouble(), -0.25);
}

// The robot's pose could not be read: the editors keep what they show.
void TestPointAdjustWizard::failedAccquireKeepsEditors()
{
    m_fx.transport()->setReply(QStringLiteral("sys.posture"), TService::StatusError);
    open();
    combo()->setCurrentIndex(1);
    type(QStringLiteral("dspnX_2"), QStringLiteral("12.5"));
    click(QStringLiteral("btnAccquireWobj"));
    QCOMPARE(spin(QStringLiteral("dspnX_2"))->value(), 12.5);
    QCOMPARE(spin(QStringLiteral("dspnZ_2"))->value(), 100.0);
    QVERIFY(m_fx.logMessages().filter(QStringLiteral("sys.posture")).size() >= 1);
}

void TestPointAdjustWizard::adjustPointTakesApproachEditors()
{
    open();
    combo()->setCurrentIndex(3);
    const double ax = point(3, QStringLiteral("approach.trans.#0"))->getDouble();
    const double ay = point(3, QStringLiteral("approach.trans.#1"))->getDouble();
    const double rx = point(3, QStringLiteral("retract.trans.#0"))->getDouble();
    const double ry = point(3, QStringLiteral("retract.trans.#1"))->getDouble();
    const double wx = point(3, QStringLiteral("wobj.trans.#0"))->getDouble();
    const double wy = point(3, QStringLiteral("wobj.trans.#1"))->getDouble();
    orba::ModuleObject others(QStringLiteral("others"));
    others.copyFrom(nullptr, m_pallet->c(QStringLiteral("points")));
    // The approach editors say where the place goes (the wobj editors are not read).
    type(QStringLiteral("dspnX"), QString::number(wx * 1000.0 + 20.0));
    type(QStringLiteral("dspnY"), QString::number(wy * 1000.0 - 10.0));
    type(QStringLiteral("dspnZ"), QStringLiteral("150"));
    type(QStringLiteral("dspnX_2"), QStringLiteral("9999"));
    m_fx.transport()->clearRequests();
    tcore::ManagerHelper::instance()->queueMsgAnswer(true);
    QVERIFY(QMetaObject::invokeMethod(m_step, "adjustPoint"));

    QCOMPARE(messages().size(), 1);
    QCOMPARE(messages().at(0).kind, QStringLiteral("q"));
    QCOMPARE(messages().at(0).text, QStringLiteral("Are you sure to adjust Point 4?"));
    QCOMPARE(messages().at(0).button, QStringLiteral("_"));
    const double nx = point(3, QStringLiteral("wobj.trans.#0"))->getDouble();
    const double ny = point(3, QStringLiteral("wobj.trans.#1"))->getDouble();
    QCOMPARE(nx, (wx * 1000.0 + 20.0) / 1000.0);
    QCOMPARE(ny, (wy * 1000.0 - 10.0) / 1000.0);
    QCOMPARE(point(3, QStringLiteral("wobj.trans.#2"))->getDouble(), 0.15);
    QCOMPARE(point(3, QStringLiteral("approach.trans.#0"))->getDouble(), ax + (nx - wx));
    QCOMPARE(point(3, QStringLiteral("approach.trans.#1"))->getDouble(), ay + (ny - wy));
    QCOMPARE(point(3, QStringLiteral("retract.trans.#0"))->getDouble(), rx + (nx - wx));
    QCOMPARE(point(3, QStringLiteral("retract.trans.#1"))->getDouble(), ry + (ny - wy));
    // Heights are not shifted; no other index moves; nothing is sent.
    QCOMPARE(point(3, QStringLiteral("approach.trans.#2"))->getDouble(), 0.3);
    for (int i = 0; i < 6; ++i) {
        if (i != 3)
            QVERIFY(m_pallet->r(QStringLiteral("points.#%1").arg(i))->equals(others.c(i)));
    }
    QVERIFY(m_fx.transport()->methods().isEmpty());
}

void TestPointAdjustWizard::adjustPointWithWobjValuesShiftsNothing()
{
    open();
    combo()->setCurrentIndex(5);
    orba::ModuleObject approach(QStringLiteral("approach"));
    approach.copyFrom(nullptr, point(5, QStringLiteral("approach")));
    orba::ModuleObject retract(QStringLiteral("retract"));
    retract.copyFrom(nullptr, point(5, QStringLiteral("retract")));
    // The approach editors show exactly the stored place.
    tpallet::pointToGroupSpin(point(5, QStringLiteral("wobj")), m_step->findChild<QGroupBox *>(QStringLiteral("grbApproach")), true);
    tcore::ManagerHelper::instance()->queueMsgAnswer(true);
    QVERIFY(QMetaObject::invokeMethod(m_step, "adjustPoint"));
    QVERIFY(point(5, QStringLiteral("approach"))->equals(&approach));
    QVERIFY(point(5, QStringLiteral("retract"))->equals(&retract));
}

void TestPointAdjustWizard::adjustPointRefusedChangesNothing()
{
    orba::ModuleObject before(QStringLiteral("before"));
    before.copyFrom(nullptr, m_pallet);
    open();
    combo()->setCurrentIndex(1);
    type(QStringLiteral("dspnX"), QStringLiteral("321"));
    tcore::ManagerHelper::instance()->queueMsgAnswer(false);
    QVERIFY(QMetaObject::invokeMethod(m_step, "adjustPoint"));
    QCOMPARE(messages().at(0).text, QStringLiteral("Are you sure to adjust Point 2?"));
    QVERIFY(m_pallet->equals(&before));
    // The editor keeps what was typed.
    QCOMPARE(spin(QStringLiteral("dspnX"))->value(), 321.0);
}

void TestPointAdjustWizard::moveToDrivesToShownValues_data()
{
    QTest::addColumn<QString>("slot");
    QTest::addColumn<QString>("child");
    QTest::addColumn<QString>("suffix");
    QTest::addColumn<QString>("tag");
    QTest::newRow("wobj button") << "btnMoveToWobj" << "wobj" << "_2" << "Wobj Point";
    QTest::newRow("retract button") << "btnMoveToRetract" << "retract" << "_3" << "Retract Point";
    QTest::newRow("approach slot") << "moveToApproach" << "approach" << "" << "Approach Point";
}

void TestPointAdjustWizard::moveToDrivesToShownValues()
{
    QFETCH(QString, slot);
    QFETCH(QString, child);
    QFETCH(QString, suffix);
    QFETCH(QString, tag);
    m_dialog = new PalletSetDialog(m_pallet, nullptr, 4);
    m_dialog->show();
    m_step = qobject_cast<PointAdjustWizard *>(m_dialog->currentPage());
    QVERIFY(m_step);
    combo()->setCurrentIndex(2);
    orba::ModuleObject before(QStringLiteral("before"));
    before.copyFrom(nullptr, m_pallet);
    type(QStringLiteral("dspnX") + suffix, QStringLiteral("42"));
    m_fx.transport()->clearRequests();
    if (slot.startsWith(QLatin1String("btn")))
        click(slot);
    else
        QVERIFY(QMetaObject::invokeMethod(m_step, slot.toLatin1().constData()));

    auto *dialog = qobject_cast<MoveToDialog *>(kx::uniqueObject(QStringLiteral("tpallet.move.dialog")));
    QVERIFY(dialog);
    QVERIFY(dialog->isVisible());
    QCOMPARE(dialog->parentWidget(), static_cast<QWidget *>(m_dialog.data()));
    QVERIFY(!dialog->isModal());
    orba::ModuleObject *target = m_step->moveTarget();
    QVERIFY(target);
    QVERIFY(target->name().isEmpty());
    QCOMPARE(target->r(QStringLiteral("tag"))->getString(), tag);
    QCOMPARE(target->r(QStringLiteral("trans.#0"))->getDouble(), 0.042);
    QCOMPARE(target->r(QStringLiteral("trans.#1"))->getDouble(), point(2, child + QStringLiteral(".trans.#1"))->getDouble());
    QVERIFY(target->r(QStringLiteral("near"))->equals(point(2, child + QStringLiteral(".near"))));
    QVERIFY(dialog->findChild<QLabel *>(QStringLiteral("lblTitle"))->text().contains(tag));
    // A linear move at v300 in the active toolset.
    QCOMPARE(dialog->findChild<QComboBox *>(QStringLiteral("cmbMoveType"))->currentText(), QStringLiteral("Move L"));
    QCOMPARE(dialog->findChild<QComboBox *>(QStringLiteral("cmbSpeed"))->currentText(), QStringLiteral("v300"));
    QVERIFY(!dialog->isJoint());
    // Shown, not stored.
    QVERIFY(m_pallet->equals(&before));
    QVERIFY(m_fx.palletMethods().isEmpty());
}

void TestPointAdjustWizard::nextMoveToReplacesTarget()
{
    open();
    auto *grand = new QDialog;
    m_step->setParent(grand);
    grand->show();
    m_step->show();
    click(QStringLiteral("btnMoveToWobj"));
    QPointer<orba::ModuleObject> first = m_step->moveTarget();
    QPointer<MoveToDialog> firstDialog = qobject_cast<MoveToDialog *>(kx::uniqueObject(QStringLiteral("tpallet.move.dialog")));
    QVERIFY(first && firstDialog);
    click(QStringLiteral("btnMoveToRetract"));
    QVERIFY(!first);
    PalletFixture::flushDeletes();
    QVERIFY(!firstDialog);
    QVERIFY(m_step->moveTarget());
    QCOMPARE(m_step->moveTarget()->r(QStringLiteral("tag"))->getString(), QStringLiteral("Retract Point"));
    // The target goes with the step, and its dialog with it.
    QPointer<MoveToDialog> second = qobject_cast<MoveToDialog *>(kx::uniqueObject(QStringLiteral("tpallet.move.dialog")));
    QVERIFY(second);
    second->setParent(nullptr);
    delete grand;
    PalletFixture::flushDeletes();
    QVERIFY(!m_step);
    QVERIFY(!second);
}

// ---------------------------------------------------------------------------------------------

void TestPointAdjustWizard::emptyPalletPasses()
{
    m_pallet->c(QStringLiteral("points"))->clear(nullptr);
    open();
    QCOMPARE(combo()->count(), 0);
    // The report comes while the closed progress dialog still exists: its range is 0 .. -1.
    int minimum = 1;
    int maximum = 1;
    tcore::ManagerHelper::instance()->setMsgBoxObserver([this, &minimum, &maximum](const tcore::ManagerHelper::MsgRecord &) {
        if (auto *progress = m_step->findChild<QProgressDialog *>(QStringLiteral("dlgCheckProgress"))) {
            minimum = progress->minimum();
            maximum = progress->maximum();
        }
    });
    m_fx.transport()->clearRequests();
    click(QStringLiteral("btnCheck"));
    tcore::ManagerHelper::instance()->setMsgBoxObserver(nullptr);
    // 0 .. -1, which the bar keeps as 0 .. 0.
    QCOMPARE(minimum, 0);
    QCOMPARE(maximum, 0);
    QCOMPARE(m_fx.requestsOf(QLatin1String(kCheck)).size(), 0);
    QCOMPARE(messages().size(), 1);
    QCOMPARE(messages().at(0).kind, QStringLiteral("info"));
    QCOMPARE(messages().at(0).text, QStringLiteral("Check is passed!"));
    QCOMPARE(messages().at(0).button, QStringLiteral("_"));
    QVERIFY(!m_step->isChecking());
}

void TestPointAdjustWizard::checkSendsBothSegmentsOfEveryPlace()
{
    open();
    int minimum = 1;
    int maximum = -1;
    bool frameless = false;
    bool visible = true;
    Qt::WindowModality modality = Qt::NonModal;
    QString label;
    QList<int> values;
    m_fx.transport()->setHandler([&](const orbat::ScriptedTransport::Request &request) -> orbat::ScriptedTransport::Reply {
        if (request.method == QLatin1String(kCheck) && m_step->checkProgress()) {
            QProgressDialog *progress = m_step->checkProgress();
            minimum = progress->minimum();
            maximum = progress->maximum();
            frameless = progress->windowFlags().testFlag(Qt::FramelessWindowHint);
            modality = progress->windowModality();
            label = progress->labelText();
            values << progress->value();
            visible = visible && progress->isVisible();
        }
        return orbat::ScriptedTransport::Reply();
    });
    orba::ModuleObject before(QStringLiteral("before"));
    before.copyFrom(nullptr, m_pallet);
    m_fx.transport()->clearRequests();
    click(QStringLiteral("btnCheck"));

    const auto sent = m_fx.requestsOf(QLatin1String(kCheck));
    QCOMPARE(sent.size(), 12);
    for (int i = 0; i < 6; ++i) {
        const orba::ModuleObject *first = sent.at(2 * i).params.get();
        const orba::ModuleObject *second = sent.at(2 * i + 1).params.get();
        QCOMPARE(first->cmobjNames(), (QStringList{QStringLiteral("point0"), QStringLiteral("point1")}));
        QVERIFY(first->r(QStringLiteral("point0.trans"))->equals(point(i, QStringLiteral("approach.trans"))));
        QVERIFY(first->r(QStringLiteral("point0.near"))->equals(point(i, QStringLiteral("approach.near"))));
        QVERIFY(first->r(QStringLiteral("point1.rot"))->equals(point(i, QStringLiteral("wobj.rot"))));
        QVERIFY(first->r(QStringLiteral("point1.trans"))->equals(point(i, QStringLiteral("wobj.trans"))));
        QVERIFY(second->r(QStringLiteral("point0.trans"))->equals(point(i, QStringLiteral("wobj.trans"))));
        QVERIFY(second->r(QStringLiteral("point1.trans"))->equals(point(i, QStringLiteral("retract.trans"))));
    }
    // Only the check: nothing stored, nothing else asked.
    QCOMPARE(m_fx.transport()->methods(), QStringList(QVector<QString>(12, QLatin1String(kCheck)).toList()));
    QVERIFY(visible);
    QVERIFY(m_pallet->equals(&before));
    QCOMPARE(minimum, 0);
    QCOMPARE(maximum, 5);
    QVERIFY(frameless);
    QCOMPARE(modality, Qt::WindowModal);
    QCOMPARE(label, QStringLiteral("Checking..."));
    // Each index's value is set after its two segments.
    QCOMPARE(values.size(), 12);
    QCOMPARE(values.mid(2), (QList<int>{0, 0, 1, 1, 2, 2, 3, 3, 4, 4}));
    QCOMPARE(messages().size(), 1);
    QCOMPARE(messages().at(0).kind, QStringLiteral("info"));
    QCOMPARE(messages().at(0).text, QStringLiteral("Check is passed!"));
    // The dialog is gone once the check is over.
    PalletFixture::flushDeletes();
    QVERIFY(!m_step->checkProgress());
    QVERIFY(!m_step->isChecking());
}

void TestPointAdjustWizard::refusedSegmentsAreReported()
{
    open();
    refuse({{1, 1}, {3, 0}, {3, 1}});
    click(QStringLiteral("btnCheck"));
    QCOMPARE(messages().size(), 1);
    QCOMPARE(messages().at(0).kind, QStringLiteral("warning"));
    QCOMPARE(messages().at(0).button, QStringLiteral("_"));
    QCOMPARE(messages().at(0).text, QStringLiteral("The path below can not be reached:\n"
                                                   "Wobj 2 : P6 to P7\nWobj 4 : P5 to P6\nWobj 4 : P6 to P7"));
    // The controller's reason is kept in the module's log, beside the operator's text.
    const QStringList lines = m_fx.logMessages().filter(QStringLiteral("point check"));
    QCOMPARE(lines.size(), 3);
    QVERIFY2(lines.at(0).contains(QLatin1String("Wobj 2 : P6 to P7")) && lines.at(0).contains(QLatin1String("no solution 1")),
             qPrintable(lines.at(0)));
    QVERIFY2(lines.at(2).contains(QLatin1String("Wobj 4 : P6 to P7")) && lines.at(2).contains(QLatin1String("status 1")),
             qPrintable(lines.at(2)));
}

void TestPointAdjustWizard::manyFailuresStopTheCheck_data()
{
    QTest::addColumn<int>("row");
    QTest::addColumn<QString>("refused");
    QTest::addColumn<int>("texts");
    QTest::addColumn<int>("asked");
    // 5 places x 2 texts = 10: the 6th index is not begun.
    QTest::newRow("both segments of every place") << 10 << "both" << 10 << 10;
    // One text per place: ten places, then stop.
    QTest::newRow("P5 to P6 of every place") << 10 << "approach" << 10 << 20;
    // 1 + 2 + 2 + 2 + 2 = 9 after five places: the sixth is begun and adds two.
    QTest::newRow("one text, then two per place") << 10 << "first one" << 11 << 12;
    // Nine texts never stop the check.
    QTest::newRow("nine texts") << 5 << "nine" << 9 << 20;
}

void TestPointAdjustWizard::manyFailuresStopTheCheck()
{
    QFETCH(int, row);
    QFETCH(QString, refused);
    QFETCH(int, texts);
    QFETCH(int, asked);
    // 2 x row places, all different.
    m_pallet->set(nullptr, QStringLiteral("pattern.row"), row);
    m_pallet->set(nullptr, QStringLiteral("pattern.col"), 2);
    tpallet::generatePoints1(m_pallet, nullptr);
    QSet<QPair<int, int>> segments;
    for (int i = 0; i < 2 * row; ++i) {
        if (refused == QLatin1String("both") || (refused == QLatin1String("first one") && i > 0))
            segments << qMakePair(i, 0) << qMakePair(i, 1);
        else if (refused == QLatin1String("approach") || (refused == QLatin1String("first one") && i == 0))
            segments << qMakePair(i, 0);
        else if (refused == QLatin1String("nine") && i < 9)
            segments << qMakePair(i, 1);
    }
    open();
    refuse(segments);
    m_fx.transport()->clearRequests();
    click(QStringLiteral("btnCheck"));
    QCOMPARE(m_fx.requestsOf(QLatin1String(kCheck)).size(), asked);
    QCOMPARE(messages().size(), 1);
    QCOMPARE(messages().at(0).kind, QStringLiteral("warning"));
    const QStringList lines = messages().at(0).text.split(QLatin1Char('\n'));
    QCOMPARE(lines.first(), QStringLiteral("The path below can not be reached:"));
    QCOMPARE(lines.size() - 1, texts);
}

void TestPointAdjustWizard::cancelAfterFailuresStillWarns()
{
    m_pallet->set(nullptr, QStringLiteral("pattern.row"), 5);
    tpallet::generatePoints1(m_pallet, nullptr);
    open();
    refuse({{0, 1}, {1, 0}, {9, 0}});
    // Cancelled from the event loop once index 1 is done.
    QTimer poll;
    poll.setInterval(0);
    connect(&poll, &QTimer::timeout, this, [this, &poll] {
        QProgressDialog *progress = m_step ? m_step->checkProgress() : nullptr;
        if (progress && progress->value() >= 1) {
            poll.stop();
            clickCancel();
        }
    });
    poll.start();
    m_fx.transport()->clearRequests();
    click(QStringLiteral("btnCheck"));
    poll.stop();
    // Indices 0 and 1 were checked, not the 15 of the pallet.
    QCOMPARE(m_fx.requestsOf(QLatin1String(kCheck)).size(), 4);
    QCOMPARE(messages().size(), 1);
    QCOMPARE(messages().at(0).kind, QStringLiteral("warning"));
    QCOMPARE(messages().at(0).text, QStringLiteral("The path below can not be reached:\nWobj 1 : P6 to P7\nWobj 2 : P5 to P6"));
}

void TestPointAdjustWizard::cancelWithoutFailuresIsQuiet()
{
    m_pallet->set(nullptr, QStringLiteral("pattern.row"), 5);
    tpallet::generatePoints1(m_pallet, nullptr);
    open();
    afterChecks(4, [this] { clickCancel(); });
    click(QStringLiteral("btnCheck"));
    QCOMPARE(m_fx.requestsOf(QLatin1String(kCheck)).size(), 4);
    QVERIFY(messages().isEmpty());
    QVERIFY(!m_step->isChecking());
}

void TestPointAdjustWizard::lostLinkCountsAsRefused()
{
    open();
    // A controller that went away answers nothing: every segment is refused, and the list stops.
    m_fx.transport()->setConnected(false);
    click(QStringLiteral("btnCheck"));
    QCOMPARE(messages().size(), 1);
    QCOMPARE(messages().at(0).kind, QStringLiteral("warning"));
    QCOMPARE(messages().at(0).text.count(QLatin1Char('\n')), 10);
    QVERIFY(m_fx.logMessages().filter(QStringLiteral("point check")).first().contains(QLatin1String("-1000")));
}

void TestPointAdjustWizard::goneUnderneathEndsCleanly_data()
{
    QTest::addColumn<QString>("what");
    QTest::newRow("pallet removed from the list") << "pallet";
    QTest::newRow("list reloaded") << "reload";
    QTest::newRow("places cleared") << "points";
    QTest::newRow("dialog replaced by Edit") << "edit";
    QTest::newRow("step deleted") << "step";
}

void TestPointAdjustWizard::goneUnderneathEndsCleanly()
{
    QFETCH(QString, what);
    m_pallet->set(nullptr, QStringLiteral("pattern.row"), 5);
    tpallet::generatePoints1(m_pallet, nullptr);
    m_dialog = new PalletSetDialog(m_pallet, nullptr, 4);
    m_dialog->show();
    m_step = qobject_cast<PointAdjustWizard *>(m_dialog->currentPage());
    QVERIFY(m_step);
    QPointer<QDialog> edit;
    afterChecks(3, [&] {
        if (what == QLatin1String("pallet"))
            tpallet::palletsNode()->remove(nullptr, m_pallet.data());
        else if (what == QLatin1String("reload"))
            tpallet::palletsNode()->clear(nullptr, true);
        else if (what == QLatin1String("points"))
            m_pallet->c(QStringLiteral("points"))->clear(nullptr);
        else if (what == QLatin1String("edit"))
            edit = new NewPalletDialog(m_pallet, nullptr);
        else
            delete m_step.data();
    });
    m_fx.transport()->clearRequests();
    tcore::ManagerHelper::instance()->clearMsgHistory();
    click(QStringLiteral("btnCheck"));
    PalletFixture::flushDeletes();

    // The check stopped at the index it was on: no more segments, nothing stored, no report.
    QCOMPARE(m_fx.requestsOf(QLatin1String(kCheck)).size(), 4);
    QVERIFY(m_fx.palletMethods().isEmpty());
    QVERIFY(messages().isEmpty());
    if (what == QLatin1String("points")) {
        QVERIFY(m_step);
        QVERIFY(!m_step->isChecking());
        QVERIFY(!m_step->checkProgress());
    } else if (what != QLatin1String("pallet") && what != QLatin1String("reload")) {
        QVERIFY(!m_step);
    }
    if (what == QLatin1String("pallet") || what == QLatin1String("reload"))
        QVERIFY(!m_dialog || !m_dialog->isVisible());
    delete edit.data();
}

// ---------------------------------------------------------------------------------------------

void TestPointAdjustWizard::pointCheckModeShowsThisStep()
{
    m_dialog = new PalletSetDialog(m_pallet, nullptr, 4);
    m_dialog->show();
    QCOMPARE(m_dialog->currentStep(), 4);
    QVERIFY(qobject_cast<PointAdjustWizard *>(m_dialog->currentPage()));
    QVERIFY(m_dialog->findChild<QPushButton *>(QStringLiteral("btnConfirm"))->isVisible());
    QVERIFY(m_dialog->findChild<QPushButton *>(QStringLiteral("btnCancel"))->isVisible());
    QVERIFY(!m_dialog->findChild<QPushButton *>(QStringLiteral("btnPrevious"))->isVisible());
    QVERIFY(!m_dialog->findChild<QPushButton *>(QStringLiteral("btnNext"))->isVisible());
    auto *title = m_dialog->findChild<QLabel *>(QStringLiteral("lblTitle4"));
    QCOMPARE(title->text(), QStringLiteral("Path Point Check"));
    QVERIFY(!title->styleSheet().isEmpty());
    // The step switched the pallet's toolset on entry.
    QCOMPARE(m_fx.requestsOf(QStringLiteral("sys.toolset")).size(), 1);
    QSignalSpy accepted(m_dialog.data(), &QDialog::accepted);
    QTest::mouseClick(m_dialog->findChild<QPushButton *>(QStringLiteral("btnConfirm")), Qt::LeftButton);
    QCOMPARE(accepted.count(), 1);
}

void TestPointAdjustWizard::lastStepOfFullConfiguration()
{
    m_dialog = new PalletSetDialog(m_pallet, nullptr, 0);
    m_dialog->show();
    m_dialog->switchToStep(4, false);
    QVERIFY(qobject_cast<PointAdjustWizard *>(m_dialog->currentPage()));
    QCOMPARE(m_dialog->findChild<QPushButton *>(QStringLiteral("btnNext"))->text(), QStringLiteral("Finish"));
    QVERIFY(!m_dialog->findChild<QPushButton *>(QStringLiteral("btnConfirm"))->isVisible());
    QSignalSpy accepted(m_dialog.data(), &QDialog::accepted);
    QTest::mouseClick(m_dialog->findChild<QPushButton *>(QStringLiteral("btnNext")), Qt::LeftButton);
    QCOMPARE(accepted.count(), 1);
}

// ---------------------------------------------------------------------------------------------
// On the simulated robot. The pallet lies flat in front of the robot, its frame 350 mm ahead and
// 200 mm to the side of the base; the tool points down onto it. Rows run away from the robot, so
// the far rows lie beyond the arm's reach.

void TestPointAdjustWizard::buildCellPallet(int row, int col, double xSpan, double ySpan)
{
    m_pallet->set(nullptr, QStringLiteral("pattern.row"), row);
    m_pallet->set(nullptr, QStringLiteral("pattern.col"), col);
    m_pallet->set(nullptr, QStringLiteral("calibrate.x_span"), xSpan);
    m_pallet->set(nullptr, QStringLiteral("calibrate.y_span"), ySpan);
    orba::ModuleObject *toolset = m_pallet->r(QStringLiteral("calibrate.toolset"));
    tpallet::identityToolsetNode(toolset);
    toolset->set(nullptr, QStringLiteral("end.trans.#2"), kToolLength);
    toolset->set(nullptr, QStringLiteral("ref.trans.#0"), 0.35);
    toolset->set(nullptr, QStringLiteral("ref.trans.#1"), -0.2);

    // The arm's configuration over the first place, as teaching would have recorded it.
    rc::Toolset tools;
    tools.end.translation() = Eigen::Vector3d(0.0, 0.0, kToolLength);
    tools.ref.translation() = Eigen::Vector3d(0.35, -0.2, 0.0);
    const rc::ArmSolver solver(rc::RobotModel::defaultArm(), tools);
    const rc::SolveResult start = solver.solveNearest(rc::frameFromPose(Eigen::Vector3d(0.0, 0.0, 0.1), Eigen::Vector3d(M_PI, 0.0, 0.0)),
                                                      rc::RobotModel::defaultArm().home);
    QVERIFY2(start.ok(), qPrintable(start.message));
    const QList<QPair<QString, Eigen::Vector3d>> wayPoints{{"wobj", {0.0, 0.0, 0.1}},
                                                           {"approach", {0.0, 0.0, 0.3}},
                                                           {"retract", {0.0, -0.05, 0.3}}};
    for (const auto &wp : wayPoints) {
        orba::ModuleObject *node = m_pallet->r(QStringLiteral("waypoint.") + wp.first);
        for (int i = 0; i < 3; ++i)
            node->set(nullptr, QStringLiteral("trans.#%1").arg(i), wp.second[i]);
        node->set(nullptr, QStringLiteral("rot.#0"), M_PI);
        node->set(nullptr, QStringLiteral("rot.#1"), 0.0);
        node->set(nullptr, QStringLiteral("rot.#2"), 0.0);
        for (int i = 0; i < 6; ++i)
            node->set(nullptr, QStringLiteral("near.#%1").arg(i), start.q[i]);
    }
    tpallet::generatePoints1(m_pallet, nullptr);
}

// What the robot model says of every segment, by the same solver the controller uses.
QStringList TestPointAdjustWizard::expectedFailures()
{
    rc::Toolset tools;
    tools.end.translation() = Eigen::Vector3d(0.0, 0.0, kToolLength);
    tools.ref.translation() = Eigen::Vector3d(0.35, -0.2, 0.0);
    const rc::ArmSolver solver(rc::RobotModel::defaultArm(), tools);
    QStringList failures;
    const int count = m_pallet->c(QStringLiteral("points"))->cmobjCount();
    for (int i = 0; i < count; ++i) {
        if (!solver.checkLine(poseOf(point(i, QStringLiteral("approach"))), poseOf(point(i, QStringLiteral("wobj")))).ok())
            failures << QStringLiteral("Wobj %1 : P5 to P6").arg(i + 1);
        if (!solver.checkLine(poseOf(point(i, QStringLiteral("wobj"))), poseOf(point(i, QStringLiteral("retract")))).ok())
            failures << QStringLiteral("Wobj %1 : P6 to P7").arg(i + 1);
    }
    return failures;
}

void TestPointAdjustWizard::farPlacesAreReported_data()
{
    QTest::addColumn<bool>("overTcp");
    QTest::newRow("embedded controller") << false;
    QTest::newRow("rcsim over TCP") << true;
}

void TestPointAdjustWizard::farPlacesAreReported()
{
    QFETCH(bool, overTcp);
    SimLink link;
    QVERIFY(link.start(overTcp));
    // 5 rows 300 mm apart, away from the robot: pallet x 0 .. 1.2 m, base x 0.35 .. 1.55 m.
    buildCellPallet(5, 2, 1.2, 0.4);
    const QStringList expected = expectedFailures();
    // The last two rows (places 7..10) are out of reach, the first three are not.
    QCOMPARE(expected, (QStringList{"Wobj 7 : P5 to P6", "Wobj 7 : P6 to P7", "Wobj 8 : P5 to P6", "Wobj 8 : P6 to P7",
                                    "Wobj 9 : P5 to P6", "Wobj 9 : P6 to P7", "Wobj 10 : P5 to P6", "Wobj 10 : P6 to P7"}));

    m_dialog = new PalletSetDialog(m_pallet, nullptr, 4);
    m_dialog->show();
    m_step = qobject_cast<PointAdjustWizard *>(m_dialog->currentPage());
    QVERIFY(m_step);
    // Entering made the pallet's toolset the controller's.
    orba::MobjPtr active = tservice()->get(nullptr, QStringLiteral("sys.toolset"));
    QCOMPARE(active->r(QStringLiteral("ref.trans.#0"))->getDouble(), 0.35);
    QCOMPARE(active->r(QStringLiteral("end.trans.#2"))->getDouble(), kToolLength);

    click(QStringLiteral("btnCheck"));
    QCOMPARE(messages().size(), 1);
    QCOMPARE(messages().at(0).kind, QStringLiteral("warning"));
    QCOMPARE(messages().at(0).text, QStringLiteral("The path below can not be reached:\n") + expected.join(QLatin1Char('\n')));
    // The controller said why, and the module's log has it.
    const QStringList lines = m_fx.logMessages().filter(QStringLiteral("point check"));
    QCOMPARE(lines.size(), expected.size());
    QVERIFY2(lines.at(0).contains(QLatin1String("sample")), qPrintable(lines.at(0)));
}

void TestPointAdjustWizard::palletInReachPasses_data()
{
    farPlacesAreReported_data();
}

void TestPointAdjustWizard::palletInReachPasses()
{
    QFETCH(bool, overTcp);
    SimLink link;
    QVERIFY(link.start(overTcp));
    buildCellPallet(4, 3, 0.45, 0.4);
    QVERIFY(expectedFailures().isEmpty());
    m_dialog = new PalletSetDialog(m_pallet, nullptr, 4);
    m_dialog->show();
    m_step = qobject_cast<PointAdjustWizard *>(m_dialog->currentPage());
    click(QStringLiteral("btnCheck"));
    QCOMPARE(messages().size(), 1);
    QCOMPARE(messages().at(0).kind, QStringLiteral("info"));
    QCOMPARE(messages().at(0).text, QStringLiteral("Check is passed!"));
}

void TestPointAdjustWizard::cancelMidCheckOnSimulator()
{
    EmbeddedLink link;
    QVERIFY(link.start());
    buildCellPallet(20, 20, 0.45, 0.4);
    m_dialog = new PalletSetDialog(m_pallet, nullptr, 4);
    m_dialog->show();
    m_step = qobject_cast<PointAdjustWizard *>(m_dialog->currentPage());
    int reached = -1;
    QTimer poll;
    poll.setInterval(0);
    connect(&poll, &QTimer::timeout, this, [&] {
        QProgressDialog *progress = m_step ? m_step->checkProgress() : nullptr;
        if (progress && progress->value() >= 10) {
            poll.stop();
            reached = progress->value();
            clickCancel();
        }
    });
    poll.start();
    click(QStringLiteral("btnCheck"));
    poll.stop();
    QVERIFY(reached >= 10 && reached < 399);
    QVERIFY(messages().isEmpty());
    QVERIFY(!m_step->isChecking());
}

void TestPointAdjustWizard::palletGoesDuringSimulatorCheck_data()
{
    QTest::addColumn<bool>("overTcp");
    QTest::addColumn<QString>("what");
    QTest::newRow("embedded, pallet deleted") << false << "delete";
    QTest::newRow("embedded, controller reconnected") << false << "reconnect";
    QTest::newRow("TCP, pallet deleted") << true << "delete";
    QTest::newRow("TCP, controller reconnected") << true << "reconnect";
    QTest::newRow("TCP, dialog replaced by Edit") << true << "edit";
}

// The page is live (it reloads the list on every connection) and the pallet is the controller's.
void TestPointAdjustWizard::palletGoesDuringSimulatorCheck()
{
    QFETCH(bool, overTcp);
    QFETCH(QString, what);
    QWidget host;
    m_fx.module()->setup();
    PalletPage *page = m_fx.module()->page();
    QVERIFY(page);
    page->init();
    SimLink link;
    QVERIFY(link.start(overTcp));
    // The connection reloaded the (empty) list: the pallet is added as the page would.
    QVERIFY(!m_pallet);
    addPallet();
    buildCellPallet(15, 10, 0.45, 0.4);
    orba::MobjPtr added = tservice()->execCommand(nullptr, QStringLiteral("tray.add_one"), m_pallet);
    QCOMPARE(added->getInt(-1), 0);

    m_dialog = new PalletSetDialog(m_pallet, page->wgt(), 4);
    m_dialog->show();
    m_step = qobject_cast<PointAdjustWizard *>(m_dialog->currentPage());
    QVERIFY(m_step);
    QPointer<QDialog> edit;
    QSignalSpy up(tservice()->controllerManager(), &orbat::ControllerManager::rcConnected);
    int at = -1;
    QTimer poll;
    poll.setInterval(0);
    connect(&poll, &QTimer::timeout, this, [&] {
        QProgressDialog *progress = m_step ? m_step->checkProgress() : nullptr;
        if (!progress || progress->value() < 20)
            return;
        poll.stop();
        at = progress->value();
        if (what == QLatin1String("delete")) {
            // What "Delete" on the page does, once confirmed.
            orba::ModuleObject param;
            param.set(nullptr, QStringLiteral("index"), 0);
            param.set(nullptr, QStringLiteral("name"), QStringLiteral("tray0"));
            QCOMPARE(tservice()->execCommand(nullptr, QStringLiteral("tray.del_one"), &param)->getInt(-1), 0);
            tpallet::palletsNode()->remove(nullptr, m_pallet.data());
        } else if (what == QLatin1String("reconnect")) {
            link.bounce();
        } else {
            edit = new NewPalletDialog(m_pallet, page->wgt());
        }
    });
    poll.start();
    click(QStringLiteral("btnCheck"));
    poll.stop();
    if (what == QLatin1String("reconnect"))
        QTRY_VERIFY_WITH_TIMEOUT(up.count() >= 1, 10000);
    PalletFixture::flushDeletes();
    QVERIFY(at >= 20);
    QVERIFY(messages().isEmpty());
    if (what == QLatin1String("edit")) {
        QVERIFY(!m_step);
        QVERIFY(edit);
    } else {
        QVERIFY(!m_pallet);
        QVERIFY(!m_dialog || !m_dialog->isVisible());
    }
    // The controller still answers, and holds the pallet unless it was deleted.
    orba::MobjPtr list = tservice()->execCommand(nullptr, QStringLiteral("tray.query.list"));
    QCOMPARE(list->getInt(-1), 0);
    QCOMPARE(list->c(QStringLiteral("data"))->size(), what == QLatin1String("delete") ? 0 : 1);
    if (what == QLatin1String("reconnect")) {
        QTRY_COMPARE(tpallet::palletsNode()->cmobjCount(), 1);
        QCOMPARE(tpallet::palletsNode()->r(QStringLiteral("#0.points"))->cmobjCount(), 150);
    }
    delete edit.data();
}

void TestPointAdjustWizard::bigPalletOverTcpKeepsLink()
{
#ifdef __SANITIZE_ADDRESS__
    // An unoptimised, instrumented rcsim needs minutes for 2400 segments; the regular build runs it.
    QSKIP("2400 checks take minutes against the sanitizer build of rcsim");
#endif
    RcsimLink link;
    QVERIFY(link.start());
    // A short ping makes a stalled link show at once.
    link.transport()->setPingInterval(250);
    buildCellPallet(30, 40, 0.45, 0.39);
    QCOMPARE(m_pallet->c(QStringLiteral("points"))->cmobjCount(), 1200);
    m_dialog = new PalletSetDialog(m_pallet, nullptr, 4);
    m_dialog->show();
    m_step = qobject_cast<PointAdjustWizard *>(m_dialog->currentPage());
    QSignalSpy down(link.transport(), &orbat::Transport::disconnected);
    QSignalSpy up(tservice()->controllerManager(), &orbat::ControllerManager::rcConnected);
    m_fx.transport()->clearRequests();
    QElapsedTimer clock;
    clock.start();
    click(QStringLiteral("btnCheck"));
    const qint64 elapsed = clock.elapsed();
    qInfo("1200 places (2400 segments) checked over TCP in %lld ms", elapsed);
    QCOMPARE(down.count(), 0);
    QCOMPARE(up.count(), 0);
    QCOMPARE(messages().size(), 1);
    QCOMPARE(messages().at(0).text, QStringLiteral("Check is passed!"));
    QVERIFY(m_pallet);
}

QTEST_MAIN(TestPointAdjustWizard)
#include "tst_pointadjustwizard.moc"
