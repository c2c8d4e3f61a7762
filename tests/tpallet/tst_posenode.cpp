#include "posenode.h"

#include <orba/modulemanager.h>
#include <orba/moduleobject.h>
#include <tcore/widgets.h>

#include <QDoubleSpinBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QSpinBox>
#include <QtTest>

#include <cstring>
#include <memory>

namespace {

// A pose group box as the step forms lay it out: six editors, optionally with a name suffix.
struct PoseBox
{
    std::unique_ptr<QWidget> window;
    QGroupBox *box = nullptr;

    explicit PoseBox(const QString &suffix = QString(), bool withRot = true, int decimals = 2)
        : window(new QWidget)
    {
        box = new QGroupBox(window.get());
        box->setObjectName(QStringLiteral("grbPose"));
        auto *layout = new QHBoxLayout(box);
        QStringList keys = {QStringLiteral("dspnX"), QStringLiteral("dspnY"), QStringLiteral("dspnZ")};
        if (withRot)
            keys << QStringLiteral("dspnA") << QStringLiteral("dspnB") << QStringLiteral("dspnC");
        for (const QString &key : keys) {
            auto *spin = new DoubleSpin(box);
            spin->setObjectName(key + suffix);
            spin->setRange(-10000, 10000);
            spin->setDecimals(decimals);
            layout->addWidget(spin);
        }
    }

    QDoubleSpinBox *spin(const QString &key) const { return tpallet::findDouleSpin(key, box); }
};

bool sameBits(double a, double b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

void setPose(orba::ModuleObject *point, const QVector<double> &trans, const QVector<double> &rot)
{
    for (int i = 0; i < trans.size(); ++i)
        point->set(nullptr, QStringLiteral("trans.#%1").arg(i), trans[i], true);
    for (int i = 0; i < rot.size(); ++i)
        point->set(nullptr, QStringLiteral("rot.#%1").arg(i), rot[i], true);
}

double at(orba::ModuleObject *node, const QString &path)
{
    return node->r(path)->getDouble(-12345.0);
}

} // namespace

class TestPoseNode : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void nodeShowsMillimetres();
    void finishedEditStoresMetres();
    void suffixedEditorFoundByKey();
    void findDouleSpinIsCaseSensitiveAndTypeStrict();
    void findDouleSpinTakesFirstInSearchOrder();
    void rotationShownWithDegreeConstant();
    void rawValuesWithoutConversion();
    void roundTripKeepsConstantAsymmetry();
    void transVariantsLeaveRotationAlone();
    void missingEditorIsSkipped();
    void nullOrEmptyNodeIsNoOp();
    void bindingEndsWithContext();
    void bindingSurvivesDeletedNode();
    void postureRecordFillsPoint_data();
    void postureRecordFillsPoint();
    void checkCalibrated_data();
    void checkCalibrated();

private:
    orba::ModuleObject *m_point = nullptr;
};

void TestPoseNode::init()
{
    orba::ModuleManager::resetRoot();
    m_point = orba::m()->append(nullptr, QStringLiteral("point"));
}

void TestPoseNode::cleanup()
{
    orba::ModuleManager::resetRoot();
    m_point = nullptr;
}

void TestPoseNode::nodeShowsMillimetres()
{
    PoseBox pose;
    setPose(m_point, {0.1, -0.25, 0.0005}, {0.0, 0.0, 0.0});
    tpallet::pointToGroupSpin(m_point, pose.box, true);
    QCOMPARE(pose.spin("dspnX")->value(), 100.0);
    QCOMPARE(pose.spin("dspnY")->value(), -250.0);
    QCOMPARE(pose.spin("dspnZ")->value(), 0.5);
}

void TestPoseNode::finishedEditStoresMetres()
{
    PoseBox pose;
    setPose(m_point, {0.1, -0.25, 0.0005}, {0.0, 0.0, 0.0});
    tpallet::pointToGroupSpin(m_point, pose.box, true);
    tpallet::connectSpinChangeToPoint(pose.box, m_point, pose.window.get());
    pose.window->show();
    QVERIFY(QTest::qWaitForWindowExposed(pose.window.get()));

    QDoubleSpinBox *y = pose.spin("dspnY");
    y->setFocus();
    y->selectAll();
    QTest::keyClicks(y, QStringLiteral("123.4"));
    QCOMPARE(at(m_point, "trans.#1"), -0.25); // nothing is written before the edit is finished
    QTest::keyClick(y, Qt::Key_Return);

    QCOMPARE(at(m_point, "trans.#1"), 123.4 / 1000.0);
    QVERIFY(qFuzzyCompare(at(m_point, "trans.#1"), 0.1234));
    // The whole box is written back on any finished edit.
    QCOMPARE(at(m_point, "trans.#0"), 100.0 / 1000.0);
    QCOMPARE(at(m_point, "trans.#2"), 0.5 / 1000.0);
    QCOMPARE(at(m_point, "rot.#0"), 0.0);
}

