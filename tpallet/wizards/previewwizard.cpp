#include "previewwizard.h"

#include "module/registration.h"

#include <orba/moduleobject.h>

#include <QCoreApplication>
#include <QEvent>
#include <QPainter>
#include <QVector3D>

#include <cmath>

// The step has no designer form; this is the little the form would hold.
namespace Ui {

class PreviewWizard
{
public:
    void setupUi(QWidget *form)
    {
        form->setObjectName(QStringLiteral("PreviewWizard"));
        form->resize(553, 355);
        retranslateUi(form);
        QMetaObject::connectSlotsByName(form);
    }

    void retranslateUi(QWidget *form)
    {
        form->setWindowTitle(QCoreApplication::translate("PreviewWizard", "Form"));
    }
};

} // namespace Ui

namespace tpallet {

namespace {

const Registration s_step(
    [] { registerWizard(5, [](orba::ModuleObject *pallet, QWidget *parent) { return new PreviewWizard(pallet, parent); }); },
    [] { unregisterWizard(5); });

// The picture keeps this far from every edge of the widget, whatever its size.
constexpr double kMargin = 100.0;
constexpr double kCircle = 40.0;

QVector3D calibrationPoint(orba::ModuleObject *pallet, const QString &name)
{
    orba::ModuleObject *trans = pallet->r(QStringLiteral("calibrate.%1.trans").arg(name));
    return QVector3D(float(trans->c(0)->getDouble(0.0)), float(trans->c(1)->getDouble(0.0)),
                     float(trans->c(2)->getDouble(0.0)));
}

} // namespace

QVector<QPointF> previewPositions(orba::ModuleObject *pallet, int width, int height)
{
    QVector<QPointF> positions;
    if (!pallet || pallet->isEmpty())
        return positions;
    const int origin = pallet->r(QStringLiteral("pattern.origin"))->getInt(0);
    const bool exchange = pallet->r(QStringLiteral("pattern.exchange"))->getBool(false);

    const QVector3D p1 = calibrationPoint(pallet, QStringLiteral("p1"));
    const float l12 = (calibrationPoint(pallet, QStringLiteral("p2")) - p1).length();
    const float l13 = (calibrationPoint(pallet, QStringLiteral("p3")) - p1).length();
    // Exchanging the pattern swaps which calibrated edge each coordinate is measured against,
    // not which coordinate runs along which axis of the picture.
    const float divisor1 = exchange ? l12 : l13;
    const float divisor0 = exchange ? l13 : l12;

    // Turned by 90 or 270 degrees, the picture's x axis runs along the widget's height.
    const bool odd = origin % 2 == 1;
    const int extentA = odd ? height : width;
    const int extentB = odd ? width : height;

    orba::ModuleObject *points = pallet->c(QStringLiteral("points"), false);
    const int count = points->cmobjCount();
    positions.reserve(count);
    for (int k = 0; k < count; ++k) {
        orba::ModuleObject *trans = points->c(k)->r(QStringLiteral("wobj.trans"));
        const double t0 = trans->c(0)->getDouble(0.0);
        const double t1 = trans->c(1)->getDouble(0.0);
        positions.append(QPointF((extentA - 2 * kMargin) * (t1 / divisor1) + kMargin,
                                 (extentB - 2 * kMargin) * (t0 / divisor0) + kMargin));
    }
    return positions;
}

QTransform previewTransform(int origin, int width, int height)
{
    // (0, 0), (W, 0), (W, H), (0, H): corner i is where the picture of origin i starts.
    const QPoint corners[4] = {QPoint(0, 0), QPoint(width, 0), QPoint(width, height), QPoint(0, height)};
    const QPoint corner = corners[((origin % 4) + 4) % 4];
    QTransform transform;
    transform.translate(corner.x(), corner.y());
    transform.rotate(origin * 90.0);
    return transform;
}

QRectF previewCircle(const QPointF &position)
{
    return QRectF(position.x() - kCircle / 2, position.y() - kCircle / 2, kCircle, kCircle);
}

QRectF previewTextRect(const QPointF &position, int origin)
{
    QTransform turn;
    turn.rotate(origin * 90.0, Qt::ZAxis);
    return turn.mapRect(previewCircle(position));
}

} // namespace tpallet

PreviewWizard::PreviewWizard(orba::ModuleObject *pallet, QWidget *parent)
    : BaseWizard(pallet, parent)
    , m_ui(new Ui::PreviewWizard)
{
    m_ui->setupUi(this);
    // The painter's default pen is the widget's text colour: the configuration dialog's light text,
    // or the numbers would be black on its dark background.
    setStyleSheet(QStringLiteral("PreviewWizard { color: #e6e9ee; }"));
}

PreviewWizard::~PreviewWizard()
{
    delete m_ui;
}

void PreviewWizard::paintEvent(QPaintEvent *event)
{
    Q_UNUSED(event)
    if (!m_pallet)
        return;
    const int origin = m_pallet->r(QStringLiteral("pattern.origin"))->getInt(0);
    const int w = width();
    const int h = height();
    const QVector<QPointF> positions = tpallet::previewPositions(m_pallet, w, h);

    QPainter painter(this);
    painter.setTransform(tpallet::previewTransform(origin, w, h), true);
    QFont font = painter.font();
    font.setPixelSize(20);
    painter.setFont(font);

    const double turn = origin * 90.0;
    for (int k = 0; k < positions.size(); ++k) {
        const QPointF &position = positions.at(k);
        // Coinciding calibration points divide by zero: such a place has nowhere to be drawn.
        if (!std::isfinite(position.x()) || !std::isfinite(position.y()))
            continue;
        painter.drawEllipse(tpallet::previewCircle(position));
        // The number is written upright, in the circle's square as seen from the widget.
        const QRectF text = tpallet::previewTextRect(position, origin);
        painter.rotate(-turn);
        painter.drawText(text, Qt::AlignHCenter | Qt::AlignVCenter, QString::number(k + 1));
        painter.rotate(turn);
    }
}

void PreviewWizard::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange)
        m_ui->retranslateUi(this);
    BaseWizard::changeEvent(event);
}
