#include "pointgen.h"
#include "toolset.h"

#include <orba/json.h>
#include <orba/log.h>
#include <orba/modulemanager.h>
#include <orba/moduleobject.h>
#include <orbat/scriptedtransport.h>
#include <orbat/tservice.h>
#include <tcore/managerhelper.h>

#include <QtTest>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>

// The fused multiply-add case tells one rounding from two: nothing here may be fused.
#ifdef __clang__
#pragma STDC FP_CONTRACT OFF
#endif

namespace {

struct Calibration
{
    double xSpan = 0.0;
    double ySpan = 0.0;
    double xOffset13 = 0.0;
    double xOffset24 = 0.0;
    double yOffset34 = 0.0;
};

struct XY
{
    double x;
    double y;
};

// The reference is geometry, not the module's arithmetic: it may differ from it by rounding only.
constexpr double kTolerance = 1e-12; // metres

bool isClose(double got, double want)
{
    return std::abs(got - want) <= kTolerance;
}

bool sameBits(double a, double b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

QString valuesText(double got, double want)
{
    return QStringLiteral("got %1, want %2").arg(got, 0, 'g', 17).arg(want, 0, 'g', 17);
}

#define VERIFY_CLOSE(got, want, what)                                                                        \
    do {                                                                                                     \
        const double got_ = (got);                                                                           \
        const double want_ = (want);                                                                         \
        QVERIFY2(isClose(got_, want_), qPrintable(QString(what) + QLatin1Char(' ') + valuesText(got_, want_))); \
    } while (false)

// The pallet's corners in the pallet frame, as calibration measures them.
struct Corners
{
    XY p1;
    XY p2;
    XY p3;
    XY p4;
};

Corners cornersOf(const Calibration &c)
{
    return Corners{XY{0.0, 0.0}, XY{c.xSpan, 0.0}, XY{c.xOffset13, c.ySpan},
                   XY{c.xSpan + c.xOffset24, c.ySpan + c.yOffset34}};
}

// Bilinear interpolation over the quadrilateral: s runs from the edge P1-P3 (0) to the edge P2-P4 (1),
// t from the edge P1-P2 (0) to the edge P3-P4 (1).
XY bilinear(const Corners &q, double s, double t)
{
    const double w1 = (1.0 - s) * (1.0 - t);
    const double w2 = s * (1.0 - t);
    const double w3 = (1.0 - s) * t;
    const double w4 = s * t;
    return XY{w1 * q.p1.x + w2 * q.p2.x + w3 * q.p3.x + w4 * q.p4.x,
              w1 * q.p1.y + w2 * q.p2.y + w3 * q.p3.y + w4 * q.p4.y};
}

// An even origin lays the rows along the edge P1-P2, an odd one the columns; a negative origin
// counts as even.
bool columnsAlongFirstEdge(int origin)
{
    return origin > 0 && origin % 2 == 1;
}

// The base grid: `lines` lines spread evenly from P1-P3 to P2-P4, each with `entries` places spread
// evenly from P1-P2 to P3-P4. A single line lies on P1-P3, a single entry on P1-P2. Lines of a single
// entry keep their one quirk: no x skew, but the rise from P3 to P4 (y_offset_34) spread along them.
QVector<QVector<XY>> referenceGrid(int row, int col, int origin, const Calibration &c)
{
    const bool transposed = columnsAlongFirstEdge(origin);
    const int lines = transposed ? col : row;
    const int entries = transposed ? row : col;
    const Corners q = cornersOf(c);
    QVector<QVector<XY>> grid(qMax(lines, 0), QVector<XY>(qMax(entries, 0), XY{0.0, 0.0}));
    for (int i = 0; i < lines; ++i) {
        const double s = lines > 1 ? double(i) / (lines - 1) : 0.0;
        for (int j = 0; j < entries; ++j) {
            const double t = entries > 1 ? double(j) / (entries - 1) : 0.0;
            XY p = bilinear(q, s, t);
            if (entries == 1)
                p.y += s * c.yOffset34;
            grid[i][j] = p;
        }
    }
    return grid;
}

// Pattern cell (row, column) of every place in placing order: the lines are the rows, or the columns
// when ranked vertically; serpentine walks every second line backwards.
QVector<QPair<int, int>> walkingOrder(int row, int col, bool sType, bool rankV)
{
    QVector<QPair<int, int>> order;
    const int lines = rankV ? col : row;
    const int along = rankV ? row : col;
    for (int line = 0; line < lines; ++line) {
        QVector<int> steps;
        for (int step = 0; step < along; ++step)
            steps << step;
        if (sType && line % 2 == 1)
            std::reverse(steps.begin(), steps.end());
        for (int step : steps)
            order << (rankV ? qMakePair(step, line) : qMakePair(line, step));
    }
    return order;
}

// (line, entry) of the base grid holding a pattern cell.
QPair<int, int> gridCellOf(const QPair<int, int> &rowCol, int origin)
{
    return columnsAlongFirstEdge(origin) ? qMakePair(rowCol.second, rowCol.first) : rowCol;
}

void setPose(orba::ModuleObject *pose, const QVector<double> &trans, const QVector<double> &rot,
             const QVector<double> &near)
{
    for (int i = 0; i < trans.size(); ++i)
        pose->set(nullptr, QStringLiteral("trans.#%1").arg(i), trans[i], true);
    for (int i = 0; i < rot.size(); ++i)
        pose->set(nullptr, QStringLiteral("rot.#%1").arg(i), rot[i], true);
    for (int i = 0; i < near.size(); ++i)
        pose->set(nullptr, QStringLiteral("near.#%1").arg(i), near[i], true);
}

double at(orba::ModuleObject *node, const QString &path)
{
    return node->r(path)->getDouble(-12345.0);
}

const Calibration kSkewed{1.2, 0.8, 0.05, 0.2, 0.03};

} // namespace

class TestPointGen : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void workedExample();
    void singlePlace();
    void singleRowOriginZero();
    void singleColumnOriginZero();
    void oddOriginTransposesGrid();
    void negativeOriginCountsAsEven();
    void verticalRanking();
    void verticalSerpentine();
    void gridCornersAreTheCalibratedCorners_data();
    void gridCornersAreTheCalibratedCorners();
    void gridMatchesReference_data();
    void gridMatchesReference();
    void placingOrderMatchesReference_data();
    void placingOrderMatchesReference();
    void skewUsesOneFusedMultiplyAdd();
    void posesAreCopiedThenOverwritten();
    void regenerationKeepsBasePoints();
    void regenerationStartsFromScratch();
    void countsBelowOneLeaveNothing_data();
    void countsBelowOneLeaveNothing();
    void missingNodesAreCreated();
    void missingWayPointsGiveEmptyPoses();
    void senderReachesEveryWrite();
    void oversizedPatternRefused();
    void nullPalletIgnored();
    void initWayPointNodeCreatesIdentity();
    void initWayPointNodeKeepsTaughtPoints();
    void initWayPointNodeCompletesUnfilledPoint();
    void genPointsAndSaveToRC();

private:
    orba::ModuleObject *makePallet(int row, int col, int origin, bool sType, bool rankV, const Calibration &c);
    void checkGrid(orba::ModuleObject *pallet, int row, int col, int origin, const Calibration &c);
    void checkPlaces(orba::ModuleObject *pallet, int row, int col, int origin, bool sType, bool rankV,
                     const Calibration &c = kSkewed);
    void checkCells(orba::ModuleObject *pallet, const QVector<QPair<int, int>> &cells, int row, int col, int origin,
                    const Calibration &c = kSkewed);

