#include "orba/modulemanager.h"

#include "orba/json.h"
#include "moduleobject_p.h"
#include "numbers_p.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QXmlStreamReader>

#ifdef Q_OS_LINUX
#include <fcntl.h>
#include <sys/mman.h>
#endif

#include <algorithm>
#include <cmath>
#include <climits>
#include <cstring>
#include <limits>
#include <vector>

namespace orba {

namespace {

QString &lastErrorRef()
{
    static thread_local QString error;
    return error;
}

bool setError(const QString &error)
{
    lastErrorRef() = error;
    return false;
}

// Characters XML 1.0 cannot carry even as references.
bool needsEncoding(const QString &s)
{
    const QChar *d = s.constData();
    const int n = s.size();
    for (int i = 0; i < n; ++i) {
        const ushort u = d[i].unicode();
        if (u < 0x20 && u != '\t' && u != '\n' && u != '\r')
            return true;
        if (u == 0xFFFE || u == 0xFFFF)
            return true;
        if (QChar::isHighSurrogate(u)) {
            if (i + 1 >= n || !QChar::isLowSurrogate(d[i + 1].unicode()))
                return true;
            ++i;
        } else if (QChar::isLowSurrogate(u)) {
            return true;
        }
    }
    return false;
}

QByteArray encodeUtf16(const QString &s)
{
    QByteArray raw;
    raw.reserve(s.size() * 2);
    for (const QChar ch : s) {
        raw.append(char(ch.unicode() & 0xFF));
        raw.append(char(ch.unicode() >> 8));
    }
    return raw.toBase64();
}

bool decodeUtf16(const QString &text, QString *out)
{
    const auto decoded = QByteArray::fromBase64Encoding(text.trimmed().toLatin1(),
                                                        QByteArray::AbortOnBase64DecodingErrors);
    if (!decoded || decoded.decoded.size() % 2)
        return false;
    const QByteArray &raw = decoded.decoded;
    out->resize(raw.size() / 2);
    for (int i = 0; i < out->size(); ++i)
        (*out)[i] = QChar(ushort(uchar(raw[2 * i]) | (uchar(raw[2 * i + 1]) << 8)));
    return true;
}

// Input quoted in an error message is cut short: a bad value of a megabyte must not make a
// message of a megabyte.
QString excerpt(QStringView s, int max = 64)
{
    if (s.size() <= max)
        return s.toString();
    int n = max;
    if (QChar::isHighSurrogate(s.at(n - 1).unicode()))
        --n;
    return s.left(n).toString() + QStringLiteral("...");
}

// Attributes a <node> element may have: "name", "name-encoding", "type", "encoding" and a few
// more that are ignored. The general reader's time grows with the square of an element's
// attributes, so a start tag with more is refused before it gets there.
constexpr int kMaxAttributes = 8;

QString budgetError(qint64 maxNodes)
{
    return QStringLiteral("the document has more than %1 nodes").arg(maxNodes);
}

// The writer builds the bytes itself (QXmlStreamWriter goes through a text codec character by
// character, several times slower on files of many pallets); the output is byte for byte what
// QXmlStreamWriter with auto-formatting (indent 2) writes.

// Appends the UTF-8 form of s with XML escapes. In attributes tab, line feed and carriage return
// are written as references (a reader would normalise them to spaces); in element text a carriage
// return is (it would come back as a line feed). Characters XML cannot carry at all never get
// here: names and values that have any are base64-encoded (see needsEncoding).
void appendEscaped(QByteArray &out, const QString &s, bool attribute)
{
    const QChar *d = s.constData();
    const int n = s.size();
    // Most names and texts need no escape at all: copy them in one step.
    if (n <= 64) {
        char plain[64];
        int i = 0;
        for (; i < n; ++i) {
            const ushort u = d[i].unicode();
            if (u < 0x20 || u >= 0x80 || u == '<' || u == '>' || u == '&' || u == '"')
                break;
            plain[i] = char(u);
        }
        if (i == n) {
            out.append(plain, n);
            return;
        }
    }
    for (int i = 0; i < n; ++i) {
        const ushort u = d[i].unicode();
        if (u < 0x80) {
            switch (u) {
            case '<':
                out.append("&lt;", 4);
                continue;
            case '>':
                out.append("&gt;", 4);
                continue;
            case '&':
                out.append("&amp;", 5);
                continue;
            case '"':
                out.append("&quot;", 6);
                continue;
            case '\t':
                if (attribute)
                    out.append("&#9;", 4);
                else
                    out.append('\t');
                continue;
            case '\n':
                if (attribute)
                    out.append("&#10;", 5);
                else
                    out.append('\n');
                continue;
            case '\r':
                out.append("&#13;", 5);
                continue;
            default:
                if (u >= 0x20)
                    out.append(char(u));
                continue;
            }
        }
        uint cp = u;
        if (QChar::isHighSurrogate(u)) {
            if (i + 1 >= n || !QChar::isLowSurrogate(d[i + 1].unicode()))
                continue;
            cp = QChar::surrogateToUcs4(u, d[i + 1].unicode());
            ++i;
        } else if (QChar::isLowSurrogate(u) || u == 0xFFFE || u == 0xFFFF) {
            continue;
        }
        if (cp < 0x800) {
            out.append(char(0xC0 | (cp >> 6)));
        } else if (cp < 0x10000) {
            out.append(char(0xE0 | (cp >> 12)));
            out.append(char(0x80 | ((cp >> 6) & 0x3F)));
        } else {
            out.append(char(0xF0 | (cp >> 18)));
            out.append(char(0x80 | ((cp >> 12) & 0x3F)));
            out.append(char(0x80 | ((cp >> 6) & 0x3F)));
        }
        out.append(char(0x80 | (cp & 0x3F)));
    }
}

void appendDoubleText(QByteArray &out, double d)
{
    if (std::isnan(d))
        out.append(std::signbit(d) ? "-nan" : "nan");
    else if (std::isinf(d))
        out.append(d > 0 ? "inf" : "-inf");
    else
        numbers::appendDouble(out, d);
}

qint64 countNodes(NodeRef node)
{
    qint64 n = 1;
    for (int i = 0; i < node->cmobjCount(); ++i)
        n += countNodes(node->c(i));
    return n;
}

// The names from the top of a walk down to the node being looked at; the walk keeps one on its
// stack per level, so nothing is built unless a message needs the path.
struct Trail
{
    const Trail *up;
    const QString *name;
};

QString trailPath(const Trail *trail)
{
    QStringList names;
    for (; trail; trail = trail->up)
        names.prepend(*trail->name);
    return names.join(QLatin1Char('.'));
}

// Whether a tree makes a file that reads back as the same tree: within the readers' nesting
// limit and node budget, every value of a type the form has. Checked before a file is touched.
bool checkWritable(NodeRef node, const Trail *trail, int depth, qint64 maxNodes, qint64 *nodes, QString *why)
{
    if (depth > ModuleManager::maxDepth()) {
        *why = QStringLiteral("the tree is nested deeper than %1 levels").arg(ModuleManager::maxDepth());
        return false;
    }
    if (++*nodes > maxNodes) {
        *why = QStringLiteral("the tree has more than %1 nodes").arg(maxNodes);
        return false;
    }
    const QVariant v = node->value();
    switch (v.userType()) {
    case QMetaType::UnknownType:
    case QMetaType::Int:
    case QMetaType::LongLong:
    case QMetaType::Double:
    case QMetaType::Bool:
    case QMetaType::QString:
        break;
    default:
        *why = QStringLiteral("the value of \"%1\" is a %2, which the file form cannot hold")
                   .arg(excerpt(trailPath(trail)), QLatin1String(v.typeName()));
        return false;
    }
    for (int i = 0; i < node->cmobjCount(); ++i) {
        const NodeRef child = node->c(i);
        const Trail below{trail, &child->name()};
        if (!checkWritable(child, &below, depth + 1, maxNodes, nodes, why))
            return false;
    }
    return true;
}

void appendIndent(QByteArray &out, int depth)
{
    out.append('\n');
    for (int i = 0; i < depth; ++i)
        out.append("  ", 2);
}

// Where a file is written while it is being made: the text goes out a slice at a time, so a file
// of many pallets never sits in memory whole (touching that much fresh memory costs more than
// making the text).
struct XmlSink
{
    static constexpr int kSlice = 1 << 20;

