#include "tsfile.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSet>
#include <QTemporaryDir>
#include <QXmlStreamReader>
#include <QtTest>

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
    QList<TsMessage> m_wanted;
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
    const QList<TsMessage> shipped =
        readTs(QStringLiteral(TPALLET_SOURCE_DIR "/resources/language/tpallet_%1.ts").arg(language), &error);
    QVERIFY2(error.isEmpty(), qPrintable(error));

    QStringList missing = (tsKeys(m_wanted) - tsKeys(shipped)).values();
    missing.sort();
    QVERIFY2(missing.isEmpty(), qPrintable(QStringLiteral("untranslated: ") + missing.join(QLatin1String(" | "))));
    QStringList stale = (tsKeys(shipped) - tsKeys(m_wanted)).values();
    stale.sort();
    QVERIFY2(stale.isEmpty(), qPrintable(QStringLiteral("no longer used: ") + stale.join(QLatin1String(" | "))));
    for (const TsMessage &m : shipped) {
        QVERIFY2(!m.unfinished, qPrintable(m.context + QLatin1String(" :: ") + m.source));
        QVERIFY2(!m.translation.trimmed().isEmpty(), qPrintable(m.context + QLatin1String(" :: ") + m.source));
    }
}

QTEST_GUILESS_MAIN(TestTranslations)
#include "tst_translations.moc"
