#include <orba/modulemanager.h>
#include <orba/moduleobject.h>

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>
#include <cstring>
#include <limits>

using orba::ModuleManager;
using orba::ModuleObject;

namespace {

bool sameVariant(const QVariant &a, const QVariant &b)
{
    if (a.userType() != b.userType())
        return false;
    if (a.userType() == QMetaType::Double) {
        const double x = a.toDouble();
        const double y = b.toDouble();
        return std::memcmp(&x, &y, sizeof x) == 0;
    }
    return a == b;
}

// A pallet as the module stores it: every place has three poses of 12 doubles.
void buildPallet(ModuleObject *root, int places)
{
    const char *poses[] = {"approach", "wobj", "retract"};
    ModuleObject *points = root->append(nullptr, "points");
    for (int i = 0; i < places; ++i) {
        ModuleObject *place = points->append(nullptr, QStringLiteral("#%1").arg(i));
        for (int p = 0; p < 3; ++p) {
            ModuleObject *pose = place->append(nullptr, poses[p]);
            for (int k = 0; k < 3; ++k) {
                pose->set(nullptr, QStringLiteral("trans.#%1").arg(k), i * 0.1 + p * 1e-7 + k / 3.0);
                pose->set(nullptr, QStringLiteral("rot.#%1").arg(k), std::sin(i + k) * 3.141592653589793);
            }
            for (int k = 0; k < 6; ++k)
                pose->set(nullptr, QStringLiteral("near.#%1").arg(k), (i % 7) * 1e-300 * (k + 1));
        }
    }
    root->set(nullptr, "name", QStringLiteral("pallet <1> & \"2\" \u00e9"));
    root->set(nullptr, "row", 40);
}

QByteArray nested(int depth)
{
    QByteArray s = "<?xml version=\"1.0\"?>";
    for (int i = 0; i < depth; ++i)
        s += "<node name=\"n\" type=\"null\">";
    for (int i = 0; i < depth; ++i)
        s += "</node>";
    return s;
}

} // namespace

class TestXml : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void valueRoundTrip_data();
    void valueRoundTrip();
    void writtenForm();
    void valueAndChildrenRoundTrip_data();
    void valueAndChildrenRoundTrip();
    void readKeepsTargetNameAndNotifies();
    void fullPalletFileRoundTrip();
    void hostileInputRejected_data();
    void hostileInputRejected();
    void oversizedFileRejected();
    void missingFileRejected();
    void atomicWriteReplacesFile_data();
    void atomicWriteReplacesFile();
    void writeIntoMissingFolderFails();
};

void TestXml::init()
{
    ModuleManager::resetRoot();
}

void TestXml::cleanup()
{
    ModuleManager::resetRoot();
}

void TestXml::valueRoundTrip_data()
{
    QTest::addColumn<QVariant>("value");

    QTest::newRow("int") << QVariant(42);
    QTest::newRow("negative int") << QVariant(-7);
    QTest::newRow("int64") << QVariant(qint64(9007199254740993LL));
    QTest::newRow("double 0.1") << QVariant(0.1);
    QTest::newRow("double 1e-300") << QVariant(1e-300);
    QTest::newRow("negative zero") << QVariant(-0.0);
    QTest::newRow("whole double") << QVariant(3.0);
    QTest::newRow("double max") << QVariant(1.7976931348623157e308);
    QTest::newRow("smallest subnormal") << QVariant(5e-324);
    QTest::newRow("infinity") << QVariant(std::numeric_limits<double>::infinity());
    QTest::newRow("negative infinity") << QVariant(-std::numeric_limits<double>::infinity());
    QTest::newRow("nan") << QVariant(std::numeric_limits<double>::quiet_NaN());
    QTest::newRow("true") << QVariant(true);
    QTest::newRow("false") << QVariant(false);
    QTest::newRow("unicode and quotes") << QVariant(QStringLiteral("Palette \"A\" 'b' <c> & \u00e9\u4e2d\U0001F600"));
    QTest::newRow("surrounding blanks") << QVariant(QStringLiteral("  two  "));
    QTest::newRow("line breaks and tabs") << QVariant(QStringLiteral("a\r\nb\rc\td\n"));
    QTest::newRow("only blanks") << QVariant(QStringLiteral(" \n "));
    QTest::newRow("control character") << QVariant(QStringLiteral("bell\x07"));
    QTest::newRow("lone surrogate") << QVariant(QString(QChar(0xDC00)));
    QTest::newRow("empty string") << QVariant(QString(""));
    QTest::newRow("markup-like text") << QVariant(QStringLiteral("]]> <!-- --> &amp;"));
    QTest::newRow("null") << QVariant();
}

