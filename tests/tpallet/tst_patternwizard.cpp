#include "palletfixture.h"

#include "module/pointgen.h"
#include "wizards/imagewidget.h"
#include "wizards/patternwidget.h"
#include "wizards/patternwizard.h"

#include <QGroupBox>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QtTest>

#include <cmath>

namespace {

// Screen model of a pallet of `rows` x `cols` places: corners 0 top left, 1 top right,
// 2 bottom right, 3 bottom left. Walks the places in parallel order from the origin corner and
// returns the number that lands on each corner.
QStringList walkCorners(int origin, bool rankV, int rows, int cols)
{
    const bool right = origin == 0 || origin == 3;  // origin on the left edge: walk rightwards
    const bool down = origin == 0 || origin == 1;   // origin on the top edge: walk downwards
    QVector<QVector<int>> number(rows, QVector<int>(cols, 0));
    int n = 1;
    const int lines = rankV ? cols : rows;
    const int along = rankV ? rows : cols;
    for (int line = 0; line < lines; ++line) {
        for (int k = 0; k < along; ++k) {
            const int r = rankV ? (down ? k : rows - 1 - k) : (down ? line : rows - 1 - line);
            const int c = rankV ? (right ? line : cols - 1 - line) : (right ? k : cols - 1 - k);
            number[r][c] = n++;
        }
    }
    return {QString::number(number[0][0]), QString::number(number[0][cols - 1]),
            QString::number(number[rows - 1][cols - 1]), QString::number(number[rows - 1][0])};
}

template<typename T>
T *child(QWidget *parent, const QString &name)
{
    T *found = parent->findChild<T *>(name);
    if (!found)
        qFatal("widget %s missing", qPrintable(name));
    return found;
}

} // namespace

class TestPatternWizard : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void constructionShowsPallet();
    void pictureFollowsChoice_data();
    void pictureFollowsChoice();
    void levelRulesEnableControls_data();
    void levelRulesEnableControls();
    void cornerCaptionsOfSmallPallet_data();
    void cornerCaptionsOfSmallPallet();
    void cornerCaptionsMatchPlacingWalk_data();
    void cornerCaptionsMatchPlacingWalk();
    void cornerCaptionsMatchGeneratedPlaces_data();
    void cornerCaptionsMatchGeneratedPlaces();
    void serpentineKeepsCaptions();
    void originOutsideCornersChangesNothing();
    void captionWidthRule_data();
    void captionWidthRule();
    void rowAndColumnCaptions();
    void totalFollowsRowAndColumn();
    void childrenFollowResize();
    void fractionRoundsHalfAwayFromZero();
    void imageWidgetKeepsAspect_data();
    void imageWidgetKeepsAspect();
    void imageWidgetStretch();
    void nextStoresChoiceAndSaves();
    void leavingWithoutNextWritesNothing();

private:
    PatternWizard *open();
    QPushButton *corner(int i) { return m_wizard->findChild<PatternWidget *>()->getBtnList().at(i); }
    QPushButton *button(const char *name) { return child<QPushButton>(m_wizard, QLatin1String(name)); }

    PalletFixture m_fx;
    orba::ModuleObject *m_pallet = nullptr;
    QPointer<PatternWizard> m_wizard;
};

void TestPatternWizard::init()
{
    m_fx.setUp();
    m_fx.transport()->setReply(QStringLiteral("tray.set.one"), 0);
    m_fx.connectController();
    orba::m()->set(nullptr, QStringLiteral("tcore.r.level"), 3, true);
    m_pallet = PalletFixture::addLocalPallet(QStringLiteral("tray0"), 2, 3);
}

void TestPatternWizard::cleanup()
{
    delete m_wizard.data();
    m_fx.tearDown();
}

PatternWizard *TestPatternWizard::open()
{
    m_wizard = new PatternWizard(m_pallet, nullptr);
    m_wizard->resize(1000, 520);
    m_wizard->show();
    return m_wizard;
}

