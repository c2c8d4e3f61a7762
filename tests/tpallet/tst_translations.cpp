#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSet>
#include <QTemporaryDir>
#include <QXmlStreamReader>
#include <QtTest>

namespace {

struct Message
{
    QString context;
    QString source;
    QString translation;
    bool unfinished = false;
};

QList<Message> readTs(const QString &path, QString *error)
{
    QList<Message> messages;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        *error = file.errorString();
        return messages;
    }
    QXmlStreamReader xml(&file);
    QString context;
    Message current;
    while (!xml.atEnd()) {
        xml.readNext();
        if (!xml.isStartElement())
            continue;
        if (xml.name() == QLatin1String("name")) {
            context = xml.readElementText();
        } else if (xml.name() == QLatin1String("message")) {
            current = Message{context, QString(), QString(), false};
        } else if (xml.name() == QLatin1String("source")) {
            current.source = xml.readElementText();
        } else if (xml.name() == QLatin1String("translation")) {
            current.unfinished = xml.attributes().value(QLatin1String("type")) == QLatin1String("unfinished");
            current.translation = xml.readElementText();
            messages.append(current);
        }
    }
    if (xml.hasError())
        *error = xml.errorString();
    return messages;
}

QSet<QString> keys(const QList<Message> &messages)
{
    QSet<QString> out;
    for (const Message &m : messages)
        out.insert(m.context + QLatin1String(" :: ") + m.source);
    return out;
}

} // namespace

// Every text the module's sources and forms mark for translation has a finished translation in
// each shipped language, and nothing is shipped that the sources no longer use.
class TestTranslations : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void everyTextTranslated_data();
    void everyTextTranslated();

private:
    QList<Message> m_wanted;
    QTemporaryDir m_dir;
};

void TestTranslations::initTestCase()
{
    QVERIFY(m_dir.isValid());
    const QString out = m_dir.filePath(QStringLiteral("sources.ts"));
    const QString root = QStringLiteral(TPALLET_SOURCE_DIR);
    QStringList args{QStringLiteral("-silent"), QStringLiteral("-locations"), QStringLiteral("none")};
    for (const char *dir : {"module", "pages", "wizards", "dialogs", "forms"}) {
        if (QDir(root + QLatin1Char('/') + QLatin1String(dir)).exists())
            args << root + QLatin1Char('/') + QLatin1String(dir);
    }
    args << QStringLiteral("-ts") << out;
    QProcess lupdate;
    lupdate.start(QStringLiteral(TPALLET_LUPDATE), args);
    QVERIFY2(lupdate.waitForFinished(120000), qPrintable(lupdate.errorString()));
    QCOMPARE(lupdate.exitCode(), 0);
    QString error;
    m_wanted = readTs(out, &error);
    QVERIFY2(error.isEmpty(), qPrintable(error));
    QVERIFY(m_wanted.size() > 20);
}

void TestTranslations::everyTextTranslated_data()
{
    QTest::addColumn<QString>("language");
    for (const char *language : {"cn", "jp", "kr", "ru"})
        QTest::newRow(language) << QString::fromLatin1(language);
}

void TestTranslations::everyTextTranslated()
{
    QFETCH(QString, language);
    QString error;
    const QList<Message> shipped =
        readTs(QStringLiteral(TPALLET_SOURCE_DIR "/resources/language/tpallet_%1.ts").arg(language), &error);
    QVERIFY2(error.isEmpty(), qPrintable(error));

    QStringList missing = (keys(m_wanted) - keys(shipped)).values();
    missing.sort();
    QVERIFY2(missing.isEmpty(), qPrintable(QStringLiteral("untranslated: ") + missing.join(QLatin1String(" | "))));
    QStringList stale = (keys(shipped) - keys(m_wanted)).values();
    stale.sort();
    QVERIFY2(stale.isEmpty(), qPrintable(QStringLiteral("no longer used: ") + stale.join(QLatin1String(" | "))));
    for (const Message &m : shipped) {
        QVERIFY2(!m.unfinished, qPrintable(m.context + QLatin1String(" :: ") + m.source));
        QVERIFY2(!m.translation.trimmed().isEmpty(), qPrintable(m.context + QLatin1String(" :: ") + m.source));
    }
}

QTEST_GUILESS_MAIN(TestTranslations)
#include "tst_translations.moc"
