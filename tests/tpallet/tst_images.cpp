// The module's pictures: every resource path the module builds exists and decodes at its size,
// the committed PNGs are exactly what the generator draws, and the pattern pictures number the
// places in the order point generation places them.
#include "pointgen.h"

#include <orba/modulemanager.h>
#include <orba/moduleobject.h>

#include <QDirIterator>
#include <QGuiApplication>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <array>
#include <cmath>

namespace {

const QString kGenerator = QStringLiteral(TPALLET_IMAGE_GENERATOR);
const QString kSourceImages = QStringLiteral(TPALLET_IMAGE_SOURCE_DIR);

// The example grid every pattern picture shows: rows on screen, columns across.
constexpr int kRows = 3;
constexpr int kCols = 4;

// What the pattern step's widget lays over the pattern picture expects of it.
const QSize kPatternSize(560, 400);
const QRect kPatternBoard(QPoint(84, 68), QPoint(475, 339));  // 15 %..85 % x 17 %..85 %

const QSize kAxisSize(480, 360);
const QSize kStepSize(240, 200);
const QSize kWayPointSize(480, 320);
const QSize kIconSize(48, 48);

struct Choice
{
    int origin;
    bool sType;
    bool rankV;
};

QString rowName(const Choice &c)
{
    return QStringLiteral("origin %1, %2, %3")
        .arg(c.origin)
        .arg(QLatin1String(c.sType ? "s-type" : "parallel"), QLatin1String(c.rankV ? "vertical" : "horizontal"));
}

QVector<Choice> allChoices()
{
    QVector<Choice> list;
    for (bool sType : {false, true}) {
        for (bool rankV : {false, true}) {
            for (int origin = 0; origin < 4; ++origin)
                list.append(Choice{origin, sType, rankV});
        }
    }
    return list;
}

// The names as the pattern and calibration steps build them.
QString patternResource(const Choice &c)
{
    return QStringLiteral(":/tpallet/images/pallet/%1_%2_%3.png")
        .arg(QLatin1String(c.sType ? "s" : "p"), QLatin1String(c.rankV ? "v" : "h"))
        .arg(c.origin);
}

QString axisResource(const Choice &c)
{
    return QStringLiteral(":/tpallet/images/pallet/axis_%1_%2_%3.png")
        .arg(QLatin1String(c.sType ? "s" : "p"), QLatin1String(c.rankV ? "v" : "h"))
        .arg(QString::number(c.origin));
}

// Relative paths of every file below `dir`, sorted.
QStringList filesBelow(const QString &dir)
{
    QStringList files;
    QDirIterator it(dir, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext())
        files << QDir(dir).relativeFilePath(it.next());
    files.sort();
    return files;
}

QByteArray readAll(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QByteArray();
    return file.readAll();
}

using Numbers = std::array<std::array<int, kCols>, kRows>;

// Corner n of the screen grid: 0 top-left, 1 top-right, 2 bottom-right, 3 bottom-left.
QPoint cornerCell(int n)
{
    switch (n) {
    case 0:
        return QPoint(0, 0);
    case 1:
        return QPoint(kCols - 1, 0);
    case 2:
        return QPoint(kCols - 1, kRows - 1);
    default:
        return QPoint(0, kRows - 1);
    }
}

// Corner in unit square screen coordinates (x right, y down).
QPointF unitCorner(int n)
{
    const QPoint cell = cornerCell(n);
    return QPointF(cell.x() == 0 ? 0.0 : 1.0, cell.y() == 0 ? 0.0 : 1.0);
}

} // namespace

class TestImages : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void patternPictureBundled_data();
    void patternPictureBundled();
    void axisPictureBundled_data();
    void axisPictureBundled();
    void otherPictureBundled_data();
    void otherPictureBundled();
    void everyCommittedPictureBundled();

    void generatorReproducesCommittedPictures();

    void pictureNotBlank_data();
    void pictureNotBlank();
    void patternMarginIsPlain_data();
    void patternMarginIsPlain();
    void iconsAreWhiteOnTransparent_data();
    void iconsAreWhiteOnTransparent();

    void pictureOrderMatchesPointGeneration_data();
    void pictureOrderMatchesPointGeneration();
    void pictureCornersMatchCornerCaptions_data();
    void pictureCornersMatchCornerCaptions();

private:
    QMap<QString, Numbers> pictureNumbers();

    QMap<QString, Numbers> m_numbers;
};

void TestImages::init()
{
    orba::ModuleManager::resetRoot();
}