void TestPatternWizard::constructionShowsPallet()
{
    m_pallet->set(nullptr, QStringLiteral("pattern.origin"), 2, true);
    m_pallet->set(nullptr, QStringLiteral("pattern.s_type"), true, true);
    m_pallet->set(nullptr, QStringLiteral("pattern.rank_v"), true, true);
    open();
    QCOMPARE(m_wizard->origin(), 2);
    QVERIFY(button("btnSType")->isChecked());
    QVERIFY(!button("btnParallel")->isChecked());
    QVERIFY(button("btnRankV")->isChecked());
    QVERIFY(!button("btnRankH")->isChecked());
    QCOMPARE(button("btnRankH")->text(), QStringLiteral("2\u00d73"));
    QCOMPARE(button("btnRankV")->text(), QStringLiteral("3\u00d72"));
    QCOMPARE(child<QLabel>(m_wizard, QStringLiteral("lblTotal"))->text(), QStringLiteral("6"));
    QCOMPARE(m_wizard->findChild<PatternWidget *>()->image(), QStringLiteral(":/tpallet/images/pallet/s_v_2.png"));
}

void TestPatternWizard::pictureFollowsChoice_data()
{
    QTest::addColumn<int>("origin");
    QTest::addColumn<bool>("sType");
    QTest::addColumn<bool>("rankV");
    QTest::addColumn<QString>("picture");
    QTest::newRow("origin 3, S-type, vertical") << 3 << true << true << ":/tpallet/images/pallet/s_v_3.png";
    for (int origin = 0; origin < 4; ++origin) {
        for (bool sType : {false, true}) {
            for (bool rankV : {false, true}) {
                const QString name = QStringLiteral("%1_%2_%3").arg(sType ? "s" : "p", rankV ? "v" : "h").arg(origin);
                QTest::newRow(qPrintable(name)) << origin << sType << rankV
                                                << QStringLiteral(":/tpallet/images/pallet/%1.png").arg(name);
            }
        }
    }
}

void TestPatternWizard::pictureFollowsChoice()
{
    QFETCH(int, origin);
    QFETCH(bool, sType);
    QFETCH(bool, rankV);
    QFETCH(QString, picture);
    open();
    QTest::mouseClick(button(sType ? "btnSType" : "btnParallel"), Qt::LeftButton);
    QTest::mouseClick(button(rankV ? "btnRankV" : "btnRankH"), Qt::LeftButton);
    QTest::mouseClick(corner(origin), Qt::LeftButton);
    QCOMPARE(m_wizard->origin(), origin);
    QCOMPARE(m_wizard->findChild<PatternWidget *>()->image(), picture);
    QCOMPARE(tpallet::patternImagePath(origin, sType, rankV), picture);
    // Changing the order afterwards keeps the origin and swaps the picture.
    QTest::mouseClick(button(sType ? "btnParallel" : "btnSType"), Qt::LeftButton);
    QCOMPARE(m_wizard->findChild<PatternWidget *>()->image(), tpallet::patternImagePath(origin, !sType, rankV));
    QCOMPARE(m_wizard->origin(), origin);
}

void TestPatternWizard::levelRulesEnableControls_data()
{
    QTest::addColumn<int>("level");
    QTest::addColumn<bool>("enabled");
    QTest::newRow("level 1") << 1 << false;
    QTest::newRow("level 2") << 2 << false;
    QTest::newRow("level 3") << 3 << true;
    QTest::newRow("level 4") << 4 << true;
}

void TestPatternWizard::levelRulesEnableControls()
{
    QFETCH(int, level);
    QFETCH(bool, enabled);
    orba::m()->set(nullptr, QStringLiteral("tcore.r.level"), level, true);
    open();
    m_wizard->updateAvailability();
    for (const char *name : {"btnParallel", "btnSType", "btnRankH", "btnRankV"})
        QCOMPARE(button(name)->isEnabled(), enabled);
    for (int i = 0; i < 4; ++i)
        QCOMPARE(corner(i)->isEnabled(), enabled);
    // A disabled corner cannot be chosen.
    QTest::mouseClick(corner(2), Qt::LeftButton);
    QCOMPARE(m_wizard->origin(), enabled ? 2 : 0);
}

void TestPatternWizard::cornerCaptionsOfSmallPallet_data()
{
    QTest::addColumn<bool>("rankV");
    QTest::addColumn<QStringList>("captions");
    QTest::newRow("origin 0, 2x3, horizontal") << false << QStringList{"1", "3", "6", "4"};
    QTest::newRow("origin 0, 2x3, vertical") << true << QStringList{"1", "5", "6", "2"};
}

void TestPatternWizard::cornerCaptionsOfSmallPallet()
{
    QFETCH(bool, rankV);
    QFETCH(QStringList, captions);
    open();
    QTest::mouseClick(button(rankV ? "btnRankV" : "btnRankH"), Qt::LeftButton);
    QTest::mouseClick(corner(0), Qt::LeftButton);
    for (int i = 0; i < 4; ++i)
        QCOMPARE(corner(i)->text(), captions.at(i));
}