    std::unique_ptr<orbat::ScriptedTransport> m_transport;
    QList<orba::LogLine> m_logLines;
};

void TestPointGen::initTestCase()
{
    orba::setConsoleLogEnabled(false);
    tcore::ManagerHelper::instance()->setMsgTestMode(true);
}

void TestPointGen::init()
{
    orba::ModuleManager::resetRoot();
    m_logLines.clear();
    m_transport = std::make_unique<orbat::ScriptedTransport>();
    tservice()->setTransport(m_transport.get());
    m_transport->setConnected(true);
    m_transport->clearRequests();
    orba::setLogHook([this](const orba::LogLine &line) { m_logLines << line; });
    tcore::ManagerHelper::instance()->clearLogHistory();
}

void TestPointGen::cleanup()
{
    tservice()->setTransport(nullptr);
    m_transport.reset();
    orba::setLogHook(nullptr);
    orba::ModuleManager::resetRoot();
}

orba::ModuleObject *TestPointGen::makePallet(int row, int col, int origin, bool sType, bool rankV,
                                             const Calibration &c)
{
    orba::ModuleObject *pallet = orba::m()->append(nullptr, QStringLiteral("pallet"));
    pallet->set(nullptr, QStringLiteral("name"), QStringLiteral("tray0"), true);
    pallet->set(nullptr, QStringLiteral("pattern.origin"), origin, true);
    pallet->set(nullptr, QStringLiteral("pattern.s_type"), sType, true);
    pallet->set(nullptr, QStringLiteral("pattern.row"), row, true);
    pallet->set(nullptr, QStringLiteral("pattern.col"), col, true);
    pallet->set(nullptr, QStringLiteral("pattern.rank_v"), rankV, true);
    pallet->set(nullptr, QStringLiteral("calibrate.x_span"), c.xSpan, true);
    pallet->set(nullptr, QStringLiteral("calibrate.y_span"), c.ySpan, true);
    pallet->set(nullptr, QStringLiteral("calibrate.x_offset_13"), c.xOffset13, true);
    pallet->set(nullptr, QStringLiteral("calibrate.x_offset_24"), c.xOffset24, true);
    pallet->set(nullptr, QStringLiteral("calibrate.y_offset_34"), c.yOffset34, true);
    orba::ModuleObject *waypoint = pallet->append(nullptr, QStringLiteral("waypoint"));
    setPose(waypoint->append(nullptr, QStringLiteral("wobj")), {0.3, 0.4, 0.05}, {3.1, 0.0, 1.5},
            {0.1, -0.2, 0.3, -0.4, 0.5, -0.6});
    setPose(waypoint->append(nullptr, QStringLiteral("approach")), {0.31, 0.37, 0.25}, {3.0, 0.1, 1.4},
            {0.11, -0.21, 0.31, -0.41, 0.51, -0.61});
    setPose(waypoint->append(nullptr, QStringLiteral("retract")), {0.27, 0.45, 0.3}, {2.9, 0.2, 1.3},
            {0.12, -0.22, 0.32, -0.42, 0.52, -0.62});
    return pallet;
}

void TestPointGen::checkGrid(orba::ModuleObject *pallet, int row, int col, int origin, const Calibration &c)
{
    const QVector<QVector<XY>> want = referenceGrid(row, col, origin, c);
    orba::ModuleObject *points = pallet->r(QStringLiteral("calibrate.points"));
    QCOMPARE(points->cmobjCount(), want.size());
    for (int i = 0; i < want.size(); ++i) {
        orba::ModuleObject *line = points->c(i);
        QCOMPARE(line->name(), QStringLiteral("#%1").arg(i));
        QCOMPARE(line->cmobjCount(), want[i].size());
        for (int j = 0; j < want[i].size(); ++j) {
            orba::ModuleObject *entry = line->c(j);
            QCOMPARE(entry->name(), QStringLiteral("#%1").arg(j));
            QCOMPARE(entry->cmobjNames(), (QStringList{QStringLiteral("#0"), QStringLiteral("#1")}));
            VERIFY_CLOSE(at(entry, QStringLiteral("#0")), want[i][j].x, QStringLiteral("x[%1][%2]").arg(i).arg(j));
            VERIFY_CLOSE(at(entry, QStringLiteral("#1")), want[i][j].y, QStringLiteral("y[%1][%2]").arg(i).arg(j));
        }
    }
}

