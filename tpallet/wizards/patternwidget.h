#pragma once

#include "module/tpallet_export.h"

#include <QHash>
#include <QList>
#include <QPixmap>
#include <QPointF>
#include <QWidget>

class QLabel;
class QPushButton;

// The pattern picture with the four corner buttons (tap one to make it position 1) and the
// column and row captions laid over it. Children sit at fixed fractions of the widget, so they
// stay on the picture's corners and edges at any size.
class TPALLET_EXPORT PatternWidget : public QWidget
{
    Q_OBJECT
    // The resource path of the picture shown, readable by name from outside the module.
    Q_PROPERTY(QString image READ image WRITE setImage)

public:
    explicit PatternWidget(QWidget *parent = nullptr);

    void setImage(const QString &path);
    QString image() const { return m_path; }
    // Column count into the third caption field, row count into the fourth.
    void setRowCol(int row, int col);
    // Corner buttons in corner order: 0 top left, 1 top right, 2 bottom right, 3 bottom left.
    QList<QPushButton *> getBtnList() const;
    QList<QLabel *> captions() const { return m_captions; }

    void adjustWgts();
    void addCaption();
    void resizeBtn();

    static constexpr int kButtonBaseWidth = 56;
    static constexpr int kButtonHeight = 36;
    // Width of a corner button showing `caption`: long numbers get room to fit.
    static int buttonWidth(const QString &caption);
    // Pixel position of a child placed at fraction `f` of a widget of `size`.
    static QPoint fractionPosition(const QPointF &f, const QSize &size);

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void place(QWidget *child, double fx, double fy);
    void retranslate();

    QString m_path;
    QPixmap m_image;
    QList<QPushButton *> m_buttons;
    QList<QLabel *> m_captions;
    QHash<QWidget *, QPointF> m_fractions;
};