void TestImages::cleanup()
{
    orba::ModuleManager::resetRoot();
}

// The place numbers each pattern picture shows, as the generator reports them.
QMap<QString, Numbers> TestImages::pictureNumbers()
{
    if (!m_numbers.isEmpty())
        return m_numbers;
    QProcess process;
    process.start(kGenerator, {QStringLiteral("--print-order")});
    if (!process.waitForFinished(120000) || process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0) {
        qWarning("generator failed: %s", process.readAllStandardError().constData());
        return m_numbers;
    }
    const QStringList lines = QString::fromLatin1(process.readAllStandardOutput()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    for (const QString &line : lines) {
        const QStringList fields = line.split(QLatin1Char(' '), Qt::SkipEmptyParts);
        if (fields.size() != 1 + kRows * kCols)
            continue;
        Numbers numbers{};
        for (int i = 0; i < kRows * kCols; ++i)
            numbers[i / kCols][i % kCols] = fields.at(1 + i).toInt();
        m_numbers.insert(fields.at(0), numbers);
    }
    return m_numbers;
}

void TestImages::patternPictureBundled_data()
{
    QTest::addColumn<QString>("path");
    for (const Choice &c : allChoices())
        QTest::newRow(qPrintable(rowName(c))) << patternResource(c);
}

void TestImages::patternPictureBundled()
{
    QFETCH(QString, path);
    QVERIFY2(QFile::exists(path), qPrintable(path));
    const QImage image(path);
    QVERIFY2(!image.isNull(), qPrintable(path));
    QCOMPARE(image.size(), kPatternSize);
}

void TestImages::axisPictureBundled_data()
{
    QTest::addColumn<QString>("path");
    for (const Choice &c : allChoices())
        QTest::newRow(qPrintable(rowName(c))) << axisResource(c);
}

void TestImages::axisPictureBundled()
{
    QFETCH(QString, path);
    QVERIFY2(QFile::exists(path), qPrintable(path));
    const QImage image(path);
    QVERIFY2(!image.isNull(), qPrintable(path));
    QCOMPARE(image.size(), kAxisSize);
}

void TestImages::otherPictureBundled_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QSize>("size");
    QTest::newRow("approach P5") << ":/tpallet/images/pallet/p5.png" << kStepSize;
    QTest::newRow("place P6") << ":/tpallet/images/pallet/p1.png" << kStepSize;
    QTest::newRow("retract P7") << ":/tpallet/images/pallet/p6.png" << kStepSize;
    QTest::newRow("way points chinese") << ":/tpallet/images/pallet/waypoint.png" << kWayPointSize;
    QTest::newRow("way points english") << ":/tpallet/images/pallet/waypoint_en.png" << kWayPointSize;
    QTest::newRow("home") << ":/tpallet/images/home.png" << kIconSize;
    QTest::newRow("back") << ":/tpallet/images/back.png" << kIconSize;
}

void TestImages::otherPictureBundled()
{
    QFETCH(QString, path);
    QFETCH(QSize, size);
    QVERIFY2(QFile::exists(path), qPrintable(path));
    const QImage image(path);
    QVERIFY2(!image.isNull(), qPrintable(path));
    QCOMPARE(image.size(), size);
}

void TestImages::everyCommittedPictureBundled()
{
    const QStringList files = filesBelow(kSourceImages);
    QCOMPARE(files.size(), 16 + 16 + 3 + 2 + 2);
    for (const QString &file : files) {
        const QString resource = QStringLiteral(":/tpallet/images/") + file;
        QVERIFY2(QFile::exists(resource), qPrintable(resource + QStringLiteral(" is not in the bundle")));
        QVERIFY2(readAll(resource) == readAll(kSourceImages + QLatin1Char('/') + file),
                 qPrintable(resource + QStringLiteral(" differs from the committed file")));
    }
}

void TestImages::generatorReproducesCommittedPictures()
{
    QTemporaryDir out;
    QVERIFY(out.isValid());
    QProcess process;
    process.start(kGenerator, {out.path()});
    QVERIFY2(process.waitForFinished(120000), qPrintable(kGenerator));
    QVERIFY2(process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0,
             process.readAllStandardError().constData());

    const QStringList generated = filesBelow(out.filePath(QStringLiteral("images")));
    const QStringList committed = filesBelow(kSourceImages);
    for (const QString &file : generated)
        QVERIFY2(committed.contains(file), qPrintable(file + QStringLiteral(" is drawn but not committed")));
    for (const QString &file : committed)
        QVERIFY2(generated.contains(file), qPrintable(file + QStringLiteral(" is committed but no longer drawn")));
    for (const QString &file : committed) {
        QVERIFY2(readAll(out.filePath(QStringLiteral("images/") + file)) == readAll(kSourceImages + QLatin1Char('/') + file),
                 qPrintable(file + QStringLiteral(" is not what the generator draws")));
    }
}

