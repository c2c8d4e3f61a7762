#include <tcore/widgets.h>

#include <tcore/thememanager.h>

#include <QEvent>
#include <QFocusEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QTimer>

DoubleSpin::DoubleSpin(QWidget *parent) : QDoubleSpinBox(parent)
{
    setButtonSymbols(QAbstractSpinBox::NoButtons);
    setMinimumHeight(tcore::ThemeManager::getSize(40));
    setFont(tcore::ThemeManager::getFont(QStringLiteral("default")));
    setAlignment(Qt::AlignRight | Qt::AlignVCenter);
}

void DoubleSpin::focusInEvent(QFocusEvent *event)
{
    QDoubleSpinBox::focusInEvent(event);
    // Deferred: the press that gave the focus would otherwise place the cursor and drop the
    // selection again.
    QTimer::singleShot(0, this, &QAbstractSpinBox::selectAll);
}

EnableButton::EnableButton(QWidget *parent) : QAbstractButton(parent)
{
    setCheckable(true);
    setChecked(false);
    setCursor(Qt::PointingHandCursor);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

bool EnableButton::getIsEnabled() const
{
    return m_on;
}

void EnableButton::setIsEnabled(bool on, bool emitSignal)
{
    m_on = on;
    setChecked(on);
    update();
    if (emitSignal)
        emit enabled(on);
}

QSize EnableButton::sizeHint() const
{
    return QSize(tcore::ThemeManager::getSize(72), tcore::ThemeManager::getSize(36));
}

void EnableButton::nextCheckState()
{
    setIsEnabled(!m_on, true);
}

void EnableButton::paintEvent(QPaintEvent *)
{
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing, true);
    if (!isEnabled())
        p.setOpacity(0.45);

    const QRectF r = QRectF(rect()).adjusted(1, 1, -1, -1);
    const qreal radius = r.height() / 2.0;
    p.setPen(Qt::NoPen);
    p.setBrush(m_on ? QColor(0x2e, 0xa0, 0x43) : QColor(0x8a, 0x8a, 0x8a));
    p.drawRoundedRect(r, radius, radius);

    const qreal margin = qMax<qreal>(2.0, r.height() * 0.1);
    const qreal knob = r.height() - 2 * margin;
    const qreal x = m_on ? r.right() - margin - knob : r.left() + margin;
    p.setBrush(Qt::white);
    p.drawEllipse(QRectF(x, r.top() + margin, knob, knob));

    if (hasFocus()) {
        p.setBrush(Qt::NoBrush);
        p.setPen(QPen(palette().highlight().color(), 1.5));
        p.drawRoundedRect(r, radius, radius);
    }
}

TouchButton::TouchButton(QWidget *parent) : QPushButton(parent)
{
    setAttribute(Qt::WA_AcceptTouchEvents, true);
    setAutoRepeat(false);
}

bool TouchButton::event(QEvent *e)
{
    switch (e->type()) {
    case QEvent::TouchBegin:
        if (!isEnabled())
            break;
        e->accept();
        setDown(true);
        begin();
        return true;
    case QEvent::TouchUpdate:
        e->accept();
        return true;
    case QEvent::TouchEnd:
    case QEvent::TouchCancel:
        e->accept();
        end();
        return true;
    default:
        break;
    }
    return QPushButton::event(e);
}

void TouchButton::mousePressEvent(QMouseEvent *e)
{
    QPushButton::mousePressEvent(e);
    if (e->button() == Qt::LeftButton && isEnabled())
        begin();
}

void TouchButton::mouseReleaseEvent(QMouseEvent *e)
{
    QPushButton::mouseReleaseEvent(e);
    if (e->button() == Qt::LeftButton)
        end();
}

void TouchButton::hideEvent(QHideEvent *e)
{
    end();
    QPushButton::hideEvent(e);
}

void TouchButton::changeEvent(QEvent *e)
{
    if (e->type() == QEvent::EnabledChange && !isEnabled())
        end();
    QPushButton::changeEvent(e);
}

void TouchButton::focusOutEvent(QFocusEvent *e)
{
    end();
    QPushButton::focusOutEvent(e);
}

void TouchButton::begin()
{
    if (m_held)
        return;
    m_held = true;
    emit touchBegun();
}

void TouchButton::end()
{
    if (!m_held)
        return;
    m_held = false;
    if (isDown())
        setDown(false);
    emit touchEnded();
}
