// Draws every picture the palletizing module shows: the pattern pictures of the pattern step, the
// axis pictures of the calibration step, the way-point pictures and the file dialog's icons.
//
// Usage: make_tpallet_images <outdir>         writes images/... and images/pallet/... under <outdir>
//        make_tpallet_images --print-order    prints the place numbers each pattern picture shows
//
// Reruns give byte-identical files: the fonts are loaded from fixed Debian font files (no
// fallback to whatever the machine has), sizes are in pixels, hinting is off and the PNGs carry
// no time stamp.
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QFont>
#include <QFontDatabase>
#include <QFontInfo>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QPen>
#include <QTextStream>
#include <QVector>

#include <array>
#include <cmath>
#include <functional>

namespace {

// ---------------------------------------------------------------------------------------------
// Fonts

const char *const kLatinFontFile = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf";
const char *const kLatinBoldFontFile = "/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf";
const char *const kCjkFontFile = "/usr/share/fonts/truetype/wqy/wqy-microhei.ttc";

QString g_latinFamily;
QString g_cjkFamily;
QStringList g_errors;

QString loadFont(const char *file, const char *package, bool skipMono)
{
    const QString path = QString::fromLatin1(file);
    if (!QFileInfo::exists(path)) {
        g_errors << QStringLiteral("font file %1 is missing: install the Debian package %2")
                        .arg(path, QLatin1String(package));
        return QString();
    }
    const int id = QFontDatabase::addApplicationFont(path);
    if (id < 0) {
        g_errors << QStringLiteral("font file %1 cannot be loaded").arg(path);
        return QString();
    }
    for (const QString &family : QFontDatabase::applicationFontFamilies(id)) {
        if (!skipMono || !family.contains(QLatin1String("Mono")))
            return family;
    }
    g_errors << QStringLiteral("font file %1 names no usable family").arg(path);
    return QString();
}

bool loadFonts()
{
    g_latinFamily = loadFont(kLatinFontFile, "fonts-dejavu-core", false);
    const QString bold = loadFont(kLatinBoldFontFile, "fonts-dejavu-core", false);
    g_cjkFamily = loadFont(kCjkFontFile, "fonts-wqy-microhei", true);
    if (!bold.isEmpty() && bold != g_latinFamily)
        g_errors << QStringLiteral("%1 and %2 are not one family").arg(QLatin1String(kLatinFontFile),
                                                                         QLatin1String(kLatinBoldFontFile));
    return g_errors.isEmpty();
}

QFont makeFont(const QString &family, int pixelSize, bool bold)
{
    QFont font(family);
    font.setPixelSize(pixelSize);
    font.setWeight(bold ? QFont::Bold : QFont::Normal);
    // Hinting and fallback fonts are the machine's business: both would change the pixels.
    font.setHintingPreference(QFont::PreferNoHinting);
    font.setStyleStrategy(QFont::StyleStrategy(QFont::PreferAntialias | QFont::NoFontMerging));
    return font;
}

QFont latinFont(qreal pixelSize, bool bold = true)
{
    return makeFont(g_latinFamily, qMax(1, qRound(pixelSize)), bold);
}

QFont cjkFont(qreal pixelSize)
{
    return makeFont(g_cjkFamily, qMax(1, qRound(pixelSize)), false);
}

// Every text must come from the font it names, not from a box glyph.
void checkText(const QFont &font, const QString &text)
{
    const QFontInfo info(font);
    if (info.family() != font.family())
        g_errors << QStringLiteral("font %1 resolved to %2").arg(font.family(), info.family());
    const QFontMetricsF metrics(font);
    const QVector<uint> chars = text.toUcs4();
    for (uint c : chars) {
        if (!metrics.inFontUcs4(c))
            g_errors << QStringLiteral("font %1 has no glyph U+%2 for \"%3\"")
                            .arg(font.family())
                            .arg(c, 4, 16, QLatin1Char('0'))
                            .arg(text);
    }
}

void drawText(QPainter &p, const QFont &font, const QRectF &rect, int flags, const QString &text,
              const QColor &color)
{
    checkText(font, text);
    p.save();
    p.setFont(font);
    p.setPen(color);
    p.drawText(rect, flags, text);
    p.restore();
}

// Text with a dark rim, readable over the pallet and the boxes alike.
void drawHaloText(QPainter &p, const QFont &font, const QRectF &rect, int flags, const QString &text,
                  const QColor &color, const QColor &halo, qreal haloWidth)
{
    checkText(font, text);
    const QFontMetricsF metrics(font);
    const qreal width = metrics.horizontalAdvance(text);
    qreal x = rect.left();
    if (flags & Qt::AlignRight)
        x = rect.right() - width;
    else if (flags & Qt::AlignHCenter)
        x = rect.center().x() - width / 2;
    qreal y = rect.top() + metrics.ascent();
    if (flags & Qt::AlignBottom)
        y = rect.bottom() - metrics.descent();
    else if (flags & Qt::AlignVCenter)
        y = rect.center().y() + (metrics.ascent() - metrics.descent()) / 2;
    QPainterPath path;
    path.addText(QPointF(x, y), font, text);
    p.save();
    QPen rim(halo, haloWidth);
    rim.setJoinStyle(Qt::RoundJoin);
    p.strokePath(path, rim);
    p.fillPath(path, color);
    p.restore();
}

// ---------------------------------------------------------------------------------------------
// Common drawing

const QColor kBackground(0x36, 0x36, 0x36);
const QColor kWoodLight(0xc8, 0x9a, 0x5e);
const QColor kWoodDark(0x7a, 0x52, 0x2c);
const QColor kWoodEdge(0x4e, 0x33, 0x1a);
const QColor kCarton(0xee, 0xd9, 0xae);
const QColor kCartonEdge(0x8c, 0x64, 0x32);
const QColor kCartonTape(0xd7, 0xba, 0x82);
const QColor kPath(0x15, 0x5f, 0xc8);
const QColor kFirst(0x2e, 0x8b, 0x36);
const QColor kFirstBox(0xb4, 0xe3, 0xb0);
const QColor kText(0x1c, 0x1c, 0x1c);
const QColor kMarker(0xff, 0xc4, 0x1f);
const QColor kMotion(0x5c, 0xc8, 0xff);
const QColor kAxisX(0xf0, 0x3c, 0x32);
const QColor kAxisY(0x3c, 0xc8, 0x4b);
const QColor kSteel(0xb4, 0xb9, 0xbe);
const QColor kSteelDark(0x6e, 0x74, 0x7a);
const QColor kSteelEdge(0x1e, 0x20, 0x22);

QPen roundPen(const QColor &color, qreal width)
{
    QPen pen(color, width);
    pen.setCapStyle(Qt::RoundCap);
    pen.setJoinStyle(Qt::RoundJoin);
    return pen;
}

QPointF unit(const QPointF &v)
{
    const qreal len = std::hypot(v.x(), v.y());
    return len > 0 ? v / len : QPointF();
}

// A filled arrow head with its tip at `tip`, pointing along `dir`.
void drawArrowHead(QPainter &p, const QPointF &tip, const QPointF &dir, qreal length, qreal halfWidth,
                   const QColor &color)
{
    const QPointF d = unit(dir);
    const QPointF n(-d.y(), d.x());
    const QPointF base = tip - d * length;
    QPainterPath head;
    head.moveTo(tip);
    head.lineTo(base + n * halfWidth);
    head.lineTo(base + d * (length * 0.25));
    head.lineTo(base - n * halfWidth);
    head.closeSubpath();
    p.save();
    p.setPen(Qt::NoPen);
    p.setBrush(color);
    p.drawPath(head);
    p.restore();
}

// A straight arrow from `from` to `to`; the shaft stops inside the head so the tip stays sharp.
void drawArrow(QPainter &p, const QPointF &from, const QPointF &to, qreal width, const QColor &color,
               bool dashed = false)
{
    const qreal head = width * 3.6;
    const QPointF d = unit(to - from);
    QPen pen = roundPen(color, width);
    if (dashed) {
        pen.setCapStyle(Qt::FlatCap);
        pen.setDashPattern({2.2, 1.4});
    }
    p.save();
    p.setPen(pen);
    p.drawLine(from, to - d * (head * 0.7));
    p.restore();
    drawArrowHead(p, to, d, head, width * 2.0, color);
}

// Opaque pictures are RGB and saved so; icons keep an alpha channel.
QImage newImage(int width, int height, const QColor &fill)
{
    QImage image(width, height, fill.alpha() == 255 ? QImage::Format_RGB32 : QImage::Format_ARGB32_Premultiplied);
    // The default resolution follows the screen; pin it so the pHYs chunk never changes.
    image.setDotsPerMeterX(3780);
    image.setDotsPerMeterY(3780);
    image.fill(fill);
    return image;
}

// ---------------------------------------------------------------------------------------------
// Pattern: an example pallet of 3 rows x 4 columns, numbered in placing order.

constexpr int kRows = 3;
constexpr int kCols = 4;

struct Pattern
{
    int origin;  // corner on screen: 0 top-left, 1 top-right, 2 bottom-right, 3 bottom-left
    bool sType;  // every second line runs backwards
    bool rankV;  // lines are screen columns

