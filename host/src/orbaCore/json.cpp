#include "orba/json.h"

#include "moduleobject_p.h"
#include "numbers_p.h"
#include "orba/moduleobject.h"

#include <QSet>
#include <QVarLengthArray>

#include <climits>
#include <cmath>
#include <cstring>
#include <limits>

namespace orba {
namespace json {

namespace {

// ---- writer ---------------------------------------------------------------------------------

void appendUtf8(QByteArray &out, uint cp)
{
    if (cp < 0x80) {
        out.append(char(cp));
    } else if (cp < 0x800) {
        out.append(char(0xC0 | (cp >> 6)));
        out.append(char(0x80 | (cp & 0x3F)));
    } else if (cp < 0x10000) {
        out.append(char(0xE0 | (cp >> 12)));
        out.append(char(0x80 | ((cp >> 6) & 0x3F)));
        out.append(char(0x80 | (cp & 0x3F)));
    } else {
        out.append(char(0xF0 | (cp >> 18)));
        out.append(char(0x80 | ((cp >> 12) & 0x3F)));
        out.append(char(0x80 | ((cp >> 6) & 0x3F)));
        out.append(char(0x80 | (cp & 0x3F)));
    }
}

void appendHex4(QByteArray &out, uint u)
{
    static const char hex[] = "0123456789abcdef";
    out.append("\\u", 2);
    out.append(hex[(u >> 12) & 0xF]);
    out.append(hex[(u >> 8) & 0xF]);
    out.append(hex[(u >> 4) & 0xF]);
    out.append(hex[u & 0xF]);
}

void writeString(QByteArray &out, const QString &s)
{
    out.append('"');
    const QChar *d = s.constData();
    const int n = s.size();
    for (int i = 0; i < n; ++i) {
        const ushort u = d[i].unicode();
        switch (u) {
        case '"': out.append("\\\"", 2); continue;
        case '\\': out.append("\\\\", 2); continue;
        case '\b': out.append("\\b", 2); continue;
        case '\f': out.append("\\f", 2); continue;
        case '\n': out.append("\\n", 2); continue;
        case '\r': out.append("\\r", 2); continue;
        case '\t': out.append("\\t", 2); continue;
        default: break;
        }
        if (u < 0x20) {
            appendHex4(out, u);
        } else if (QChar::isHighSurrogate(u) && i + 1 < n && QChar::isLowSurrogate(d[i + 1].unicode())) {
            appendUtf8(out, QChar::surrogateToUcs4(u, d[i + 1].unicode()));
            ++i;
        } else if (QChar::isSurrogate(u)) {
            // A lone surrogate has no UTF-8 form; the escape keeps it.
            appendHex4(out, u);
        } else {
            appendUtf8(out, u);
        }
    }
    out.append('"');
}

bool isReservedString(const QString &s)
{
    return s.startsWith(QLatin1Char('@'))
           && (s == QLatin1String("@inf") || s == QLatin1String("@-inf") || s == QLatin1String("@nan")
               || s == QLatin1String("@-nan") || s.startsWith(QLatin1String("@@")));
}

void newline(QByteArray &out, bool compact, int level)
{
    if (compact)
        return;
    out.append('\n');
    out.append(QByteArray(level * 4, ' '));
}

void writeVariant(QByteArray &out, const QVariant &v, bool compact, int level);
void writeNode(QByteArray &out, NodeRef node, bool compact, int level);

void writeScalar(QByteArray &out, const QVariant &v, bool compact, int level)
{
    switch (v.userType()) {
    case QMetaType::UnknownType:
    case QMetaType::Nullptr:
        out.append("null", 4);
        return;
    case QMetaType::Bool:
        if (v.toBool())
            out.append("true", 4);
        else
            out.append("false", 5);
        return;
    case QMetaType::Int:
    case QMetaType::LongLong:
    case QMetaType::Long:
    case QMetaType::Short:
    case QMetaType::Char:
    case QMetaType::SChar:
    case QMetaType::UChar:
    case QMetaType::UShort:
    case QMetaType::UInt:
        numbers::appendInt(out, v.toLongLong());
        return;
    case QMetaType::ULongLong:
    case QMetaType::ULong: {
        const quint64 x = v.toULongLong();
        if (x <= quint64(LLONG_MAX))
            numbers::appendInt(out, qint64(x));
        else
            numbers::appendDouble(out, double(x));
        return;
    }
    case QMetaType::Double:
    case QMetaType::Float: {
        const double d = v.toDouble();
        if (std::isnan(d))
            out.append(std::signbit(d) ? "\"@-nan\"" : "\"@nan\"");
        else if (std::isinf(d))
            out.append(d > 0 ? "\"@inf\"" : "\"@-inf\"");
        else
            numbers::appendDouble(out, d);
        return;
    }
    case QMetaType::QString: {
        const QString s = v.toString();
        writeString(out, isReservedString(s) ? QLatin1Char('@') + s : s);
        return;
    }
    case QMetaType::QByteArray:
        writeString(out, utf8Exact(v.toByteArray()));
        return;
    default:
        break;
    }
    if (v.userType() == qMetaTypeId<ModuleObject *>()) {
        const ModuleObject *node = v.value<ModuleObject *>();
        if (node)
            writeNode(out, node, compact, level);
        else
            out.append("null", 4);
        return;
    }
    const int type = v.userType();
    if (type == QMetaType::QVariantMap || type == QMetaType::QVariantHash || type == QMetaType::QVariantList
        || type == QMetaType::QStringList) {
        writeVariant(out, v, compact, level);
        return;
    }
    writeString(out, v.toString());
}

void writeVariant(QByteArray &out, const QVariant &v, bool compact, int level)
{
    const int type = v.userType();
    if (type == QMetaType::QVariantMap || type == QMetaType::QVariantHash) {
        const QVariantMap map = v.toMap();
        if (map.isEmpty()) {
            out.append("{}", 2);
            return;
        }
        out.append('{');
        bool first = true;
        for (auto it = map.cbegin(); it != map.cend(); ++it) {
            if (!first)
                out.append(',');
            first = false;
            newline(out, compact, level + 1);
            writeString(out, it.key());
            out.append(compact ? ":" : ": ");
            writeVariant(out, it.value(), compact, level + 1);
        }
        newline(out, compact, level);
        out.append('}');
        return;
    }
    if (type == QMetaType::QVariantList || type == QMetaType::QStringList) {
        const QVariantList list = v.toList();
        if (list.isEmpty()) {
            out.append("[]", 2);
            return;
        }
        out.append('[');
        for (int i = 0; i < list.size(); ++i) {
            if (i)
                out.append(',');
            newline(out, compact, level + 1);
            writeVariant(out, list.at(i), compact, level + 1);
        }
        newline(out, compact, level);
        out.append(']');
        return;
    }
    writeScalar(out, v, compact, level);
}

void writeNode(QByteArray &out, NodeRef node, bool compact, int level)
{
    const int count = node->cmobjCount();
    if (count == 0) {
        writeScalar(out, node->value(), compact, level);
        return;
    }
    if (!node->hasValue() && node->isArray()) {
        out.append('[');
        for (int i = 0; i < count; ++i) {
            if (i)
                out.append(',');
            newline(out, compact, level + 1);
            writeNode(out, node->c(i), compact, level + 1);
        }
        newline(out, compact, level);
        out.append(']');
        return;
    }
    out.append('{');
    bool first = true;
    if (node->hasValue()) {
        newline(out, compact, level + 1);
        out.append(compact ? "\"@value\":" : "\"@value\": ");
        writeScalar(out, node->value(), compact, level + 1);
        first = false;
    }
    for (int i = 0; i < count; ++i) {
        const NodeRef child = node->c(i);
        if (!first)
            out.append(',');
        first = false;
        newline(out, compact, level + 1);
        writeString(out, child->name());
        out.append(compact ? ":" : ": ");
        writeNode(out, child, compact, level + 1);
    }
    newline(out, compact, level);
    out.append('}');
}

// ---- reader ---------------------------------------------------------------------------------

// Input quoted in an error message is cut short.
QString excerpt(const QString &s)
{
    constexpr int kMax = 64;
    if (s.size() <= kMax)
        return s;
    int n = kMax;
    if (QChar::isHighSurrogate(s.at(n - 1).unicode()))
        --n;
    return s.left(n) + QStringLiteral("...");
}

// The keys of one object seen so far. Every reader refuses a repeated key the same way: a tree
// keeps children of the same name where a map would keep the last value only. A short object is
// searched, a long one hashed, so an object of many keys costs no more than its keys.
class KeySet
{
public:
    // False when key was there already.
    bool insert(const QString &key)
    {
        if (m_hash.isEmpty()) {
            for (const QString &k : m_list) {
                if (k == key)
                    return false;
            }
            if (m_list.size() < kShort) {
                m_list.append(key);
                return true;
            }
            for (const QString &k : m_list)
                m_hash.insert(k);
        }
        if (m_hash.contains(key))
            return false;
        m_hash.insert(key);
        return true;
    }

private:
    static constexpr int kShort = 8;
    QVarLengthArray<QString, kShort> m_list;
    QSet<QString> m_hash;
};

class Parser
{
public:
    Parser(const QByteArray &text, qint64 maxNodes = maxJsonNodes())
        : m_maxNodes(maxNodes)
        , m_begin(text.constData())
        , m_p(text.constData())
        , m_end(text.constData() + text.size())
    {
        if (m_end - m_p >= 3 && std::memcmp(m_p, "\xEF\xBB\xBF", 3) == 0)
            m_p += 3;
    }