// Every place against the corner model and the walking order, independently of the stored grid.
void TestPointGen::checkPlaces(orba::ModuleObject *pallet, int row, int col, int origin, bool sType, bool rankV,
                               const Calibration &c)
{
    const QVector<QVector<XY>> grid = referenceGrid(row, col, origin, c);
    const QVector<QPair<int, int>> order = walkingOrder(row, col, sType, rankV);
    orba::ModuleObject *points = pallet->c(QStringLiteral("points"));
    orba::ModuleObject *waypoint = pallet->c(QStringLiteral("waypoint"));
    QCOMPARE(points->cmobjCount(), order.size());
    const double wx = at(waypoint, QStringLiteral("wobj.trans.#0"));
    const double wy = at(waypoint, QStringLiteral("wobj.trans.#1"));
    for (int k = 0; k < order.size(); ++k) {
        orba::ModuleObject *place = points->c(k);
        QCOMPARE(place->name(), QStringLiteral("#%1").arg(k));
        QCOMPARE(place->cmobjNames(),
                 (QStringList{QStringLiteral("wobj"), QStringLiteral("approach"), QStringLiteral("retract")}));
        const QPair<int, int> cell = gridCellOf(order[k], origin);
        const XY want = grid[cell.first][cell.second];
        const QString where = QStringLiteral("place %1 (row %2, column %3)").arg(k).arg(order[k].first).arg(order[k].second);
        VERIFY_CLOSE(at(place, QStringLiteral("wobj.trans.#0")), want.x, where + QStringLiteral(" wobj x"));
        VERIFY_CLOSE(at(place, QStringLiteral("wobj.trans.#1")), want.y, where + QStringLiteral(" wobj y"));
        // Approach and retract keep the horizontal displacement taught against the place pose.
        for (const char *name : {"approach", "retract"}) {
            const QString n = QLatin1String(name);
            const double dx = at(waypoint, n + QStringLiteral(".trans.#0")) - wx;
            const double dy = at(waypoint, n + QStringLiteral(".trans.#1")) - wy;
            VERIFY_CLOSE(at(place, n + QStringLiteral(".trans.#0")), want.x + dx, where + QLatin1Char(' ') + n + QStringLiteral(" x"));
            VERIFY_CLOSE(at(place, n + QStringLiteral(".trans.#1")), want.y + dy, where + QLatin1Char(' ') + n + QStringLiteral(" y"));
        }
    }
}

// Place k sits on the grid cell (line, entry) of the reference grid.
void TestPointGen::checkCells(orba::ModuleObject *pallet, const QVector<QPair<int, int>> &cells, int row, int col,
                              int origin, const Calibration &c)
{
    const QVector<QVector<XY>> grid = referenceGrid(row, col, origin, c);
    orba::ModuleObject *points = pallet->c(QStringLiteral("points"));
    QCOMPARE(points->cmobjCount(), cells.size());
    for (int k = 0; k < cells.size(); ++k) {
        const XY want = grid[cells[k].first][cells[k].second];
        VERIFY_CLOSE(at(points->c(k), QStringLiteral("wobj.trans.#0")), want.x, QStringLiteral("place %1 x").arg(k));
        VERIFY_CLOSE(at(points->c(k), QStringLiteral("wobj.trans.#1")), want.y, QStringLiteral("place %1 y").arg(k));
    }
}

void TestPointGen::workedExample()
{
    orba::ModuleObject *pallet = makePallet(2, 3, 0, true, false, kSkewed);
    tpallet::generatePoints1(pallet, nullptr);

    orba::ModuleObject *grid = pallet->r(QStringLiteral("calibrate.points"));
    QCOMPARE(grid->cmobjCount(), 2); // A = row
    QCOMPARE(grid->c(0)->cmobjCount(), 3); // B = col
    checkCells(pallet, {{0, 0}, {0, 1}, {0, 2}, {1, 2}, {1, 1}, {1, 0}}, 2, 3, 0);
    checkGrid(pallet, 2, 3, 0, kSkewed);
    checkPlaces(pallet, 2, 3, 0, true, false);
}

void TestPointGen::singlePlace()
{
    orba::ModuleObject *pallet = makePallet(1, 1, 0, false, false, kSkewed);
    tpallet::generatePoints1(pallet, nullptr);
    orba::ModuleObject *entry = pallet->r(QStringLiteral("calibrate.points.#0.#0"));
    // With A = B = 1: x gets no skew and y no y_offset_34 term.
    QCOMPARE(at(entry, QStringLiteral("#0")), 0.0);
    QCOMPARE(at(entry, QStringLiteral("#1")), 0.0);
    QCOMPARE(pallet->c(QStringLiteral("points"))->cmobjCount(), 1);
    QCOMPARE(at(pallet, QStringLiteral("points.#0.wobj.trans.#0")), 0.0);
    QCOMPARE(at(pallet, QStringLiteral("points.#0.wobj.trans.#1")), 0.0);
}

void TestPointGen::singleRowOriginZero()
{
    orba::ModuleObject *pallet = makePallet(1, 4, 0, false, false, kSkewed);
    tpallet::generatePoints1(pallet, nullptr);
    orba::ModuleObject *grid = pallet->r(QStringLiteral("calibrate.points"));
    QCOMPARE(grid->cmobjCount(), 1);
    QCOMPARE(grid->c(0)->cmobjCount(), 4);
    for (int j = 0; j < 4; ++j) {
        orba::ModuleObject *entry = grid->c(0)->c(j);
        // Along the edge P1-P3: x = x_offset_13 / 3 * j, y = y_span / 3 * j; no y_offset_34 term with A = 1.
        VERIFY_CLOSE(at(entry, QStringLiteral("#0")), kSkewed.xOffset13 * j / 3.0, QStringLiteral("x[0][%1]").arg(j));
        VERIFY_CLOSE(at(entry, QStringLiteral("#1")), kSkewed.ySpan * j / 3.0, QStringLiteral("y[0][%1]").arg(j));
    }
    checkPlaces(pallet, 1, 4, 0, false, false);
}