void TestPoseNode::suffixedEditorFoundByKey()
{
    PoseBox pose(QStringLiteral("_3"));
    QDoubleSpinBox *x = tpallet::findDouleSpin(QStringLiteral("dspnX"), pose.box);
    QVERIFY(x);
    QCOMPARE(x->objectName(), QStringLiteral("dspnX_3"));

    setPose(m_point, {0.2, 0.0, 0.0}, {});
    tpallet::pointToGroupSpin(m_point, pose.box, true);
    QCOMPARE(x->value(), 200.0);
}

void TestPoseNode::findDouleSpinIsCaseSensitiveAndTypeStrict()
{
    QGroupBox box;
    auto *integer = new QSpinBox(&box);
    integer->setObjectName(QStringLiteral("dspnX"));
    auto *lower = new QDoubleSpinBox(&box);
    lower->setObjectName(QStringLiteral("dspnx"));
    QCOMPARE(tpallet::findDouleSpin(QStringLiteral("dspnX"), &box), static_cast<QDoubleSpinBox *>(nullptr));
    QCOMPARE(tpallet::findDouleSpin(QStringLiteral("dspnx"), &box), lower);
    QCOMPARE(tpallet::findDouleSpin(QStringLiteral("dspnX"), nullptr), static_cast<QDoubleSpinBox *>(nullptr));
}

void TestPoseNode::findDouleSpinTakesFirstInSearchOrder()
{
    QGroupBox box;
    auto *inner = new QWidget(&box);
    auto *nested = new QDoubleSpinBox(inner);
    nested->setObjectName(QStringLiteral("dspnZ_2"));
    auto *later = new QDoubleSpinBox(&box);
    later->setObjectName(QStringLiteral("dspnZ"));
    // Depth first: the editor inside the first child comes before the later sibling.
    QCOMPARE(tpallet::findDouleSpin(QStringLiteral("dspnZ"), &box), nested);
}

void TestPoseNode::rotationShownWithDegreeConstant()
{
    PoseBox pose(QString(), true, 17);
    setPose(m_point, {0.0, 0.0, 0.0}, {1.0, 0.1, -0.3});
    tpallet::pointToGroupSpin(m_point, pose.box, true);
    QVERIFY(sameBits(pose.spin("dspnA")->value(), 57.29577951308232 * 1.0));
    QVERIFY(sameBits(pose.spin("dspnB")->value(), 57.29577951308232 * 0.1));
    QVERIFY(sameBits(pose.spin("dspnC")->value(), 57.29577951308232 * -0.3));
}

void TestPoseNode::rawValuesWithoutConversion()
{
    PoseBox pose(QString(), true, 6);
    setPose(m_point, {0.125, -0.5, 2.0}, {1.5, -0.25, 3.0});
    tpallet::pointToGroupSpin(m_point, pose.box, false);
    QCOMPARE(pose.spin("dspnX")->value(), 0.125);
    QCOMPARE(pose.spin("dspnY")->value(), -0.5);
    QCOMPARE(pose.spin("dspnZ")->value(), 2.0);
    QCOMPARE(pose.spin("dspnA")->value(), 1.5);
    QCOMPARE(pose.spin("dspnB")->value(), -0.25);
    QCOMPARE(pose.spin("dspnC")->value(), 3.0);
}

void TestPoseNode::roundTripKeepsConstantAsymmetry()
{
    PoseBox pose(QString(), true, 17);
    setPose(m_point, {0.0, 0.0, 0.0}, {0.1, 0.3, 0.5});
    tpallet::pointToGroupSpin(m_point, pose.box, true);
    tpallet::groupSpinToPoint(m_point, pose.box);

    // Out: degrees * pi / 180, not degrees / 57.29577951308232.
    const double b0 = 57.29577951308232 * 0.1 * 3.141592653589793 / 180.0;
    const double b1 = 57.29577951308232 * 0.3 * 3.141592653589793 / 180.0;
    QVERIFY(sameBits(at(m_point, "rot.#0"), b0));
    QVERIFY(sameBits(at(m_point, "rot.#1"), b1));
    QVERIFY(sameBits(at(m_point, "rot.#2"), 0.5));
    // The last bits move for these two values: the asymmetry is real, not hypothetical.
    QVERIFY(!sameBits(at(m_point, "rot.#0"), 0.1));
    QVERIFY(!sameBits(at(m_point, "rot.#1"), 0.3));
}

