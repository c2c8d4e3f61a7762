#pragma once

#include "module/tpallet_export.h"

#include <QString>
#include <QStringList>

namespace tpallet {

// Bookkeeping of the reachability check of the point adjust step: the texts of the refused
// segments in the order found, when the check stops, and what the operator is told at the end.
class TPALLET_EXPORT PointCheckReport
{
public:
    enum Segment { ApproachToWobj, WobjToRetract };
    enum Outcome {
        Passed, // nothing refused, not cancelled: "Check is passed!"
        Failed, // something refused (cancelled or not): the warning with the list
        Quiet,  // cancelled before anything was refused: no message
    };

    // The check stops before the next index once more texts than this are collected; an index
    // adds up to two, so a report holds at most this + 2.
    static constexpr int kStopAfter = 9;

    // "Wobj %1 : P5 to P6" / "Wobj %1 : P6 to P7" for the 0-based place index.
    static QString failureText(int index, Segment segment);

    bool full() const { return m_failures.size() > kStopAfter; }
    // Returns the text added.
    QString addFailure(int index, Segment segment);
    QStringList failures() const { return m_failures; }

    Outcome outcome(bool cancelled) const;
    // Kind for the host's message box ("warning", "info"), empty when quiet.
    QString messageKind(bool cancelled) const;
    // The message text, empty when quiet.
    QString messageText(bool cancelled) const;

private:
    QStringList m_failures;
};

} // namespace tpallet