void TestPointGen::singleColumnOriginZero()
{
    orba::ModuleObject *pallet = makePallet(4, 1, 0, false, false, kSkewed);
    tpallet::generatePoints1(pallet, nullptr);
    orba::ModuleObject *grid = pallet->r(QStringLiteral("calibrate.points"));
    QCOMPARE(grid->cmobjCount(), 4);
    for (int i = 0; i < 4; ++i) {
        QCOMPARE(grid->c(i)->cmobjCount(), 1);
        orba::ModuleObject *entry = grid->c(i)->c(0);
        // No x skew at all, but the whole y_offset_34 spread along the column.
        VERIFY_CLOSE(at(entry, QStringLiteral("#0")), kSkewed.xSpan * i / 3.0, QStringLiteral("x[%1][0]").arg(i));
        VERIFY_CLOSE(at(entry, QStringLiteral("#1")), kSkewed.yOffset34 * i / 3.0, QStringLiteral("y[%1][0]").arg(i));
    }
    QVERIFY(at(grid, QStringLiteral("#3.#0.#1")) > 0.0);
    checkPlaces(pallet, 4, 1, 0, false, false);
}

void TestPointGen::oddOriginTransposesGrid()
{
    orba::ModuleObject *pallet = makePallet(2, 3, 1, false, false, kSkewed);
    tpallet::generatePoints1(pallet, nullptr);
    orba::ModuleObject *grid = pallet->r(QStringLiteral("calibrate.points"));
    QCOMPARE(grid->cmobjCount(), 3); // A = col along x
    for (int i = 0; i < 3; ++i)
        QCOMPARE(grid->c(i)->cmobjCount(), 2); // B = row along y
    checkGrid(pallet, 2, 3, 1, kSkewed);

    orba::ModuleObject *points = pallet->c(QStringLiteral("points"));
    QCOMPARE(points->cmobjCount(), 6);
    QCOMPARE(points->cmobjNames(), (QStringList{"#0", "#1", "#2", "#3", "#4", "#5"}));
    // Rows still run across the columns: position k = (row o, column t) sits on line t, entry o.
    checkCells(pallet, {{0, 0}, {1, 0}, {2, 0}, {0, 1}, {1, 1}, {2, 1}}, 2, 3, 1);
    checkPlaces(pallet, 2, 3, 1, false, false);
}

void TestPointGen::negativeOriginCountsAsEven()
{
    orba::ModuleObject *even = makePallet(3, 4, 0, true, false, kSkewed);
    orba::ModuleObject *negative = makePallet(3, 4, -1, true, false, kSkewed);
    negative->setName(QStringLiteral("negative"));
    tpallet::generatePoints1(even, nullptr);
    tpallet::generatePoints1(negative, nullptr);

    QCOMPARE(negative->r(QStringLiteral("calibrate.points"))->cmobjCount(), 3);
    QVERIFY(negative->r(QStringLiteral("calibrate.points"))->equals(even->r(QStringLiteral("calibrate.points"))));
    QVERIFY(negative->c(QStringLiteral("points"))->equals(even->c(QStringLiteral("points"))));

    orba::ModuleObject *minusThree = makePallet(3, 4, -3, true, false, kSkewed);
    tpallet::generatePoints1(minusThree, nullptr);
    QVERIFY(minusThree->c(QStringLiteral("points"))->equals(even->c(QStringLiteral("points"))));

    orba::ModuleObject *three = makePallet(3, 4, 3, true, false, kSkewed);
    tpallet::generatePoints1(three, nullptr);
    QCOMPARE(three->r(QStringLiteral("calibrate.points"))->cmobjCount(), 4);
}

void TestPointGen::verticalRanking()
{
    orba::ModuleObject *pallet = makePallet(2, 3, 0, false, true, kSkewed);
    tpallet::generatePoints1(pallet, nullptr);
    checkCells(pallet, {{0, 0}, {1, 0}, {0, 1}, {1, 1}, {0, 2}, {1, 2}}, 2, 3, 0);
    checkPlaces(pallet, 2, 3, 0, false, true);
}

void TestPointGen::verticalSerpentine()
{
    orba::ModuleObject *pallet = makePallet(2, 3, 0, true, true, kSkewed);
    tpallet::generatePoints1(pallet, nullptr);
    // The second column runs backwards, so consecutive places stay neighbours.
    checkCells(pallet, {{0, 0}, {1, 0}, {1, 1}, {0, 1}, {0, 2}, {1, 2}}, 2, 3, 0);
    checkPlaces(pallet, 2, 3, 0, true, true);
}

void TestPointGen::gridCornersAreTheCalibratedCorners_data()
{
    QTest::addColumn<int>("row");
    QTest::addColumn<int>("col");
    QTest::addColumn<int>("origin");
    QTest::addColumn<double>("x13");
    QTest::addColumn<double>("x24");
    QTest::addColumn<double>("y34");
    QTest::newRow("skewed 2x3 origin 0") << 2 << 3 << 0 << 0.05 << 0.2 << 0.03;
    QTest::newRow("skewed 2x3 origin 1") << 2 << 3 << 1 << 0.05 << 0.2 << 0.03;
    QTest::newRow("trapezoid 4x6 origin 2") << 4 << 6 << 2 << -0.07 << 0.021 << -0.011;
    QTest::newRow("only P3 off 5x5") << 5 << 5 << 0 << 0.1 << 0.0 << 0.0;
    QTest::newRow("only P4 off 5x5") << 5 << 5 << 3 << 0.0 << 0.1 << 0.04;
}

