#include "tsfile.h"
#include "jogpanel.h"
#include "mainwindow.h"
#include "navigationview.h"
#include "pendanttestutil.h"
#include "shell.h"
#include "shelltranslations.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFile>
#include <QLabel>
#include <QProcess>
#include <QPushButton>
#include <QSet>
#include <QTemporaryDir>
#include <QTranslator>
#include <QXmlStreamReader>
#include <QtTest>

namespace {

const char *const Languages[] = {"cn", "jp", "kr", "ru"};

} // namespace

// The shell's texts in every language: the shipped translations cover what the sources mark, and
// a language chosen while the pendant runs retranslates all of it, the module's navigation entry
// and breadcrumb and Qt's own buttons included.
class TestShellTranslations : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void everyTextTranslated_data();
    void everyTextTranslated();
    void compiledTranslationsLoad_data();
    void compiledTranslationsLoad();
    void qtOwnTextsTranslated_data();
    void qtOwnTextsTranslated();
    void switchingLanguageRetranslatesTheShell_data();
    void switchingLanguageRetranslatesTheShell();

private:
    QList<TsMessage> m_wanted;
    QTemporaryDir m_dir;
    std::unique_ptr<QTemporaryDir> m_data;
};

void TestShellTranslations::initTestCase()
{
    QVERIFY(m_dir.isValid());
    const QString out = m_dir.filePath(QStringLiteral("sources.ts"));
    const QString root = QStringLiteral(PENDANT_SOURCE_DIR);
    // The shell's sources, and the host's message box, which the shell translates.
    QStringList args{QStringLiteral("-silent"), QStringLiteral("-locations"), QStringLiteral("none"),
                     QStringLiteral("-I"), root + QStringLiteral("/host/include")};
    const QDir pendant(root + QStringLiteral("/pendant"));
    for (const QString &file : pendant.entryList({QStringLiteral("*.cpp"), QStringLiteral("*.h")}, QDir::Files))
        args << pendant.filePath(file);
    args << root + QStringLiteral("/host/src/tcore/managerhelper.cpp");
    args << QStringLiteral("-ts") << out;
    QProcess lupdate;
    lupdate.start(QStringLiteral(PENDANT_LUPDATE), args);
    QVERIFY2(lupdate.waitForFinished(120000), qPrintable(lupdate.errorString()));
    QCOMPARE(lupdate.exitCode(), 0);
    QString error;
    m_wanted = readTs(out, &error);
    QVERIFY2(error.isEmpty(), qPrintable(error));
    QVERIFY(m_wanted.size() > 40);
    QVERIFY(tsKeys(m_wanted).contains(QStringLiteral("tcore::ManagerHelper :: Cancel")));
}

void TestShellTranslations::init()
{
    resetHost();
    m_data = std::make_unique<QTemporaryDir>();
}

void TestShellTranslations::cleanup()
{
    tcore::SettingManager::setStr(QStringLiteral("language"), QStringLiteral("en"));
    m_data.reset();
}

void TestShellTranslations::everyTextTranslated_data()
{
    QTest::addColumn<QString>("language");
    for (const char *language : Languages)
        QTest::newRow(language) << QString::fromLatin1(language);
}

void TestShellTranslations::everyTextTranslated()
{
    QFETCH(QString, language);
    QString error;
    const QList<TsMessage> shipped = readTs(
        QStringLiteral(PENDANT_SOURCE_DIR "/pendant/resources/language/tpendant_%1.ts").arg(language), &error);
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
        // Placeholders survive translation.
        for (const char *mark : {"%1", "%2"}) {
            QVERIFY2(m.source.contains(QLatin1String(mark)) == m.translation.contains(QLatin1String(mark)),
                     qPrintable(m.context + QLatin1String(" :: ") + m.source));
        }
    }
}

void TestShellTranslations::compiledTranslationsLoad_data()
{
    everyTextTranslated_data();
}

void TestShellTranslations::compiledTranslationsLoad()
{
    QFETCH(QString, language);
    shelltranslations::install();
    QTranslator translator;
    QVERIFY(translator.load(QStringLiteral(":/tpendant/language/tpendant_%1.qm").arg(language)));
    QVERIFY(!translator.translate("StatusBar", "Power ON").isEmpty());
    QVERIFY(!translator.translate("tcore::ManagerHelper", "Question").isEmpty());
}