void TestXml::valueRoundTrip()
{
    QFETCH(QVariant, value);
    for (const bool indent : {true, false}) {
        ModuleObject node;
        node.set(nullptr, "v", value);
        node.set(nullptr, "w", value);
        node.r("w")->append(nullptr, "child")->setValue(nullptr, 1);
        const QByteArray xml = ModuleManager::toXml(&node, indent);
        ModuleObject back;
        QString error;
        QVERIFY2(ModuleManager::fromXml(nullptr, &back, xml, &error), qPrintable(error));
        QVERIFY(error.isEmpty());
        QVERIFY2(sameVariant(back.r("v")->value(), node.r("v")->value()), xml.constData());
        QVERIFY2(sameVariant(back.r("w")->value(), node.r("w")->value()), xml.constData());
        QVERIFY(back.equals(&node));
    }
}

void TestXml::writtenForm()
{
    ModuleObject node("pallet");
    node.set(nullptr, "d", -0.0);
    node.set(nullptr, "i", 3);
    node.set(nullptr, "b", true);
    node.set(nullptr, "s", "x<y");
    node.append(nullptr, "n");
    const QByteArray xml = ModuleManager::toXml(&node, false);
    QVERIFY(xml.contains("<node name=\"pallet\" type=\"null\">"));
    QVERIFY(xml.contains("<node name=\"d\" type=\"double\">-0.0</node>"));
    QVERIFY(xml.contains("<node name=\"i\" type=\"int\">3</node>"));
    QVERIFY(xml.contains("<node name=\"b\" type=\"bool\">true</node>"));
    QVERIFY(xml.contains("<node name=\"s\" type=\"string\">x&lt;y</node>"));
    QVERIFY(xml.contains("<node name=\"n\" type=\"null\"/>"));
}

void TestXml::valueAndChildrenRoundTrip_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::newRow("double") << QVariant(0.1);
    QTest::newRow("string") << QVariant(QStringLiteral(" text "));
    QTest::newRow("empty string") << QVariant(QString(""));
    QTest::newRow("null") << QVariant();
}

void TestXml::valueAndChildrenRoundTrip()
{
    QFETCH(QVariant, value);
    for (const bool indent : {true, false}) {
        ModuleObject node;
        node.setValue(nullptr, value);
        node.set(nullptr, "a.#0", 1);
        node.set(nullptr, "a.#1", 2.0);
        node.set(nullptr, "a", QStringLiteral("array with value"));
        node.set(nullptr, "b", QVariant());
        ModuleObject back;
        QString error;
        QVERIFY2(ModuleManager::fromXml(nullptr, &back, ModuleManager::toXml(&node, indent), &error),
                 qPrintable(error));
        QVERIFY(back.equals(&node));
        QVERIFY(sameVariant(back.value(), value));
    }
}

void TestXml::readKeepsTargetNameAndNotifies()
{
    ModuleObject source("source");
    source.set(nullptr, "x", 1);
    ModuleObject target("target");
    target.set(nullptr, "old", 1);
    QSignalSpy cleared(&target, &ModuleObject::cleared);
    QSignalSpy inserted(&target, &ModuleObject::childInserted);
    QVERIFY(ModuleManager::fromXml(this, &target, ModuleManager::toXml(&source)));
    QCOMPARE(target.name(), QStringLiteral("target"));
    QCOMPARE(target.cmobjNames(), QStringList{"x"});
    QCOMPARE(cleared.count(), 1);
    QCOMPARE(cleared.at(0).at(0).value<QObject *>(), this);
    QCOMPARE(inserted.count(), 1);
    QVERIFY(ModuleManager::lastError().isEmpty());
}