    QIODevice *device = nullptr;
    qint64 written = 0;
    qint64 started = 0; // written back from here on
    qint64 limit = 0;
    bool failed = false;
    QString why;

    void drain(QByteArray &out)
    {
        if (failed || out.isEmpty())
            return;
        written += out.size();
        if (written > limit) {
            failed = true;
            why = QStringLiteral("more than %1 bytes of XML, over the limit").arg(limit);
        } else if (device->write(out) != out.size()) {
            failed = true;
            why = device->errorString();
        } else {
            startWriteBack();
        }
        out.resize(0);
    }

    // Files are committed to the disk at the end (a USB disk may be pulled right after): letting
    // the disk take what is written while the rest is being made leaves little for that wait.
    void startWriteBack()
    {
#ifdef Q_OS_LINUX
        constexpr qint64 kStep = 8 * kSlice;
        auto *file = qobject_cast<QFileDevice *>(device);
        if (!file || written - started < kStep || !file->flush())
            return;
        if (file->handle() >= 0)
            sync_file_range(file->handle(), started, written - started, SYNC_FILE_RANGE_WRITE);
        started = written;
#endif
    }
};

// indentBefore is false for a first child that follows its parent's value text: the writer's
// auto-formatting never puts white space into a value.
void writeNode(QByteArray &out, NodeRef node, int depth, bool indent, bool indentBefore, XmlSink *sink = nullptr)
{
    if (indent && indentBefore)
        appendIndent(out, depth);
    out.append("<node name=\"", 12);
    const QString name = node->name();
    if (needsEncoding(name)) {
        // XML 1.0 has no way to carry these characters, not even as references.
        out.append(encodeUtf16(name));
        out.append("\" name-encoding=\"utf16-base64", 29);
    } else {
        appendEscaped(out, name, true);
    }
    const QVariant v = node->value();
    switch (v.userType()) {
    case QMetaType::UnknownType:
        out.append("\" type=\"null\"", 13);
        break;
    case QMetaType::Int:
    case QMetaType::LongLong:
        out.append("\" type=\"int\">", 13);
        numbers::appendInt(out, v.toLongLong());
        break;
    case QMetaType::Double:
        out.append("\" type=\"double\">", 16);
        appendDoubleText(out, v.toDouble());
        break;
    case QMetaType::Bool:
        out.append("\" type=\"bool\">", 14);
        out.append(v.toBool() ? "true" : "false");
        break;
    default: {
        const QString text = v.toString();
        if (needsEncoding(text)) {
            out.append("\" type=\"string\" encoding=\"utf16-base64\">", 40);
            out.append(encodeUtf16(text));
        } else {
            out.append("\" type=\"string\">", 16);
            appendEscaped(out, text, false);
        }
        break;
    }
    }
    const bool hasText = v.isValid();
    const int count = node->cmobjCount();
    if (!hasText) {
        if (count == 0) {
            out.append("/>", 2);
            return;
        }
        out.append('>');
    }
    for (int i = 0; i < count; ++i) {
        writeNode(out, node->c(i), depth + 1, indent, !(hasText && i == 0), sink);
        if (sink && out.size() >= XmlSink::kSlice)
            sink->drain(out);
    }
    if (indent && count > 0)
        appendIndent(out, depth);
    out.append("</node>", 7);
}

// The whole document: declaration, root element, final line feed.
void writeDocument(QByteArray &out, NodeRef root, bool indent, XmlSink *sink = nullptr)
{
    out.append("<?xml version=\"1.0\" encoding=\"UTF-8\"?>");
    writeNode(out, root, 0, indent, true, sink);
    out.append('\n');
    if (sink)
        sink->drain(out);
}

struct Frame
{
    LightNode *node;
    QString type;
    QString text;
    bool encoded = false;
    bool sawChild = false;
};

bool parseValue(const Frame &f, QVariant *out, QString *why)
{
    const QString &type = f.type;
    if (type == QLatin1String("null")) {
        if (!f.text.trimmed().isEmpty()) {
            *why = QStringLiteral("text in a null node");
            return false;
        }
        *out = QVariant();
        return true;
    }
    if (type == QLatin1String("string")) {
        if (!f.encoded) {
            *out = f.text;
            return true;
        }
        QString s;
        if (!decodeUtf16(f.text, &s)) {
            *why = QStringLiteral("invalid encoded string");
            return false;
        }
        *out = s;
        return true;
    }
    const QByteArray t = f.text.trimmed().toLatin1();
    if (type == QLatin1String("int")) {
        qint64 v = 0;
        if (t.isEmpty() || !numbers::parseInt64(t.constData(), t.constData() + t.size(), &v)) {
            *why = QStringLiteral("\"%1\" is not an int").arg(excerpt(f.text));
            return false;
        }
        *out = ModuleObjectPrivate::normalise(QVariant(v));
        return true;
    }
    if (type == QLatin1String("double")) {
        double d = 0;
        if (t == "inf") {
            d = std::numeric_limits<double>::infinity();
        } else if (t == "-inf") {
            d = -std::numeric_limits<double>::infinity();
        } else if (t == "nan") {
            d = std::numeric_limits<double>::quiet_NaN();
        } else if (t == "-nan") {
            d = std::copysign(std::numeric_limits<double>::quiet_NaN(), -1.0);
        } else if (t.isEmpty() || !numbers::parseDouble(t.constData(), t.constData() + t.size(), &d)) {
            *why = QStringLiteral("\"%1\" is not a double").arg(excerpt(f.text));
            return false;
        }
        *out = d;
        return true;
    }
    if (type == QLatin1String("bool")) {
        if (t == "true") {
            *out = true;
        } else if (t == "false") {
            *out = false;
        } else {
            *why = QStringLiteral("\"%1\" is not a bool").arg(excerpt(f.text));
            return false;
        }
        return true;
    }
    *why = QStringLiteral("unknown type \"%1\"").arg(excerpt(type));
    return false;
}

// The quick reader: the plain subset of XML that the writer produces (the declaration it writes
// or none, <node> elements with plain attributes, text with the predefined and character
// references, white space between elements). It gives up, returning false, on anything outside
// that subset and on anything wrong, without saying why: the general reader below then reads the
// document from the start and has the last word, so results and error messages are the general
// reader's. Whatever it accepts is well-formed and gives the tree the general reader gives.
// The one exception is the node budget: what it read up to there was well-formed, so the general
// reader would only build the same nodes again to come to the same end (overBudget()).
class QuickXmlReader
{
public:
    QuickXmlReader(const QByteArray &xml, qint64 maxNodes)
        : m_p(xml.constData())
        , m_end(xml.constData() + xml.size())
        , m_maxNodes(maxNodes)
    {
    }

