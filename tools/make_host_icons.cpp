// Draws the host's line icons (64x64, transparent, dark grey strokes that the theme tints).
// Usage: make_host_icons <images folder>   (writes project/*.png, body/tool.png, nav/*.png)
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QPen>
#include <QTextStream>

#include <functional>

namespace {

const QColor kStroke(0x40, 0x40, 0x40);

QPen strokePen(qreal width = 4.0)
{
    QPen pen(kStroke, width);
    pen.setCapStyle(Qt::RoundCap);
    pen.setJoinStyle(Qt::RoundJoin);
    return pen;
}

// An open box (tray) at the bottom, shared by import and export.
void drawTray(QPainter &p)
{
    QPainterPath tray;
    tray.moveTo(10, 38);
    tray.lineTo(10, 54);
    tray.lineTo(54, 54);
    tray.lineTo(54, 38);
    p.drawPath(tray);
}

void drawImport(QPainter &p)
{
    drawTray(p);
    p.drawLine(QPointF(32, 8), QPointF(32, 42));
    p.drawLine(QPointF(22, 32), QPointF(32, 42));
    p.drawLine(QPointF(42, 32), QPointF(32, 42));
}

void drawExport(QPainter &p)
{
    drawTray(p);
    p.drawLine(QPointF(32, 42), QPointF(32, 8));
    p.drawLine(QPointF(22, 18), QPointF(32, 8));
    p.drawLine(QPointF(42, 18), QPointF(32, 8));
}

void drawAdd(QPainter &p)
{
    p.drawEllipse(QPointF(32, 32), 24, 24);
    p.drawLine(QPointF(32, 20), QPointF(32, 44));
    p.drawLine(QPointF(20, 32), QPointF(44, 32));
}

void drawEdit(QPainter &p)
{
    // A pencil lying at 45 degrees with its tip at the lower left.
    QPainterPath pencil;
    pencil.moveTo(12, 52);
    pencil.lineTo(16, 40);
    pencil.lineTo(44, 12);
    pencil.lineTo(52, 20);
    pencil.lineTo(24, 48);
    pencil.closeSubpath();
    p.drawPath(pencil);
    p.drawLine(QPointF(16, 40), QPointF(24, 48));
    p.drawLine(QPointF(38, 18), QPointF(46, 26));
    p.drawLine(QPointF(10, 56), QPointF(54, 56));
}

void drawRemove(QPainter &p)
{
    // A waste bin: lid, handle, body with ribs.
    p.drawLine(QPointF(12, 16), QPointF(52, 16));
    QPainterPath handle;
    handle.moveTo(24, 16);
    handle.lineTo(24, 9);
    handle.lineTo(40, 9);
    handle.lineTo(40, 16);
    p.drawPath(handle);
    QPainterPath body;
    body.moveTo(16, 16);
    body.lineTo(19, 56);
    body.lineTo(45, 56);
    body.lineTo(48, 16);
    p.drawPath(body);
    p.drawLine(QPointF(27, 24), QPointF(27, 48));
    p.drawLine(QPointF(37, 24), QPointF(37, 48));
}

void drawTool(QPainter &p)
{
    // A robot flange with a two-finger gripper.
    p.drawRect(QRectF(22, 6, 20, 10));
    p.drawRect(QRectF(12, 16, 40, 10));
    QPainterPath left;
    left.moveTo(18, 26);
    left.lineTo(18, 48);
    left.lineTo(24, 56);
    p.drawPath(left);
    QPainterPath right;
    right.moveTo(46, 26);
    right.lineTo(46, 48);
    right.lineTo(40, 56);
    p.drawPath(right);
    p.drawRect(QRectF(27, 40, 10, 10));
}

void drawRobot(QPainter &p)
{
    // A jointed arm on a base.
    p.drawLine(QPointF(10, 56), QPointF(42, 56));
    p.drawRect(QRectF(16, 46, 20, 10));
    p.drawLine(QPointF(26, 46), QPointF(18, 24));
    p.drawLine(QPointF(18, 24), QPointF(44, 14));
    p.drawLine(QPointF(44, 14), QPointF(52, 26));
    p.setBrush(kStroke);
    p.drawEllipse(QPointF(18, 24), 4, 4);
    p.drawEllipse(QPointF(44, 14), 4, 4);
    p.setBrush(Qt::NoBrush);
    p.drawLine(QPointF(48, 30), QPointF(56, 24));
}

void drawPack(QPainter &p)
{
    // A stack of boxes on a pallet.
    p.drawRect(QRectF(10, 30, 20, 16));
    p.drawRect(QRectF(34, 30, 20, 16));
    p.drawRect(QRectF(22, 12, 20, 18));
    p.drawLine(QPointF(6, 50), QPointF(58, 50));
    p.drawLine(QPointF(12, 50), QPointF(12, 58));
    p.drawLine(QPointF(32, 50), QPointF(32, 58));
    p.drawLine(QPointF(52, 50), QPointF(52, 58));
}

bool writeIcon(const QDir &root, const QString &relPath, const std::function<void(QPainter &)> &draw)
{
    QImage image(64, 64, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    {
        QPainter p(&image);
        p.setRenderHint(QPainter::Antialiasing, true);
        p.setPen(strokePen());
        p.setBrush(Qt::NoBrush);
        draw(p);
    }
    const QString path = root.filePath(relPath);
    if (!QDir().mkpath(QFileInfo(path).absolutePath()) || !image.save(path, "PNG")) {
        QTextStream(stderr) << "cannot write " << path << '\n';
        return false;
    }
    QTextStream(stdout) << path << '\n';
    return true;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    if (argc != 2) {
        QTextStream(stderr) << "usage: make_host_icons <images folder>\n";
        return 2;
    }
    const QDir root(QString::fromLocal8Bit(argv[1]));
    bool ok = true;
    ok &= writeIcon(root, QStringLiteral("project/import.png"), drawImport);
    ok &= writeIcon(root, QStringLiteral("project/export.png"), drawExport);
    ok &= writeIcon(root, QStringLiteral("project/add.png"), drawAdd);
    ok &= writeIcon(root, QStringLiteral("project/edit.png"), drawEdit);
    ok &= writeIcon(root, QStringLiteral("project/remove.png"), drawRemove);
    ok &= writeIcon(root, QStringLiteral("body/tool.png"), drawTool);
    ok &= writeIcon(root, QStringLiteral("nav/robot.png"), drawRobot);
    ok &= writeIcon(root, QStringLiteral("nav/pack.png"), drawPack);
    return ok ? 0 : 1;
}
