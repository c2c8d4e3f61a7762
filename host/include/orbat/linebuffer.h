#pragma once

#include "orbat_export.h"

#include <QByteArray>

class QIODevice;

namespace orbat {

/*
 * The bytes received on a line link, cut into lines. A line that fills most of the buffer (a
 * reply of many megabytes) is handed out as it lies instead of being copied; handled bytes are
 * dropped only when more are pulled in, so many short lines cost no moving of the rest.
 */
class ORBAT_EXPORT LineBuffer
{
public:
    // Appends at most maxBytes of what the device has buffered; the number appended.
    qint64 pull(QIODevice *device, qint64 maxBytes);
    // The next complete line, without its "\n" or "\r\n"; false when none has ended yet.
    bool takeLine(QByteArray *line);
    // Bytes after the last complete line: the line still on its way.
    qint64 pendingBytes() const { return m_data.size() - m_start; }
    void clear();

private:
    QByteArray m_data;
    int m_start = 0;
    // No "\n" before this offset.
    int m_scanFrom = 0;
};

} // namespace orbat
