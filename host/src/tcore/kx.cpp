#include <kx/kx.h>

#include <dwel/bmodule.h>
#include <orba/modulemanager.h>
#include <orba/moduleobject.h>

#include <QImage>

namespace kx {

QString templatePath(const QString &module, const QString &name)
{
    return QStringLiteral(":/%1/template/%2.json").arg(module, name);
}

orba::ModuleObject *globalNode(const QString &key)
{
    orba::ModuleObject *node = orba::m();
    if (key.isEmpty())
        return node;
    const QStringList parts = key.split(QLatin1Char('.'));
    for (const QString &part : parts) {
        // "a..b" names no node; handing back the empty node keeps callers' writes harmless.
        if (part.isEmpty())
            return orba::ModuleManager::emptyMobj();
        orba::ModuleObject *child = node->c(part, false);
        if (child->isEmpty())
            child = node->append(nullptr, part);
        node = child;
    }
    return node;
}

namespace tnav {

orba::ModuleObject *registerPage(dwel::BModule *module, const QString &title, const QString &parent,
                                 const QString &icon, int position)
{
    orba::ModuleObject *pages = globalNode(QStringLiteral("tnav.pages"));
    orba::ModuleObject *entry = pages->append(nullptr, QStringLiteral("#%1").arg(pages->cmobjCount()));
    entry->set(nullptr, QStringLiteral("title"), title);
    entry->set(nullptr, QStringLiteral("parent"), parent);
    entry->set(nullptr, QStringLiteral("icon"), icon);
    entry->set(nullptr, QStringLiteral("module"), module ? module->name() : QString());
    entry->set(nullptr, QStringLiteral("position"), position);
    return entry;
}

} // namespace tnav

namespace format {

template<>
bool fromNode<QVector3D>(const orba::ModuleObject *node, QVector3D &out)
{
    if (!node || node->isEmpty() || node->cmobjCount() != 3 || !node->isArray())
        return false;
    out = QVector3D(float(node->c(0)->getDouble()), float(node->c(1)->getDouble()), float(node->c(2)->getDouble()));
    return true;
}

} // namespace format

namespace ttheme {

QPixmap pixmap(const QPixmap &source, const QColor &colour)
{
    if (source.isNull())
        return QPixmap();
    QImage image = source.toImage().convertToFormat(QImage::Format_ARGB32);
    const int alphaScale = colour.alpha();
    const QRgb rgb = colour.rgb() & 0x00ffffffu;
    for (int y = 0; y < image.height(); ++y) {
        auto *line = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            const int a = qAlpha(line[x]) * alphaScale / 255;
            line[x] = (QRgb(a) << 24) | rgb;
        }
    }
    QPixmap result = QPixmap::fromImage(image);
    result.setDevicePixelRatio(source.devicePixelRatio());
    return result;
}

QPixmap pixmap(const QString &resource, const QColor &colour)
{
    return pixmap(QPixmap(resource), colour);
}

} // namespace ttheme

} // namespace kx