void TestPatternWizard::cornerCaptionsMatchPlacingWalk_data()
{
    QTest::addColumn<int>("origin");
    QTest::addColumn<bool>("rankV");
    QTest::addColumn<int>("rows");
    QTest::addColumn<int>("cols");
    for (int origin = 0; origin < 4; ++origin) {
        for (bool rankV : {false, true}) {
            for (const QSize &rc : {QSize(3, 2), QSize(4, 3), QSize(2, 2), QSize(30, 40)}) {
                QTest::newRow(qPrintable(QStringLiteral("origin %1 %2 %3x%4")
                                             .arg(origin)
                                             .arg(rankV ? "vertical" : "horizontal")
                                             .arg(rc.height())
                                             .arg(rc.width())))
                    << origin << rankV << rc.height() << rc.width();
            }
        }
    }
}

void TestPatternWizard::cornerCaptionsMatchPlacingWalk()
{
    QFETCH(int, origin);
    QFETCH(bool, rankV);
    QFETCH(int, rows);
    QFETCH(int, cols);
    QCOMPARE(tpallet::cornerCaptions(origin, rankV, rows, cols), walkCorners(origin, rankV, rows, cols));
}

void TestPatternWizard::cornerCaptionsMatchGeneratedPlaces_data()
{
    cornerCaptionsMatchPlacingWalk_data();
}

// The corner captions name the places that point generation puts at those corners of the
// calibrated pallet: P1 on the origin corner, P2 (x axis) on the corner before it, P3 (y axis)
// on the corner after it.
void TestPatternWizard::cornerCaptionsMatchGeneratedPlaces()
{
    QFETCH(int, origin);
    QFETCH(bool, rankV);
    QFETCH(int, rows);
    QFETCH(int, cols);
    orba::ModuleObject pallet(QStringLiteral("p"));
    pallet.copyFrom(nullptr, orba::m(QStringLiteral("tpallet.default")), true, false);
    pallet.set(nullptr, QStringLiteral("pattern.origin"), origin, true);
    pallet.set(nullptr, QStringLiteral("pattern.rank_v"), rankV, true);
    pallet.set(nullptr, QStringLiteral("pattern.row"), rows, true);
    pallet.set(nullptr, QStringLiteral("pattern.col"), cols, true);
    pallet.set(nullptr, QStringLiteral("calibrate.x_span"), 1.0, true);
    pallet.set(nullptr, QStringLiteral("calibrate.y_span"), 1.0, true);
    tpallet::initWayPointNode(&pallet);
    tpallet::generatePoints1(&pallet, nullptr);
    orba::ModuleObject *points = pallet.c(QStringLiteral("points"));
    QCOMPARE(points->cmobjCount(), rows * cols);

    auto cornerOf = [origin](double x, double y) {
        const int P1 = origin, P2 = (origin + 3) % 4, P3 = (origin + 1) % 4, P4 = (origin + 2) % 4;
        if (x < 0.5)
            return y < 0.5 ? P1 : P3;
        return y < 0.5 ? P2 : P4;
    };
    const QStringList captions = tpallet::cornerCaptions(origin, rankV, rows, cols);
    for (int c = 0; c < 4; ++c) {
        const int index = captions.at(c).toInt() - 1;
        orba::ModuleObject *place = points->c(index)->c(QStringLiteral("wobj"));
        const double x = place->r(QStringLiteral("trans.#0"))->getDouble();
        const double y = place->r(QStringLiteral("trans.#1"))->getDouble();
        QVERIFY2(std::abs(x) < 1e-12 || std::abs(x - 1.0) < 1e-12, qPrintable(QString::number(x)));
        QVERIFY2(std::abs(y) < 1e-12 || std::abs(y - 1.0) < 1e-12, qPrintable(QString::number(y)));
        QCOMPARE(cornerOf(x, y), c);
    }
}

void TestPatternWizard::serpentineKeepsCaptions()
{
    m_pallet->set(nullptr, QStringLiteral("pattern.row"), 3, true);
    m_pallet->set(nullptr, QStringLiteral("pattern.col"), 4, true);
    open();
    QTest::mouseClick(corner(1), Qt::LeftButton);
    QStringList parallel;
    for (int i = 0; i < 4; ++i)
        parallel << corner(i)->text();
    QTest::mouseClick(button("btnSType"), Qt::LeftButton);
    for (int i = 0; i < 4; ++i)
        QCOMPARE(corner(i)->text(), parallel.at(i));
    QCOMPARE(parallel, (QStringList{"4", "1", "9", "12"}));
}