    bool overBudget() const { return m_overBudget; }

    bool read(LightNode *root)
    {
        static const char decl[] = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>";
        const qptrdiff declLen = qptrdiff(sizeof decl - 1);
        if (m_end - m_p >= declLen && std::memcmp(m_p, decl, size_t(declLen)) == 0)
            m_p += declLen;
        if (!skipSpace() || m_p == m_end || *m_p != '<')
            return false;
        while (m_p < m_end) {
            if (*m_p != '<') {
                if (!readText())
                    return false;
                continue;
            }
            if (m_end - m_p >= 2 && m_p[1] == '/') {
                if (!readEndTag())
                    return false;
                if (m_stack.empty()) {
                    // Only white space may follow the root element.
                    return skipSpace() && m_p == m_end;
                }
                continue;
            }
            if (!readStartTag(root))
                return false;
        }
        return false;
    }

private:
    enum Type { Null, Int, Double, Bool, String };

    struct Frame
    {
        LightNode *node = nullptr;
        Type type = Null;
        bool encoded = false;
        bool sawChild = false;
        bool hasText = false;
        // The text before the first child: where it lies, and whether it needs decoding.
        const char *textBegin = nullptr;
        const char *textEnd = nullptr;
        bool textPlain = true;
    };

    static bool isSpace(char c) { return c == ' ' || c == '\t' || c == '\n'; }

    // White space between markup; a carriage return would need line-end handling: give up.
    bool skipSpace()
    {
        while (m_p < m_end && isSpace(*m_p))
            ++m_p;
        return m_p == m_end || *m_p != '\r';
    }

