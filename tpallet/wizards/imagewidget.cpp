#include "imagewidget.h"

#include <QLabel>
#include <QResizeEvent>

ImageWidget::ImageWidget(QWidget *parent)
    : QWidget(parent)
    , m_label(new QLabel(this))
{
    m_label->setObjectName(QStringLiteral("lblImage"));
    m_label->setScaledContents(true);
}

void ImageWidget::setPixmap(const QPixmap &pixmap)
{
    m_pixmap = pixmap;
    m_label->setPixmap(pixmap);
    placeLabel();
}

QPixmap ImageWidget::pixmap() const
{
    return m_pixmap;
}

void ImageWidget::setStretch(bool stretch)
{
    m_stretch = stretch;
    placeLabel();
}

bool ImageWidget::getStectch() const
{
    return m_stretch;
}

QRect ImageWidget::labelGeometry(const QSize &picture, const QSize &widget, bool stretch)
{
    const int W = widget.width();
    const int H = widget.height();
    if (stretch || picture.isEmpty() || H <= 0)
        return QRect(0, 0, W, H);
    const double r = double(picture.width()) / double(picture.height());
    if (r <= double(W) / double(H)) {
        const int w = int(r * H);
        return QRect((W - w) / 2, 0, w, H);
    }
    const int h = int(W / r);
    return QRect(0, (H - h) / 2, W, h);
}

void ImageWidget::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    placeLabel();
}

void ImageWidget::placeLabel()
{
    const QRect area = labelGeometry(m_pixmap.isNull() ? QSize() : m_pixmap.size(), size(), m_stretch);
    m_label->setGeometry(area);
}
