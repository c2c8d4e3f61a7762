#pragma once

#include "module/tpallet_export.h"

#include <QPixmap>
#include <QWidget>

class QLabel;

// A picture that keeps its aspect ratio: the label showing it is centred at the largest size
// that fits, unless stretching is asked for.
class TPALLET_EXPORT ImageWidget : public QWidget
{
    Q_OBJECT

public:
    explicit ImageWidget(QWidget *parent = nullptr);

    void setPixmap(const QPixmap &pixmap);
    QPixmap pixmap() const;
    void setStretch(bool stretch);
    bool getStectch() const;

    QLabel *label() const { return m_label; }

    // Where the label goes for a picture of `picture` size in a widget of `widget` size.
    static QRect labelGeometry(const QSize &picture, const QSize &widget, bool stretch);

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void placeLabel();

    QLabel *m_label;
    QPixmap m_pixmap;
    bool m_stretch = false;
};