    QString name() const
    {
        return QStringLiteral("%1_%2_%3")
            .arg(QLatin1String(sType ? "s" : "p"), QLatin1String(rankV ? "v" : "h"))
            .arg(origin);
    }
};

QVector<Pattern> allPatterns()
{
    QVector<Pattern> list;
    for (bool sType : {false, true}) {
        for (bool rankV : {false, true}) {
            for (int origin = 0; origin < 4; ++origin)
                list.append(Pattern{origin, sType, rankV});
        }
    }
    return list;
}

using Numbers = std::array<std::array<int, kCols>, kRows>;

// Place numbers (1-based, placing order) by screen row and column. Lines start at the origin
// corner: screen rows walked toward the horizontally adjacent corner for a horizontal ranking,
// screen columns walked toward the vertically adjacent corner for a vertical one.
Numbers placeNumbers(const Pattern &pattern)
{
    const bool fromRight = pattern.origin == 1 || pattern.origin == 2;
    const bool fromBottom = pattern.origin == 2 || pattern.origin == 3;
    const int lineLength = pattern.rankV ? kRows : kCols;
    const int lineCount = pattern.rankV ? kCols : kRows;
    Numbers numbers{};
    for (int line = 0; line < lineCount; ++line) {
        for (int t = 0; t < lineLength; ++t) {
            const int u = (pattern.sType && line % 2 == 1) ? lineLength - 1 - t : t;
            const int across = pattern.rankV ? u : line;  // screen row counted from the origin
            const int along = pattern.rankV ? line : u;   // screen column counted from the origin
            const int row = fromBottom ? kRows - 1 - across : across;
            const int col = fromRight ? kCols - 1 - along : along;
            numbers[row][col] = line * lineLength + t + 1;
        }
    }
    return numbers;
}

struct Board
{
    QRectF rect;
    qreal scale;  // 1.0 at the pattern picture's size

