#include "palletfixture.h"

#include "module/modulelog.h"
#include "module/tpallet.h"
#include "pages/palletpage.h"

#include <dwel/bfactory.h>
#include <dwel/centerwidget.h>
#include <kx/kx.h>
#include <orba/creatormanager.h>
#include <orba/names.h>

#include <QFile>
#include <QPushButton>
#include <QRegularExpression>
#include <QTableWidget>
#include <QtTest>

namespace {

const QRegularExpression kTimeTag(QStringLiteral("^\\[(S|E|I)\\|\\d\\d/\\d\\d \\d\\d:\\d\\d:\\d\\d\\.\\d\\d\\d\\]$"));

orba::ModuleObject *navEntryOf(const QString &title)
{
    orba::ModuleObject *pages = orba::m(QStringLiteral("tnav.pages"));
    for (int i = 0; i < pages->cmobjCount(); ++i) {
        if (pages->c(i)->c(QStringLiteral("title"), false)->getString() == title)
            return pages->c(i);
    }
    return orba::ModuleManager::emptyMobj();
}

} // namespace

class TstTPallet : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_fx.setUp(); }
    void cleanup() { m_fx.tearDown(); }

    void registersFactoryAndPluginNumber();
    void registersComponentVersions_data();
    void registersComponentVersions();
    void apiLevelIsOne();
    void versionSubtractsTwoFromTheComponentSum_data();
    void versionSubtractsTwoFromTheComponentSum();
    void nameIsTheModuleKey();
    void creationWritesStartupLine();
    void creationRegistersResourceAliasAndTemplate();
    void resourcesAreBundled_data();
    void resourcesAreBundled();
    void initAnnouncesPageUnderRobotPack();
    void setupAddsPageUnderItsNavigationName();
    void moduleLogLinesHaveColourTagAndFile_data();
    void moduleLogLinesHaveColourTagAndFile();

private:
    PalletFixture m_fx;
};

void TstTPallet::registersFactoryAndPluginNumber()
{
    QVERIFY(bfactory()->has(QStringLiteral("tpallet")));
    QVERIFY(orba::pluginManager()->has(QStringLiteral("tpallet")));
    QCOMPARE(orba::pluginManager()->create(QStringLiteral("tpallet")), 11);

    std::unique_ptr<dwel::BModule> created(bfactory()->create(QStringLiteral("tpallet"), nullptr));
    QVERIFY(created);
    QVERIFY(qobject_cast<TPallet *>(created.get()));
}

void TstTPallet::registersComponentVersions_data()
{
    QTest::addColumn<QString>("component");
    QTest::addColumn<int>("number");
    QTest::newRow("pallet page") << "pallet.page" << 20;
    QTest::newRow("import/export dialog") << "pallet.dialog.imexport" << 1;
    QTest::newRow("point adjust wizard") << "wizard.pointadjust" << 3;
}

void TstTPallet::registersComponentVersions()
{
    QFETCH(QString, component);
    QFETCH(int, number);
    const QString key = mName(QStringLiteral("tpallet"), component);
    QVERIFY(orba::versionManager()->has(key));
    QCOMPARE(orba::versionManager()->create(key), number);
}

void TstTPallet::apiLevelIsOne()
{
    QCOMPARE(tpallet::api(), 1);
}

void TstTPallet::versionSubtractsTwoFromTheComponentSum_data()
{
    QTest::addColumn<int>("sum");
    QTest::addColumn<QString>("expected");
    QTest::newRow("shipped components (1 + 20 + 3)") << -1 << "1.1.22";
    QTest::newRow("sum 2 gives 0") << 2 << "1.1.0";
    QTest::newRow("sum 1 is not clamped") << 1 << "1.1.-1";
}

void TstTPallet::versionSubtractsTwoFromTheComponentSum()
{
    QFETCH(int, sum);
    QFETCH(QString, expected);
    const QStringList components{QStringLiteral("pallet.page"), QStringLiteral("pallet.dialog.imexport"),
                                 QStringLiteral("wizard.pointadjust")};
    QList<int> saved;
    if (sum >= 0) {
        for (const QString &component : components) {
            const QString key = mName(QStringLiteral("tpallet"), component);
            saved << orba::versionManager()->create(key);
            orba::versionManager()->unregist(key);
        }
        orba::versionManager()->regist(QStringLiteral("tpallet.probe"), [sum] { return sum; });
    }
    QCOMPARE(ver(QStringLiteral("tpallet"), true), sum >= 0 ? sum : 24);
    const QString text = tpallet::version();
    if (sum >= 0) {
        orba::versionManager()->unregist(QStringLiteral("tpallet.probe"));
        for (int i = 0; i < components.size(); ++i) {
            const int number = saved.at(i);
            orba::versionManager()->regist(mName(QStringLiteral("tpallet"), components.at(i)), [number] { return number; });
        }
    }
    QCOMPARE(text, expected);
}

void TstTPallet::nameIsTheModuleKey()
{
    QCOMPARE(m_fx.module()->name(), QStringLiteral("tpallet"));
}