    // Length of a valid UTF-8 sequence of an XML character at p, or 0.
    int utf8Length(const char *p) const
    {
        const auto *u = reinterpret_cast<const unsigned char *>(p);
        const qptrdiff left = m_end - p;
        const unsigned char c = u[0];
        auto cont = [&](int i) { return i < left && (u[i] & 0xC0) == 0x80; };
        if (c >= 0xC2 && c <= 0xDF)
            return cont(1) ? 2 : 0;
        if (c >= 0xE0 && c <= 0xEF) {
            if (!cont(1) || !cont(2))
                return 0;
            if (c == 0xE0 && u[1] < 0xA0)
                return 0; // overlong
            if (c == 0xED && u[1] >= 0xA0)
                return 0; // surrogates
            if (c == 0xEF && u[1] == 0xBF && (u[2] == 0xBE || u[2] == 0xBF))
                return 0; // U+FFFE, U+FFFF
            return 3;
        }
        if (c >= 0xF0 && c <= 0xF4) {
            if (!cont(1) || !cont(2) || !cont(3))
                return 0;
            if (c == 0xF0 && u[1] < 0x90)
                return 0;
            if (c == 0xF4 && u[1] >= 0x90)
                return 0;
            return 4;
        }
        return 0;
    }

    static bool isXmlChar(uint c)
    {
        return c == 0x9 || c == 0xA || c == 0xD || (c >= 0x20 && c <= 0xD7FF) || (c >= 0xE000 && c <= 0xFFFD)
               || (c >= 0x10000 && c <= 0x10FFFF);
    }

    // A reference at p ('&'): its length, and the character it stands for in *out.
    int reference(const char *p, uint *out) const
    {
        const qptrdiff left = m_end - p;
        auto is = [&](const char *name, int len) { return left >= len && std::memcmp(p, name, size_t(len)) == 0; };
        if (is("&lt;", 4)) {
            *out = '<';
            return 4;
        }
        if (is("&gt;", 4)) {
            *out = '>';
            return 4;
        }
        if (is("&amp;", 5)) {
            *out = '&';
            return 5;
        }
        if (is("&quot;", 6)) {
            *out = '"';
            return 6;
        }
        if (is("&apos;", 6)) {
            *out = '\'';
            return 6;
        }
        if (left < 4 || p[1] != '#')
            return 0;
        const bool hex = p[2] == 'x';
        int i = hex ? 3 : 2;
        quint64 v = 0;
        const int first = i;
        for (; i < left && i < 16; ++i) {
            const char c = p[i];
            int digit;
            if (c >= '0' && c <= '9')
                digit = c - '0';
            else if (hex && c >= 'a' && c <= 'f')
                digit = c - 'a' + 10;
            else if (hex && c >= 'A' && c <= 'F')
                digit = c - 'A' + 10;
            else
                break;
            v = v * (hex ? 16 : 10) + quint64(digit);
        }
        if (i == first || i >= left || p[i] != ';' || v > 0x10FFFF || !isXmlChar(uint(v)))
            return 0;
        *out = uint(v);
        return i + 1;
    }

    static void appendUtf8(QByteArray &out, uint cp)
    {
        if (cp < 0x80) {
            out.append(char(cp));
            return;
        }
        if (cp < 0x800) {
            out.append(char(0xC0 | (cp >> 6)));
        } else if (cp < 0x10000) {
            out.append(char(0xE0 | (cp >> 12)));
            out.append(char(0x80 | ((cp >> 6) & 0x3F)));
        } else {
            out.append(char(0xF0 | (cp >> 18)));
            out.append(char(0x80 | ((cp >> 12) & 0x3F)));
            out.append(char(0x80 | ((cp >> 6) & 0x3F)));
        }
        out.append(char(0x80 | (cp & 0x3F)));
    }

    // The UTF-8 bytes a checked range stands for, references resolved.
    QByteArray decode(const char *begin, const char *end) const
    {
        QByteArray out;
        out.reserve(int(end - begin));
        for (const char *p = begin; p < end;) {
            if (*p == '&') {
                uint cp = 0;
                p += reference(p, &cp);
                appendUtf8(out, cp);
            } else {
                out.append(*p++);
            }
        }
        return out;
    }

    bool readText()
    {
        const char *begin = m_p;
        bool plain = true;
        bool space = true;
        while (m_p < m_end && *m_p != '<') {
            const unsigned char c = static_cast<unsigned char>(*m_p);
            if (c < 0x80) {
                if (c == '&') {
                    uint cp = 0;
                    const int len = reference(m_p, &cp);
                    if (!len)
                        return false;
                    m_p += len;
                    plain = false;
                    space = false;
                    continue;
                }
                if (c < 0x20 && c != '\t' && c != '\n')
                    return false;
                if (c == '>' && m_p - begin >= 2 && m_p[-1] == ']' && m_p[-2] == ']')
                    return false;
                if (!isSpace(char(c)))
                    space = false;
                ++m_p;
                continue;
            }
            const int len = utf8Length(m_p);
            if (!len)
                return false;
            m_p += len;
            plain = false;
            space = false;
        }
        if (m_stack.empty())
            return false;
        Frame &top = m_stack.back();
        if (top.sawChild)
            return space; // indentation between children
        if (top.hasText)
            return false;
        top.hasText = true;
        top.textBegin = begin;
        top.textEnd = m_p;
        top.textPlain = plain;
        return true;
    }

    struct Attribute
    {
        const char *name;
        int nameLength;
        const char *value;
        const char *valueEnd;
        bool plain;
    };