    bool parseDocumentNode(LightNode *node)
    {
        return parseNode(node) && finish();
    }

    bool parseDocumentVariant(QVariant *v)
    {
        return parseVariant(v) && finish();
    }

    QString error() const { return m_error; }

    // Nodes deeper than this many levels below the root are checked and counted but not built.
    void setBuildLevels(int levels) { m_buildLevels = levels; }

private:
    bool fail(const QString &what)
    {
        if (m_error.isEmpty())
            m_error = QStringLiteral("JSON error at offset %1: %2").arg(qint64(m_p - m_begin)).arg(what);
        return false;
    }

    void skipWs()
    {
        while (m_p < m_end && (*m_p == ' ' || *m_p == '\t' || *m_p == '\n' || *m_p == '\r'))
            ++m_p;
    }

    bool finish()
    {
        skipWs();
        if (m_p != m_end)
            return fail(QStringLiteral("unexpected text after the value"));
        return true;
    }

    // Every node counts, so that a short text of empty containers cannot build a huge tree. The
    // child is null where nothing is built (below the build levels): the text is read all the same.
    bool appendNode(LightNode *parent, const QString &name, LightNode **child)
    {
        if (++m_nodes > m_maxNodes)
            return fail(QStringLiteral("more than %1 nodes").arg(m_maxNodes));
        *child = parent && m_depth <= m_buildLevels ? ModuleObjectPrivate::appendRaw(parent, name) : nullptr;
        return true;
    }

