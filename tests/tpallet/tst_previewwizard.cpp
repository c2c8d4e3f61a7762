#include "palletfixture.h"

#include "module/pointgen.h"
#include "pages/basewizard.h"
#include "wizards/previewwizard.h"

#include <QImage>
#include <QPainter>
#include <QPointer>
#include <QSet>
#include <QtTest>

#include <cmath>

namespace {

// The configuration dialog's background.
const QColor kPaper(0x33, 0x33, 0x33);

// Pixels that differ from the paper inside a disc around `centre`.
QVector<QPoint> inkWithin(const QImage &image, const QPointF &centre, double radius)
{
    QVector<QPoint> found;
    for (int y = int(centre.y() - radius) - 1; y <= int(centre.y() + radius) + 1; ++y) {
        for (int x = int(centre.x() - radius) - 1; x <= int(centre.x() + radius) + 1; ++x) {
            if (!image.rect().contains(x, y) || std::hypot(x + 0.5 - centre.x(), y + 0.5 - centre.y()) > radius)
                continue;
            if (image.pixelColor(x, y) != kPaper)
                found.append(QPoint(x, y));
        }
    }
    return found;
}

QPointF centroid(const QVector<QPoint> &pixels)
{
    QPointF sum;
    for (const QPoint &p : pixels)
        sum += QPointF(p.x() + 0.5, p.y() + 0.5);
    return pixels.isEmpty() ? QPointF(-1, -1) : sum / pixels.size();
}

int inkCount(const QImage &image)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixelColor(x, y) != kPaper)
                ++count;
        }
    }
    return count;
}

} // namespace

class TestPreviewWizard : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void registeredAsStepFive();
    void positions_data();
    void positions();
    void emptyPalletPaintsNothing();
    void originPlaceNearOriginCorner_data();
    void originPlaceNearOriginCorner();
    void oddOriginSwapsWidthAndHeight_data();
    void oddOriginSwapsWidthAndHeight();
    void exchangeSwapsOnlyDivisors_data();
    void exchangeSwapsOnlyDivisors();
    void numbersInOrderAndUpright_data();
    void numbersInOrderAndUpright();
    void repaintFollowsPallet();
    void coincidingCalibrationPointsDrawNothing();

private:
    PreviewWizard *open(int width, int height);
    QImage render() const;
    // A pallet with P1 at the origin, P2 `l12` along x and P3 `l13` along y.
    void calibrate(double l12, double l13);
    void setPlaces(const QList<QPointF> &places);
    // Where place `position` (picture coordinates) is on the widget.
    QPointF onWidget(const QPointF &position, int origin) const
    {
        return tpallet::previewTransform(origin, m_step->width(), m_step->height()).map(position);
    }

    PalletFixture m_fx;
    QPointer<orba::ModuleObject> m_pallet;
    QPointer<PreviewWizard> m_step;
};

void TestPreviewWizard::init()
{
    m_fx.setUp();
    m_pallet = PalletFixture::addLocalPallet(QStringLiteral("tray0"), 2, 3);
    calibrate(0.4, 0.3);
}

void TestPreviewWizard::cleanup()
{
    delete m_step.data();
    m_fx.tearDown();
}

PreviewWizard *TestPreviewWizard::open(int width, int height)
{
    m_step = new PreviewWizard(m_pallet, nullptr);
    m_step->resize(width, height);
    m_step->ensurePolished();
    return m_step;
}

QImage TestPreviewWizard::render() const
{
    QImage image(m_step->size(), QImage::Format_ARGB32);
    image.fill(kPaper);
    m_step->render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
    return image;
}

void TestPreviewWizard::calibrate(double l12, double l13)
{
    for (const char *name : {"p1", "p2", "p3"}) {
        for (int i = 0; i < 3; ++i)
            m_pallet->set(nullptr, QStringLiteral("calibrate.%1.trans.#%2").arg(QLatin1String(name)).arg(i), 0.5);
    }
    m_pallet->set(nullptr, QStringLiteral("calibrate.p2.trans.#0"), 0.5 + l12);
    m_pallet->set(nullptr, QStringLiteral("calibrate.p3.trans.#1"), 0.5 + l13);
}

void TestPreviewWizard::setPlaces(const QList<QPointF> &places)
{
    orba::ModuleObject *points = m_pallet->c(QStringLiteral("points"), true);
    points->clear(nullptr);
    for (int k = 0; k < places.size(); ++k) {
        orba::ModuleObject *place = points->append(nullptr, QStringLiteral("#%1").arg(k));
        place->set(nullptr, QStringLiteral("wobj.trans.#0"), places.at(k).x());
        place->set(nullptr, QStringLiteral("wobj.trans.#1"), places.at(k).y());
        place->set(nullptr, QStringLiteral("wobj.trans.#2"), 0.1);
    }
}

