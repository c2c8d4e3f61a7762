#include <kx/globaluniqueptr.h>
#include <kx/kx.h>

#include <dwel/bmodule.h>
#include <orba/modulemanager.h>
#include <orba/moduleobject.h>

#include <QImage>
#include <QPainter>
#include <QPointer>
#include <QWidget>
#include <QtTest>

#include <memory>

using UniqueHandle = std::shared_ptr<kx::GlobalUniquePtr<QWidget>>;

namespace {

class NamedModule : public dwel::BModule
{
public:
    QString name() const override { return QStringLiteral("tstmodule"); }
};

// Gives `widget` the registry entry the way module dialogs do: the handle rides on the widget.
void registerUnique(const QString &key, QWidget *widget)
{
    auto handle = std::make_shared<kx::GlobalUniquePtr<QWidget>>(key, widget);
    widget->setProperty("unique", QVariant::fromValue(handle));
}

} // namespace

class TestKx : public QObject
{
    Q_OBJECT

private slots:
    void init() { orba::ModuleManager::resetRoot(); }
    void cleanup() { orba::ModuleManager::resetRoot(); }

    void templatePathFormat();
    void globalNodeCreates();
    void globalNodeRejectsEmptySegments();
    void registerPageAppendsEntries();
    void fromNodeVector_data();
    void fromNodeVector();
    void pixmapTintKeepsAlpha();
    void pixmapFromResource();
    void hostIconsExist_data();
    void hostIconsExist();
    void defaultThemeIsShipped();
    void uniqueObjectRegistry();
    void uniqueHandleReleasesOnWidgetDeath();
    void uniqueHandleKeepsNewerWidget();
    void uniqueHandleMetaTypeRegistered();
};

void TestKx::templatePathFormat()
{
    QCOMPARE(kx::templatePath(QStringLiteral("tpallet"), QStringLiteral("tpallet")),
             QStringLiteral(":/tpallet/template/tpallet.json"));
}

void TestKx::globalNodeCreates()
{
    QVERIFY(orba::m(QStringLiteral("tpallet.dialog"))->isEmpty());
    orba::ModuleObject *node = kx::globalNode(QStringLiteral("tpallet.dialog"));
    QVERIFY(!node->isEmpty());
    QCOMPARE(node->name(), QStringLiteral("dialog"));
    QCOMPARE(orba::m(QStringLiteral("tpallet.dialog")), node);
    QCOMPARE(kx::globalNode(QStringLiteral("tpallet.dialog")), node);
    QCOMPARE(orba::m(QStringLiteral("tpallet"))->cmobjCount(), 1);
}

void TestKx::globalNodeRejectsEmptySegments()
{
    QVERIFY(kx::globalNode(QStringLiteral("a..b"))->isEmpty());
    QVERIFY(kx::globalNode(QStringLiteral(".a"))->isEmpty());
}

void TestKx::registerPageAppendsEntries()
{
    NamedModule module;
    orba::ModuleObject *first = kx::tnav::registerPage(&module, QStringLiteral("Tray"), QStringLiteral("robot.pack"),
                                                       QString(), -1);
    orba::ModuleObject *second = kx::tnav::registerPage(&module, QStringLiteral("Other"), QStringLiteral("robot"),
                                                        QStringLiteral(":/tormo/images/nav/robot.png"), 2);
    orba::ModuleObject *pages = orba::m(QStringLiteral("tnav.pages"));
    QCOMPARE(pages->size(), 2);
    QVERIFY(pages->isArray());
    QCOMPARE(pages->c(0), first);
    QCOMPARE(first->name(), QStringLiteral("#0"));
    QCOMPARE(second->name(), QStringLiteral("#1"));
    QCOMPARE(first->r(QStringLiteral("title"))->getString(), QStringLiteral("Tray"));
    QCOMPARE(first->r(QStringLiteral("parent"))->getString(), QStringLiteral("robot.pack"));
    QCOMPARE(first->r(QStringLiteral("module"))->getString(), QStringLiteral("tstmodule"));
    QCOMPARE(first->r(QStringLiteral("position"))->getInt(), -1);
    QCOMPARE(second->r(QStringLiteral("icon"))->getString(), QStringLiteral(":/tormo/images/nav/robot.png"));

    // The module names its page on the entry; the setter hands back the entry for the next write.
    first->set(nullptr, QStringLiteral("nav"), QStringLiteral("tpallet.page"))
        ->set(nullptr, QStringLiteral("key"), QStringLiteral("tray, pallet"));
    QCOMPARE(orba::m(QStringLiteral("tnav.pages.#0.nav"))->getString(), QStringLiteral("tpallet.page"));
    QCOMPARE(orba::m(QStringLiteral("tnav.pages.#0.key"))->getString(), QStringLiteral("tray, pallet"));
}