    bool duplicateKey(const char *at, const QString &key)
    {
        m_p = at;
        return fail(QStringLiteral("duplicate key \"%1\"").arg(excerpt(key)));
    }

    // Values of a variant count like nodes of a tree.
    bool countValue()
    {
        if (++m_nodes > m_maxNodes)
            return fail(QStringLiteral("more than %1 values").arg(m_maxNodes));
        return true;
    }

    bool enter()
    {
        if (++m_depth > maxJsonDepth())
            return fail(QStringLiteral("nesting deeper than %1 levels").arg(maxJsonDepth()));
        return true;
    }

    bool expectLiteral(const char *word, int len)
    {
        if (m_end - m_p < len || std::memcmp(m_p, word, size_t(len)) != 0)
            return fail(QStringLiteral("invalid literal, expected \"%1\"").arg(QLatin1String(word)));
        m_p += len;
        return true;
    }

    bool unexpected()
    {
        if (m_p >= m_end)
            return fail(QStringLiteral("unexpected end of input"));
        const uchar ch = uchar(*m_p);
        if (ch >= 0x20 && ch < 0x7F)
            return fail(QStringLiteral("unexpected character '%1'").arg(QLatin1Char(char(ch))));
        return fail(QStringLiteral("unexpected byte 0x%1").arg(uint(ch), 2, 16, QLatin1Char('0')));
    }

    bool parseHex4(uint *out)
    {
        if (m_end - m_p < 4)
            return fail(QStringLiteral("truncated \\u escape"));
        uint v = 0;
        for (int i = 0; i < 4; ++i) {
            const char ch = m_p[i];
            v <<= 4;
            if (ch >= '0' && ch <= '9')
                v |= uint(ch - '0');
            else if (ch >= 'a' && ch <= 'f')
                v |= uint(ch - 'a' + 10);
            else if (ch >= 'A' && ch <= 'F')
                v |= uint(ch - 'A' + 10);
            else
                return fail(QStringLiteral("invalid \\u escape"));
        }
        m_p += 4;
        *out = v;
        return true;
    }