void TestPoseNode::transVariantsLeaveRotationAlone()
{
    PoseBox full;
    setPose(m_point, {0.001, 0.002, 0.003}, {0.5, 0.25, 0.125});
    tpallet::pointTransToGroupSpin(m_point, full.box, true);
    QCOMPARE(full.spin("dspnX")->value(), 1.0);
    QCOMPARE(full.spin("dspnZ")->value(), 3.0);
    QCOMPARE(full.spin("dspnA")->value(), 0.0);

    full.spin("dspnX")->setValue(10.0);
    full.spin("dspnA")->setValue(90.0);
    tpallet::groupSpinToPointTrans(m_point, full.box);
    QCOMPARE(at(m_point, "trans.#0"), 10.0 / 1000.0);
    QCOMPARE(at(m_point, "rot.#0"), 0.5);

    PoseBox transOnly(QStringLiteral("_2"), false);
    tpallet::pointTransToGroupSpin(m_point, transOnly.box, false);
    QCOMPARE(transOnly.spin("dspnX")->value(), 0.01);
    tpallet::connectSpinChangeToPointTrans(transOnly.box, m_point, transOnly.window.get());
    transOnly.spin("dspnY")->setValue(-40.0);
    emit transOnly.spin("dspnY")->editingFinished();
    QCOMPARE(at(m_point, "trans.#1"), -40.0 / 1000.0);
    QCOMPARE(at(m_point, "rot.#1"), 0.25);
}

void TestPoseNode::missingEditorIsSkipped()
{
    PoseBox pose;
    delete pose.spin("dspnY");
    delete pose.spin("dspnB");
    setPose(m_point, {0.001, 0.002, 0.003}, {0.0, 0.0, 0.0});
    tpallet::pointToGroupSpin(m_point, pose.box, true);
    QCOMPARE(pose.spin("dspnX")->value(), 1.0);
    QCOMPARE(pose.spin("dspnZ")->value(), 3.0);

    pose.spin("dspnX")->setValue(7.0);
    pose.spin("dspnC")->setValue(180.0);
    tpallet::groupSpinToPoint(m_point, pose.box);
    QCOMPARE(at(m_point, "trans.#0"), 7.0 / 1000.0);
    QCOMPARE(at(m_point, "trans.#1"), 0.002); // no editor: untouched
    QCOMPARE(at(m_point, "rot.#2"), 180.0 * 3.141592653589793 / 180.0);
    QCOMPARE(at(m_point, "rot.#1"), 0.0);
}

void TestPoseNode::nullOrEmptyNodeIsNoOp()
{
    PoseBox pose;
    pose.spin("dspnX")->setValue(12.0);
    tpallet::pointToGroupSpin(nullptr, pose.box, true);
    tpallet::pointToGroupSpin(orba::ModuleManager::emptyMobj(), pose.box, true);
    tpallet::pointTransToGroupSpin(orba::ModuleManager::emptyMobj(), pose.box, true);
    QCOMPARE(pose.spin("dspnX")->value(), 12.0);

    tpallet::groupSpinToPoint(nullptr, pose.box);
    tpallet::groupSpinToPoint(orba::ModuleManager::emptyMobj(), pose.box);
    tpallet::groupSpinToPointTrans(orba::ModuleManager::emptyMobj(), pose.box);
    QVERIFY(orba::ModuleManager::emptyMobj()->isNull());
    tpallet::pointToGroupSpin(m_point, nullptr, true);
    tpallet::groupSpinToPoint(m_point, nullptr);
    QCOMPARE(m_point->cmobjCount(), 0);
}

void TestPoseNode::bindingEndsWithContext()
{
    PoseBox pose;
    auto *context = new QWidget;
    tpallet::connectSpinChangeToPoint(pose.box, m_point, context);
    pose.spin("dspnZ")->setValue(5.0);
    emit pose.spin("dspnZ")->editingFinished();
    QCOMPARE(at(m_point, "trans.#2"), 0.005);

    delete context;
    pose.spin("dspnZ")->setValue(6.0);
    emit pose.spin("dspnZ")->editingFinished();
    QCOMPARE(at(m_point, "trans.#2"), 0.005);
}