void TestKx::fromNodeVector_data()
{
    QTest::addColumn<QString>("json");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<QVector3D>("expected");
    const QVector3D untouched(9, 9, 9);
    QTest::newRow("three reals") << "[0.5,-1.25,2.0]" << true << QVector3D(0.5f, -1.25f, 2.0f);
    QTest::newRow("three ints") << "[1,2,3]" << true << QVector3D(1, 2, 3);
    QTest::newRow("two elements") << "[1,2]" << false << untouched;
    QTest::newRow("four elements") << "[1,2,3,4]" << false << untouched;
    QTest::newRow("object of three") << R"({"x":1,"y":2,"z":3})" << false << untouched;
    QTest::newRow("plain value") << "7" << false << untouched;
}

void TestKx::fromNodeVector()
{
    QFETCH(QString, json);
    QFETCH(bool, ok);
    QFETCH(QVector3D, expected);
    orba::ModuleObject node;
    QVERIFY(node.importFromJson(nullptr, json.toUtf8()));
    QVector3D v(9, 9, 9);
    QCOMPARE(kx::format::fromNode<QVector3D>(&node, v), ok);
    QCOMPARE(v, expected);
    QVector3D w(9, 9, 9);
    QVERIFY(!kx::format::fromNode<QVector3D>(orba::ModuleManager::emptyMobj(), w));
}

void TestKx::pixmapTintKeepsAlpha()
{
    QImage source(4, 1, QImage::Format_ARGB32);
    source.setPixel(0, 0, qRgba(0, 0, 0, 0));
    source.setPixel(1, 0, qRgba(64, 64, 64, 255));
    source.setPixel(2, 0, qRgba(200, 10, 10, 128));
    source.setPixel(3, 0, qRgba(10, 200, 10, 30));

    const QImage tinted = kx::ttheme::pixmap(QPixmap::fromImage(source), QColor(Qt::white))
                              .toImage()
                              .convertToFormat(QImage::Format_ARGB32);
    QCOMPARE(tinted.size(), source.size());
    const int alphas[4] = {0, 255, 128, 30};
    for (int x = 0; x < 4; ++x) {
        const QRgb p = tinted.pixel(x, 0);
        QCOMPARE(qAlpha(p), alphas[x]);
        if (alphas[x] > 0) {
            QCOMPARE(qRed(p), 255);
            QCOMPARE(qGreen(p), 255);
            QCOMPARE(qBlue(p), 255);
        }
    }
    QVERIFY(kx::ttheme::pixmap(QPixmap(), QColor(Qt::white)).isNull());
}

void TestKx::pixmapFromResource()
{
    const QPixmap tinted = kx::ttheme::pixmap(QStringLiteral(":/tormo/images/project/add.png"), QColor(255, 0, 0));
    QVERIFY(!tinted.isNull());
    const QImage image = tinted.toImage().convertToFormat(QImage::Format_ARGB32);
    int opaque = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QRgb p = image.pixel(x, y);
            if (qAlpha(p) > 0) {
                ++opaque;
                QCOMPARE(qRed(p), 255);
                QCOMPARE(qGreen(p), 0);
            }
        }
    }
    QVERIFY(opaque > 0);
    QVERIFY(kx::ttheme::pixmap(QStringLiteral(":/tormo/images/none.png"), QColor(Qt::white)).isNull());
}