    // At the opening quote.
    bool parseString(QString *out)
    {
        ++m_p;
        const char *start = m_p;
        while (m_p < m_end) {
            const uchar ch = uchar(*m_p);
            if (ch == '"') {
                *out = utf8Exact(start, int(m_p - start));
                ++m_p;
                return true;
            }
            if (ch == '\\' || ch < 0x20)
                break;
            ++m_p;
        }
        QString s = utf8Exact(start, int(m_p - start));
        for (;;) {
            if (m_p >= m_end)
                return fail(QStringLiteral("unterminated string"));
            const uchar ch = uchar(*m_p);
            if (ch == '"') {
                ++m_p;
                break;
            }
            if (ch < 0x20)
                return fail(QStringLiteral("control character in string"));
            if (ch != '\\') {
                const char *runStart = m_p;
                while (m_p < m_end && *m_p != '"' && *m_p != '\\' && uchar(*m_p) >= 0x20)
                    ++m_p;
                s += utf8Exact(runStart, int(m_p - runStart));
                continue;
            }
            ++m_p;
            if (m_p >= m_end)
                return fail(QStringLiteral("unterminated string"));
            const char esc = *m_p++;
            switch (esc) {
            case '"': s += QLatin1Char('"'); break;
            case '\\': s += QLatin1Char('\\'); break;
            case '/': s += QLatin1Char('/'); break;
            case 'b': s += QLatin1Char('\b'); break;
            case 'f': s += QLatin1Char('\f'); break;
            case 'n': s += QLatin1Char('\n'); break;
            case 'r': s += QLatin1Char('\r'); break;
            case 't': s += QLatin1Char('\t'); break;
            case 'u': {
                uint u = 0;
                if (!parseHex4(&u))
                    return false;
                if (QChar::isHighSurrogate(u) && m_end - m_p >= 6 && m_p[0] == '\\' && m_p[1] == 'u') {
                    const char *save = m_p;
                    m_p += 2;
                    uint low = 0;
                    if (!parseHex4(&low))
                        return false;
                    if (QChar::isLowSurrogate(low)) {
                        s += QChar(ushort(u));
                        s += QChar(ushort(low));
                        break;
                    }
                    m_p = save;
                }
                s += QChar(ushort(u));
                break;
            }
            default:
                --m_p;
                return fail(QStringLiteral("invalid escape '\\%1'").arg(QLatin1Char(esc)));
            }
        }
        *out = s;
        return true;
    }

    bool parseStringValue(QVariant *out)
    {
        QString s;
        if (!parseString(&s))
            return false;
        if (s.startsWith(QLatin1Char('@'))) {
            if (s == QLatin1String("@inf")) {
                *out = std::numeric_limits<double>::infinity();
                return true;
            }
            if (s == QLatin1String("@-inf")) {
                *out = -std::numeric_limits<double>::infinity();
                return true;
            }
            if (s == QLatin1String("@nan")) {
                *out = std::numeric_limits<double>::quiet_NaN();
                return true;
            }
            if (s == QLatin1String("@-nan")) {
                *out = std::copysign(std::numeric_limits<double>::quiet_NaN(), -1.0);
                return true;
            }
            if (s.startsWith(QLatin1String("@@")))
                s.remove(0, 1);
        }
        *out = s;
        return true;
    }

    bool parseNumber(QVariant *out)
    {
        const char *start = m_p;
        bool isDouble = false;
        if (*m_p == '-')
            ++m_p;
        if (m_p >= m_end || *m_p < '0' || *m_p > '9')
            return fail(QStringLiteral("invalid number"));
        if (*m_p == '0') {
            ++m_p;
        } else {
            while (m_p < m_end && *m_p >= '0' && *m_p <= '9')
                ++m_p;
        }
        if (m_p < m_end && *m_p == '.') {
            isDouble = true;
            ++m_p;
            if (m_p >= m_end || *m_p < '0' || *m_p > '9')
                return fail(QStringLiteral("invalid number: digit expected after '.'"));
            while (m_p < m_end && *m_p >= '0' && *m_p <= '9')
                ++m_p;
        }
        if (m_p < m_end && (*m_p == 'e' || *m_p == 'E')) {
            isDouble = true;
            ++m_p;
            if (m_p < m_end && (*m_p == '+' || *m_p == '-'))
                ++m_p;
            if (m_p >= m_end || *m_p < '0' || *m_p > '9')
                return fail(QStringLiteral("invalid number: digit expected in exponent"));
            while (m_p < m_end && *m_p >= '0' && *m_p <= '9')
                ++m_p;
        }
        if (!isDouble) {
            qint64 v = 0;
            if (numbers::parseInt64(start, m_p, &v)) {
                if (v >= INT_MIN && v <= INT_MAX)
                    *out = int(v);
                else
                    *out = v;
                return true;
            }
        }
        double d = 0;
        if (!numbers::parseDouble(start, m_p, &d)) {
            m_p = start;
            return fail(QStringLiteral("invalid number"));
        }
        *out = d;
        return true;
    }