void TestPatternWizard::originOutsideCornersChangesNothing()
{
    open();
    QTest::mouseClick(corner(2), Qt::LeftButton);
    QStringList before;
    for (int i = 0; i < 4; ++i)
        before << corner(i)->text();
    m_wizard->refreshButton(4);
    m_wizard->refreshButton(-1);
    for (int i = 0; i < 4; ++i)
        QCOMPARE(corner(i)->text(), before.at(i));
    QVERIFY(tpallet::cornerCaptions(4, false, 2, 3).isEmpty());
    QVERIFY(tpallet::cornerCaptions(-1, false, 2, 3).isEmpty());
}

void TestPatternWizard::captionWidthRule_data()
{
    QTest::addColumn<int>("rows");
    QTest::addColumn<int>("cols");
    QTest::addColumn<int>("extra");
    QTest::newRow("100 keeps the base width") << 10 << 10 << 0;
    QTest::newRow("1000 widens by 20") << 10 << 100 << 20;
    QTest::newRow("1200 widens by 20") << 12 << 100 << 20;
}

void TestPatternWizard::captionWidthRule()
{
    QFETCH(int, rows);
    QFETCH(int, cols);
    QFETCH(int, extra);
    m_pallet->set(nullptr, QStringLiteral("pattern.row"), rows, true);
    m_pallet->set(nullptr, QStringLiteral("pattern.col"), cols, true);
    open();
    QPushButton *last = corner(2);
    QCOMPARE(last->text(), QString::number(rows * cols));
    QCOMPARE(last->width(), PatternWidget::kButtonBaseWidth + extra);
    QCOMPARE(corner(0)->width(), PatternWidget::kButtonBaseWidth);
    QVERIFY(last->fontMetrics().horizontalAdvance(last->text()) < last->width());
    QCOMPARE(PatternWidget::buttonWidth(QStringLiteral("100")), PatternWidget::kButtonBaseWidth);
    QCOMPARE(PatternWidget::buttonWidth(QStringLiteral("1000")), PatternWidget::kButtonBaseWidth + 20);
}

void TestPatternWizard::rowAndColumnCaptions()
{
    m_pallet->set(nullptr, QStringLiteral("pattern.row"), 7, true);
    m_pallet->set(nullptr, QStringLiteral("pattern.col"), 9, true);
    open();
    const QList<QLabel *> captions = m_wizard->findChild<PatternWidget *>()->captions();
    QCOMPARE(captions.size(), 4);
    QCOMPARE(captions.at(2)->text(), QStringLiteral("9"));
    QCOMPARE(captions.at(3)->text(), QStringLiteral("7"));
    QCOMPARE(captions.at(0)->text(), QStringLiteral("Column"));
    QCOMPARE(captions.at(1)->text(), QStringLiteral("Row"));
}

void TestPatternWizard::totalFollowsRowAndColumn()
{
    open();
    m_pallet->set(nullptr, QStringLiteral("pattern.row"), 5, true);
    QCOMPARE(child<QLabel>(m_wizard, QStringLiteral("lblTotal"))->text(), QStringLiteral("15"));
    QCOMPARE(m_wizard->findChild<PatternWidget *>()->captions().at(3)->text(), QStringLiteral("5"));
    QCOMPARE(corner(2)->text(), QStringLiteral("15"));
}

void TestPatternWizard::childrenFollowResize()
{
    open();
    auto *widget = m_wizard->findChild<PatternWidget *>();
    widget->resize(560, 400);
    QCOMPARE(corner(1)->pos(), PatternWidget::fractionPosition(QPointF(0.86, 0.02), QSize(560, 400)));
    widget->resize(1120, 800);
    QCOMPARE(corner(1)->pos(), PatternWidget::fractionPosition(QPointF(0.86, 0.02), QSize(1120, 800)));
    QCOMPARE(corner(2)->pos(), PatternWidget::fractionPosition(QPointF(0.86, 0.87), QSize(1120, 800)));
    // Every child stays inside the picture at the smallest size.
    widget->resize(widget->minimumSize());
    for (QWidget *c : widget->findChildren<QWidget *>()) {
        QVERIFY2(widget->rect().contains(c->geometry()), qPrintable(c->objectName()));
    }
}

