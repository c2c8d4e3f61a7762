#pragma once

#include "tcore_export.h"

#include <QColor>
#include <QFont>
#include <QObject>
#include <QString>

namespace tcore {

/*
 * Theme: named fonts ("default", "title", "small", "large"), sizes scaled for the touch screen
 * (getSize(n) = n * scale, scale 1.0 on a 1280x800 panel), and the icon tint colour.
 */
class TCORE_EXPORT ThemeManager : public QObject
{
    Q_OBJECT

public:
    static ThemeManager *instance();
    static QFont getFont(const QString &name);
    static int getSize(int size);
    static QColor iconColor();

    void setScale(double scale);
    double scale() const;
    void setFont(const QString &name, const QFont &font);

signals:
    void themeChanged();

private:
    ThemeManager();
    ~ThemeManager() override;
    struct Private;
    Private *d;
};

} // namespace tcore