    bool readAttribute(Attribute *a)
    {
        const char *name = m_p;
        auto nameStart = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; };
        auto nameChar = [&](char c) { return nameStart(c) || (c >= '0' && c <= '9') || c == '.' || c == '-'; };
        if (m_p == m_end || !nameStart(*m_p))
            return false;
        while (m_p < m_end && nameChar(*m_p))
            ++m_p;
        a->name = name;
        a->nameLength = int(m_p - name);
        // Namespace declarations are the general reader's business.
        if (a->nameLength == 5 && std::memcmp(name, "xmlns", 5) == 0)
            return false;
        if (!skipSpace() || m_p == m_end || *m_p++ != '=' || !skipSpace() || m_p == m_end)
            return false;
        const char quote = *m_p++;
        if (quote != '"' && quote != '\'')
            return false;
        a->value = m_p;
        a->plain = true;
        while (m_p < m_end && *m_p != quote) {
            const unsigned char c = static_cast<unsigned char>(*m_p);
            if (c < 0x80) {
                // Literal white space other than a blank would be normalised: give up.
                if (c < 0x20 || c == '<')
                    return false;
                if (c == '&') {
                    uint cp = 0;
                    const int len = reference(m_p, &cp);
                    if (!len)
                        return false;
                    m_p += len;
                    a->plain = false;
                    continue;
                }
                ++m_p;
                continue;
            }
            const int len = utf8Length(m_p);
            if (!len)
                return false;
            m_p += len;
            a->plain = false;
        }
        if (m_p == m_end)
            return false;
        a->valueEnd = m_p++;
        return true;
    }

    static bool attributeIs(const Attribute &a, const char *name, int length)
    {
        return a.nameLength == length && std::memcmp(a.name, name, size_t(length)) == 0;
    }

    static bool valueIs(const Attribute &a, const char *text)
    {
        const size_t length = std::strlen(text);
        return size_t(a.valueEnd - a.value) == length && std::memcmp(a.value, text, length) == 0;
    }

    bool readStartTag(LightNode *root)
    {
        if (m_end - m_p < 5 || std::memcmp(m_p + 1, "node", 4) != 0)
            return false;
        m_p += 5;
        if (int(m_stack.size()) >= ModuleManager::maxDepth())
            return false;
        const Attribute *nameAttr = nullptr;
        const Attribute *nameEncodingAttr = nullptr;
        const Attribute *typeAttr = nullptr;
        const Attribute *encodingAttr = nullptr;
        Attribute attrs[kMaxAttributes];
        int count = 0;
        bool empty = false;
        for (;;) {
            const char *before = m_p;
            if (!skipSpace() || m_p == m_end)
                return false;
            if (*m_p == '>') {
                ++m_p;
                break;
            }
            if (*m_p == '/') {
                if (m_end - m_p < 2 || m_p[1] != '>')
                    return false;
                m_p += 2;
                empty = true;
                break;
            }
            if (m_p == before || count == kMaxAttributes)
                return false;
            Attribute &a = attrs[count];
            if (!readAttribute(&a))
                return false;
            for (int i = 0; i < count; ++i) {
                if (attrs[i].nameLength == a.nameLength && std::memcmp(attrs[i].name, a.name, size_t(a.nameLength)) == 0)
                    return false;
            }
            ++count;
            if (attributeIs(a, "name", 4))
                nameAttr = &a;
            else if (attributeIs(a, "type", 4))
                typeAttr = &a;
            else if (attributeIs(a, "encoding", 8))
                encodingAttr = &a;
            else if (attributeIs(a, "name-encoding", 13))
                nameEncodingAttr = &a;
        }

        Frame f;
        if (!typeAttr || valueIs(*typeAttr, "null"))
            f.type = Null;
        else if (valueIs(*typeAttr, "int"))
            f.type = Int;
        else if (valueIs(*typeAttr, "double"))
            f.type = Double;
        else if (valueIs(*typeAttr, "bool"))
            f.type = Bool;
        else if (valueIs(*typeAttr, "string"))
            f.type = String;
        else
            return false;
        if (encodingAttr && encodingAttr->valueEnd != encodingAttr->value) {
            if (!valueIs(*encodingAttr, "utf16-base64") || f.type != String)
                return false;
            f.encoded = true;
        }
        QString name = nameAttr ? attributeText(*nameAttr) : QString();
        if (nameEncodingAttr && nameEncodingAttr->valueEnd != nameEncodingAttr->value) {
            QString decoded;
            if (!valueIs(*nameEncodingAttr, "utf16-base64") || !decodeUtf16(name, &decoded))
                return false;
            name = decoded;
        }

        if (m_stack.empty()) {
            if (m_sawRoot)
                return false;
            m_sawRoot = true;
            f.node = root;
        } else {
            if (++m_nodes > m_maxNodes) {
                m_overBudget = true;
                return false;
            }
            Frame &top = m_stack.back();
            top.sawChild = true;
            f.node = ModuleObjectPrivate::appendRaw(top.node, name);
        }
        m_stack.push_back(f);
        return empty ? finish() : true;
    }

    QString attributeText(const Attribute &a) const
    {
        if (!a.plain)
            return utf8Exact(decode(a.value, a.valueEnd));
        const int length = int(a.valueEnd - a.value);
        const int index = arrayIndexOf(a.value, length);
        return index >= 0 ? arrayName(index) : QString::fromLatin1(a.value, length);
    }