void TestXml::fullPalletFileRoundTrip()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString path = dir.filePath("tray.xml");
    ModuleObject pallet("pallet");
    buildPallet(&pallet, 1200);
    QVERIFY2(ModuleManager::writeToXmlFile(path, &pallet, true, true), qPrintable(ModuleManager::lastError()));
    ModuleObject back("pallet");
    QVERIFY2(ModuleManager::readFromXmlFile(nullptr, &back, path), qPrintable(ModuleManager::lastError()));
    QVERIFY(back.equals(&pallet));
    QCOMPARE(back.r("points")->size(), 1200);
    const double a = back.r("points.#777.approach.rot.#2")->getDouble();
    const double b = pallet.r("points.#777.approach.rot.#2")->getDouble();
    QVERIFY(std::memcmp(&a, &b, sizeof a) == 0);
    QCOMPARE(ModuleManager::toXml(&back), ModuleManager::toXml(&pallet));
}

void TestXml::hostileInputRejected_data()
{
    QTest::addColumn<QByteArray>("xml");

    QTest::newRow("not xml") << QByteArray("hello");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("truncated") << QByteArray("<?xml version=\"1.0\"?><node name=\"a\" type=\"int\">1</node");
    QTest::newRow("unclosed element") << QByteArray("<node name=\"a\" type=\"null\"><node name=\"b\" type=\"int\">1</node>");
    QTest::newRow("mismatched tags") << QByteArray("<node type=\"null\"></other>");
    QTest::newRow("billion laughs")
        << QByteArray("<?xml version=\"1.0\"?>\n"
                      "<!DOCTYPE lolz [\n"
                      " <!ENTITY lol \"lol\">\n"
                      " <!ENTITY lol1 \"&lol;&lol;&lol;&lol;&lol;&lol;&lol;&lol;&lol;&lol;\">\n"
                      " <!ENTITY lol2 \"&lol1;&lol1;&lol1;&lol1;&lol1;&lol1;&lol1;&lol1;&lol1;&lol1;\">\n"
                      " <!ENTITY lol3 \"&lol2;&lol2;&lol2;&lol2;&lol2;&lol2;&lol2;&lol2;&lol2;&lol2;\">\n"
                      " <!ENTITY lol4 \"&lol3;&lol3;&lol3;&lol3;&lol3;&lol3;&lol3;&lol3;&lol3;&lol3;\">\n"
                      " <!ENTITY lol5 \"&lol4;&lol4;&lol4;&lol4;&lol4;&lol4;&lol4;&lol4;&lol4;&lol4;\">\n"
                      " <!ENTITY lol6 \"&lol5;&lol5;&lol5;&lol5;&lol5;&lol5;&lol5;&lol5;&lol5;&lol5;\">\n"
                      " <!ENTITY lol7 \"&lol6;&lol6;&lol6;&lol6;&lol6;&lol6;&lol6;&lol6;&lol6;&lol6;\">\n"
                      " <!ENTITY lol8 \"&lol7;&lol7;&lol7;&lol7;&lol7;&lol7;&lol7;&lol7;&lol7;&lol7;\">\n"
                      " <!ENTITY lol9 \"&lol8;&lol8;&lol8;&lol8;&lol8;&lol8;&lol8;&lol8;&lol8;&lol8;\">\n"
                      "]>\n"
                      "<node name=\"a\" type=\"string\">&lol9;</node>");
    QTest::newRow("external entity")
        << QByteArray("<?xml version=\"1.0\"?><!DOCTYPE n [<!ENTITY x SYSTEM \"file:///etc/passwd\">]>"
                      "<node name=\"a\" type=\"string\">&x;</node>");
    QTest::newRow("plain doctype") << QByteArray("<!DOCTYPE node><node type=\"null\"/>");
    QTest::newRow("undeclared entity") << QByteArray("<node type=\"string\">&nope;</node>");
    QTest::newRow("nesting 10000 deep") << nested(10000);
    QTest::newRow("one level too deep") << nested(ModuleManager::maxDepth() + 1);
    QTest::newRow("unknown element") << QByteArray("<tree/>");
    QTest::newRow("unknown type") << QByteArray("<node name=\"a\" type=\"float\">1</node>");
    QTest::newRow("bad int") << QByteArray("<node name=\"a\" type=\"int\">1.5</node>");
    QTest::newRow("int overflow") << QByteArray("<node name=\"a\" type=\"int\">99999999999999999999</node>");
    QTest::newRow("bad double") << QByteArray("<node name=\"a\" type=\"double\">1,5</node>");
    QTest::newRow("bad bool") << QByteArray("<node name=\"a\" type=\"bool\">yes</node>");
    QTest::newRow("text in null node") << QByteArray("<node name=\"a\" type=\"null\">x</node>");
    QTest::newRow("text after child")
        << QByteArray("<node type=\"null\"><node name=\"c\" type=\"null\"/>stray</node>");
    QTest::newRow("bad encoded string")
        << QByteArray("<node type=\"string\" encoding=\"utf16-base64\">@@@</node>");
}

