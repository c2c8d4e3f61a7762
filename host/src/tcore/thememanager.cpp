#include <tcore/thememanager.h>

#include <QGuiApplication>
#include <QHash>

#include <cmath>

namespace tcore {

namespace {

struct FontStyle
{
    int pixelSize;
    int weight;
};

// Sizes in pixels on the 1280x800 panel; getFont scales them.
const QHash<QString, FontStyle> &builtinFonts()
{
    static const QHash<QString, FontStyle> fonts{
        {QStringLiteral("default"), {16, QFont::Normal}},
        {QStringLiteral("title"), {20, QFont::Bold}},
        {QStringLiteral("small"), {12, QFont::Normal}},
        {QStringLiteral("large"), {22, QFont::Normal}},
    };
    return fonts;
}

} // namespace

struct ThemeManager::Private
{
    double scale = 1.0;
    QHash<QString, QFont> custom;
};

ThemeManager *ThemeManager::instance()
{
    static ThemeManager *theme = new ThemeManager;
    return theme;
}

ThemeManager::ThemeManager() : d(new Private) {}

ThemeManager::~ThemeManager()
{
    delete d;
}

QFont ThemeManager::getFont(const QString &name)
{
    const Private *p = instance()->d;
    auto custom = p->custom.constFind(name);
    if (custom != p->custom.constEnd())
        return *custom;
    const auto &fonts = builtinFonts();
    const FontStyle style = fonts.value(name, fonts.value(QStringLiteral("default")));
    QFont font = qobject_cast<QGuiApplication *>(QCoreApplication::instance()) ? QGuiApplication::font() : QFont();
    font.setPixelSize(qMax(1, getSize(style.pixelSize)));
    font.setWeight(style.weight);
    return font;
}

int ThemeManager::getSize(int size)
{
    return int(std::lround(size * instance()->d->scale));
}

QColor ThemeManager::iconColor()
{
    return QColor(Qt::white);
}

void ThemeManager::setScale(double scale)
{
    if (!(scale > 0.0) || !std::isfinite(scale) || qFuzzyCompare(scale, d->scale))
        return;
    d->scale = scale;
    emit themeChanged();
}

double ThemeManager::scale() const
{
    return d->scale;
}

void ThemeManager::setFont(const QString &name, const QFont &font)
{
    if (name.isEmpty())
        return;
    d->custom.insert(name, font);
    emit themeChanged();
}

} // namespace tcore