void TestPoseNode::bindingSurvivesDeletedNode()
{
    PoseBox pose;
    tpallet::connectSpinChangeToPoint(pose.box, m_point, pose.window.get());
    orba::m()->remove(nullptr, m_point);
    m_point = nullptr;
    pose.spin("dspnX")->setValue(3.0);
    emit pose.spin("dspnX")->editingFinished(); // must not touch the destroyed node
    QVERIFY(!orba::m()->hasCmobj(QStringLiteral("point")));
}

void TestPoseNode::postureRecordFillsPoint_data()
{
    QTest::addColumn<QVector<double>>("position");
    QTest::addColumn<QVector<double>>("euler");
    QTest::addColumn<QVector<double>>("joint");

    QTest::newRow("three positions, six joints")
        << QVector<double>{100.0, -250.5, 0.5} << QVector<double>{90.0, 0.0, -45.0}
        << QVector<double>{10.0, -20.0, 30.0, -40.0, 50.0, 179.9};
    QTest::newRow("no euler") << QVector<double>{1.0, 2.0, 3.0} << QVector<double>{}
                              << QVector<double>{0.0, 1.0, 2.0, 3.0, 4.0, 5.0};
    QTest::newRow("short position") << QVector<double>{7.5} << QVector<double>{30.0}
                                    << QVector<double>{};
}

void TestPoseNode::postureRecordFillsPoint()
{
    QFETCH(QVector<double>, position);
    QFETCH(QVector<double>, euler);
    QFETCH(QVector<double>, joint);

    orba::ModuleObject posture(QStringLiteral("posture"));
    for (int i = 0; i < position.size(); ++i)
        posture.set(nullptr, QStringLiteral("position.#%1").arg(i), position[i], true);
    for (int i = 0; i < euler.size(); ++i)
        posture.set(nullptr, QStringLiteral("euler.#%1").arg(i), euler[i], true);
    for (int i = 0; i < joint.size(); ++i)
        posture.set(nullptr, QStringLiteral("joint.#%1").arg(i), joint[i], true);

    tpallet::accquirePosToPointNode(&posture, m_point);

    QCOMPARE(m_point->c(QStringLiteral("trans"))->size(), position.size());
    QCOMPARE(m_point->c(QStringLiteral("rot"))->size(), euler.size());
    QCOMPARE(m_point->c(QStringLiteral("near"))->size(), joint.size());
    for (int i = 0; i < position.size(); ++i)
        QCOMPARE(at(m_point, QStringLiteral("trans.#%1").arg(i)), position[i] / 1000.0);
    for (int i = 0; i < euler.size(); ++i)
        QCOMPARE(at(m_point, QStringLiteral("rot.#%1").arg(i)), euler[i] * 3.141592653589793 / 180.0);
    for (int i = 0; i < joint.size(); ++i)
        QCOMPARE(at(m_point, QStringLiteral("near.#%1").arg(i)), joint[i] * 3.141592653589793 / 180.0);
}

void TestPoseNode::checkCalibrated_data()
{
    QTest::addColumn<QVariant>("xSpan");
    QTest::addColumn<QVariant>("ySpan");
    QTest::addColumn<bool>("warns");

    QTest::newRow("x 0.0099") << QVariant(0.0099) << QVariant(0.5) << true;
    QTest::newRow("x 0.01 exactly") << QVariant(0.01) << QVariant(0.5) << false;
    QTest::newRow("y 0.0099") << QVariant(0.5) << QVariant(0.0099) << true;
    QTest::newRow("both 0.01") << QVariant(0.01) << QVariant(0.01) << false;
    QTest::newRow("negative span") << QVariant(-1.2) << QVariant(0.8) << true;
    QTest::newRow("spans missing") << QVariant() << QVariant() << true;
    QTest::newRow("large pallet") << QVariant(1.2) << QVariant(0.8) << false;
}

void TestPoseNode::checkCalibrated()
{
    QFETCH(QVariant, xSpan);
    QFETCH(QVariant, ySpan);
    QFETCH(bool, warns);

    orba::ModuleObject *pallet = orba::m()->append(nullptr, QStringLiteral("pallet"));
    pallet->append(nullptr, QStringLiteral("calibrate"));
    if (xSpan.isValid())
        pallet->set(nullptr, QStringLiteral("calibrate.x_span"), xSpan, true);
    if (ySpan.isValid())
        pallet->set(nullptr, QStringLiteral("calibrate.y_span"), ySpan, true);

    const QString text = tpallet::checkCalibrated(pallet);
    if (warns)
        QCOMPARE(text, QStringLiteral("The pallet's width or height is too small, it may not be calibrated!"));
    else
        QVERIFY2(text.isEmpty(), qPrintable(text));
}

QTEST_MAIN(TestPoseNode)
#include "tst_posenode.moc"