// ---------------------------------------------------------------------------------------------

void TestPreviewWizard::registeredAsStepFive()
{
    QWidget parent;
    BaseWizard *page = tpallet::createWizard(5, m_pallet, &parent);
    QVERIFY(qobject_cast<PreviewWizard *>(page));
    QCOMPARE(page->objectName(), QStringLiteral("PreviewWizard"));
    QCOMPARE(page->windowTitle(), QStringLiteral("Form"));
    QCOMPARE(page->size(), QSize(553, 355));
    QCOMPARE(page->findChildren<QWidget *>().size(), 0);
    // It only paints: leaving it is always allowed.
    QVERIFY(page->tryNext());
    // In the text colour of the configuration dialog, which is dark.
    page->ensurePolished();
    QCOMPARE(page->palette().color(page->foregroundRole()), QColor(0xe6, 0xe9, 0xee));
}

void TestPreviewWizard::positions_data()
{
    QTest::addColumn<int>("origin");
    QTest::addColumn<bool>("exchange");
    QTest::addColumn<QPointF>("place");
    QTest::addColumn<QPointF>("expected");
    // 600 x 400 widget, L12 = 0.4, L13 = 0.3.
    QTest::newRow("origin 0, pallet origin") << 0 << false << QPointF(0, 0) << QPointF(100, 100);
    QTest::newRow("origin 0, far corner") << 0 << false << QPointF(0.4, 0.3) << QPointF(500, 300);
    QTest::newRow("origin 0, middle") << 0 << false << QPointF(0.2, 0.15) << QPointF(300, 200);
    QTest::newRow("origin 1, far corner: extents swap") << 1 << false << QPointF(0.4, 0.3) << QPointF(300, 500);
    QTest::newRow("origin 2, far corner") << 2 << false << QPointF(0.4, 0.3) << QPointF(500, 300);
    QTest::newRow("origin 3, middle") << 3 << false << QPointF(0.2, 0.15) << QPointF(200, 300);
    QTest::newRow("exchange, middle") << 0 << true << QPointF(0.2, 0.15) << QPointF(100 + 400 * 0.375, 100 + 200 * (0.2 / 0.3));
    QTest::newRow("origin -1 counts as even") << -1 << false << QPointF(0.4, 0.3) << QPointF(500, 300);
    QTest::newRow("origin 5 counts as odd") << 5 << false << QPointF(0.4, 0.3) << QPointF(300, 500);
}

void TestPreviewWizard::positions()
{
    QFETCH(int, origin);
    QFETCH(bool, exchange);
    QFETCH(QPointF, place);
    QFETCH(QPointF, expected);
    m_pallet->set(nullptr, QStringLiteral("pattern.origin"), origin);
    m_pallet->set(nullptr, QStringLiteral("pattern.exchange"), exchange);
    setPlaces({place});
    const QVector<QPointF> positions = tpallet::previewPositions(m_pallet, 600, 400);
    QCOMPARE(positions.size(), 1);
    // Lengths are single precision.
    QVERIFY2(std::abs(positions.at(0).x() - expected.x()) < 1e-3 && std::abs(positions.at(0).y() - expected.y()) < 1e-3,
             qPrintable(QStringLiteral("(%1, %2)").arg(positions.at(0).x()).arg(positions.at(0).y())));
}

void TestPreviewWizard::emptyPalletPaintsNothing()
{
    m_pallet->c(QStringLiteral("points"), true)->clear(nullptr);
    open(553, 355);
    QCOMPARE(inkCount(render()), 0);
    // A pallet that has not even the node.
    m_pallet->remove(nullptr, m_pallet->c(QStringLiteral("points")));
    QCOMPARE(inkCount(render()), 0);
}

void TestPreviewWizard::originPlaceNearOriginCorner_data()
{
    QTest::addColumn<int>("origin");
    QTest::addColumn<QPointF>("expected");
    // 553 x 355: the place at pallet (0, 0) sits 100 px from both edges meeting at the corner.
    QTest::newRow("0: top-left") << 0 << QPointF(100, 100);
    QTest::newRow("1: top-right") << 1 << QPointF(453, 100);
    QTest::newRow("2: bottom-right") << 2 << QPointF(453, 255);
    QTest::newRow("3: bottom-left") << 3 << QPointF(100, 255);
}

