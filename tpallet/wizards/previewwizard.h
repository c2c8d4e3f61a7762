#pragma once

#include "pages/basewizard.h"

#include <QPointF>
#include <QRectF>
#include <QTransform>
#include <QVector>

namespace Ui {
class PreviewWizard;
}

namespace tpallet {

// Where the preview draws the places of a pallet, in the turned picture whose own origin sits in
// the pallet's origin corner: one position per entry of "points", in their order. A pallet
// coordinate of 0 lands 100 px in from the origin corner, the full calibrated edge 100 px short
// of the far edge. Nothing guards against coinciding calibration points (the divisor is 0 then).
TPALLET_EXPORT QVector<QPointF> previewPositions(orba::ModuleObject *pallet, int width, int height);

// The picture's frame: moved to the origin corner of a width x height widget and turned by
// origin x 90 degrees, so that its x axis runs away from that corner.
TPALLET_EXPORT QTransform previewTransform(int origin, int width, int height);

// The 40 x 40 square of a place's circle in the turned picture.
TPALLET_EXPORT QRectF previewCircle(const QPointF &position);

// The square the number of a place is written in once the painter is turned back upright (still
// moved to the origin corner): the circle's square turned by origin x 90 degrees.
TPALLET_EXPORT QRectF previewTextRect(const QPointF &position, int origin);

} // namespace tpallet

// A step that only paints: every place of the pallet as a numbered circle on the pallet plane,
// laid out from the pallet's origin corner. It reads the pallet on every paint and writes nothing.
class TPALLET_EXPORT PreviewWizard : public BaseWizard
{
    Q_OBJECT

public:
    PreviewWizard(orba::ModuleObject *pallet, QWidget *parent = nullptr);
    ~PreviewWizard() override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    Ui::PreviewWizard *m_ui;
};