    QRectF cell(int row, int col) const
    {
        const qreal pad = 10 * scale;
        const qreal w = (rect.width() - 2 * pad) / kCols;
        const qreal h = (rect.height() - 2 * pad) / kRows;
        return QRectF(rect.left() + pad + col * w, rect.top() + pad + row * h, w, h);
    }

    QRectF box(int row, int col) const
    {
        const qreal gap = 9 * scale;
        return cell(row, col).adjusted(gap, gap, -gap, -gap);
    }

    QPointF corner(int n) const
    {
        switch (n) {
        case 0:
            return rect.topLeft();
        case 1:
            return rect.topRight();
        case 2:
            return rect.bottomRight();
        default:
            return rect.bottomLeft();
        }
    }
};

// The pallet seen from above: deck boards with dark gaps, a dark rim.
void drawPalletTop(QPainter &p, const Board &board)
{
    const QRectF r = board.rect;
    p.save();
    p.setPen(Qt::NoPen);
    p.setBrush(kWoodDark);
    p.drawRect(r);
    const int boards = 7;
    const qreal gap = 5 * board.scale;
    const qreal w = (r.width() - gap * (boards + 1)) / boards;
    p.setBrush(kWoodLight);
    for (int i = 0; i < boards; ++i)
        p.drawRect(QRectF(r.left() + gap + i * (w + gap), r.top() + gap, w, r.height() - 2 * gap));
    p.setBrush(Qt::NoBrush);
    p.setPen(QPen(kWoodEdge, 2 * board.scale));
    p.drawRect(r);
    p.restore();
}

void drawPatternContent(QPainter &p, const Board &board, const Pattern &pattern)
{
    const qreal s = board.scale;
    const Numbers numbers = placeNumbers(pattern);

    drawPalletTop(p, board);

    // Cartons.
    for (int r = 0; r < kRows; ++r) {
        for (int c = 0; c < kCols; ++c) {
            const QRectF box = board.box(r, c);
            const bool first = numbers[r][c] == 1;
            p.setPen(QPen(first ? kFirst : kCartonEdge, (first ? 3 : 2) * s));
            p.setBrush(first ? kFirstBox : kCarton);
            p.drawRoundedRect(box, 3 * s, 3 * s);
        }
    }

    // The path through the centres in placing order. Steps to a neighbour are solid; the jump
    // back to the start of the next line (parallel order) is dashed, as nothing is placed on it.
    QVector<QPointF> centres(kRows * kCols + 1);
    QVector<QPoint> cells(kRows * kCols + 1);
    for (int r = 0; r < kRows; ++r) {
        for (int c = 0; c < kCols; ++c) {
            centres[numbers[r][c]] = board.cell(r, c).center();
            cells[numbers[r][c]] = QPoint(c, r);
        }
    }
    for (int k = 1; k < kRows * kCols; ++k) {
        const QPointF a = centres[k];
        const QPointF b = centres[k + 1];
        const QPoint step = cells[k + 1] - cells[k];
        const bool neighbour = step.manhattanLength() == 1;
        QPen pen = roundPen(kPath, (neighbour ? 5 : 3) * s);
        if (!neighbour) {
            pen.setCapStyle(Qt::FlatCap);
            pen.setDashPattern({3.0, 2.0});
        }
        p.setPen(pen);
        p.drawLine(a, b);
        // The head sits in the middle of the step, in the gap between two cartons.
        const QPointF d = unit(b - a);
        const qreal head = (neighbour ? 17 : 15) * s;
        drawArrowHead(p, (a + b) / 2 + d * (head / 2), d, head, (neighbour ? 10 : 9) * s, kPath);
    }

    // Numbers in round badges over the path.
    const qreal radius = 19 * s;
    const QFont font = latinFont(20 * s);
    for (int r = 0; r < kRows; ++r) {
        for (int c = 0; c < kCols; ++c) {
            const int n = numbers[r][c];
            const QPointF centre = board.cell(r, c).center();
            const bool first = n == 1;
            p.setPen(QPen(first ? Qt::white : kPath, 2.5 * s));
            p.setBrush(first ? kFirst : QColor(Qt::white));
            p.drawEllipse(centre, radius, radius);
            drawText(p, font, QRectF(centre.x() - radius, centre.y() - radius, 2 * radius, 2 * radius),
                     Qt::AlignCenter, QString::number(n), first ? QColor(Qt::white) : kText);
        }
    }
}

// The pattern step lays its corner buttons and captions over this picture by fractions of its
// size: the board fills (15 %, 17 %) .. (85 %, 85 %), the margin around it stays plain.
constexpr int kPatternWidth = 560;
constexpr int kPatternHeight = 400;

QImage drawPattern(const Pattern &pattern)
{
    QImage image = newImage(kPatternWidth, kPatternHeight, kBackground);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing, true);
    p.setRenderHint(QPainter::TextAntialiasing, true);
    const QRectF rect(QPointF(0.15 * kPatternWidth, 0.17 * kPatternHeight),
                      QPointF(0.85 * kPatternWidth, 0.85 * kPatternHeight));
    drawPatternContent(p, Board{rect, 1.0}, pattern);
    p.end();
    return image;
}