void TestShellTranslations::qtOwnTextsTranslated_data()
{
    everyTextTranslated_data();
}

void TestShellTranslations::qtOwnTextsTranslated()
{
    QFETCH(QString, language);
    shelltranslations::install();
    tcore::SettingManager::setStr(QStringLiteral("language"), language);
    QVERIFY2(shelltranslations::qtTranslationLoaded(),
             "Qt's own translations are missing (Debian: qttranslations5-l10n)");
    QDialogButtonBox box(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    QVERIFY(box.button(QDialogButtonBox::Cancel)->text() != QLatin1String("Cancel"));
    QVERIFY(box.button(QDialogButtonBox::Cancel)->text() != QLatin1String("&Cancel"));
    tcore::SettingManager::setStr(QStringLiteral("language"), QStringLiteral("en"));
    QVERIFY(!shelltranslations::qtTranslationLoaded());
}

void TestShellTranslations::switchingLanguageRetranslatesTheShell_data()
{
    QTest::addColumn<QString>("start");
    QTest::newRow("started in English") << "en";
    QTest::newRow("started in Russian") << "ru";
    QTest::newRow("started in Japanese") << "jp";
}

void TestShellTranslations::switchingLanguageRetranslatesTheShell()
{
    QFETCH(QString, start);
    ShellOptions o;
    o.modulesDir = QStringLiteral(TPALLET_MODULE_DIR);
    o.dataDir = m_data->filePath(QStringLiteral("controller"));
    o.language = start;
    o.page = QStringLiteral("tpallet.page");
    Shell shell(o);
    shell.start();
    MainWindow *window = shell.window();
    window->show();
    QVERIFY(EmbeddedLink::waitConnected(true, 10000));
    auto *combo = window->findChild<QComboBox *>(QStringLiteral("cmbLanguage"));
    auto *breadcrumb = window->findChild<QLabel *>(QStringLiteral("lblPageTitle"));
    auto *power = window->findChild<QPushButton *>(QStringLiteral("btnPower"));
    auto *jogTitle = window->jogPanel()->findChild<QLabel *>(QStringLiteral("lblJogTitle"));
    QVERIFY(combo && breadcrumb && power && jogTitle);

    for (const char *code : {"ru", "cn", "jp", "kr", "en", "ru"}) {
        const QString language = QString::fromLatin1(code);
        combo->setCurrentIndex(combo->findData(language));
        QCoreApplication::processEvents();
        QCoreApplication::processEvents();
        const bool english = language == QLatin1String("en");
        auto translated = [english](const char *context, const char *text) {
            const QString t = QCoreApplication::translate(context, text);
            // Outside English every text has a translation of its own.
            return english || t != QLatin1String(text) ? t : QString();
        };

        const QString tray = translated("TPallet", "Tray");
        QVERIFY2(!tray.isEmpty(), code);
        QTreeWidgetItem *entry = window->navigation()->itemForPage(QStringLiteral("tpallet.page"));
        QVERIFY(entry);
        QCOMPARE(entry->text(0), tray);
        const QString path = QStringList{translated("NavigationView", "Robot"), translated("NavigationView", "Pack"), tray}
                                 .join(QStringLiteral(" > "));
        QCOMPARE(breadcrumb->text(), path);
        QCOMPARE(window->navigation()->topLevelItem(0)->text(0), translated("NavigationView", "Home"));
        QCOMPARE(jogTitle->text(), translated("JogPanel", "Jog"));
        QVERIFY(power->text() == translated("StatusBar", "Power ON") || power->text() == translated("StatusBar", "Power OFF"));
        QCOMPARE(window->findChild<QPushButton *>(QStringLiteral("btnAdd"))->text(), translated("PalletPage", "Add"));
        // The page is still found by its name in any language.
        QCOMPARE(window->navigation()->findPage(QStringLiteral("Tray")), QStringLiteral("tpallet.page"));
        QCOMPARE(window->navigation()->findPage(tray), QStringLiteral("tpallet.page"));
    }
    if (start == QLatin1String("ru"))
        QCOMPARE(window->navigation()->itemForPage(QStringLiteral("tpallet.page"))->text(0),
                 QStringLiteral("Паллетирование"));
}

QTEST_MAIN(TestShellTranslations)
#include "tst_shelltranslations.moc"