    static int arrayIndexOf(const char *s, int length)
    {
        if (length < 2 || length > 10 || s[0] != '#' || (s[1] == '0' && length > 2))
            return -1;
        qint64 v = 0;
        for (int i = 1; i < length; ++i) {
            if (s[i] < '0' || s[i] > '9')
                return -1;
            v = v * 10 + (s[i] - '0');
        }
        return v > INT_MAX ? -1 : int(v);
    }

    bool readEndTag()
    {
        if (m_stack.empty() || m_end - m_p < 6 || std::memcmp(m_p + 2, "node", 4) != 0)
            return false;
        m_p += 6;
        if (!skipSpace() || m_p == m_end || *m_p != '>')
            return false;
        ++m_p;
        return finish();
    }

    // The value of the element on top of the stack, which is then closed.
    bool finish()
    {
        Frame &f = m_stack.back();
        const char *b = f.textBegin;
        const char *e = f.textEnd;
        QVariant v;
        if (f.textPlain && f.type != String) {
            while (b < e && isSpace(*b))
                ++b;
            while (e > b && isSpace(e[-1]))
                --e;
            const qptrdiff n = e - b;
            switch (f.type) {
            case Null:
                if (n)
                    return false;
                break;
            case Int: {
                qint64 x = 0;
                if (!n || !numbers::parseInt64(b, e, &x))
                    return false;
                v = ModuleObjectPrivate::normalise(QVariant(x));
                break;
            }
            case Double: {
                double d = 0;
                if (n == 3 && std::memcmp(b, "inf", 3) == 0)
                    d = std::numeric_limits<double>::infinity();
                else if (n == 4 && std::memcmp(b, "-inf", 4) == 0)
                    d = -std::numeric_limits<double>::infinity();
                else if (n == 3 && std::memcmp(b, "nan", 3) == 0)
                    d = std::numeric_limits<double>::quiet_NaN();
                else if (n == 4 && std::memcmp(b, "-nan", 4) == 0)
                    d = std::copysign(std::numeric_limits<double>::quiet_NaN(), -1.0);
                else if (!n || !numbers::parseDouble(b, e, &d))
                    return false;
                v = d;
                break;
            }
            case Bool:
                if (n == 4 && std::memcmp(b, "true", 4) == 0)
                    v = true;
                else if (n == 5 && std::memcmp(b, "false", 5) == 0)
                    v = false;
                else
                    return false;
                break;
            case String:
                break;
            }
        } else {
            orba::Frame general;
            general.node = f.node;
            general.type = typeName(f.type);
            general.encoded = f.encoded;
            if (f.textBegin)
                general.text = utf8Exact(f.textPlain ? QByteArray::fromRawData(b, int(e - b)) : decode(b, e));
            QString why;
            if (!parseValue(general, &v, &why))
                return false;
        }
        ModuleObjectPrivate::setValueRaw(f.node, v);
        m_stack.pop_back();
        return true;
    }

    static QString typeName(Type t)
    {
        switch (t) {
        case Null:
            return QStringLiteral("null");
        case Int:
            return QStringLiteral("int");
        case Double:
            return QStringLiteral("double");
        case Bool:
            return QStringLiteral("bool");
        case String:
            break;
        }
        return QStringLiteral("string");
    }