// ---------------------------------------------------------------------------------------------
// Axis: the same pallet, faded, with the taught corners and the pallet frame's X and Y.

constexpr int kAxisWidth = 480;
constexpr int kAxisHeight = 360;

QImage drawAxis(const Pattern &pattern)
{
    QImage image = newImage(kAxisWidth, kAxisHeight, kBackground);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing, true);
    p.setRenderHint(QPainter::TextAntialiasing, true);

    const QRectF rect(QPointF(0.19 * kAxisWidth, 0.2 * kAxisHeight), QPointF(0.81 * kAxisWidth, 0.8 * kAxisHeight));
    const Board board{rect, rect.width() / (0.7 * kPatternWidth)};
    drawPatternContent(p, board, pattern);
    QColor veil = kBackground;
    veil.setAlpha(150);
    p.fillRect(rect.adjusted(-2, -2, 2, 2), veil);

    // P1 is the origin corner; x runs from P1 to P2, y from P1 to P3, z comes out of the screen.
    const int n = pattern.origin;
    const std::array<int, 4> cornerOf{n, (n + 3) % 4, (n + 1) % 4, (n + 2) % 4};
    const QPointF centre = rect.center();

    const QPointF p1 = board.corner(cornerOf[0]);
    const QPointF p2 = board.corner(cornerOf[1]);
    const QPointF p3 = board.corner(cornerOf[2]);
    const struct
    {
        QPointF to;
        QColor color;
        const char *label;
    } axes[] = {{p2, kAxisX, "X"}, {p3, kAxisY, "Y"}};
    for (const auto &axis : axes) {
        const QPointF d = unit(axis.to - p1);
        const qreal length = std::hypot(axis.to.x() - p1.x(), axis.to.y() - p1.y()) * 0.62;
        const QPointF tip = p1 + d * length;
        drawArrow(p, p1, tip, 6, axis.color);
        // The letter sits outside the board, beside the arrow's tip.
        QPointF out(-d.y(), d.x());
        if (QPointF::dotProduct(out, tip - centre) < 0)
            out = -out;
        const QPointF at = tip - d * 22 + out * 24;
        drawHaloText(p, latinFont(26), QRectF(at.x() - 20, at.y() - 20, 40, 40), Qt::AlignCenter,
                     QString::fromLatin1(axis.label), axis.color, kBackground, 3);
    }

    for (int i = 0; i < 4; ++i) {
        const QPointF c = board.corner(cornerOf[i]);
        p.setPen(QPen(kSteelEdge, 2));
        p.setBrush(kMarker);
        p.drawEllipse(c, 8, 8);
        // Labels sit diagonally outside their corner.
        const QPointF out(c.x() < centre.x() ? -1 : 1, c.y() < centre.y() ? -1 : 1);
        const QPointF at = c + QPointF(out.x() * 30, out.y() * 24);
        drawHaloText(p, latinFont(24), QRectF(at.x() - 30, at.y() - 16, 60, 32), Qt::AlignCenter,
                     QStringLiteral("P%1").arg(i + 1), Qt::white, kBackground, 3);
    }
    p.end();
    return image;
}

