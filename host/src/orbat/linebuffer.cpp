#include <orbat/linebuffer.h>

#include <QIODevice>

namespace orbat {

qint64 LineBuffer::pull(QIODevice *device, qint64 maxBytes)
{
    const qint64 available = qMin(device->bytesAvailable(), maxBytes);
    if (available <= 0)
        return 0;
    // Only the unfinished line is left past the start: the handled bytes go now.
    if (m_start > 0) {
        m_data.remove(0, m_start);
        m_scanFrom -= m_start;
        m_start = 0;
    }
    const int old = m_data.size();
    m_data.resize(int(old + available));
    const qint64 got = device->read(m_data.data() + old, available);
    m_data.resize(old + int(qMax<qint64>(got, 0)));
    return qMax<qint64>(got, 0);
}

bool LineBuffer::takeLine(QByteArray *line)
{
    const int nl = m_data.indexOf('\n', qMax(m_scanFrom, m_start));
    if (nl < 0) {
        m_scanFrom = m_data.size();
        return false;
    }
    if (m_start == 0 && nl >= m_data.size() - nl) {
        QByteArray rest = m_data.mid(nl + 1);
        *line = std::move(m_data);
        line->truncate(nl);
        m_data = std::move(rest);
        m_start = m_scanFrom = 0;
    } else {
        *line = m_data.mid(m_start, nl - m_start);
        m_start = m_scanFrom = nl + 1;
        if (m_start == m_data.size())
            clear();
    }
    if (line->endsWith('\r'))
        line->chop(1);
    return true;
}

void LineBuffer::clear()
{
    m_data.clear();
    m_start = m_scanFrom = 0;
}

} // namespace orbat