void TestPointGen::gridCornersAreTheCalibratedCorners()
{
    QFETCH(int, row);
    QFETCH(int, col);
    QFETCH(int, origin);
    QFETCH(double, x13);
    QFETCH(double, x24);
    QFETCH(double, y34);
    const Calibration c{1.1, 0.7, x13, x24, y34};
    orba::ModuleObject *pallet = makePallet(row, col, origin, false, false, c);
    tpallet::generateBasePoints(pallet, nullptr);
    orba::ModuleObject *grid = pallet->r(QStringLiteral("calibrate.points"));
    const int last = grid->cmobjCount() - 1;
    const int lastEntry = grid->c(0)->cmobjCount() - 1;
    QVERIFY(last > 0 && lastEntry > 0);
    // First line from P1 to P3, last line from P2 to P4.
    const Corners q = cornersOf(c);
    const struct
    {
        const char *name;
        int line;
        int entry;
        XY want;
    } corners[] = {{"P1", 0, 0, q.p1}, {"P2", last, 0, q.p2}, {"P3", 0, lastEntry, q.p3}, {"P4", last, lastEntry, q.p4}};
    for (const auto &corner : corners) {
        orba::ModuleObject *entry = grid->c(corner.line)->c(corner.entry);
        VERIFY_CLOSE(at(entry, QStringLiteral("#0")), corner.want.x, QString::fromLatin1(corner.name) + QStringLiteral(" x"));
        VERIFY_CLOSE(at(entry, QStringLiteral("#1")), corner.want.y, QString::fromLatin1(corner.name) + QStringLiteral(" y"));
    }
    // The centre of the grid is the mean of the four corners.
    if (last % 2 == 0 && lastEntry % 2 == 0) {
        orba::ModuleObject *centre = grid->c(last / 2)->c(lastEntry / 2);
        VERIFY_CLOSE(at(centre, QStringLiteral("#0")), (q.p1.x + q.p2.x + q.p3.x + q.p4.x) / 4.0, "centre x");
        VERIFY_CLOSE(at(centre, QStringLiteral("#1")), (q.p1.y + q.p2.y + q.p3.y + q.p4.y) / 4.0, "centre y");
    }
}

void TestPointGen::gridMatchesReference_data()
{
    QTest::addColumn<int>("row");
    QTest::addColumn<int>("col");
    QTest::addColumn<int>("origin");
    QTest::addColumn<double>("xSpan");
    QTest::addColumn<double>("ySpan");
    QTest::addColumn<double>("x13");
    QTest::addColumn<double>("x24");
    QTest::addColumn<double>("y34");

    QTest::newRow("1x1") << 1 << 1 << 0 << 1.2 << 0.8 << 0.05 << 0.2 << 0.03;
    QTest::newRow("1x4 origin 0") << 1 << 4 << 0 << 1.2 << 0.8 << 0.05 << 0.2 << 0.03;
    QTest::newRow("4x1 origin 0") << 4 << 1 << 0 << 1.2 << 0.8 << 0.05 << 0.2 << 0.03;
    QTest::newRow("1x4 origin 1") << 1 << 4 << 1 << 1.2 << 0.8 << 0.05 << 0.2 << 0.03;
    QTest::newRow("4x1 origin 3") << 4 << 1 << 3 << 1.2 << 0.8 << 0.05 << 0.2 << 0.03;
    QTest::newRow("2x3 origin 1") << 2 << 3 << 1 << 1.2 << 0.8 << 0.05 << 0.2 << 0.03;
    QTest::newRow("2x3 origin -1") << 2 << 3 << -1 << 1.2 << 0.8 << 0.05 << 0.2 << 0.03;
    QTest::newRow("rectangle 3x5 origin 2") << 3 << 5 << 2 << 0.9 << 0.6 << 0.0 << 0.0 << 0.0;
    QTest::newRow("trapezoid 5x4 origin 3") << 5 << 4 << 3 << 1.0 << 1.1 << -0.07 << 0.021 << -0.011;
    QTest::newRow("uncalibrated 3x3") << 3 << 3 << 0 << 0.0 << 0.0 << 0.0 << 0.0 << 0.0;
    QTest::newRow("full 40x30") << 40 << 30 << 0 << 1.2 << 0.8 << 0.013 << 0.017 << 0.1;
    QTest::newRow("full 30x40 origin 1") << 30 << 40 << 1 << 0.37 << 0.3 << 0.1 << -0.011 << 0.2;
}

void TestPointGen::gridMatchesReference()
{
    QFETCH(int, row);
    QFETCH(int, col);
    QFETCH(int, origin);
    QFETCH(double, xSpan);
    QFETCH(double, ySpan);
    QFETCH(double, x13);
    QFETCH(double, x24);
    QFETCH(double, y34);
    const Calibration c{xSpan, ySpan, x13, x24, y34};
    orba::ModuleObject *pallet = makePallet(row, col, origin, false, false, c);
    tpallet::generateBasePoints(pallet, nullptr);
    checkGrid(pallet, row, col, origin, c);
    QVERIFY(!pallet->hasCmobj(QStringLiteral("points")));
}

void TestPointGen::placingOrderMatchesReference_data()
{
    QTest::addColumn<int>("row");
    QTest::addColumn<int>("col");
    QTest::addColumn<int>("origin");
    QTest::addColumn<bool>("sType");
    QTest::addColumn<bool>("rankV");

    for (int origin = -1; origin <= 3; ++origin) {
        for (int mode = 0; mode < 4; ++mode) {
            const bool sType = mode & 1;
            const bool rankV = mode & 2;
            const QByteArray name = QStringLiteral("3x4 origin %1%2%3")
                                        .arg(origin)
                                        .arg(sType ? " serpentine" : " parallel")
                                        .arg(rankV ? " vertical" : " horizontal")
                                        .toUtf8();
            QTest::newRow(name.constData()) << 3 << 4 << origin << sType << rankV;
        }
    }
    QTest::newRow("5x2 origin 1 serpentine vertical") << 5 << 2 << 1 << true << true;
    QTest::newRow("1x5 serpentine") << 1 << 5 << 0 << true << false;
    QTest::newRow("5x1 serpentine vertical") << 5 << 1 << 2 << true << true;
}