// ---------------------------------------------------------------------------------------------
// Way points: side views of the gripper placing a carton on the pallet.

// The pallet seen from the side: a deck, three blocks, a bottom board; `deck` is the deck's top
// edge, left to right.
void drawPalletSide(QPainter &p, qreal left, qreal right, qreal top, qreal s)
{
    const qreal deck = 9 * s;
    const qreal block = 15 * s;
    const qreal bottom = 6 * s;
    const qreal blockWidth = 26 * s;
    p.save();
    p.setPen(QPen(kWoodEdge, 1.5 * s));
    p.setBrush(kWoodLight);
    p.drawRect(QRectF(left, top, right - left, deck));
    p.setBrush(kWoodDark);
    for (qreal x : {left + 4 * s, (left + right - blockWidth) / 2, right - 4 * s - blockWidth})
        p.drawRect(QRectF(x, top + deck, blockWidth, block));
    p.setBrush(kWoodLight);
    p.drawRect(QRectF(left, top + deck + block, right - left, bottom));
    p.restore();
}

void drawCarton(QPainter &p, const QRectF &r, qreal s, bool ghost = false)
{
    p.save();
    if (ghost)
        p.setOpacity(0.45);
    p.setPen(QPen(kCartonEdge, 2 * s));
    p.setBrush(kCarton);
    p.drawRect(r);
    p.setPen(Qt::NoPen);
    p.setBrush(kCartonTape);
    p.drawRect(QRectF(r.left() + 1 * s, r.top() + r.height() * 0.42, r.width() - 2 * s, r.height() * 0.16));
    p.restore();
}