    bool parseScalar(QVariant *out)
    {
        switch (*m_p) {
        case '"':
            return parseStringValue(out);
        case 't':
            if (!expectLiteral("true", 4))
                return false;
            *out = true;
            return true;
        case 'f':
            if (!expectLiteral("false", 5))
                return false;
            *out = false;
            return true;
        case 'n':
            if (!expectLiteral("null", 4))
                return false;
            *out = QVariant();
            return true;
        default:
            if (*m_p == '-' || (*m_p >= '0' && *m_p <= '9'))
                return parseNumber(out);
            return unexpected();
        }
    }

    bool parseNode(LightNode *node)
    {
        skipWs();
        if (m_p >= m_end)
            return unexpected();
        if (*m_p == '{') {
            if (!enter())
                return false;
            ++m_p;
            skipWs();
            if (m_p < m_end && *m_p == '}') {
                ++m_p;
                --m_depth;
                return true;
            }
            KeySet keys;
            for (;;) {
                skipWs();
                if (m_p >= m_end || *m_p != '"')
                    return m_p >= m_end ? unexpected() : fail(QStringLiteral("object key expected"));
                QString key;
                const char *keyAt = m_p;
                if (!parseString(&key))
                    return false;
                if (!keys.insert(key))
                    return duplicateKey(keyAt, key);
                skipWs();
                if (m_p >= m_end || *m_p != ':')
                    return m_p >= m_end ? unexpected() : fail(QStringLiteral("':' expected"));
                ++m_p;
                if (key == QLatin1String("@value")) {
                    skipWs();
                    if (m_p >= m_end)
                        return unexpected();
                    if (*m_p == '{' || *m_p == '[')
                        return fail(QStringLiteral("\"@value\" must be a plain value"));
                    QVariant v;
                    if (!parseScalar(&v))
                        return false;
                    if (node)
                        ModuleObjectPrivate::setValueRaw(node, v);
                } else {
                    LightNode *child = nullptr;
                    if (!appendNode(node, key, &child) || !parseNode(child))
                        return false;
                }
                skipWs();
                if (m_p < m_end && *m_p == ',') {
                    ++m_p;
                    continue;
                }
                if (m_p < m_end && *m_p == '}') {
                    ++m_p;
                    break;
                }
                return m_p >= m_end ? unexpected() : fail(QStringLiteral("',' or '}' expected"));
            }
            --m_depth;
            return true;
        }
        if (*m_p == '[') {
            if (!enter())
                return false;
            ++m_p;
            skipWs();
            if (m_p < m_end && *m_p == ']') {
                ++m_p;
                --m_depth;
                return true;
            }
            for (int i = 0;; ++i) {
                LightNode *child = nullptr;
                if (!appendNode(node, node ? arrayName(i) : QString(), &child) || !parseNode(child))
                    return false;
                skipWs();
                if (m_p < m_end && *m_p == ',') {
                    ++m_p;
                    continue;
                }
                if (m_p < m_end && *m_p == ']') {
                    ++m_p;
                    break;
                }
                return m_p >= m_end ? unexpected() : fail(QStringLiteral("',' or ']' expected"));
            }
            --m_depth;
            return true;
        }
        QVariant v;
        if (!parseScalar(&v))
            return false;
        if (node)
            ModuleObjectPrivate::setValueRaw(node, v);
        return true;
    }

