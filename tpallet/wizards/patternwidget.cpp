#include "patternwidget.h"

#include <QEvent>
#include <QLabel>
#include <QPainter>
#include <QPushButton>

#include <cmath>

namespace {

// Corner buttons sit in the picture's margin, diagonally off the board's corners.
const QPointF kCornerFractions[4] = {{0.015, 0.02}, {0.86, 0.02}, {0.86, 0.87}, {0.015, 0.87}};

} // namespace

PatternWidget::PatternWidget(QWidget *parent)
    : QWidget(parent)
{
    setMinimumSize(480, 340);
    for (int i = 0; i < 4; ++i) {
        auto *button = new QPushButton(this);
        button->setObjectName(QStringLiteral("btnOrigin%1").arg(i));
        button->setFocusPolicy(Qt::NoFocus);
        button->resize(kButtonBaseWidth, kButtonHeight);
        m_buttons.append(button);
        place(button, kCornerFractions[i].x(), kCornerFractions[i].y());
    }
    addCaption();
}

void PatternWidget::addCaption()
{
    if (!m_captions.isEmpty())
        return;
    // Column title over its count, centred above the board; row title over its count, left of it.
    const QPointF fractions[4] = {{0.45, 0.005}, {0.012, 0.42}, {0.45, 0.075}, {0.012, 0.50}};
    const char *names[4] = {"lblColTitle", "lblRowTitle", "lblCol", "lblRow"};
    for (int i = 0; i < 4; ++i) {
        auto *caption = new QLabel(this);
        caption->setObjectName(QLatin1String(names[i]));
        caption->setStyleSheet(QStringLiteral("color: #ffffff; font-weight: bold; background: transparent;"));
        m_captions.append(caption);
        place(caption, fractions[i].x(), fractions[i].y());
    }
    retranslate();
}

void PatternWidget::retranslate()
{
    if (m_captions.size() < 2)
        return;
    m_captions[0]->setText(tr("Column"));
    m_captions[1]->setText(tr("Row"));
    m_captions[0]->adjustSize();
    m_captions[1]->adjustSize();
}

void PatternWidget::setImage(const QString &path)
{
    m_path = path;
    m_image = QPixmap(path);
    update();
}

void PatternWidget::setRowCol(int row, int col)
{
    if (m_captions.size() < 4)
        return;
    m_captions[2]->setText(QString::number(col));
    m_captions[3]->setText(QString::number(row));
    m_captions[2]->adjustSize();
    m_captions[3]->adjustSize();
}

QList<QPushButton *> PatternWidget::getBtnList() const
{
    return m_buttons;
}

int PatternWidget::buttonWidth(const QString &caption)
{
    return kButtonBaseWidth + (caption.length() < 4 ? 0 : 5 * caption.length());
}

QPoint PatternWidget::fractionPosition(const QPointF &f, const QSize &size)
{
    // std::lround rounds halves away from zero.
    return QPoint(int(std::lround(size.width() * f.x())), int(std::lround(size.height() * f.y())));
}

void PatternWidget::place(QWidget *child, double fx, double fy)
{
    m_fractions.insert(child, QPointF(fx, fy));
    child->move(fractionPosition(QPointF(fx, fy), size()));
}

void PatternWidget::adjustWgts()
{
    for (auto it = m_fractions.constBegin(); it != m_fractions.constEnd(); ++it)
        it.key()->move(fractionPosition(it.value(), size()));
}

void PatternWidget::resizeBtn()
{
    for (QPushButton *button : qAsConst(m_buttons))
        button->resize(buttonWidth(button->text()), qMax(kButtonHeight, button->height()));
}

void PatternWidget::paintEvent(QPaintEvent *)
{
    if (m_image.isNull())
        return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform, true);
    painter.drawPixmap(rect(), m_image);
}

void PatternWidget::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    adjustWgts();
}

void PatternWidget::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslate();
    QWidget::changeEvent(event);
}