void TestPointGen::placingOrderMatchesReference()
{
    QFETCH(int, row);
    QFETCH(int, col);
    QFETCH(int, origin);
    QFETCH(bool, sType);
    QFETCH(bool, rankV);
    orba::ModuleObject *pallet = makePallet(row, col, origin, sType, rankV, kSkewed);
    tpallet::generatePoints1(pallet, nullptr);
    checkGrid(pallet, row, col, origin, kSkewed);
    checkPlaces(pallet, row, col, origin, sType, rankV);
}

void TestPointGen::skewUsesOneFusedMultiplyAdd()
{
    // Row 2 x col 5: entry [1][3] is where one rounding (fma) and two roundings disagree.
    const Calibration c{1.2, 0.8, 0.05, 0.2, 0.0};
    orba::ModuleObject *pallet = makePallet(2, 5, 0, false, false, c);
    tpallet::generateBasePoints(pallet, nullptr);

    const int i = 1;
    const int j = 3;
    const double x0 = c.xSpan / (2 - 1) * i;
    const double ox = ((c.xOffset24 - c.xOffset13) * i) / (2 - 1) + c.xOffset13;
    volatile double product = ox / (5 - 1) * j; // volatile: keep the compiler from fusing it
    const double separate = product + x0;
    const double fused = std::fma(ox / (5 - 1), static_cast<double>(j), x0);
    QVERIFY2(!sameBits(fused, separate), "the chosen input no longer tells fma from multiply-add");
    QVERIFY(sameBits(fused, 0x1.5999999999999p+0));   // 1.3499999999999999
    QVERIFY(sameBits(separate, 0x1.599999999999ap+0)); // 1.35

    const double got = at(pallet, QStringLiteral("calibrate.points.#1.#3.#0"));
    QVERIFY2(sameBits(got, fused), qPrintable(valuesText(got, fused)));
}

void TestPointGen::posesAreCopiedThenOverwritten()
{
    orba::ModuleObject *pallet = makePallet(2, 2, 0, false, false, kSkewed);
    // Extra taught data travels with the copy.
    pallet->set(nullptr, QStringLiteral("waypoint.approach.speed"), 0.25, true);
    tpallet::generatePoints1(pallet, nullptr);

    orba::ModuleObject *waypoint = pallet->c(QStringLiteral("waypoint"));
    orba::ModuleObject *points = pallet->c(QStringLiteral("points"));
    for (int k = 0; k < points->cmobjCount(); ++k) {
        for (const char *name : {"wobj", "approach", "retract"}) {
            orba::ModuleObject *pose = points->c(k)->c(QLatin1String(name));
            orba::ModuleObject *taught = waypoint->c(QLatin1String(name));
            QCOMPARE(pose->cmobjNames(), taught->cmobjNames());
            QVERIFY(pose->r(QStringLiteral("trans.#2"))->equals(taught->r(QStringLiteral("trans.#2"))));
            QVERIFY(pose->c(QStringLiteral("rot"))->equals(taught->c(QStringLiteral("rot"))));
            QVERIFY(pose->c(QStringLiteral("near"))->equals(taught->c(QStringLiteral("near"))));
            QCOMPARE(pose->r(QStringLiteral("trans.#0"))->value().userType(), int(QMetaType::Double));
        }
        QCOMPARE(at(points->c(k), QStringLiteral("approach.speed")), 0.25);
    }
    // The taught wobj's own x, y only matter through the two differences.
    QCOMPARE(at(points, QStringLiteral("#0.wobj.trans.#0")), 0.0);
    VERIFY_CLOSE(at(points, QStringLiteral("#0.approach.trans.#0")), 0.01, "first approach x");
    VERIFY_CLOSE(at(points, QStringLiteral("#0.retract.trans.#1")), 0.05, "first retract y");
    // The taught way points themselves are not changed.
    QCOMPARE(at(waypoint, QStringLiteral("wobj.trans.#0")), 0.3);
    QCOMPARE(at(waypoint, QStringLiteral("approach.trans.#1")), 0.37);
}

void TestPointGen::regenerationKeepsBasePoints()
{
    orba::ModuleObject *pallet = makePallet(3, 4, 0, true, false, kSkewed);
    tpallet::generatePoints1(pallet, nullptr);
    orba::ModuleObject before(QStringLiteral("before"));
    before.copyFrom(nullptr, pallet->r(QStringLiteral("calibrate.points")), true, false);
    orba::ModuleObject placesBefore(QStringLiteral("places"));
    placesBefore.copyFrom(nullptr, pallet->c(QStringLiteral("points")), true, false);

    setPose(pallet->r(QStringLiteral("waypoint.approach")), {0.5, 0.1, 0.4}, {}, {});
    setPose(pallet->r(QStringLiteral("waypoint.retract")), {0.1, 0.6, 0.45}, {}, {});
    tpallet::generatePoints1(pallet, nullptr);

    QVERIFY(pallet->r(QStringLiteral("calibrate.points"))->equals(&before));
    orba::ModuleObject *points = pallet->c(QStringLiteral("points"));
    QCOMPARE(points->cmobjCount(), 12);
    for (int k = 0; k < 12; ++k) {
        QVERIFY(points->c(k)->c(QStringLiteral("wobj"))->equals(placesBefore.c(k)->c(QStringLiteral("wobj"))));
        QVERIFY(!points->c(k)->c(QStringLiteral("approach"))->equals(placesBefore.c(k)->c(QStringLiteral("approach"))));
        QVERIFY(!points->c(k)->c(QStringLiteral("retract"))->equals(placesBefore.c(k)->c(QStringLiteral("retract"))));
    }
    checkPlaces(pallet, 3, 4, 0, true, false);
}