// The place left free for the carton: a dashed outline on the pallet.
void drawFreePlace(QPainter &p, const QRectF &r, qreal s)
{
    p.save();
    QPen pen(QColor(0xe0, 0xe0, 0xe0), 2 * s);
    pen.setDashPattern({3, 2});
    p.setPen(pen);
    p.setBrush(Qt::NoBrush);
    p.drawRect(r);
    p.restore();
}

// A vacuum gripper on the robot's last link; `tip` is the middle of its sucking face (the taught
// point). The link reaches up to `top`.
void drawGripper(QPainter &p, const QPointF &tip, qreal top, qreal s, bool ghost = false)
{
    p.save();
    if (ghost)
        p.setOpacity(0.5);
    p.setPen(QPen(kSteelEdge, 1.5 * s));
    const qreal plateW = 74 * s, plateH = 9 * s;
    const qreal cupH = 5 * s;
    const qreal flangeW = 34 * s, flangeH = 8 * s;
    const qreal linkW = 22 * s;
    const qreal plateTop = tip.y() - cupH - plateH;
    const qreal flangeTop = plateTop - flangeH;
    p.setBrush(kSteelDark);
    p.drawRect(QRectF(tip.x() - linkW / 2, top, linkW, flangeTop - top));
    p.setBrush(kSteel);
    p.drawRect(QRectF(tip.x() - flangeW / 2, flangeTop, flangeW, flangeH));
    p.drawRect(QRectF(tip.x() - plateW / 2, plateTop, plateW, plateH));
    p.setBrush(QColor(0x30, 0x30, 0x30));
    for (qreal dx : {-26.0, -9.0, 9.0, 26.0})
        p.drawRect(QRectF(tip.x() + (dx - 5) * s, tip.y() - cupH, 10 * s, cupH));
    p.restore();
}

void drawMarker(QPainter &p, const QPointF &at, qreal s)
{
    p.save();
    p.setPen(QPen(kSteelEdge, 2 * s));
    p.setBrush(kMarker);
    p.drawEllipse(at, 6.5 * s, 6.5 * s);
    p.restore();
}

constexpr int kStepWidth = 240;
constexpr int kStepHeight = 200;

enum class Step { Approach, Place, Retract };

// One picture of the way point step: the carton's last place on a pallet row.
QImage drawStep(Step step)
{
    QImage image = newImage(kStepWidth, kStepHeight, kBackground);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing, true);
    p.setRenderHint(QPainter::TextAntialiasing, true);

    const qreal s = 0.8;
    const qreal deckTop = 166;
    drawPalletSide(p, 10, 230, deckTop, s);
    const qreal boxW = 66, boxH = 48;
    drawCarton(p, QRectF(14, deckTop - boxH, boxW, boxH), s);
    const QRectF place(84, deckTop - boxH, boxW, boxH);
    const qreal cx = place.center().x();

    QPointF tip;
    QString label;
    switch (step) {
    case Step::Approach: {
        tip = QPointF(cx, 56);
        drawFreePlace(p, place, s);
        drawCarton(p, QRectF(place.left(), tip.y(), boxW, boxH), s);
        drawGripper(p, tip, 0, s);
        drawArrow(p, QPointF(place.right() + 22, 66), QPointF(place.right() + 22, place.top() + 20), 4.5, kMotion);
        label = QStringLiteral("P5");
        break;
    }
    case Step::Place:
        tip = place.topLeft() + QPointF(boxW / 2, 0);
        drawCarton(p, place, s);
        drawGripper(p, tip, 0, s);
        label = QStringLiteral("P6");
        break;
    case Step::Retract: {
        drawCarton(p, place, s);
        const QPointF released(cx, place.top());
        tip = QPointF(cx + 42, 46);
        drawGripper(p, released, released.y() - 44, s, true);
        drawGripper(p, tip, 0, s);
        drawArrow(p, released + QPointF(36, -14), tip + QPointF(30, 14), 4.5, kMotion);
        label = QStringLiteral("P7");
        break;
    }
    }
    drawMarker(p, tip, s);
    const QRectF labelRect(tip.x() - 96, tip.y() - 34, 60, 30);
    drawHaloText(p, latinFont(24), labelRect, Qt::AlignRight | Qt::AlignVCenter, label, Qt::white, kBackground,
                 3);
    p.end();
    return image;
}