void TestImages::pictureNotBlank_data()
{
    QTest::addColumn<QString>("path");
    for (const QString &file : filesBelow(kSourceImages))
        QTest::newRow(qPrintable(file)) << QStringLiteral(":/tpallet/images/") + file;
}

void TestImages::pictureNotBlank()
{
    QFETCH(QString, path);
    const QImage image = QImage(path).convertToFormat(QImage::Format_ARGB32);
    QVERIFY(!image.isNull());
    const QRgb background = image.pixel(0, 0);
    int differing = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            differing += image.pixel(x, y) != background;
    }
    // A drawing covers a good part of its picture; a stray pixel or a frame would not.
    const int total = image.width() * image.height();
    QVERIFY2(differing * 20 > total, qPrintable(QStringLiteral("%1 of %2 pixels drawn").arg(differing).arg(total)));
}

void TestImages::patternMarginIsPlain_data()
{
    patternPictureBundled_data();
}

// Corner buttons and captions sit in the margin around the board: it holds the background only.
void TestImages::patternMarginIsPlain()
{
    QFETCH(QString, path);
    const QImage image = QImage(path).convertToFormat(QImage::Format_RGB32);
    QCOMPARE(image.size(), kPatternSize);
    const QRect board = kPatternBoard.adjusted(-2, -2, 2, 2);  // the board's rim is antialiased
    const QRgb background = image.pixel(0, 0);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (!board.contains(x, y) && image.pixel(x, y) != background)
                QFAIL(qPrintable(QStringLiteral("drawn pixel in the margin at %1, %2").arg(x).arg(y)));
        }
    }
    // The board is drawn to its edges.
    QVERIFY(image.pixel(kPatternBoard.topLeft() + QPoint(3, 3)) != background);
    QVERIFY(image.pixel(kPatternBoard.bottomRight() - QPoint(3, 3)) != background);
}

void TestImages::iconsAreWhiteOnTransparent_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("home") << ":/tpallet/images/home.png";
    QTest::newRow("back") << ":/tpallet/images/back.png";
}

void TestImages::iconsAreWhiteOnTransparent()
{
    QFETCH(QString, path);
    const QImage image(path);
    QVERIFY(image.hasAlphaChannel());
    const QImage argb = image.convertToFormat(QImage::Format_ARGB32);
    QCOMPARE(qAlpha(argb.pixel(0, 0)), 0);
    for (int y = 0; y < argb.height(); ++y) {
        for (int x = 0; x < argb.width(); ++x) {
            const QRgb px = argb.pixel(x, y);
            if (qAlpha(px) > 0)
                QVERIFY2(qRed(px) == 255 && qGreen(px) == 255 && qBlue(px) == 255,
                         qPrintable(QStringLiteral("pixel %1, %2 is not white").arg(x).arg(y)));
        }
    }
}

void TestImages::pictureOrderMatchesPointGeneration_data()
{
    QTest::addColumn<int>("origin");
    QTest::addColumn<bool>("sType");
    QTest::addColumn<bool>("rankV");
    for (const Choice &c : allChoices())
        QTest::newRow(qPrintable(rowName(c))) << c.origin << c.sType << c.rankV;
}

