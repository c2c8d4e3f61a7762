#include "palletfixture.h"

#include "dialogs/movetodialog.h"
#include "module/pointgen.h"
#include "module/toolset.h"
#include "wizards/imagewidget.h"
#include "wizards/waypointwizard.h"

#include <kx/globaluniqueptr.h>
#include <kx/kx.h>

#include <QDoubleSpinBox>
#include <QGroupBox>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QtTest>

class TestWayPointWizard : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void missingWayPointsAreCreatedZeroFilled();
    void formTitlesPicturesAndTip();
    void showsTaughtPoses();
    void acquireReadsPosture_data();
    void acquireReadsPosture();
    void finishedEditIsStored();
    void moveUsesUnfinishedEdit();
    void entrySwitchesPalletToolset();
    void entryFailureAndUncalibratedAreLogged();
    void leavingRegeneratesEvenWithoutChange();
    void hideAbcLeavesPositionOnly();

private:
    WayPointWizard *open();
    QDoubleSpinBox *spin(const QString &name) { return m_step->findChild<QDoubleSpinBox *>(name); }
    QPushButton *button(const char *name) { return m_step->findChild<QPushButton *>(QLatin1String(name)); }
    QList<QVariantMap> log() const { return tcore::ManagerHelper::instance()->logHistory(); }

    PalletFixture m_fx;
    orba::ModuleObject *m_pallet = nullptr;
    QPointer<WayPointWizard> m_step;
};

void TestWayPointWizard::init()
{
    m_fx.setUp();
    m_fx.transport()->setReply(QStringLiteral("tray.set.one"), 0);
    m_fx.transport()->setReply(QStringLiteral("sys.toolset"), 0);
    m_fx.connectController();
    orba::m()->set(nullptr, QStringLiteral("tcore.r.level"), 3, true);
    kx::globalNode(QStringLiteral("tormo.toolpage.toolset"))->setValue(nullptr, QString(QLatin1String("")), true);
    m_pallet = PalletFixture::addLocalPallet(QStringLiteral("tray0"), 2, 3);
    tpallet::identityToolsetNode(m_pallet->c(QStringLiteral("calibrate"))->c(QStringLiteral("toolset"), true));
    m_pallet->set(nullptr, QStringLiteral("calibrate.x_span"), 0.4);
    m_pallet->set(nullptr, QStringLiteral("calibrate.y_span"), 0.3);
}

void TestWayPointWizard::cleanup()
{
    delete m_step.data();
    m_fx.tearDown();
}

WayPointWizard *TestWayPointWizard::open()
{
    m_step = new WayPointWizard(m_pallet, nullptr);
    m_step->resize(1156, 600);
    m_step->show();
    return m_step;
}

void TestWayPointWizard::missingWayPointsAreCreatedZeroFilled()
{
    m_pallet->remove(nullptr, m_pallet->c(QStringLiteral("waypoint")));
    QVERIFY(m_pallet->r(QStringLiteral("waypoint"))->isEmpty());
    open();
    for (const char *name : {"wobj", "approach", "retract"}) {
        orba::ModuleObject *point = m_pallet->r(QStringLiteral("waypoint.%1").arg(QLatin1String(name)));
        QVERIFY2(!point->isEmpty(), name);
        QCOMPARE(point->r(QStringLiteral("trans"))->size(), 3);
        QCOMPARE(point->r(QStringLiteral("rot"))->size(), 3);
        QCOMPARE(point->r(QStringLiteral("near"))->size(), 6);
        QCOMPARE(point->r(QStringLiteral("trans.#2"))->getDouble(-1.0), 0.0);
    }
}