void TestPatternWizard::fractionRoundsHalfAwayFromZero()
{
    QCOMPARE(PatternWidget::fractionPosition(QPointF(0.5, 0.5), QSize(101, 3)), QPoint(51, 2));
    QCOMPARE(PatternWidget::fractionPosition(QPointF(0.25, 0.1), QSize(10, 5)), QPoint(3, 1));
    QCOMPARE(PatternWidget::fractionPosition(QPointF(0.0, 1.0), QSize(640, 480)), QPoint(0, 480));
}

void TestPatternWizard::imageWidgetKeepsAspect_data()
{
    QTest::addColumn<QSize>("picture");
    QTest::addColumn<QSize>("widget");
    QTest::addColumn<QRect>("label");
    QTest::newRow("wide picture in a square") << QSize(400, 200) << QSize(200, 200) << QRect(0, 50, 200, 100);
    QTest::newRow("tall picture in a square") << QSize(100, 200) << QSize(200, 200) << QRect(50, 0, 100, 200);
    QTest::newRow("same aspect") << QSize(560, 400) << QSize(280, 200) << QRect(0, 0, 280, 200);
    QTest::newRow("odd margin rounds down") << QSize(100, 100) << QSize(201, 100) << QRect(50, 0, 100, 100);
}

void TestPatternWizard::imageWidgetKeepsAspect()
{
    QFETCH(QSize, picture);
    QFETCH(QSize, widget);
    QFETCH(QRect, label);
    ImageWidget image;
    QPixmap pixmap(picture);
    pixmap.fill(Qt::red);
    image.setPixmap(pixmap);
    image.resize(widget);
    image.show();
    QCOMPARE(image.label()->geometry(), label);
    QCOMPARE(image.pixmap().size(), picture);
}

void TestPatternWizard::imageWidgetStretch()
{
    ImageWidget image;
    image.resize(200, 200);
    image.show();
    QCOMPARE(image.label()->geometry(), QRect(0, 0, 200, 200));
    QPixmap pixmap(400, 200);
    pixmap.fill(Qt::blue);
    image.setPixmap(pixmap);
    QCOMPARE(image.label()->geometry(), QRect(0, 50, 200, 100));
    QVERIFY(!image.getStectch());
    image.setStretch(true);
    QVERIFY(image.getStectch());
    QCOMPARE(image.label()->geometry(), QRect(0, 0, 200, 200));
}

void TestPatternWizard::nextStoresChoiceAndSaves()
{
    open();
    QTest::mouseClick(button("btnSType"), Qt::LeftButton);
    QTest::mouseClick(button("btnRankV"), Qt::LeftButton);
    QTest::mouseClick(corner(2), Qt::LeftButton);
    m_fx.transport()->clearRequests();
    QVERIFY(m_wizard->tryNext());
    QCOMPARE(m_pallet->r(QStringLiteral("pattern.origin"))->getInt(), 2);
    QCOMPARE(m_pallet->r(QStringLiteral("pattern.s_type"))->getBool(), true);
    QCOMPARE(m_pallet->r(QStringLiteral("pattern.rank_v"))->getBool(), true);
    QCOMPARE(m_pallet->c(QStringLiteral("points"))->cmobjCount(), 6);
    const auto saves = m_fx.requestsOf(QStringLiteral("tray.set.one"));
    QCOMPARE(saves.size(), 1);
    QVERIFY(saves.at(0).params->equals(m_pallet));
    bool noted = false;
    for (const QVariantMap &entry : tcore::ManagerHelper::instance()->logHistory())
        noted = noted || entry.value(QStringLiteral("title")).toString() == QLatin1String("The way points have regenerated!");
    QVERIFY(noted);
}

void TestPatternWizard::leavingWithoutNextWritesNothing()
{
    orba::ModuleObject before(QStringLiteral("copy"));
    before.copyFrom(nullptr, m_pallet, true, false);
    open();
    QTest::mouseClick(button("btnSType"), Qt::LeftButton);
    QTest::mouseClick(button("btnRankV"), Qt::LeftButton);
    QTest::mouseClick(corner(3), Qt::LeftButton);
    m_fx.transport()->clearRequests();
    delete m_wizard.data();
    orba::ModuleObject after(QStringLiteral("copy"));
    after.copyFrom(nullptr, m_pallet, true, false);
    QVERIFY(after.equals(&before));
    QVERIFY(m_fx.requestsOf(QStringLiteral("tray.set.one")).isEmpty());
}

QTEST_MAIN(TestPatternWizard)
#include "tst_patternwizard.moc"