void TestXml::hostileInputRejected()
{
    QFETCH(QByteArray, xml);
    ModuleObject target("target");
    target.set(nullptr, "keep.#0", 1.5);
    target.setValue(nullptr, "own");
    ModuleObject snapshot;
    snapshot.copyFrom(nullptr, &target);
    QSignalSpy cleared(&target, &ModuleObject::cleared);
    QSignalSpy changed(&target, &ModuleObject::changed);

    QString error;
    QVERIFY(!ModuleManager::fromXml(this, &target, xml, &error));
    QVERIFY(!error.isEmpty());
    QCOMPARE(ModuleManager::lastError(), error);
    QVERIFY(target.equals(&snapshot));
    QCOMPARE(cleared.count(), 0);
    QCOMPARE(changed.count(), 0);

    // The same through a file.
    QTemporaryDir dir;
    const QString path = dir.filePath("hostile.xml");
    QFile f(path);
    QVERIFY(f.open(QIODevice::WriteOnly));
    f.write(xml);
    f.close();
    QVERIFY(!ModuleManager::readFromXmlFile(this, &target, path));
    QVERIFY(ModuleManager::lastError().contains(path));
    QVERIFY(target.equals(&snapshot));
}

void TestXml::oversizedFileRejected()
{
    QTemporaryDir dir;
    const QString path = dir.filePath("big.xml");
    QFile f(path);
    QVERIFY(f.open(QIODevice::WriteOnly));
    f.write("<node type=\"null\">");
    QVERIFY(f.resize(ModuleManager::maxXmlBytes() + 1));
    f.close();
    ModuleObject target;
    target.setValue(nullptr, 5);
    QVERIFY(!ModuleManager::readFromXmlFile(nullptr, &target, path));
    QVERIFY(ModuleManager::lastError().contains(QLatin1String("limit")));
    QCOMPARE(target.getInt(), 5);

    QByteArray big(int(ModuleManager::maxXmlBytes()) + 1, ' ');
    QString error;
    QVERIFY(!ModuleManager::fromXml(nullptr, &target, big, &error));
    QVERIFY(error.contains(QLatin1String("limit")));
}

void TestXml::missingFileRejected()
{
    ModuleObject target;
    QVERIFY(!ModuleManager::readFromXmlFile(nullptr, &target, QDir::temp().filePath("no-such-dir-h1/none.xml")));
    QVERIFY(ModuleManager::lastError().contains(QLatin1String("cannot open")));
}

void TestXml::atomicWriteReplacesFile_data()
{
    QTest::addColumn<bool>("atomic");
    QTest::newRow("atomic") << true;
    QTest::newRow("in place") << false;
}

void TestXml::atomicWriteReplacesFile()
{
    QFETCH(bool, atomic);
    QTemporaryDir dir;
    const QString path = dir.filePath("tray.xml");
    QFile old(path);
    QVERIFY(old.open(QIODevice::WriteOnly));
    old.write(QByteArray(100000, 'x'));
    old.close();

    ModuleObject node;
    node.set(nullptr, "a", 1);
    QVERIFY(ModuleManager::writeToXmlFile(path, &node, false, atomic));
    QVERIFY(ModuleManager::lastError().isEmpty());
    QFile written(path);
    QVERIFY(written.open(QIODevice::ReadOnly));
    QCOMPARE(written.readAll(), ModuleManager::toXml(&node, false));
    QCOMPARE(QDir(dir.path()).entryList(QDir::Files), QStringList{"tray.xml"});
}

void TestXml::writeIntoMissingFolderFails()
{
    QTemporaryDir dir;
    ModuleObject node;
    QVERIFY(!ModuleManager::writeToXmlFile(dir.filePath("missing/tray.xml"), &node));
    QVERIFY(!ModuleManager::lastError().isEmpty());
    QVERIFY(!ModuleManager::writeToXmlFile(dir.filePath("missing/tray.xml"), &node, true, false));
    QVERIFY(!ModuleManager::lastError().isEmpty());
    QVERIFY(!ModuleManager::writeToXmlFile(dir.filePath("x.xml"), nullptr));
}

QTEST_GUILESS_MAIN(TestXml)
#include "tst_xml.moc"
