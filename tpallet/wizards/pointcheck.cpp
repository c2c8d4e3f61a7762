#include "pointcheck.h"

#include <QCoreApplication>

namespace tpallet {

// The texts belong to the step that shows them.
QString PointCheckReport::failureText(int index, Segment segment)
{
    if (segment == ApproachToWobj)
        return QCoreApplication::translate("PointAdjustWizard", "Wobj %1 : P5 to P6").arg(index + 1);
    return QCoreApplication::translate("PointAdjustWizard", "Wobj %1 : P6 to P7").arg(index + 1);
}

QString PointCheckReport::addFailure(int index, Segment segment)
{
    const QString text = failureText(index, segment);
    m_failures.append(text);
    return text;
}

PointCheckReport::Outcome PointCheckReport::outcome(bool cancelled) const
{
    if (!m_failures.isEmpty())
        return Failed;
    return cancelled ? Quiet : Passed;
}

QString PointCheckReport::messageKind(bool cancelled) const
{
    switch (outcome(cancelled)) {
    case Failed:
        return QStringLiteral("warning");
    case Passed:
        return QStringLiteral("info");
    case Quiet:
        break;
    }
    return QString();
}

QString PointCheckReport::messageText(bool cancelled) const
{
    switch (outcome(cancelled)) {
    case Failed:
        return QCoreApplication::translate("PointAdjustWizard", "The path below can not be reached:\n%1")
            .arg(m_failures.join(QLatin1Char('\n')));
    case Passed:
        return QCoreApplication::translate("PointAdjustWizard", "Check is passed!");
    case Quiet:
        break;
    }
    return QString();
}

} // namespace tpallet