    bool parseVariant(QVariant *out)
    {
        skipWs();
        if (m_p >= m_end)
            return unexpected();
        if (*m_p == '{') {
            if (!enter())
                return false;
            ++m_p;
            QVariantMap map;
            skipWs();
            if (m_p < m_end && *m_p == '}') {
                ++m_p;
            } else {
                for (;;) {
                    skipWs();
                    if (m_p >= m_end || *m_p != '"')
                        return m_p >= m_end ? unexpected() : fail(QStringLiteral("object key expected"));
                    QString key;
                    const char *keyAt = m_p;
                    if (!parseString(&key))
                        return false;
                    if (map.contains(key))
                        return duplicateKey(keyAt, key);
                    skipWs();
                    if (m_p >= m_end || *m_p != ':')
                        return m_p >= m_end ? unexpected() : fail(QStringLiteral("':' expected"));
                    ++m_p;
                    QVariant v;
                    if (!countValue() || !parseVariant(&v))
                        return false;
                    map.insert(key, v);
                    skipWs();
                    if (m_p < m_end && *m_p == ',') {
                        ++m_p;
                        continue;
                    }
                    if (m_p < m_end && *m_p == '}') {
                        ++m_p;
                        break;
                    }
                    return m_p >= m_end ? unexpected() : fail(QStringLiteral("',' or '}' expected"));
                }
            }
            --m_depth;
            *out = map;
            return true;
        }
        if (*m_p == '[') {
            if (!enter())
                return false;
            ++m_p;
            QVariantList list;
            skipWs();
            if (m_p < m_end && *m_p == ']') {
                ++m_p;
            } else {
                for (;;) {
                    QVariant v;
                    if (!countValue() || !parseVariant(&v))
                        return false;
                    list.append(v);
                    skipWs();
                    if (m_p < m_end && *m_p == ',') {
                        ++m_p;
                        continue;
                    }
                    if (m_p < m_end && *m_p == ']') {
                        ++m_p;
                        break;
                    }
                    return m_p >= m_end ? unexpected() : fail(QStringLiteral("',' or ']' expected"));
                }
            }
            --m_depth;
            *out = list;
            return true;
        }
        return parseScalar(out);
    }

    qint64 m_maxNodes;
    qint64 m_nodes = 1;
    const char *m_begin;
    const char *m_p;
    const char *m_end;
    int m_depth = 0;
    int m_buildLevels = INT_MAX;
    QString m_error;
};

bool checkSize(const QByteArray &text, QString *error)
{
    if (text.size() > maxJsonBytes()) {
        if (error)
            *error = QStringLiteral("JSON text of %1 bytes exceeds the limit of %2 bytes")
                         .arg(text.size())
                         .arg(maxJsonBytes());
        return false;
    }
    return true;
}

} // namespace

QByteArray write(const ModuleObject *node, bool compact)
{
    QByteArray out;
    if (!node) {
        out = "null";
        return out;
    }
    writeNode(out, node, compact, 0);
    return out;
}

bool read(QObject *sender, ModuleObject *node, const QByteArray &text, QString *error)
{
    return read(sender, node, text, error, maxJsonNodes());
}

bool read(QObject *sender, ModuleObject *node, const QByteArray &text, QString *error, qint64 maxNodes)
{
    return readLevels(sender, node, text, INT_MAX, error, maxNodes);
}

bool readLevels(QObject *sender, ModuleObject *node, const QByteArray &text, int levels, QString *error,
                qint64 maxNodes)
{
    if (!node) {
        if (error)
            *error = QStringLiteral("no target node");
        return false;
    }
    if (!checkSize(text, error))
        return false;
    LightNode fresh;
    Parser parser(text, maxNodes);
    parser.setBuildLevels(levels);
    if (!parser.parseDocumentNode(&fresh)) {
        if (error)
            *error = parser.error();
        return false;
    }
    ModuleObjectPrivate::moveInto(sender, node, fresh, true);
    if (error)
        error->clear();
    return true;
}

QByteArray fromVariant(const QVariant &v, bool compact)
{
    QByteArray out;
    writeVariant(out, v, compact, 0);
    return out;
}

QVariant toVariant(const QByteArray &text, bool *ok, QString *error)
{
    return toVariant(text, ok, error, maxJsonNodes());
}

QVariant toVariant(const QByteArray &text, bool *ok, QString *error, qint64 maxValues)
{
    if (ok)
        *ok = false;
    if (!checkSize(text, error))
        return QVariant();
    Parser parser(text, maxValues);
    QVariant v;
    if (!parser.parseDocumentVariant(&v)) {
        if (error)
            *error = parser.error();
        return QVariant();
    }
    if (ok)
        *ok = true;
    if (error)
        error->clear();
    return v;
}

} // namespace json
} // namespace orba