void TestPreviewWizard::originPlaceNearOriginCorner()
{
    QFETCH(int, origin);
    QFETCH(QPointF, expected);
    m_pallet->set(nullptr, QStringLiteral("pattern.origin"), origin);
    setPlaces({QPointF(0, 0)});
    open(553, 355);
    const QImage image = render();
    QCOMPARE(onWidget(tpallet::previewPositions(m_pallet, 553, 355).at(0), origin), expected);
    // The number "1" is drawn centred on that point: its ink sits inside the circle, around it.
    const QVector<QPoint> number = inkWithin(image, expected, 15);
    QVERIFY(!number.isEmpty());
    const QPointF centre = centroid(number);
    QVERIFY2(std::abs(centre.x() - expected.x()) <= 3 && std::abs(centre.y() - expected.y()) <= 4,
             qPrintable(QStringLiteral("number at (%1, %2)").arg(centre.x()).arg(centre.y())));
    // The circle: ink 20 px around the point, and nothing anywhere else.
    QVERIFY(!inkWithin(image, expected + QPointF(20, 0), 1.5).isEmpty());
    QVERIFY(!inkWithin(image, expected + QPointF(0, -20), 1.5).isEmpty());
    QCOMPARE(inkWithin(image, expected, 23).size(), inkCount(image));
}

void TestPreviewWizard::oddOriginSwapsWidthAndHeight_data()
{
    QTest::addColumn<int>("origin");
    QTest::addColumn<QPointF>("expected");
    // The far end of the second axis lands 100 px from the far edge of the height: the height
    // (355) is the picture's first extent when turned by 90 or 270 degrees.
    QTest::newRow("1") << 1 << QPointF(453, 255);
    QTest::newRow("3") << 3 << QPointF(100, 100);
    // Unturned, the same place lands 100 px from the far edge of the width.
    QTest::newRow("0 for comparison") << 0 << QPointF(453, 100);
}

void TestPreviewWizard::oddOriginSwapsWidthAndHeight()
{
    QFETCH(int, origin);
    QFETCH(QPointF, expected);
    m_pallet->set(nullptr, QStringLiteral("pattern.origin"), origin);
    setPlaces({QPointF(0, 0.3)});
    open(553, 355);
    const QImage image = render();
    const QPointF at = onWidget(tpallet::previewPositions(m_pallet, 553, 355).at(0), origin);
    QVERIFY2(std::abs(at.x() - expected.x()) < 1e-3 && std::abs(at.y() - expected.y()) < 1e-3,
             qPrintable(QStringLiteral("(%1, %2)").arg(at.x()).arg(at.y())));
    const QPointF centre = centroid(inkWithin(image, expected, 15));
    QVERIFY2(std::abs(centre.x() - expected.x()) <= 3 && std::abs(centre.y() - expected.y()) <= 4,
             qPrintable(QStringLiteral("number at (%1, %2)").arg(centre.x()).arg(centre.y())));
}

void TestPreviewWizard::exchangeSwapsOnlyDivisors_data()
{
    QTest::addColumn<bool>("exchange");
    QTest::addColumn<QPointF>("expected");
    // 600 x 400, L12 = 0.4, L13 = 0.3, place (0.2, 0.15): the second coordinate always runs along
    // the picture's x axis; only what it is divided by changes.
    QTest::newRow("not exchanged") << false << QPointF(100 + 400 * (0.15 / 0.3), 100 + 200 * (0.2 / 0.4));
    QTest::newRow("exchanged") << true << QPointF(100 + 400 * (0.15 / 0.4), 100 + 200 * (0.2 / 0.3));
}

void TestPreviewWizard::exchangeSwapsOnlyDivisors()
{
    QFETCH(bool, exchange);
    QFETCH(QPointF, expected);
    m_pallet->set(nullptr, QStringLiteral("pattern.exchange"), exchange);
    setPlaces({QPointF(0.2, 0.15)});
    open(600, 400);
    const QImage image = render();
    const QPointF centre = centroid(inkWithin(image, expected, 15));
    QVERIFY2(std::abs(centre.x() - expected.x()) <= 3 && std::abs(centre.y() - expected.y()) <= 4,
             qPrintable(QStringLiteral("number at (%1, %2)").arg(centre.x()).arg(centre.y())));
}

void TestPreviewWizard::numbersInOrderAndUpright_data()
{
    QTest::addColumn<int>("origin");
    for (int origin = 0; origin < 4; ++origin)
        QTest::newRow(qPrintable(QStringLiteral("origin %1").arg(origin))) << origin;
}

