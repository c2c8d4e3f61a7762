// The JSON readers (json::read into a tree, json::toVariant) on arbitrary bytes. Besides the
// sanitizers it checks that both readers accept and refuse alike (they differ only on "@value",
// which means something to the tree reader alone), that refusals say the same and stay short, and
// that what is read writes back and reads back the same.
#include <orba/json.h>
#include <orba/moduleobject.h>

#include <QByteArray>
#include <QString>
#include <QVariant>

#include <cstdint>
#include <cstdio>
#include <cstdlib>

using orba::ModuleObject;

namespace {

[[noreturn]] void failed(const char *what, const QString &detail)
{
    std::fprintf(stderr, "fuzz_json: %s: %s\n", what, qPrintable(detail.left(500)));
    std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray text = QByteArray::fromRawData(reinterpret_cast<const char *>(data), int(size));

    ModuleObject tree(QStringLiteral("target"));
    QString treeError;
    const bool treeOk = orba::json::read(nullptr, &tree, text, &treeError);
    bool variantOk = false;
    QString variantError;
    const QVariant variant = orba::json::toVariant(text, &variantOk, &variantError);

    for (const QString *error : {&treeError, &variantError}) {
        if (error->size() > 400)
            failed("a long message", *error);
    }
    if (!treeOk && treeError.isEmpty())
        failed("a refusal without a message", QString());
    if (!variantOk && variantError.isEmpty())
        failed("a refusal without a message", QString());
    const bool aboutValue = treeError.contains(QLatin1String("@value"));
    if (treeOk && !variantOk)
        failed("the variant reader refuses what the tree reader reads", variantError);
    if (!treeOk && variantOk && !aboutValue)
        failed("the tree reader refuses what the variant reader reads", treeError);
    if (!treeOk && !variantOk && !aboutValue && treeError != variantError) {
        // Only the budgets are worded apart.
        if (!treeError.endsWith(QLatin1String(" nodes")) || !variantError.endsWith(QLatin1String(" values")))
            failed("the readers refuse in different words", treeError + QStringLiteral(" | ") + variantError);
    }

    if (treeOk) {
        for (const bool compact : {true, false}) {
            const QByteArray again = orba::json::write(&tree, compact);
            ModuleObject back(QStringLiteral("target"));
            QString error;
            if (!orba::json::read(nullptr, &back, again, &error))
                failed("a tree read does not read back", error);
            if (!back.equals(&tree))
                failed("a tree read comes back different", QString::fromUtf8(again.left(200)));
        }
    }
    if (variantOk) {
        const QByteArray once = orba::json::fromVariant(variant);
        bool ok = false;
        QString error;
        const QByteArray twice = orba::json::fromVariant(orba::json::toVariant(once, &ok, &error));
        if (!ok)
            failed("a variant written does not read back", error);
        if (twice != once)
            failed("a variant comes back different", QString::fromUtf8(once.left(200)));
    }
    return 0;
}