// The picture shows the pallet with P1 at the origin corner, P2 at corner (n + 3) % 4 and P3 at
// corner (n + 1) % 4, as the axis picture labels them. Each place the module generates, put on
// the screen through that frame, must land on the cell the picture numbers with its place number.
void TestImages::pictureOrderMatchesPointGeneration()
{
    QFETCH(int, origin);
    QFETCH(bool, sType);
    QFETCH(bool, rankV);
    const Choice choice{origin, sType, rankV};
    const QString name = patternResource(choice).section(QLatin1Char('/'), -1).section(QLatin1Char('.'), 0, 0);
    const QMap<QString, Numbers> all = pictureNumbers();
    QVERIFY2(all.contains(name), qPrintable(name));
    const Numbers numbers = all.value(name);

    orba::ModuleObject *pallet = orba::m()->append(nullptr, QStringLiteral("pallet"));
    pallet->set(nullptr, QStringLiteral("pattern.origin"), origin, true);
    pallet->set(nullptr, QStringLiteral("pattern.s_type"), sType, true);
    pallet->set(nullptr, QStringLiteral("pattern.rank_v"), rankV, true);
    pallet->set(nullptr, QStringLiteral("pattern.row"), kRows, true);
    pallet->set(nullptr, QStringLiteral("pattern.col"), kCols, true);
    pallet->set(nullptr, QStringLiteral("calibrate.x_span"), 1.0, true);
    pallet->set(nullptr, QStringLiteral("calibrate.y_span"), 1.0, true);
    pallet->set(nullptr, QStringLiteral("calibrate.x_offset_13"), 0.0, true);
    pallet->set(nullptr, QStringLiteral("calibrate.x_offset_24"), 0.0, true);
    pallet->set(nullptr, QStringLiteral("calibrate.y_offset_34"), 0.0, true);
    tpallet::initWayPointNode(pallet);
    tpallet::generatePoints1(pallet, nullptr);

    orba::ModuleObject *points = pallet->c(QStringLiteral("points"));
    QCOMPARE(points->cmobjCount(), kRows * kCols);
    const QPointF p1 = unitCorner(origin);
    const QPointF xAxis = unitCorner((origin + 3) % 4) - p1;
    const QPointF yAxis = unitCorner((origin + 1) % 4) - p1;
    QSet<int> seen;
    for (int k = 0; k < kRows * kCols; ++k) {
        const double x = points->r(QStringLiteral("#%1.wobj.trans.#0").arg(k))->getDouble(-1.0);
        const double y = points->r(QStringLiteral("#%1.wobj.trans.#1").arg(k))->getDouble(-1.0);
        const QPointF screen = p1 + xAxis * x + yAxis * y;
        const QPoint cell(qRound(screen.x() * (kCols - 1)), qRound(screen.y() * (kRows - 1)));
        QVERIFY(cell.x() >= 0 && cell.x() < kCols && cell.y() >= 0 && cell.y() < kRows);
        QVERIFY(!seen.contains(cell.y() * kCols + cell.x()));
        seen.insert(cell.y() * kCols + cell.x());
        QVERIFY2(numbers[cell.y()][cell.x()] == k + 1,
                 qPrintable(QStringLiteral("place %1 lands on the cell numbered %2")
                                .arg(k + 1)
                                .arg(numbers[cell.y()][cell.x()])));
    }
}

void TestImages::pictureCornersMatchCornerCaptions_data()
{
    pictureOrderMatchesPointGeneration_data();
}

// The pattern step captions its corner buttons: the origin "1", then the last place of the first
// line, the first and the last place of the last line, in parallel order. The picture's corners
// carry the same numbers (a serpentine last line holds the same two, walked the other way).
void TestImages::pictureCornersMatchCornerCaptions()
{
    QFETCH(int, origin);
    QFETCH(bool, sType);
    QFETCH(bool, rankV);
    const Choice choice{origin, sType, rankV};
    const QString name = patternResource(choice).section(QLatin1Char('/'), -1).section(QLatin1Char('.'), 0, 0);
    const QMap<QString, Numbers> all = pictureNumbers();
    QVERIFY2(all.contains(name), qPrintable(name));
    const Numbers numbers = all.value(name);

    auto wrap = [](int n) { return (n + 4) % 4; };
    QVector<int> others = origin % 2 == 1 ? QVector<int>{wrap(origin - 1), wrap(origin + 1)}
                                          : QVector<int>{wrap(origin + 1), wrap(origin - 1)};
    others << wrap(origin + 2);
    int c = kCols;
    int r = kRows;
    if (rankV) {
        std::swap(others[0], others[1]);
        std::swap(c, r);
    }
    auto at = [&numbers](int corner) {
        const QPoint cell = cornerCell(corner);
        return numbers[cell.y()][cell.x()];
    };
    QCOMPARE(at(origin), 1);
    QCOMPARE(at(others[0]), c);
    const bool lastLineReversed = sType && (r - 1) % 2 == 1;
    if (lastLineReversed) {
        QCOMPARE(at(others[1]), c * r);
        QCOMPARE(at(others[2]), c * r - c + 1);
    } else {
        QCOMPARE(at(others[1]), c * r - c + 1);
        QCOMPARE(at(others[2]), c * r);
    }
}

int main(int argc, char **argv)
{
    // Decoding pictures needs a GUI application, not a screen.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    TestImages test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}

#include "tst_images.moc"