void TestWayPointWizard::formTitlesPicturesAndTip()
{
    open();
    QCOMPARE(m_step->findChild<QGroupBox *>(QStringLiteral("grbApproach"))->title(), QStringLiteral("Approach P5"));
    QCOMPARE(m_step->findChild<QGroupBox *>(QStringLiteral("grbWobj"))->title(), QStringLiteral("Wobj P6"));
    QCOMPARE(m_step->findChild<QGroupBox *>(QStringLiteral("grbRetract"))->title(), QStringLiteral("Retract P7"));
    const QList<QPair<QString, QString>> pictures{{"wgtImageApproach", ":/tpallet/images/pallet/p5.png"},
                                                  {"wgtImageWobj", ":/tpallet/images/pallet/p1.png"},
                                                  {"wgtImageRetract", ":/tpallet/images/pallet/p6.png"}};
    for (const auto &picture : pictures) {
        auto *image = m_step->findChild<ImageWidget *>(picture.first);
        QVERIFY(image);
        const QImage shown = image->pixmap().toImage();
        QVERIFY(!shown.isNull());
        QCOMPARE(shown, QImage(picture.second).convertToFormat(shown.format()));
    }
    for (const char *name : {"btnAccquireApproach", "btnAccquireWobj", "btnAccquireRetract"})
        QCOMPARE(button(name)->text(), QStringLiteral("Accquire"));
    for (const char *name : {"btnMoveToApproach", "btnMoveToWobj", "btnMoveToRetract"})
        QCOMPARE(button(name)->text(), QStringLiteral("Move To"));
    const QString tip = m_step->findChild<QLabel *>(QStringLiteral("lblTip"))->text();
    QCOMPARE(tip, QStringLiteral("<p>1.Please grab the work object to the origin point when accquiring P5,P6,P7.</p>"
                                 "<p>2.The other work object's coordinates will be caculated according to the reference point.</p>"));
}

void TestWayPointWizard::showsTaughtPoses()
{
    tpallet::initWayPointNode(m_pallet);
    m_pallet->set(nullptr, QStringLiteral("waypoint.approach.trans.#2"), 0.15);
    m_pallet->set(nullptr, QStringLiteral("waypoint.wobj.trans.#1"), -0.025);
    m_pallet->set(nullptr, QStringLiteral("waypoint.retract.rot.#0"), 3.141592653589793);
    open();
    QCOMPARE(spin(QStringLiteral("dspnZ"))->value(), 150.0);
    QCOMPARE(spin(QStringLiteral("dspnY_2"))->value(), -25.0);
    QCOMPARE(spin(QStringLiteral("dspnA_3"))->value(), 180.0);
}

void TestWayPointWizard::acquireReadsPosture_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<QString>("point");
    QTest::addColumn<QString>("spin");
    QTest::newRow("approach") << "btnAccquireApproach" << "approach" << "dspnX";
    QTest::newRow("wobj") << "btnAccquireWobj" << "wobj" << "dspnX_2";
    QTest::newRow("retract") << "btnAccquireRetract" << "retract" << "dspnX_3";
}

void TestWayPointWizard::acquireReadsPosture()
{
    QFETCH(QString, button);
    QFETCH(QString, point);
    QFETCH(QString, spin);
    m_fx.transport()->setReply(QStringLiteral("sys.posture"), 0,
                               "{\"trans\":[0.075,0.01,0.2],\"rot\":[3.141592653589793,0.0,0.0],\"near\":[0,0,0,0,0,0.5]}");
    open();
    QTest::mouseClick(m_step->findChild<QPushButton *>(button), Qt::LeftButton);
    QCOMPARE(m_pallet->r(QStringLiteral("waypoint.%1.trans.#0").arg(point))->getDouble(), 0.075);
    QCOMPARE(m_pallet->r(QStringLiteral("waypoint.%1.near.#5").arg(point))->getDouble(), 0.5);
    QCOMPARE(this->spin(spin)->value(), 75.0);
}

void TestWayPointWizard::finishedEditIsStored()
{
    open();
    QDoubleSpinBox *y = spin(QStringLiteral("dspnY_2"));
    y->setFocus();
    y->selectAll();
    QTest::keyClicks(y, QStringLiteral("123.4"));
    QTest::keyClick(y, Qt::Key_Return);
    QCOMPARE(m_pallet->r(QStringLiteral("waypoint.wobj.trans.#1"))->getDouble(), 0.1234);
}

