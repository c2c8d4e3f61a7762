#include "rawjson.h"

#include "protocol.h"

#include <orba/json.h>
#include <orba/moduleobject.h>

#include <cstring>

namespace rc {
namespace rawjson {

namespace {

bool isWs(char c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

// Bytes that matter when skipping a container; everything else (digits, letters, commas,
// colons, UTF-8) is passed over in one tight loop.
enum ByteClass : unsigned char { Plain = 0, Quote, Open, Close, Space };

struct ByteClasses
{
    unsigned char table[256] = {};
    constexpr ByteClasses()
    {
        table[int('"')] = Quote;
        table[int('{')] = Open;
        table[int('[')] = Open;
        table[int('}')] = Close;
        table[int(']')] = Close;
        table[int(' ')] = Space;
        table[int('\t')] = Space;
        table[int('\r')] = Space;
        table[int('\n')] = Space;
    }
};
constexpr ByteClasses kClasses;

class Scanner
{
public:
    explicit Scanner(const QByteArray &text)
        : m_begin(text.constData()), m_p(text.constData()), m_end(text.constData() + text.size())
    {
        // The parser skips a leading UTF-8 byte order mark; so must we.
        if (m_end - m_p >= 3 && std::memcmp(m_p, "\xEF\xBB\xBF", 3) == 0)
            m_p += 3;
    }

    int offset() const { return int(m_p - m_begin); }
    bool atEnd() const { return m_p >= m_end; }
    char peek() const { return m_p < m_end ? *m_p : '\0'; }
    bool compact() const { return m_compact; }
    void setCompact(bool on) { m_compact = on; }

    void skipWs()
    {
        while (m_p < m_end && isWs(*m_p)) {
            m_compact = false;
            ++m_p;
        }
    }

    bool take(char c)
    {
        if (m_p < m_end && *m_p == c) {
            ++m_p;
            return true;
        }
        return false;
    }

    // At the opening quote: skips the string, telling whether it holds an escape.
    bool string(bool *escaped)
    {
        if (!take('"'))
            return false;
        bool esc = false;
        while (m_p < m_end) {
            const char c = *m_p;
            if (c == '"') {
                ++m_p;
                if (escaped)
                    *escaped = esc;
                return true;
            }
            if (c == '\\') {
                if (m_end - m_p < 2)
                    return false;
                esc = true;
                m_p += 2;
                continue;
            }
            ++m_p;
        }
        return false;
    }

    bool value()
    {
        if (m_p >= m_end)
            return false;
        const char c = *m_p;
        if (c == '"')
            return string(nullptr);
        if (c == '{' || c == '[') {
            int depth = 0;
            const unsigned char *p = reinterpret_cast<const unsigned char *>(m_p);
            const unsigned char *end = reinterpret_cast<const unsigned char *>(m_end);
            while (p < end) {
                while (p < end && kClasses.table[*p] == Plain)
                    ++p;
                if (p >= end)
                    break;
                switch (kClasses.table[*p]) {
                case Quote:
                    // Strings end at the first quote not escaped.
                    for (++p; p < end && *p != '"'; ++p) {
                        if (*p == '\\')
                            ++p;
                    }
                    if (p >= end)
                        return false;
                    break;
                case Open:
                    ++depth;
                    break;
                case Close:
                    if (--depth == 0) {
                        m_p = reinterpret_cast<const char *>(p + 1);
                        return true;
                    }
                    break;
                default:
                    m_compact = false;
                    break;
                }
                ++p;
            }
            m_p = m_end;
            return false;
        }
        const char *start = m_p;
        while (m_p < m_end && *m_p != ',' && *m_p != '}' && *m_p != ']' && !isWs(*m_p))
            ++m_p;
        return m_p > start;
    }

private:
    const char *m_begin;
    const char *m_p;
    const char *m_end;
    bool m_compact = true;
};

// The member name the parser makes of a key written with escapes.
QString decodeKey(const QByteArray &text, const Span &key)
{
    QByteArray doc;
    doc.reserve(key.size() + 6);
    doc += '{';
    doc.append(text.constData() + key.begin, key.size());
    doc += ":0}";
    orba::ModuleObject node;
    if (!orba::json::read(nullptr, &node, doc, nullptr, 4) || node.cmobjCount() != 1)
        return QString();
    return node.c(0)->name();
}

bool keyMatches(const QByteArray &text, const Span &key, bool escaped, QLatin1String name)
{
    // key spans the quotes.
    if (!escaped)
        return key.size() - 2 == name.size() && std::memcmp(text.constData() + key.begin + 1, name.data(), size_t(name.size())) == 0;
    return decodeKey(text, key) == name;
}

bool decodeString(const QByteArray &text, const Span &value, QString *out)
{
    if (!value.isValid() || value.size() < 2 || text.at(value.begin) != '"')
        return false;
    orba::ModuleObject node;
    if (!orba::json::read(nullptr, &node, text.mid(value.begin, value.size()), nullptr, 4))
        return false;
    return protocol::readString(&node, out);
}

} // namespace

namespace {

// The members of the object at the scanner's position (which ends after it). When the first
// member named keys[nestedKey] holds an object, that object's "index" member is found on the
// way (spans are offsets into `text`).
bool objectAt(Scanner &s, const QByteArray &text, const QLatin1String *keys, Span *values, int keyCount,
              ObjectInfo *info, int nestedKey = -1, ObjectInfo *nestedInfo = nullptr, Span *nestedIndex = nullptr)
{
    static const QLatin1String indexKey("index");
    // Compactness is the object's own; the enclosing text is told afterwards.
    const bool outerCompact = s.compact();
    s.setCompact(true);
    const auto done = [&](bool ok) {
        info->compact = s.compact();
        s.setCompact(outerCompact && info->compact);
        return ok;
    };
    if (!s.take('{'))
        return done(false);
    s.skipWs();
    if (!s.take('}')) {
        for (;;) {
            s.skipWs();
            Span key;
            key.begin = s.offset();
            bool escaped = false;
            if (!s.string(&escaped))
                return done(false);
            key.end = s.offset();
            s.skipWs();
            if (!s.take(':'))
                return done(false);
            s.skipWs();
            int match = -1;
            for (int i = 0; i < keyCount; ++i) {
                if (!values[i].isValid() && keyMatches(text, key, escaped, keys[i])) {
                    match = i;
                    break;
                }
            }
            Span value;
            value.begin = s.offset();
            if (match >= 0 && match == nestedKey && s.peek() == '{') {
                if (!objectAt(s, text, &indexKey, nestedIndex, 1, nestedInfo))
                    return done(false);
            } else if (!s.value()) {
                return done(false);
            }
            value.end = s.offset();
            if (match >= 0)
                values[match] = value;
            ++info->members;
            s.skipWs();
            if (s.take(','))
                continue;
            if (s.take('}'))
                break;
            return done(false);
        }
    }
    info->close = s.offset() - 1;
    info->ok = true;
    return done(true);
}

} // namespace

ObjectInfo scanObject(const QByteArray &text, const QLatin1String *keys, Span *values, int keyCount)
{
    ObjectInfo info;
    for (int i = 0; i < keyCount; ++i)
        values[i] = Span();
    Scanner s(text);
    s.skipWs();
    if (!objectAt(s, text, keys, values, keyCount, &info)) {
        info.ok = false;
        return info;
    }
    s.skipWs();
    info.ok = s.atEnd();
    info.compact = s.compact();
    return info;
}

bool topLevelString(const QByteArray &text, QLatin1String key, QString *out)
{
    Span value;
    const ObjectInfo info = scanObject(text, &key, &value, 1);
    return info.ok && decodeString(text, value, out);
}

StoredHead storedHead(const QByteArray &text, int index)
{
    static const QLatin1String keys[] = {QLatin1String("name"), QLatin1String("index")};
    Span values[2];
    StoredHead head;
    if (!scanObject(text, keys, values, 2).ok)
        return head;
    head.hasName = decodeString(text, values[0], &head.name);
    if (values[1].isValid()) {
        const QByteArray number = QByteArray::number(index);
        head.indexIs = values[1].size() == number.size()
                       && std::memcmp(text.constData() + values[1].begin, number.constData(), size_t(number.size())) == 0;
    }
    return head;
}

QByteArray withIndex(const QByteArray &text, int index)
{
    static const QLatin1String key("index");
    Span value;
    const ObjectInfo info = scanObject(text, &key, &value, 1);
    return withIndex(text, index, info, value);
}

QByteArray withIndex(const QByteArray &text, int index, const ObjectInfo &info, const Span &value)
{
    return withIndex(text, Span{0, int(text.size())}, index, info, value);
}

QByteArray withIndex(const QByteArray &text, const Span &object, int index, const ObjectInfo &info, const Span &value)
{
    if (!info.ok || !info.compact || !object.isValid())
        return QByteArray();
    const char *data = text.constData();
    const QByteArray number = QByteArray::number(index);
    QByteArray out;
    if (value.isValid()) {
        out.reserve(object.size() - value.size() + number.size());
        out.append(data + object.begin, value.begin - object.begin);
        out.append(number);
        out.append(data + value.end, object.end - value.end);
    } else {
        // Appended last, where setting a missing member puts it.
        out.reserve(object.size() + number.size() + 10);
        out.append(data + object.begin, info.close - object.begin);
        if (info.members > 0)
            out.append(',');
        out.append("\"index\":", 8);
        out.append(number);
        out.append(data + info.close, object.end - info.close);
    }
    return out;
}

RequestHead scanRequest(const QByteArray &line)
{
    static const QLatin1String keys[] = {QLatin1String("op"), QLatin1String("method"), QLatin1String("params"),
                                         QLatin1String("id")};
    Span values[4];
    for (Span &v : values)
        v = Span();
    RequestHead head;
    Scanner s(line);
    s.skipWs();
    ObjectInfo info;
    if (objectAt(s, line, keys, values, 4, &info, 2, &head.paramsObject, &head.paramsIndex)) {
        s.skipWs();
        head.object = s.atEnd();
    }
    decodeString(line, values[0], &head.op);
    decodeString(line, values[1], &head.method);
    head.params = values[2];
    head.id = values[3];
    return head;
}

QString excerpt(const QString &text, int maxChars)
{
    if (text.size() <= maxChars)
        return text;
    int cut = maxChars;
    // Never split a surrogate pair.
    if (cut > 0 && text.at(cut - 1).isHighSurrogate())
        --cut;
    return text.left(cut) + QLatin1String("...");
}

QString excerpt(const QByteArray &utf8, int maxChars)
{
    // Every character takes at most 4 bytes: this many bytes hold more than maxChars when cut.
    const int bytes = maxChars * 4 + 4;
    return excerpt(QString::fromUtf8(utf8.constData(), qMin(utf8.size(), bytes)), maxChars);
}

} // namespace rawjson
} // namespace rc