constexpr int kWayWidth = 480;
constexpr int kWayHeight = 320;

struct WayLabels
{
    QString approach;
    QString place;
    QString retract;
    std::function<QFont(qreal)> font;
};

// The whole way of one carton: approach P5 above its place, place P6, retract P7 up and away.
QImage drawWayPoints(const WayLabels &labels)
{
    QImage image = newImage(kWayWidth, kWayHeight, kBackground);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing, true);
    p.setRenderHint(QPainter::TextAntialiasing, true);

    const qreal s = 1.0;
    const qreal deckTop = 276;
    drawPalletSide(p, 20, 460, deckTop, s);
    const qreal boxW = 96, boxH = 64;
    for (int i = 0; i < 2; ++i)
        drawCarton(p, QRectF(26 + i * (boxW + 4), deckTop - boxH, boxW, boxH), s);
    const QRectF place(26 + 2 * (boxW + 4), deckTop - boxH, boxW, boxH);
    const qreal cx = place.center().x();

    const QPointF wobj(cx, place.top());
    const QPointF approach(cx, 84);
    const QPointF retract(cx + 130, 118);

    // Approach and retract as ghosts, the place pose solid.
    drawCarton(p, QRectF(place.left(), approach.y(), boxW, boxH), s, true);
    drawGripper(p, approach, approach.y() - 62, s, true);
    drawGripper(p, retract, retract.y() - 62, s, true);
    drawCarton(p, place, s);
    drawGripper(p, wobj, wobj.y() - 50, s);

    // The way: down onto the place beside the cartons already there, then up and away.
    drawArrow(p, QPointF(place.left() - 16, approach.y() + 34), QPointF(place.left() - 16, place.top() - 12), 5,
              kMotion);
    drawArrow(p, wobj + QPointF(50, -30), retract + QPointF(-30, 38), 5, kMotion);

    for (const QPointF &at : {approach, wobj, retract})
        drawMarker(p, at, s);

    const QFont font = labels.font(22);
    const qreal h = 32;
    drawHaloText(p, font, QRectF(20, approach.y() - h / 2, approach.x() - 66, h), Qt::AlignRight | Qt::AlignVCenter,
                 labels.approach, Qt::white, kBackground, 3);
    drawHaloText(p, font, QRectF(place.right() + 12, wobj.y() + 14, kWayWidth - place.right() - 14, h),
                 Qt::AlignLeft | Qt::AlignVCenter, labels.place, Qt::white, kBackground, 3);
    drawHaloText(p, font, QRectF(retract.x() - 100, retract.y() - 62 - 8 - h, 200, h),
                 Qt::AlignHCenter | Qt::AlignBottom, labels.retract, Qt::white, kBackground, 3);
    p.end();
    return image;
}

// ---------------------------------------------------------------------------------------------
// File dialog icons: white line drawings on transparent, 48 x 48.

void drawHome(QPainter &p)
{
    QPainterPath roof;
    roof.moveTo(5, 24);
    roof.lineTo(24, 7);
    roof.lineTo(43, 24);
    p.drawPath(roof);
    QPainterPath walls;
    walls.moveTo(11, 20);
    walls.lineTo(11, 41);
    walls.lineTo(37, 41);
    walls.lineTo(37, 20);
    p.drawPath(walls);
    QPainterPath door;
    door.moveTo(20, 41);
    door.lineTo(20, 29);
    door.lineTo(28, 29);
    door.lineTo(28, 41);
    p.drawPath(door);
}