void TestWayPointWizard::moveUsesUnfinishedEdit()
{
    open();
    QDoubleSpinBox *x = spin(QStringLiteral("dspnX"));
    x->setFocus();
    x->selectAll();
    QTest::keyClicks(x, QStringLiteral("42"));
    QTest::mouseClick(button("btnMoveToApproach"), Qt::LeftButton);
    QCOMPARE(m_pallet->r(QStringLiteral("waypoint.approach.trans.#0"))->getDouble(), 0.042);
    auto *dialog = qobject_cast<MoveToDialog *>(kx::uniqueObject(QStringLiteral("tpallet.move.dialog")));
    QVERIFY(dialog);
    QVERIFY(dialog->findChild<QLabel *>(QStringLiteral("lblTitle"))->text().contains(QLatin1String("P5")));
    // The label is the dialog's, not the pallet's.
    QVERIFY(!m_pallet->r(QStringLiteral("waypoint.approach"))->hasCmobj(QStringLiteral("tag")));
    delete dialog;
}

void TestWayPointWizard::entrySwitchesPalletToolset()
{
    m_pallet->set(nullptr, QStringLiteral("calibrate.toolset.ref.trans.#0"), 0.7);
    open();
    tcore::ManagerHelper::instance()->clearLogHistory();
    m_step->init(false);
    const auto sent = m_fx.requestsOf(QStringLiteral("sys.toolset"));
    QCOMPARE(sent.size(), 1);
    // The way points are taught in the pallet frame: the reference is sent as stored.
    QCOMPARE(sent.at(0).params->r(QStringLiteral("ref.trans.#0"))->getDouble(), 0.7);
    QCOMPARE(log().size(), 1);
    QCOMPARE(log().at(0).value(QStringLiteral("title")).toString(), QStringLiteral("Swithed to pallet wobj"));
    QCOMPARE(log().at(0).value(QStringLiteral("level")).toString(), QStringLiteral("warning"));
}

void TestWayPointWizard::entryFailureAndUncalibratedAreLogged()
{
    m_fx.transport()->setReply(QStringLiteral("sys.toolset"), -3);
    m_pallet->set(nullptr, QStringLiteral("calibrate.x_span"), 0.0099);
    open();
    tcore::ManagerHelper::instance()->clearLogHistory();
    m_step->init(false);
    QCOMPARE(log().size(), 2);
    QCOMPARE(log().at(0).value(QStringLiteral("title")).toString(), QStringLiteral("swith to pallet wobj failed"));
    QCOMPARE(log().at(0).value(QStringLiteral("level")).toString(), QStringLiteral("error"));
    QCOMPARE(log().at(1).value(QStringLiteral("title")).toString(),
             QStringLiteral("The pallet's width or height is too small, it may not be calibrated!"));
    QVERIFY(m_step->isEnabled());
}

void TestWayPointWizard::leavingRegeneratesEvenWithoutChange()
{
    open();
    m_pallet->c(QStringLiteral("points"))->clear(nullptr);
    m_fx.transport()->clearRequests();
    tcore::ManagerHelper::instance()->clearLogHistory();
    QVERIFY(m_step->tryNext());
    QCOMPARE(m_pallet->c(QStringLiteral("points"))->cmobjCount(), 6);
    QCOMPARE(m_fx.requestsOf(QStringLiteral("tray.set.one")).size(), 1);
    QCOMPARE(log().last().value(QStringLiteral("title")).toString(), QStringLiteral("The way points have regenerated!"));
    QVERIFY(m_step->tryConfirm());
    QCOMPARE(m_fx.requestsOf(QStringLiteral("tray.set.one")).size(), 2);
}

void TestWayPointWizard::hideAbcLeavesPositionOnly()
{
    open();
    m_step->hideAbcVisible();
    int hidden = 0;
    for (QGroupBox *box : m_step->findChildren<QGroupBox *>()) {
        for (QWidget *w : box->findChildren<QWidget *>()) {
            const QString name = w->objectName();
            const bool angle = name.startsWith(QLatin1String("dspnA")) || name.startsWith(QLatin1String("dspnB"))
                || name.startsWith(QLatin1String("dspnC")) || name.startsWith(QLatin1String("lblA"))
                || name.startsWith(QLatin1String("lblB")) || name.startsWith(QLatin1String("lblC"));
            if (angle) {
                QVERIFY2(!w->isVisible(), qPrintable(name));
                ++hidden;
            } else if (name.startsWith(QLatin1String("dspn"))) {
                QVERIFY2(w->isVisible(), qPrintable(name));
            }
        }
    }
    QCOMPARE(hidden, 18);
}

QTEST_MAIN(TestWayPointWizard)
#include "tst_waypointwizard.moc"