void TestPointGen::regenerationStartsFromScratch()
{
    orba::ModuleObject *pallet = makePallet(3, 3, 0, false, false, kSkewed);
    tpallet::generatePoints1(pallet, nullptr);
    // An adjustment made to a place directly is lost on regeneration.
    pallet->set(nullptr, QStringLiteral("points.#4.wobj.trans.#2"), 9.0, true);
    pallet->set(nullptr, QStringLiteral("pattern.row"), 1, true);
    pallet->set(nullptr, QStringLiteral("pattern.col"), 2, true);
    tpallet::generatePoints1(pallet, nullptr);
    QCOMPARE(pallet->c(QStringLiteral("points"))->cmobjCount(), 2);
    QCOMPARE(pallet->r(QStringLiteral("calibrate.points"))->cmobjCount(), 1);
    checkGrid(pallet, 1, 2, 0, kSkewed);
    checkPlaces(pallet, 1, 2, 0, false, false);

    pallet->set(nullptr, QStringLiteral("pattern.row"), 3, true);
    pallet->set(nullptr, QStringLiteral("pattern.col"), 3, true);
    tpallet::generatePoints1(pallet, nullptr);
    QCOMPARE(at(pallet, QStringLiteral("points.#4.wobj.trans.#2")), 0.05);
}

void TestPointGen::countsBelowOneLeaveNothing_data()
{
    QTest::addColumn<int>("row");
    QTest::addColumn<int>("col");
    QTest::addColumn<int>("origin");
    QTest::addColumn<int>("lines");

    QTest::newRow("row 0") << 0 << 3 << 0 << 0;
    QTest::newRow("negative row") << -2 << 3 << 0 << 0;
    QTest::newRow("col 0, two empty lines") << 2 << 0 << 0 << 2;
    QTest::newRow("col 0 odd origin") << 2 << 0 << 1 << 0;
    QTest::newRow("row 0 odd origin, three empty lines") << 0 << 3 << 1 << 3;
}

void TestPointGen::countsBelowOneLeaveNothing()
{
    QFETCH(int, row);
    QFETCH(int, col);
    QFETCH(int, origin);
    QFETCH(int, lines);
    orba::ModuleObject *pallet = makePallet(3, 3, origin, false, false, kSkewed);
    tpallet::generatePoints1(pallet, nullptr);
    QCOMPARE(pallet->c(QStringLiteral("points"))->cmobjCount(), 9);

    pallet->set(nullptr, QStringLiteral("pattern.row"), row, true);
    pallet->set(nullptr, QStringLiteral("pattern.col"), col, true);
    tpallet::generatePoints1(pallet, nullptr);
    QVERIFY(pallet->hasCmobj(QStringLiteral("points")));
    QCOMPARE(pallet->c(QStringLiteral("points"))->cmobjCount(), 0);
    orba::ModuleObject *grid = pallet->r(QStringLiteral("calibrate.points"));
    QVERIFY(!grid->isEmpty());
    QCOMPARE(grid->cmobjCount(), lines);
    for (int i = 0; i < lines; ++i) {
        QCOMPARE(grid->c(i)->name(), QStringLiteral("#%1").arg(i));
        QCOMPARE(grid->c(i)->cmobjCount(), 0);
    }
    QVERIFY(m_logLines.isEmpty()); // no message for this
}

void TestPointGen::missingNodesAreCreated()
{
    orba::ModuleObject *pallet = orba::m()->append(nullptr, QStringLiteral("bare"));
    pallet->set(nullptr, QStringLiteral("pattern.row"), 2, true);
    pallet->set(nullptr, QStringLiteral("pattern.col"), 2, true);
    tpallet::generatePoints1(pallet, nullptr);
    QVERIFY(pallet->hasRmobj(QStringLiteral("calibrate.points")));
    QCOMPARE(pallet->c(QStringLiteral("points"))->cmobjCount(), 4);
    // Without calibration every place sits at the grid origin.
    for (int k = 0; k < 4; ++k) {
        QCOMPARE(at(pallet, QStringLiteral("points.#%1.wobj.trans.#0").arg(k)), 0.0);
        QCOMPARE(at(pallet, QStringLiteral("points.#%1.wobj.trans.#1").arg(k)), 0.0);
    }
}

void TestPointGen::missingWayPointsGiveEmptyPoses()
{
    orba::ModuleObject *pallet = makePallet(1, 2, 0, false, false, kSkewed);
    pallet->c(QStringLiteral("waypoint"))->remove(nullptr, pallet->r(QStringLiteral("waypoint.retract")));
    tpallet::generatePoints1(pallet, nullptr);
    orba::ModuleObject *retract = pallet->r(QStringLiteral("points.#1.retract"));
    QCOMPARE(retract->cmobjNames(), QStringList{QStringLiteral("trans")});
    QCOMPARE(retract->c(QStringLiteral("trans"))->cmobjCount(), 2);
    // The missing pose reads as 0, so its offset is -wobj.
    VERIFY_CLOSE(at(retract, QStringLiteral("trans.#0")), at(pallet, QStringLiteral("points.#1.wobj.trans.#0")) - 0.3,
                 "retract x");
}

void TestPointGen::senderReachesEveryWrite()
{
    orba::ModuleObject *pallet = makePallet(2, 2, 0, false, false, kSkewed);
    tpallet::generatePoints1(pallet, nullptr);
    QObject actor;
    QList<QObject *> senders;
    auto record = [&senders](orba::ModuleObject *, int, QObject *sender) { senders << sender; };
    auto recordClear = [&senders](QObject *sender) { senders << sender; };
    orba::ModuleObject *points = pallet->c(QStringLiteral("points"));
    orba::ModuleObject *grid = pallet->r(QStringLiteral("calibrate.points"));
    connect(points, &orba::ModuleObject::childInserted, this, record);
    connect(grid, &orba::ModuleObject::childInserted, this, record);
    connect(points, &orba::ModuleObject::cleared, this, recordClear);
    connect(grid, &orba::ModuleObject::cleared, this, recordClear);

    tpallet::generatePoints1(pallet, &actor);
    // Two clears, two grid lines, four places: all on behalf of the actor.
    QCOMPARE(senders.size(), 2 + 2 + 4);
    for (QObject *sender : senders)
        QCOMPARE(sender, &actor);
}