void TestKx::hostIconsExist_data()
{
    QTest::addColumn<QString>("path");
    for (const char *p : {":/tormo/images/project/import.png", ":/tormo/images/project/export.png",
                          ":/tormo/images/project/add.png", ":/tormo/images/project/edit.png",
                          ":/tormo/images/project/remove.png", ":/tormo/images/body/tool.png",
                          ":/tormo/images/nav/robot.png", ":/tormo/images/nav/pack.png"})
        QTest::newRow(p) << QString::fromLatin1(p);
}

void TestKx::hostIconsExist()
{
    QFETCH(QString, path);
    const QImage image(path);
    QVERIFY2(!image.isNull(), qPrintable(path));
    QCOMPARE(image.size(), QSize(64, 64));
    QVERIFY(image.hasAlphaChannel());
    const QImage argb = image.convertToFormat(QImage::Format_ARGB32);
    QCOMPARE(qAlpha(argb.pixel(0, 0)), 0);
    bool drawn = false;
    for (int y = 0; y < 64 && !drawn; ++y)
        for (int x = 0; x < 64 && !drawn; ++x)
            drawn = qAlpha(argb.pixel(x, y)) == 255;
    QVERIFY(drawn);
}

void TestKx::defaultThemeIsShipped()
{
    QFile theme(QStringLiteral(":/tormo/theme/default.qss"));
    QVERIFY(theme.open(QIODevice::ReadOnly));
    const QString sheet = QString::fromUtf8(theme.readAll());
    // Applying it changes nothing visible but must be accepted without a parse warning.
    QWidget probe;
    probe.setStyleSheet(sheet);
    probe.ensurePolished();
    QCOMPARE(probe.styleSheet(), sheet);
}

void TestKx::uniqueObjectRegistry()
{
    const QString key = QStringLiteral("tpallet.dialog");
    QCOMPARE(kx::uniqueObject(key), nullptr);
    QObject a, b;
    kx::setUniqueObject(key, &a);
    QCOMPARE(kx::uniqueObject(key), &a);
    QCOMPARE(orba::m(key)->value().value<QObject *>(), &a);

    kx::releaseUniqueObject(key, &b); // not the holder: nothing happens
    QCOMPARE(kx::uniqueObject(key), &a);
    kx::releaseUniqueObject(key, &a);
    QCOMPARE(kx::uniqueObject(key), nullptr);
    QVERIFY(orba::m(key)->isNull());

    {
        QObject temporary;
        kx::setUniqueObject(key, &temporary);
        QCOMPARE(kx::uniqueObject(key), &temporary);
    }
    QCOMPARE(kx::uniqueObject(key), nullptr);
}

void TestKx::uniqueHandleReleasesOnWidgetDeath()
{
    const QString key = QStringLiteral("tpallet.dialog");
    auto *widget = new QWidget;
    registerUnique(key, widget);
    QCOMPARE(kx::uniqueObject(key), widget);
    const UniqueHandle handle = widget->property("unique").value<UniqueHandle>();
    QVERIFY(handle);
    QCOMPARE(handle->get(), widget);
    QCOMPARE(handle->key(), key);

    QSignalSpy changed(orba::m(key), &orba::ModuleObject::changed);
    delete widget;
    QCOMPARE(kx::uniqueObject(key), nullptr);
    QVERIFY(orba::m(key)->isNull());
    QVERIFY(changed.count() >= 1);
    QCOMPARE(handle->get(), nullptr);
}

void TestKx::uniqueHandleKeepsNewerWidget()
{
    const QString key = QStringLiteral("tpallet.move.dialog");
    auto *older = new QWidget;
    registerUnique(key, older);
    auto *newer = new QWidget;
    registerUnique(key, newer);
    QCOMPARE(kx::uniqueObject(key), newer);
    delete older;
    QCOMPARE(kx::uniqueObject(key), newer);
    delete newer;
    QCOMPARE(kx::uniqueObject(key), nullptr);
}

void TestKx::uniqueHandleMetaTypeRegistered()
{
    const int id = QMetaType::type("std::shared_ptr<kx::GlobalUniquePtr<QWidget>>");
    QVERIFY(id != QMetaType::UnknownType);
    QCOMPARE(id, qMetaTypeId<UniqueHandle>());
}

QTEST_MAIN(TestKx)
#include "tst_kx.moc"
