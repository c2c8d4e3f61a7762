// The XML file reader (ModuleManager::fromXml) on arbitrary bytes. Besides the sanitizers it checks
// that whatever is read writes back and reads back as the same tree, that the quick reader and the
// general reader agree, and that a refusal comes with a short message.
#include <orba/modulemanager.h>
#include <orba/moduleobject.h>

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <cstdio>
#include <cstdlib>

using orba::ModuleManager;
using orba::ModuleObject;

namespace {

[[noreturn]] void failed(const char *what, const QString &detail)
{
    std::fprintf(stderr, "fuzz_xml: %s: %s\n", what, qPrintable(detail.left(500)));
    std::abort();
}

// The same document with a comment before the root element, which only the general reader reads;
// empty when the document does not start the usual way.
QByteArray throughGeneralReader(const QByteArray &xml)
{
    int at = 0;
    static const QByteArray decl("<?xml version=\"1.0\" encoding=\"UTF-8\"?>");
    if (xml.startsWith(decl))
        at = decl.size();
    while (at < xml.size() && (xml[at] == ' ' || xml[at] == '\n' || xml[at] == '\t'))
        ++at;
    if (!xml.mid(at).startsWith("<node"))
        return QByteArray();
    QByteArray general = xml;
    general.insert(at, "<!-- general -->");
    return general;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray xml = QByteArray::fromRawData(reinterpret_cast<const char *>(data), int(size));
    ModuleObject target(QStringLiteral("target"));
    QString error;
    const bool ok = ModuleManager::fromXml(nullptr, &target, xml, &error);
    if (!ok && (error.isEmpty() || error.size() > 400))
        failed("refusal without a short message", error);

    const QByteArray general = throughGeneralReader(xml);
    if (!general.isEmpty()) {
        ModuleObject other(QStringLiteral("target"));
        QString otherError;
        const bool otherOk = ModuleManager::fromXml(nullptr, &other, general, &otherError);
        if (otherOk != ok)
            failed("the quick and the general reader disagree", ok ? otherError : error);
        if (ok && !other.equals(&target))
            failed("the quick and the general reader built different trees", QString::fromUtf8(xml.left(200)));
    }

    if (ok) {
        for (const bool indent : {false, true}) {
            const QByteArray again = ModuleManager::toXml(&target, indent);
            ModuleObject back(QStringLiteral("target"));
            if (!ModuleManager::fromXml(nullptr, &back, again, &error))
                failed("a tree read does not read back", error);
            if (!back.equals(&target))
                failed("a tree read comes back different", QString::fromUtf8(again.left(200)));
        }
    }
    return 0;
}