void TestPointGen::oversizedPatternRefused()
{
    orba::ModuleObject *pallet = makePallet(2, 2, 0, false, false, kSkewed);
    tpallet::generatePoints1(pallet, nullptr);
    pallet->set(nullptr, QStringLiteral("pattern.row"), 100000, true);
    pallet->set(nullptr, QStringLiteral("pattern.col"), 100000, true);
    tpallet::generatePoints1(pallet, nullptr);
    QCOMPARE(pallet->c(QStringLiteral("points"))->cmobjCount(), 0);
    QCOMPARE(pallet->r(QStringLiteral("calibrate.points"))->cmobjCount(), 0);
    QCOMPARE(m_logLines.size(), 1);
    QCOMPARE(m_logLines.first().colour, QStringLiteral("\033[31m"));
    QVERIFY(m_logLines.first().tag.startsWith(QStringLiteral("[E|")));
    QVERIFY(m_logLines.first().message.contains(QStringLiteral("100000 x 100000")));
}

void TestPointGen::nullPalletIgnored()
{
    tpallet::generateBasePoints(nullptr, nullptr);
    tpallet::generatePoints1(nullptr, nullptr);
    tpallet::initWayPointNode(nullptr);
    tpallet::generatePoints1(orba::ModuleManager::emptyMobj(), nullptr);
    tpallet::initWayPointNode(orba::ModuleManager::emptyMobj());
    QVERIFY(orba::ModuleManager::emptyMobj()->isNull());
}

void TestPointGen::initWayPointNodeCreatesIdentity()
{
    orba::ModuleObject *pallet = orba::m()->append(nullptr, QStringLiteral("pallet"));
    tpallet::initWayPointNode(pallet);
    orba::ModuleObject *waypoint = pallet->c(QStringLiteral("waypoint"));
    QCOMPARE(waypoint->cmobjNames(),
             (QStringList{QStringLiteral("wobj"), QStringLiteral("approach"), QStringLiteral("retract")}));
    orba::ModuleObject identity(QStringLiteral("identity"));
    tpallet::identityPointNode(&identity);
    for (orba::ModuleObject *point : waypoint->cmobjs(false)) {
        QCOMPARE(point->cmobjNames(), (QStringList{QStringLiteral("trans"), QStringLiteral("rot"), QStringLiteral("near")}));
        QVERIFY(point->equals(&identity));
        QCOMPARE(point->c(QStringLiteral("near"))->size(), 6);
    }
}

void TestPointGen::initWayPointNodeKeepsTaughtPoints()
{
    orba::ModuleObject *pallet = makePallet(1, 1, 0, false, false, kSkewed);
    orba::ModuleObject *waypoint = pallet->c(QStringLiteral("waypoint"));
    waypoint->remove(nullptr, waypoint->c(QStringLiteral("approach")));
    orba::ModuleObject wobj(QStringLiteral("w"));
    wobj.copyFrom(nullptr, waypoint->c(QStringLiteral("wobj")), true, false);
    orba::ModuleObject retract(QStringLiteral("r"));
    retract.copyFrom(nullptr, waypoint->c(QStringLiteral("retract")), true, false);

    tpallet::initWayPointNode(pallet);
    QCOMPARE(waypoint->cmobjNames(),
             (QStringList{QStringLiteral("wobj"), QStringLiteral("retract"), QStringLiteral("approach")}));
    QVERIFY(waypoint->c(QStringLiteral("wobj"))->equals(&wobj));
    QVERIFY(waypoint->c(QStringLiteral("retract"))->equals(&retract));
    QCOMPARE(at(waypoint, QStringLiteral("approach.near.#5")), 0.0);
    QCOMPARE(at(waypoint, QStringLiteral("approach.trans.#0")), 0.0);
}

void TestPointGen::initWayPointNodeCompletesUnfilledPoint()
{
    orba::ModuleObject *pallet = orba::m()->append(nullptr, QStringLiteral("pallet"));
    // As in the template: "waypoint" present but null, and here a never-filled "wobj".
    orba::ModuleObject *waypoint = pallet->append(nullptr, QStringLiteral("waypoint"));
    waypoint->append(nullptr, QStringLiteral("wobj"));
    tpallet::initWayPointNode(pallet);
    QCOMPARE(pallet->c(QStringLiteral("waypoint")), waypoint);
    QCOMPARE(waypoint->cmobjNames(),
             (QStringList{QStringLiteral("wobj"), QStringLiteral("approach"), QStringLiteral("retract")}));
    QCOMPARE(waypoint->c(QStringLiteral("wobj"))->c(QStringLiteral("near"))->size(), 6);
}

void TestPointGen::genPointsAndSaveToRC()
{
    orba::ModuleObject *pallet = makePallet(2, 3, 0, true, false, kSkewed);
    tpallet::genPointsAndSaveToRC(pallet);

    QCOMPARE(pallet->c(QStringLiteral("points"))->cmobjCount(), 6);
    checkPlaces(pallet, 2, 3, 0, true, false);

    const QList<orbat::ScriptedTransport::Request> requests = m_transport->requests();
    QCOMPARE(m_transport->methods(), QStringList{QStringLiteral("tray.set.one")});
    QVERIFY(requests.first().params);
    QVERIFY(requests.first().params->equals(pallet));
    QCOMPARE(requests.first().paramsJson, orba::json::write(pallet));

    const QList<QVariantMap> log = tcore::ManagerHelper::instance()->logHistory();
    QVERIFY(!log.isEmpty());
    QCOMPARE(log.last().value(QStringLiteral("title")).toString(), QStringLiteral("The way points have regenerated!"));
    QCOMPARE(log.last().value(QStringLiteral("level")).toString(), QStringLiteral("warning"));
}

QTEST_MAIN(TestPointGen)
#include "tst_pointgen.moc"
