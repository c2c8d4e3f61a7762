#include "lineinfo.h"

namespace orbat {
namespace detail {

namespace {

class Scanner
{
public:
    explicit Scanner(const QByteArray &text) : m_p(text.constData()), m_end(text.constData() + text.size()) {}

    void skipWs()
    {
        while (m_p < m_end && (*m_p == ' ' || *m_p == '\t' || *m_p == '\r' || *m_p == '\n'))
            ++m_p;
    }
    bool atEnd() const { return m_p >= m_end; }
    char peek() const { return m_p < m_end ? *m_p : '\0'; }
    bool take(char c)
    {
        if (m_p < m_end && *m_p == c) {
            ++m_p;
            return true;
        }
        return false;
    }

    // A string literal; the raw bytes between the quotes (escapes kept as written) go to *raw.
    bool string(QByteArray *raw)
    {
        if (!take('"'))
            return false;
        const char *start = m_p;
        while (m_p < m_end) {
            const char c = *m_p;
            if (c == '\\') {
                if (m_end - m_p < 2)
                    return false;
                m_p += 2;
                continue;
            }
            if (c == '"') {
                if (raw)
                    *raw = QByteArray(start, int(m_p - start));
                ++m_p;
                return true;
            }
            if (static_cast<unsigned char>(c) < 0x20)
                return false;
            ++m_p;
        }
        return false;
    }

    bool integer(qint64 *value)
    {
        bool negative = take('-');
        if (m_p >= m_end || *m_p < '0' || *m_p > '9')
            return false;
        quint64 v = 0;
        while (m_p < m_end && *m_p >= '0' && *m_p <= '9') {
            if (v > (quint64(1) << 62))
                return false;
            v = v * 10 + quint64(*m_p - '0');
            ++m_p;
        }
        // A fraction or exponent makes it no integer id.
        if (m_p < m_end && (*m_p == '.' || *m_p == 'e' || *m_p == 'E'))
            return false;
        *value = negative ? -qint64(v) : qint64(v);
        return true;
    }

    // Skips any value; nested containers are skipped by counting brackets outside strings.
    bool skipValue()
    {
        skipWs();
        if (m_p >= m_end)
            return false;
        const char c = *m_p;
        if (c == '"')
            return string(nullptr);
        if (c == '{' || c == '[') {
            int depth = 0;
            while (m_p < m_end) {
                const char k = *m_p;
                if (k == '"') {
                    if (!string(nullptr))
                        return false;
                    continue;
                }
                if (k == '{' || k == '[') {
                    ++depth;
                } else if (k == '}' || k == ']') {
                    if (--depth == 0) {
                        ++m_p;
                        return true;
                    }
                }
                ++m_p;
            }
            return false;
        }
        const char *start = m_p;
        while (m_p < m_end && *m_p != ',' && *m_p != '}' && *m_p != ']' && *m_p != ' ' && *m_p != '\t'
               && *m_p != '\r' && *m_p != '\n')
            ++m_p;
        return m_p > start;
    }

private:
    const char *m_p;
    const char *m_end;
};

} // namespace

LineInfo classifyLine(const QByteArray &line)
{
    LineInfo info;
    Scanner s(line);
    s.skipWs();
    if (!s.take('{'))
        return info;
    bool hasId = false;
    bool hasEvent = false;
    qint64 id = 0;
    s.skipWs();
    if (!s.take('}')) {
        for (;;) {
            s.skipWs();
            QByteArray key;
            if (!s.string(&key))
                return info;
            s.skipWs();
            if (!s.take(':'))
                return info;
            s.skipWs();
            if (key == "id" && s.peek() != 'n') {
                if (!s.integer(&id))
                    return info;
                hasId = true;
                // A reply names its id first, before a payload that may be a whole pallet list: the
                // head is enough to route it; the reply's parser judges the rest.
                s.skipWs();
                if (!hasEvent && s.peek() == ',') {
                    info.kind = LineInfo::Reply;
                    info.id = id;
                    return info;
                }
            } else {
                if (key == "event")
                    hasEvent = s.peek() == '"';
                if (!s.skipValue())
                    return info;
            }
            s.skipWs();
            if (s.take(','))
                continue;
            if (s.take('}'))
                break;
            return info;
        }
    }
    s.skipWs();
    if (!s.atEnd())
        return info;
    if (hasId) {
        info.kind = LineInfo::Reply;
        info.id = id;
    } else if (hasEvent) {
        info.kind = LineInfo::Event;
    }
    return info;
}

void appendJsonString(QByteArray &out, const QString &text)
{
    static const char hex[] = "0123456789abcdef";
    const QByteArray utf8 = text.toUtf8();
    out.reserve(out.size() + utf8.size() + 2);
    out.append('"');
    for (const char ch : utf8) {
        const auto c = static_cast<unsigned char>(ch);
        switch (c) {
        case '"': out.append("\\\""); break;
        case '\\': out.append("\\\\"); break;
        case '\n': out.append("\\n"); break;
        case '\r': out.append("\\r"); break;
        case '\t': out.append("\\t"); break;
        case '\b': out.append("\\b"); break;
        case '\f': out.append("\\f"); break;
        default:
            if (c < 0x20) {
                out.append("\\u00");
                out.append(hex[c >> 4]);
                out.append(hex[c & 0xf]);
            } else {
                out.append(ch);
            }
        }
    }
    out.append('"');
}

} // namespace detail
} // namespace orbat