    const char *m_p;
    const char *const m_end;
    const qint64 m_maxNodes;
    qint64 m_nodes = 1;
    std::vector<Frame> m_stack;
    bool m_sawRoot = false;
    bool m_overBudget = false;
};

bool startsWith(const char *p, const char *end, const char *text)
{
    const size_t n = std::strlen(text);
    return size_t(end - p) >= n && std::memcmp(p, text, n) == 0;
}

// Just past the first occurrence of marker at or after p, or end.
const char *skipPast(const char *p, const char *end, const char *marker)
{
    const size_t n = std::strlen(marker);
    for (;;) {
        p = static_cast<const char *>(std::memchr(p, marker[0], size_t(end - p)));
        if (!p || size_t(end - p) < n)
            return end;
        if (std::memcmp(p, marker, n) == 0)
            return p + n;
        ++p;
    }
}

// A scan of the bytes before the general reader sees them: a document type declaration, a start
// tag with more than kMaxAttributes attributes and more elements than the budget are refused
// before any work grows with them. For a well-formed document every '=' of a start tag outside
// quotes belongs to an attribute; a malformed one may be refused here for a reason of its own.
bool prescan(const QByteArray &xml, qint64 maxNodes, QString *error)
{
    const char *const begin = xml.constData();
    const char *const end = begin + xml.size();
    auto fail = [&](const char *at, const QString &what) {
        *error = QStringLiteral("XML error at line %1: %2").arg(1 + std::count(begin, at, '\n')).arg(what);
        return false;
    };
    qint64 elements = 0;
    const char *p = begin;
    while (p < end) {
        p = static_cast<const char *>(std::memchr(p, '<', size_t(end - p)));
        if (!p)
            break;
        const char *const tag = p++;
        if (p == end || *p == '/')
            continue;
        if (*p == '?') {
            p = skipPast(p, end, "?>");
            continue;
        }
        if (*p == '!') {
            if (startsWith(p, end, "!--"))
                p = skipPast(p + 3, end, "-->");
            else if (startsWith(p, end, "![CDATA["))
                p = skipPast(p + 8, end, "]]>");
            else if (startsWith(p, end, "!DOCTYPE"))
                return fail(tag, QStringLiteral("document type declarations are not accepted"));
            continue;
        }
        if (++elements > maxNodes) {
            *error = budgetError(maxNodes);
            return false;
        }
        int attributes = 0;
        char quote = 0;
        for (; p < end; ++p) {
            const char c = *p;
            if (quote) {
                if (c == quote)
                    quote = 0;
            } else if (c == '"' || c == '\'') {
                quote = c;
            } else if (c == '=') {
                if (++attributes > kMaxAttributes)
                    return fail(tag, QStringLiteral("an element with more than %1 attributes").arg(kMaxAttributes));
            } else if (c == '>') {
                break;
            }
        }
    }
    return true;
}

bool parseXml(const QByteArray &xml, LightNode *fresh, QString *error, qint64 maxNodes)
{
    // Most files are the writer's own: read them the quick way first.
    {
        QuickXmlReader quick(xml, maxNodes);
        if (quick.read(fresh))
            return true;
        ModuleObjectPrivate::resetRaw(fresh);
        if (quick.overBudget()) {
            *error = budgetError(maxNodes);
            return false;
        }
    }
    if (!prescan(xml, maxNodes, error))
        return false;
    QXmlStreamReader reader(xml);
    std::vector<Frame> stack;
    bool sawRoot = false;
    qint64 nodes = 1;
    auto fail = [&](const QString &what) {
        *error = QStringLiteral("XML error at line %1, column %2: %3")
                     .arg(reader.lineNumber())
                     .arg(reader.columnNumber())
                     .arg(what);
        return false;
    };
    while (!reader.atEnd()) {
        switch (reader.readNext()) {
        case QXmlStreamReader::DTD:
            return fail(QStringLiteral("document type declarations are not accepted"));
        case QXmlStreamReader::EntityReference:
            return fail(QStringLiteral("entity references are not accepted"));
        case QXmlStreamReader::StartElement: {
            if (reader.name() != QLatin1String("node"))
                return fail(QStringLiteral("unexpected element <%1>").arg(excerpt(reader.name())));
            if (int(stack.size()) >= ModuleManager::maxDepth())
                return fail(QStringLiteral("nesting deeper than %1 levels").arg(ModuleManager::maxDepth()));
            const QXmlStreamAttributes attrs = reader.attributes();
            QString name = attrs.value(QLatin1String("name")).toString();
            const QStringRef nameEncoding = attrs.value(QLatin1String("name-encoding"));
            if (!nameEncoding.isEmpty()) {
                if (nameEncoding != QLatin1String("utf16-base64"))
                    return fail(QStringLiteral("unknown name encoding \"%1\"").arg(excerpt(nameEncoding)));
                QString decoded;
                if (!decodeUtf16(name, &decoded))
                    return fail(QStringLiteral("invalid encoded name"));
                name = decoded;
            }
            Frame f;
            if (stack.empty()) {
                if (sawRoot)
                    return fail(QStringLiteral("more than one root element"));
                sawRoot = true;
                f.node = fresh;
            } else {
                if (++nodes > maxNodes) {
                    *error = budgetError(maxNodes);
                    return false;
                }
                Frame &top = stack.back();
                top.sawChild = true;
                f.node = ModuleObjectPrivate::appendRaw(top.node, name);
            }
            f.type = attrs.hasAttribute(QLatin1String("type")) ? attrs.value(QLatin1String("type")).toString()
                                                               : QStringLiteral("null");
            const QStringRef encoding = attrs.value(QLatin1String("encoding"));
            if (!encoding.isEmpty()) {
                if (encoding != QLatin1String("utf16-base64") || f.type != QLatin1String("string"))
                    return fail(QStringLiteral("unknown encoding \"%1\"").arg(excerpt(encoding)));
                f.encoded = true;
            }
            stack.push_back(std::move(f));
            break;
        }
        case QXmlStreamReader::Characters:
            if (stack.empty())
                break;
            if (!stack.back().sawChild)
                stack.back().text += reader.text();
            else if (!reader.isWhitespace())
                return fail(QStringLiteral("text after a child element"));
            break;
        case QXmlStreamReader::EndElement: {
            if (stack.empty())
                return fail(QStringLiteral("unbalanced end element"));
            QVariant v;
            QString why;
            if (!parseValue(stack.back(), &v, &why))
                return fail(why);
            ModuleObjectPrivate::setValueRaw(stack.back().node, v);
            stack.pop_back();
            break;
        }
        default:
            break;
        }
    }
    if (reader.hasError()) {
        if (reader.error() == QXmlStreamReader::PrematureEndOfDocumentError)
            return fail(QStringLiteral("truncated document (%1)").arg(excerpt(reader.errorString(), 200)));
        // Some of the reader's messages quote the input.
        return fail(excerpt(reader.errorString(), 200));
    }
    if (!sawRoot)
        return fail(QStringLiteral("no root element"));
    return true;
}

// The bytes of a file being read. A file of many pallets is tens of megabytes: read into ordinary
// memory, every 4 KiB page of it is a fault of its own, and on a virtual machine those faults cost
// more than reading and parsing the file. Large buffers are therefore asked for in huge pages.
class ReadBuffer
{
public:
    ReadBuffer() = default;
    ReadBuffer(const ReadBuffer &) = delete;
    ReadBuffer &operator=(const ReadBuffer &) = delete;
    ~ReadBuffer()
    {
#ifdef Q_OS_LINUX
        if (m_mapped)
            munmap(m_mapped, m_mappedLength);
#endif
    }