void TstTPallet::creationWritesStartupLine()
{
    // The fixture created one module already; the line of a second creation is checked whole.
    const int before = m_fx.logLines().size();
    std::unique_ptr<dwel::BModule> created(bfactory()->create(QStringLiteral("tpallet"), nullptr));
    QCOMPARE(m_fx.logLines().size(), before + 1);
    const orba::LogLine line = m_fx.logLines().last();
    QCOMPARE(line.colour, QStringLiteral("\033[35m"));
    QVERIFY2(kTimeTag.match(line.tag).hasMatch(), qPrintable(line.tag));
    QVERIFY(line.tag.startsWith(QLatin1String("[S|")));
    // The key, " v", and the version with no separator after the "v".
    QCOMPARE(line.message, QStringLiteral("tpallet v") + tpallet::version());
    QCOMPARE(line.message, QStringLiteral("tpallet v1.1.22"));
    QVERIFY2(line.filePath.endsWith(QLatin1String("log/tpallet.log")), qPrintable(line.filePath));
}

void TstTPallet::creationRegistersResourceAliasAndTemplate()
{
    QVERIFY(tcore::ManagerHelper::instance()->qrcAliases().contains(QStringLiteral("tpallet")));
    QCOMPARE(kx::templatePath(QStringLiteral("tpallet"), QStringLiteral("tpallet")),
             QStringLiteral(":/tpallet/template/tpallet.json"));
    QVERIFY(orba::ModuleManager::root()->hasRmobj(QStringLiteral("tpallet.pallets")));
    QVERIFY(orba::ModuleManager::root()->hasRmobj(QStringLiteral("tpallet.default")));
    QVERIFY(orba::ModuleManager::root()->hasRmobj(QStringLiteral("tpallet.trigger")));
    QCOMPARE(tpallet::palletsNode()->size(), 0);
}

void TstTPallet::resourcesAreBundled_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("template") << ":/tpallet/template/tpallet.json";
    QTest::newRow("chinese") << ":/tpallet/language/tpallet_cn.qm";
    QTest::newRow("japanese") << ":/tpallet/language/tpallet_jp.qm";
    QTest::newRow("korean") << ":/tpallet/language/tpallet_kr.qm";
    QTest::newRow("russian") << ":/tpallet/language/tpallet_ru.qm";
}

void TstTPallet::resourcesAreBundled()
{
    QFETCH(QString, path);
    QFile file(path);
    QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(path));
    QVERIFY(file.size() > 0);
}

void TstTPallet::initAnnouncesPageUnderRobotPack()
{
    m_fx.module()->init();
    orba::ModuleObject *entry = navEntryOf(QStringLiteral("Tray"));
    QVERIFY(!entry->isEmpty());
    QCOMPARE(entry->c(QStringLiteral("parent"), false)->getString(), QStringLiteral("robot.pack"));
    QCOMPARE(entry->c(QStringLiteral("module"), false)->getString(), QStringLiteral("tpallet"));
    QCOMPARE(entry->c(QStringLiteral("position"), false)->getInt(0), -1);
    QCOMPARE(entry->c(QStringLiteral("nav"), false)->getString(), QStringLiteral("tpallet.page"));
    const QString keywords = entry->c(QStringLiteral("key"), false)->getString();
    QVERIFY2(keywords.startsWith(QLatin1String("tray, ")), qPrintable(keywords));
    QVERIFY(keywords.size() > 6);
    // Nothing is built before setup().
    QVERIFY(!m_fx.module()->page());
}

void TstTPallet::setupAddsPageUnderItsNavigationName()
{
    m_fx.module()->init();
    m_fx.module()->setup();
    PalletPage *page = m_fx.module()->page();
    QVERIFY(page);
    QVERIFY(m_fx.module()->submodules().contains(page));
    QCOMPARE(page->title(), QStringLiteral("Tray"));
    QCOMPARE(page->key(), QStringLiteral("tpallet"));

    const QString nav = navEntryOf(QStringLiteral("Tray"))->c(QStringLiteral("nav"), false)->getString();
    dwel::CenterWidget *center = instantiatedCenterWidget(m_fx.module());
    QVERIFY(center);
    QVERIFY(center->hasPage(nav));
    QCOMPARE(center->page(nav), page->wgt());
    QVERIFY(page->wgt()->findChild<QTableWidget *>(QStringLiteral("tableWidget")));
    QVERIFY(page->wgt()->findChild<QPushButton *>(QStringLiteral("btnAdd")));
}

void TstTPallet::moduleLogLinesHaveColourTagAndFile_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("colour");
    QTest::addColumn<QString>("tagStart");
    QTest::newRow("error") << 0 << "\033[31m" << "[E|";
    QTest::newRow("information") << 1 << "\033[36m" << "[I|";
    QTest::newRow("start-up") << 2 << "\033[35m" << "[S|";
}

void TstTPallet::moduleLogLinesHaveColourTagAndFile()
{
    QFETCH(int, kind);
    QFETCH(QString, colour);
    QFETCH(QString, tagStart);
    const QString message = QStringLiteral("probe line %1").arg(kind);
    if (kind == 0)
        tpallet::logError(message);
    else if (kind == 1)
        tpallet::logInfo(message);
    else
        tpallet::logStartup(message);
    const orba::LogLine line = m_fx.logLines().last();
    QCOMPARE(line.message, message);
    QCOMPARE(line.colour, colour);
    QVERIFY(line.tag.startsWith(tagStart));
    QVERIFY2(kTimeTag.match(line.tag).hasMatch(), qPrintable(line.tag));
    QFile file(line.filePath);
    QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(line.filePath));
    const QString content = QString::fromUtf8(file.readAll());
    QVERIFY(content.contains(line.tag + QLatin1Char(' ') + message));
}

QTEST_MAIN(TstTPallet)
#include "tst_tpallet.moc"