void TestPreviewWizard::numbersInOrderAndUpright()
{
    QFETCH(int, origin);
    // A 3 x 4 pallet in serpentine order: the numbers follow "points", not the grid.
    m_pallet->set(nullptr, QStringLiteral("pattern.row"), 3);
    m_pallet->set(nullptr, QStringLiteral("pattern.col"), 4);
    m_pallet->set(nullptr, QStringLiteral("pattern.s_type"), true);
    m_pallet->set(nullptr, QStringLiteral("pattern.origin"), origin);
    m_pallet->set(nullptr, QStringLiteral("calibrate.x_span"), 0.4);
    m_pallet->set(nullptr, QStringLiteral("calibrate.y_span"), 0.3);
    tpallet::initWayPointNode(m_pallet);
    tpallet::generatePoints1(m_pallet, nullptr);
    const int count = m_pallet->c(QStringLiteral("points"))->cmobjCount();
    QCOMPARE(count, 12);
    open(553, 355);
    const QImage image = render();

    // Each number, written upright in an unturned painter at the place's spot, looks the same.
    QFont font = m_step->font();
    font.setPixelSize(20);
    for (int k = 0; k < count; ++k) {
        const QPointF at = onWidget(tpallet::previewPositions(m_pallet, 553, 355).at(k), origin);
        QImage reference(image.size(), QImage::Format_ARGB32);
        reference.fill(kPaper);
        {
            QPainter painter(&reference);
            painter.setPen(m_step->palette().color(m_step->foregroundRole()));
            painter.setFont(font);
            painter.drawText(QRectF(at.x() - 20, at.y() - 20, 40, 40), Qt::AlignCenter, QString::number(k + 1));
        }
        const QVector<QPoint> expected = inkWithin(reference, at, 15);
        const QVector<QPoint> drawn = inkWithin(image, at, 15);
        QVERIFY(!expected.isEmpty());
        // Half-pixel spots and the edges of antialiased glyphs may come out a little differently
        // through the painter's turns: the same glyphs, moved by at most a pixel, a few edge
        // pixels apart; a turned or another number differs in most of its pixels.
        auto key = [](const QPoint &p) { return (qint64(p.x()) << 32) | quint32(p.y()); };
        QSet<qint64> drawnSet;
        for (const QPoint &p : drawn)
            drawnSet.insert(key(p));
        int best = expected.size() + drawn.size();
        for (int dy = -1; dy <= 1; ++dy) {
            for (int dx = -1; dx <= 1; ++dx) {
                int differ = 0;
                QSet<qint64> moved;
                for (const QPoint &p : expected) {
                    moved.insert(key(p + QPoint(dx, dy)));
                    differ += drawnSet.contains(key(p + QPoint(dx, dy))) ? 0 : 1;
                }
                for (const QPoint &p : drawn)
                    differ += moved.contains(key(p)) ? 0 : 1;
                best = qMin(best, differ);
            }
        }
        QVERIFY2(best <= expected.size() / 10, qPrintable(QStringLiteral("number %1 at (%2, %3): %4 of %5 pixels differ")
                                                              .arg(k + 1).arg(at.x()).arg(at.y()).arg(best).arg(expected.size())));
    }
}

void TestPreviewWizard::repaintFollowsPallet()
{
    setPlaces({QPointF(0, 0)});
    open(553, 355);
    QVERIFY(!inkWithin(render(), QPointF(100, 100), 15).isEmpty());
    m_pallet->set(nullptr, QStringLiteral("pattern.origin"), 2);
    const QImage turned = render();
    QVERIFY(inkWithin(turned, QPointF(100, 100), 23).isEmpty());
    QVERIFY(!inkWithin(turned, QPointF(453, 255), 15).isEmpty());
    // A taller widget moves the far places, not the near one.
    setPlaces({QPointF(0, 0), QPointF(0.4, 0.3)});
    m_pallet->set(nullptr, QStringLiteral("pattern.origin"), 0);
    m_step->resize(700, 500);
    const QImage bigger = render();
    QVERIFY(!inkWithin(bigger, QPointF(100, 100), 15).isEmpty());
    QVERIFY(!inkWithin(bigger, QPointF(600, 400), 15).isEmpty());
}

void TestPreviewWizard::coincidingCalibrationPointsDrawNothing()
{
    calibrate(0.0, 0.3);
    setPlaces({QPointF(0.1, 0.1), QPointF(0.0, 0.0)});
    open(553, 355);
    // Divided by zero regardless: no place has a finite spot, and painting survives it.
    const QVector<QPointF> positions = tpallet::previewPositions(m_pallet, 553, 355);
    QCOMPARE(positions.size(), 2);
    QVERIFY(!std::isfinite(positions.at(0).y()));
    QVERIFY(!std::isfinite(positions.at(1).y()));
    QCOMPARE(inkCount(render()), 0);
}

QTEST_MAIN(TestPreviewWizard)
#include "tst_previewwizard.moc"
