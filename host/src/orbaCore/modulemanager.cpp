#include "orba/modulemanager.h"

#include "moduleobject_p.h"
#include "numbers_p.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <cmath>
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

// A carriage return would come back as a line feed unless written as a reference.
void writeText(QXmlStreamWriter &w, const QString &text)
{
    int start = 0;
    for (;;) {
        const int cr = text.indexOf(QLatin1Char('\r'), start);
        if (cr < 0) {
            w.writeCharacters(start == 0 ? text : text.mid(start));
            return;
        }
        w.writeCharacters(text.mid(start, cr - start));
        w.writeEntityReference(QStringLiteral("#13"));
        start = cr + 1;
    }
}

QString doubleText(double d)
{
    if (std::isnan(d))
        return QStringLiteral("nan");
    if (std::isinf(d))
        return d > 0 ? QStringLiteral("inf") : QStringLiteral("-inf");
    QByteArray out;
    numbers::appendDouble(out, d);
    return QString::fromLatin1(out);
}

void writeNode(QXmlStreamWriter &w, const ModuleObject *node)
{
    w.writeStartElement(QStringLiteral("node"));
    w.writeAttribute(QStringLiteral("name"), node->name());
    const QVariant v = node->value();
    QString type;
    QString text;
    bool encoded = false;
    switch (v.userType()) {
    case QMetaType::UnknownType:
        type = QStringLiteral("null");
        break;
    case QMetaType::Int:
    case QMetaType::LongLong:
        type = QStringLiteral("int");
        text = QString::number(v.toLongLong());
        break;
    case QMetaType::Double:
        type = QStringLiteral("double");
        text = doubleText(v.toDouble());
        break;
    case QMetaType::Bool:
        type = QStringLiteral("bool");
        text = v.toBool() ? QStringLiteral("true") : QStringLiteral("false");
        break;
    default:
        type = QStringLiteral("string");
        text = v.toString();
        encoded = needsEncoding(text);
        break;
    }
    w.writeAttribute(QStringLiteral("type"), type);
    if (encoded) {
        w.writeAttribute(QStringLiteral("encoding"), QStringLiteral("utf16-base64"));
        text = QString::fromLatin1(encodeUtf16(text));
    }
    // Written even when empty: it closes the start tag, so no indentation gets into the value.
    if (v.isValid())
        writeText(w, text);
    for (int i = 0; i < node->cmobjCount(); ++i)
        writeNode(w, node->c(i));
    w.writeEndElement();
}

struct Frame
{
    ModuleObject *node;
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
            *why = QStringLiteral("\"%1\" is not an int").arg(f.text);
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
        } else if (t.isEmpty() || !numbers::parseDouble(t.constData(), t.constData() + t.size(), &d)) {
            *why = QStringLiteral("\"%1\" is not a double").arg(f.text);
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
            *why = QStringLiteral("\"%1\" is not a bool").arg(f.text);
            return false;
        }
        return true;
    }
    *why = QStringLiteral("unknown type \"%1\"").arg(type);
    return false;
}

bool parseXml(const QByteArray &xml, ModuleObject *fresh, QString *error)
{
    QXmlStreamReader reader(xml);
    std::vector<Frame> stack;
    bool sawRoot = false;
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
                return fail(QStringLiteral("unexpected element <%1>").arg(reader.name()));
            if (int(stack.size()) >= ModuleManager::maxDepth())
                return fail(QStringLiteral("nesting deeper than %1 levels").arg(ModuleManager::maxDepth()));
            const QXmlStreamAttributes attrs = reader.attributes();
            Frame f;
            if (stack.empty()) {
                if (sawRoot)
                    return fail(QStringLiteral("more than one root element"));
                sawRoot = true;
                f.node = fresh;
            } else {
                Frame &top = stack.back();
                top.sawChild = true;
                f.node = ModuleObjectPrivate::appendRaw(top.node, attrs.value(QLatin1String("name")).toString());
            }
            f.type = attrs.hasAttribute(QLatin1String("type")) ? attrs.value(QLatin1String("type")).toString()
                                                               : QStringLiteral("null");
            const QStringRef encoding = attrs.value(QLatin1String("encoding"));
            if (!encoding.isEmpty()) {
                if (encoding != QLatin1String("utf16-base64") || f.type != QLatin1String("string"))
                    return fail(QStringLiteral("unknown encoding \"%1\"").arg(encoding));
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
            return fail(QStringLiteral("truncated document (%1)").arg(reader.errorString()));
        return fail(reader.errorString());
    }
    if (!sawRoot)
        return fail(QStringLiteral("no root element"));
    return true;
}

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
    QByteArray out;
    QXmlStreamWriter w(&out);
    w.setAutoFormatting(indent);
    w.setAutoFormattingIndent(2);
    w.writeStartDocument();
    if (node)
        writeNode(w, node);
    w.writeEndDocument();
    return out;
}

bool ModuleManager::fromXml(QObject *sender, ModuleObject *node, const QByteArray &xml, QString *error)
{
    QString why;
    bool ok = false;
    if (!node) {
        why = QStringLiteral("no target node");
    } else if (xml.size() > maxXmlBytes()) {
        why = QStringLiteral("XML text of %1 bytes exceeds the limit of %2 bytes").arg(xml.size()).arg(maxXmlBytes());
    } else {
        ModuleObject fresh;
        ok = parseXml(xml, &fresh, &why);
        if (ok)
            ModuleObjectPrivate::moveInto(sender, node, &fresh, true);
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
    const QByteArray data = file.read(maxXmlBytes() + 1);
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
    const QByteArray data = toXml(node, indent);
    if (atomic) {
        QSaveFile file(filePath);
        if (!file.open(QIODevice::WriteOnly))
            return setError(QStringLiteral("cannot write %1: %2").arg(filePath, file.errorString()));
        if (file.write(data) != data.size() || !file.commit())
            return setError(QStringLiteral("cannot write %1: %2").arg(filePath, file.errorString()));
    } else {
        QFile file(filePath);
        if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
            return setError(QStringLiteral("cannot write %1: %2").arg(filePath, file.errorString()));
        if (file.write(data) != data.size() || !file.flush())
            return setError(QStringLiteral("cannot write %1: %2").arg(filePath, file.errorString()));
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
