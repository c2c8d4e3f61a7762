#pragma once

#include "tcore_export.h"

#include <QAbstractButton>
#include <QDoubleSpinBox>
#include <QPushButton>

/*
 * Host widgets used in module forms (global namespace, as the forms name them).
 */

// Numeric editor for the touch screen: a QDoubleSpinBox with large hit areas, no buttons by
// default, and selection of the whole text on focus.
class TCORE_EXPORT DoubleSpin : public QDoubleSpinBox
{
    Q_OBJECT

public:
    explicit DoubleSpin(QWidget *parent = nullptr);

protected:
    void focusInEvent(QFocusEvent *event) override;
};

// A switch: a sliding on/off control. setIsEnabled(on, emit) changes it (emitting enabled(on)
// only when emit is true); a click toggles it and emits enabled(on).
class TCORE_EXPORT EnableButton : public QAbstractButton
{
    Q_OBJECT

public:
    explicit EnableButton(QWidget *parent = nullptr);

    bool getIsEnabled() const;
    void setIsEnabled(bool on, bool emitSignal = true);
    QSize sizeHint() const override;

signals:
    void enabled(bool on);

protected:
    void paintEvent(QPaintEvent *event) override;
    void nextCheckState() override;

private:
    bool m_on = false;
};

// A hold-to-run button: touchBegun() when a press (mouse or touch) starts, touchEnded() when it
// ends, including when the button loses the press by being hidden, disabled or losing focus, so a
// hold can never be left running.
class TCORE_EXPORT TouchButton : public QPushButton
{
    Q_OBJECT

public:
    explicit TouchButton(QWidget *parent = nullptr);
    bool isHeld() const { return m_held; }

signals:
    void touchBegun();
    void touchEnded();

protected:
    bool event(QEvent *e) override;
    void mousePressEvent(QMouseEvent *e) override;
    void mouseReleaseEvent(QMouseEvent *e) override;
    void hideEvent(QHideEvent *e) override;
    void changeEvent(QEvent *e) override;
    void focusOutEvent(QFocusEvent *e) override;

private:
    void begin();
    void end();
    bool m_held = false;
};