    // Reads up to max bytes. The result refers to this buffer: it must not outlive it.
    QByteArray read(QFile *file, qint64 max)
    {
#ifdef Q_OS_LINUX
        constexpr qint64 kHuge = 2 * 1024 * 1024;
        if (max >= 4 * kHuge && max < INT_MAX) {
            const size_t length = size_t((max + kHuge - 1) / kHuge * kHuge);
            void *p = mmap(nullptr, length, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
            if (p != MAP_FAILED) {
                madvise(p, length, MADV_HUGEPAGE);
                m_mapped = p;
                m_mappedLength = length;
                char *bytes = static_cast<char *>(p);
                qint64 got = 0;
                while (got < max) {
                    const qint64 n = file->read(bytes + got, max - got);
                    if (n <= 0)
                        break;
                    got += n;
                }
                return QByteArray::fromRawData(bytes, int(got));
            }
        }
#endif
        return file->read(max);
    }

private:
    void *m_mapped = nullptr;
    size_t m_mappedLength = 0;
};

} // namespace

ModuleObject *ModuleManager::root()
{
    // Never destroyed: nodes may still be referenced by objects torn down at exit.
    static ModuleObject *const node = new ModuleObject(QString());
    return node;
}

ModuleObject *ModuleManager::emptyMobj()
{
    static ModuleObject *const node = [] {
        auto *n = new ModuleObject(QString());
        ModuleObjectPrivate::markEmptySentinel(n);
        return n;
    }();
    return node;
}

QByteArray ModuleManager::toXml(const ModuleObject *node, bool indent)
{
    if (!node)
        return QByteArray("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n");
    QByteArray out;
    // Growing a buffer of many megabytes step by step costs more than the writing.
    out.reserve(int(qMin<qint64>(qint64(countNodes(node)) * (indent ? 72 : 56) + 64, INT_MAX / 2)));
    writeDocument(out, node, indent);
    return out;
}

bool ModuleManager::fromXml(QObject *sender, ModuleObject *node, const QByteArray &xml, QString *error)
{
    return fromXml(sender, node, xml, error, json::maxJsonNodes());
}

bool ModuleManager::fromXml(QObject *sender, ModuleObject *node, const QByteArray &xml, QString *error,
                            qint64 maxNodes)
{
    QString why;
    bool ok = false;
    if (!node) {
        why = QStringLiteral("no target node");
    } else if (xml.size() > maxXmlBytes()) {
        why = QStringLiteral("XML text of %1 bytes exceeds the limit of %2 bytes").arg(xml.size()).arg(maxXmlBytes());
    } else {
        LightNode fresh;
        ok = parseXml(xml, &fresh, &why, maxNodes);
        if (ok)
            ModuleObjectPrivate::moveInto(sender, node, fresh, true);
    }
    lastErrorRef() = ok ? QString() : why;
    if (error)
        *error = ok ? QString() : why;
    return ok;
}

bool ModuleManager::readFromXmlFile(QObject *sender, ModuleObject *node, const QString &filePath)
{
    QFile file(filePath);
    if (!file.open(QIODevice::ReadOnly))
        return setError(QStringLiteral("cannot open %1: %2").arg(filePath, file.errorString()));
    if (file.size() > maxXmlBytes())
        return setError(QStringLiteral("%1 is %2 bytes, over the limit of %3 bytes")
                            .arg(filePath)
                            .arg(file.size())
                            .arg(maxXmlBytes()));
    // One byte more than the size checked: a file that grew meanwhile is still caught below.
    ReadBuffer buffer;
    const QByteArray data = buffer.read(&file, file.isSequential() ? maxXmlBytes() + 1 : file.size() + 1);
    if (file.error() != QFileDevice::NoError)
        return setError(QStringLiteral("cannot read %1: %2").arg(filePath, file.errorString()));
    QString why;
    if (!fromXml(sender, node, data, &why))
        return setError(QStringLiteral("%1: %2").arg(filePath, why));
    return true;
}

bool ModuleManager::writeToXmlFile(const QString &filePath, const ModuleObject *node, bool indent, bool atomic)
{
    if (!node)
        return setError(QStringLiteral("no node to write"));
    auto fail = [&](const QString &why) { return setError(QStringLiteral("cannot write %1: %2").arg(filePath, why)); };
    // A file the readers would refuse is not written: the file there stays as it is.
    QString why;
    qint64 nodes = 0;
    if (!checkWritable(node, nullptr, 1, json::maxJsonNodes(), &nodes, &why))
        return fail(why);
    if (atomic) {
        // The temporary file is dropped unless everything reached it: the old file is kept. That
        // is also what lets the text go out while it is being made.
        QSaveFile file(filePath);
        if (!file.open(QIODevice::WriteOnly))
            return fail(file.errorString());
        XmlSink sink;
        sink.device = &file;
        sink.limit = maxXmlBytes();
        QByteArray out;
        out.reserve(XmlSink::kSlice + 64 * 1024);
        writeDocument(out, node, indent, &sink);
        if (sink.failed) {
            file.cancelWriting();
            return fail(sink.why);
        }
        if (!file.commit())
            return fail(file.errorString());
    } else {
        const QByteArray data = toXml(node, indent);
        if (data.size() > maxXmlBytes())
            return fail(QStringLiteral("%1 bytes of XML, over the limit of %2 bytes").arg(data.size()).arg(maxXmlBytes()));
        // In place: an error half way leaves a partial file (use the atomic form for that).
        QFile file(filePath);
        if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
            return fail(file.errorString());
        if (file.write(data) != data.size() || !file.flush())
            return fail(file.errorString());
        file.close();
        if (file.error() != QFileDevice::NoError)
            return fail(file.errorString());
    }
    lastErrorRef().clear();
    return true;
}

QString ModuleManager::lastError()
{
    return lastErrorRef();
}

void ModuleManager::resetRoot()
{
    ModuleObject *r = root();
    r->clear(nullptr, false);
    r->setValue(nullptr, QVariant(), false);
}

} // namespace orba