void drawBack(QPainter &p)
{
    // A turning arrow: left along the top, round, back along the bottom.
    QPainterPath path;
    path.moveTo(18, 40);
    path.lineTo(28, 40);
    path.arcTo(QRectF(17, 16, 24, 24), -90, 180);
    path.lineTo(9, 16);
    p.drawPath(path);
    QPainterPath head;
    head.moveTo(17, 8);
    head.lineTo(9, 16);
    head.lineTo(17, 24);
    p.drawPath(head);
}

QImage drawIcon(const std::function<void(QPainter &)> &draw)
{
    QImage image = newImage(48, 48, Qt::transparent);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing, true);
    p.setPen(roundPen(Qt::white, 3.5));
    p.setBrush(Qt::NoBrush);
    draw(p);
    p.end();
    return image;
}

// ---------------------------------------------------------------------------------------------

bool save(const QDir &root, const QString &relPath, const QImage &image)
{
    const QString path = root.filePath(relPath);
    if (!QDir().mkpath(QFileInfo(path).absolutePath()) || !image.save(path, "PNG", 9)) {
        QTextStream(stderr) << "cannot write " << path << '\n';
        return false;
    }
    QTextStream(stdout) << path << '\n';
    return true;
}

void printOrder()
{
    QTextStream out(stdout);
    for (const Pattern &pattern : allPatterns()) {
        const Numbers numbers = placeNumbers(pattern);
        out << pattern.name();
        for (const auto &row : numbers) {
            for (int n : row)
                out << ' ' << n;
        }
        out << '\n';
    }
}

} // namespace

int main(int argc, char **argv)
{
    // Pictures need no screen; the offscreen platform keeps the tool usable anywhere.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    const QStringList args = QCoreApplication::arguments();
    if (args.size() != 2) {
        QTextStream(stderr) << "usage: make_tpallet_images <outdir>\n"
                               "       make_tpallet_images --print-order\n";
        return 2;
    }
    if (args.at(1) == QLatin1String("--print-order")) {
        printOrder();
        return 0;
    }
    if (!loadFonts()) {
        for (const QString &e : qAsConst(g_errors))
            QTextStream(stderr) << "make_tpallet_images: " << e << '\n';
        return 1;
    }

    const QDir root(args.at(1));
    bool ok = true;
    for (const Pattern &pattern : allPatterns()) {
        ok &= save(root, QStringLiteral("images/pallet/%1.png").arg(pattern.name()), drawPattern(pattern));
        ok &= save(root, QStringLiteral("images/pallet/axis_%1.png").arg(pattern.name()), drawAxis(pattern));
    }
    ok &= save(root, QStringLiteral("images/pallet/p5.png"), drawStep(Step::Approach));
    ok &= save(root, QStringLiteral("images/pallet/p1.png"), drawStep(Step::Place));
    ok &= save(root, QStringLiteral("images/pallet/p6.png"), drawStep(Step::Retract));
    ok &= save(root, QStringLiteral("images/pallet/waypoint_en.png"),
               drawWayPoints({QStringLiteral("Approach P5"), QStringLiteral("Wobj P6"), QStringLiteral("Retract P7"),
                              [](qreal px) { return latinFont(px); }}));
    ok &= save(root, QStringLiteral("images/pallet/waypoint.png"),
               drawWayPoints({QStringLiteral("接近点 P5"), QStringLiteral("放置点 P6"), QStringLiteral("离开点 P7"),
                              [](qreal px) { return cjkFont(px); }}));
    ok &= save(root, QStringLiteral("images/home.png"), drawIcon(drawHome));
    ok &= save(root, QStringLiteral("images/back.png"), drawIcon(drawBack));

    if (!g_errors.isEmpty()) {
        for (const QString &e : qAsConst(g_errors))
            QTextStream(stderr) << "make_tpallet_images: " << e << '\n';
        return 1;
    }
    return ok ? 0 : 1;
}
