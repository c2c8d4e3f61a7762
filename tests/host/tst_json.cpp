#include <orba/json.h>
#include <orba/modulemanager.h>
#include <orba/moduleobject.h>

#include <QSignalSpy>
#include <QtTest>

#include <climits>
#include <cmath>
#include <cstring>
#include <limits>
#include <memory>

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
    for (int i = 0; i < places; ++i) {
        ModuleObject *place = root->set(nullptr, QStringLiteral("points.#%1").arg(i), QVariant())->r(
            QStringLiteral("points.#%1").arg(i));
        for (int p = 0; p < 3; ++p) {
            ModuleObject *pose = place->append(nullptr, poses[p]);
            for (int k = 0; k < 3; ++k) {
                pose->set(nullptr, QStringLiteral("trans.#%1").arg(k), i * 0.1 + p * 1e-7 + k / 3.0);
                pose->set(nullptr, QStringLiteral("rot.#%1").arg(k), -0.0 + std::sin(i + k) * 3.141592653589793);
            }
            for (int k = 0; k < 6; ++k)
                pose->set(nullptr, QStringLiteral("near.#%1").arg(k), (i % 7) * 1e-300 * (k + 1));
        }
    }
    root->set(nullptr, "name", QStringLiteral("pallet \"1\" \u00e9"));
    root->set(nullptr, "row", 40);
}

QByteArray deepNesting(int depth)
{
    return QByteArray(depth, '[') + QByteArray(depth, ']');
}

} // namespace

class TestJson : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void valueRoundTrip_data();
    void valueRoundTrip();
    void writtenForm_data();
    void writtenForm();
    void valueAndChildrenRoundTrip();
    void keyOrderIsKept();
    void readReplacesAndNotifies();
    void unicodeEscapes_data();
    void unicodeEscapes();
    void fullPalletRoundTrip();
    void hostileInputRejected_data();
    void hostileInputRejected();
    void oversizedInputRejected();
    void variantNumbers_data();
    void variantNumbers();
    void variantRoundTrip();
    void variantErrors();
    void duplicateKeysRefused_data();
    void duplicateKeysRefused();
    void negativeNanKeepsSign();
    void leadingFeffKept_data();
    void leadingFeffKept();
    void nodeBudget();
    void readLevelsBuildsTheTop();
    void readLevelsChecksAsRead_data();
    void readLevelsChecksAsRead();
    void variantValueBudgetAtRealLimit();
};

void TestJson::init()
{
    ModuleManager::resetRoot();
}

void TestJson::cleanup()
{
    ModuleManager::resetRoot();
}

void TestJson::valueRoundTrip_data()
{
    QTest::addColumn<QVariant>("value");

    QTest::newRow("int") << QVariant(42);
    QTest::newRow("negative int") << QVariant(-7);
    QTest::newRow("int64") << QVariant(qint64(9007199254740993LL));
    QTest::newRow("int64 min") << QVariant(std::numeric_limits<qint64>::min());
    QTest::newRow("double 0.1") << QVariant(0.1);
    QTest::newRow("double 1e-300") << QVariant(1e-300);
    QTest::newRow("negative zero") << QVariant(-0.0);
    QTest::newRow("positive zero") << QVariant(0.0);
    QTest::newRow("whole double") << QVariant(1.0);
    QTest::newRow("double max") << QVariant(1.7976931348623157e308);
    QTest::newRow("smallest subnormal") << QVariant(5e-324);
    QTest::newRow("double 1e22") << QVariant(1e22);
    QTest::newRow("infinity") << QVariant(std::numeric_limits<double>::infinity());
    QTest::newRow("negative infinity") << QVariant(-std::numeric_limits<double>::infinity());
    QTest::newRow("nan") << QVariant(std::numeric_limits<double>::quiet_NaN());
    QTest::newRow("true") << QVariant(true);
    QTest::newRow("false") << QVariant(false);
    QTest::newRow("unicode and quotes") << QVariant(QStringLiteral("Palette \"A\" \u00e9\u4e2d\U0001F600 \\ /"));
    QTest::newRow("control characters") << QVariant(QStringLiteral("a\tb\nc\r\x01\x1f"));
    QTest::newRow("lone surrogate") << QVariant(QString(QChar(0xD800)) + QStringLiteral("x"));
    QTest::newRow("empty string") << QVariant(QString(""));
    QTest::newRow("string spelled like infinity") << QVariant(QStringLiteral("@inf"));
    QTest::newRow("string with double at") << QVariant(QStringLiteral("@@x"));
    QTest::newRow("string with at") << QVariant(QStringLiteral("@value"));
    QTest::newRow("null") << QVariant();
}

void TestJson::valueRoundTrip()
{
    QFETCH(QVariant, value);
    for (const bool compact : {true, false}) {
        ModuleObject node;
        node.set(nullptr, "v", value);
        const QByteArray text = node.exportToJson(compact);
        ModuleObject back;
        QString error;
        QVERIFY2(back.importFromJson(nullptr, text, &error), qPrintable(error));
        QVERIFY(error.isEmpty());
        QVERIFY2(sameVariant(back.r("v")->value(), node.r("v")->value()), text.constData());
        QVERIFY(back.equals(&node));
    }
}

void TestJson::writtenForm_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QByteArray>("expected");

    QTest::newRow("int") << QVariant(1) << QByteArray("1");
    QTest::newRow("whole double keeps a fraction") << QVariant(1.0) << QByteArray("1.0");
    QTest::newRow("negative zero") << QVariant(-0.0) << QByteArray("-0.0");
    QTest::newRow("shortest exact digits") << QVariant(0.1) << QByteArray("0.1");
    QTest::newRow("all digits a sum needs") << QVariant(0.1 + 0.2) << QByteArray("0.30000000000000004");
    QTest::newRow("largest finite") << QVariant(std::numeric_limits<double>::max()) << QByteArray("1.7976931348623157e+308");
    QTest::newRow("smallest subnormal") << QVariant(std::numeric_limits<double>::denorm_min()) << QByteArray("5e-324");
    QTest::newRow("exponent") << QVariant(1e22) << QByteArray("1e+22");
    QTest::newRow("infinity") << QVariant(std::numeric_limits<double>::infinity()) << QByteArray("\"@inf\"");
    QTest::newRow("nan") << QVariant(std::numeric_limits<double>::quiet_NaN()) << QByteArray("\"@nan\"");
    QTest::newRow("escapes") << QVariant(QStringLiteral("\"\\\n\x01")) << QByteArray("\"\\\"\\\\\\n\\u0001\"");
    QTest::newRow("raw utf8") << QVariant(QStringLiteral("\u00e9")) << QByteArray("\"\xc3\xa9\"");
    QTest::newRow("reserved string") << QVariant(QStringLiteral("@nan")) << QByteArray("\"@@nan\"");
    QTest::newRow("null") << QVariant() << QByteArray("null");
    QTest::newRow("bool") << QVariant(false) << QByteArray("false");
}

void TestJson::writtenForm()
{
    QFETCH(QVariant, value);
    QFETCH(QByteArray, expected);
    ModuleObject node;
    node.setValue(nullptr, value);
    QCOMPARE(node.exportToJson(), expected);
}

void TestJson::valueAndChildrenRoundTrip()
{
    ModuleObject node;
    node.setValue(nullptr, 2.5);
    node.set(nullptr, "b", 1);
    node.set(nullptr, "a.#0", true);
    node.set(nullptr, "a.#1", "x");
    node.set(nullptr, "a", -0.0);
    QCOMPARE(node.exportToJson(), QByteArray("{\"@value\":2.5,\"b\":1,\"a\":{\"@value\":-0.0,\"#0\":true,\"#1\":\"x\"}}"));
    for (const bool compact : {true, false}) {
        ModuleObject back;
        QVERIFY(back.importFromJson(nullptr, node.exportToJson(compact)));
        QVERIFY(back.equals(&node));
    }
}

void TestJson::keyOrderIsKept()
{
    ModuleObject node;
    QVERIFY(node.importFromJson(nullptr, R"({"z":1,"a":[1,2.0],"m":{"y":null,"b":"s"}})"));
    QCOMPARE(node.cmobjNames(true), (QStringList{"z", "a", "a.#0", "a.#1", "m", "m.y", "m.b"}));
    QCOMPARE(node.r("a.#0")->value().userType(), int(QMetaType::Int));
    QCOMPARE(node.r("a.#1")->value().userType(), int(QMetaType::Double));
    QVERIFY(node.r("m.y")->isNull());
    QCOMPARE(node.exportToJson(), QByteArray(R"({"z":1,"a":[1,2.0],"m":{"y":null,"b":"s"}})"));
}

void TestJson::readReplacesAndNotifies()
{
    ModuleObject node("keepme");
    node.set(nullptr, "old", 1);
    node.setValue(nullptr, 1);
    QSignalSpy cleared(&node, &ModuleObject::cleared);
    QSignalSpy inserted(&node, &ModuleObject::childInserted);
    QSignalSpy changed(&node, &ModuleObject::changed);
    QVERIFY(orba::json::read(this, &node, R"({"@value":2,"new":[1]})"));
    QCOMPARE(node.name(), QStringLiteral("keepme"));
    QCOMPARE(node.cmobjNames(true), (QStringList{"new", "new.#0"}));
    QCOMPARE(cleared.count(), 1);
    QCOMPARE(cleared.at(0).at(0).value<QObject *>(), this);
    QCOMPARE(inserted.count(), 1);
    QCOMPARE(changed.count(), 1);
    QCOMPARE(changed.at(0).at(0).value<QVariant>(), QVariant(2));
}

void TestJson::unicodeEscapes_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QString>("expected");

    QTest::newRow("bmp escape") << QByteArray(R"("\u00e9")") << QStringLiteral("\u00e9");
    QTest::newRow("surrogate pair") << QByteArray(R"("\ud83d\ude00")") << QStringLiteral("\U0001F600");
    QTest::newRow("upper-case hex") << QByteArray(R"("\u4E2D")") << QStringLiteral("\u4e2d");
    QTest::newRow("lone high surrogate") << QByteArray(R"("\ud83dx")") << QString(QChar(0xD83D)) + QLatin1Char('x');
    QTest::newRow("simple escapes") << QByteArray(R"("\b\f\n\r\t\/\\\"")") << QStringLiteral("\b\f\n\r\t/\\\"");
    QTest::newRow("raw utf8") << QByteArray("\"\xe4\xb8\xad\"") << QStringLiteral("\u4e2d");
}

void TestJson::unicodeEscapes()
{
    QFETCH(QByteArray, json);
    QFETCH(QString, expected);
    ModuleObject node;
    QString error;
    QVERIFY2(node.importFromJson(nullptr, json, &error), qPrintable(error));
    QCOMPARE(node.getString(), expected);
}

void TestJson::fullPalletRoundTrip()
{
    ModuleObject pallet("pallet");
    buildPallet(&pallet, 1200);
    QCOMPARE(pallet.r("points")->size(), 1200);
    for (const bool compact : {true, false}) {
        const QByteArray text = pallet.exportToJson(compact);
        ModuleObject back("copy");
        QString error;
        QVERIFY2(back.importFromJson(nullptr, text, &error), qPrintable(error));
        QVERIFY(back.equals(&pallet));
        const double a = back.r("points.#1199.retract.near.#5")->getDouble();
        const double b = pallet.r("points.#1199.retract.near.#5")->getDouble();
        QVERIFY(std::memcmp(&a, &b, sizeof a) == 0);
        QCOMPARE(back.exportToJson(compact), text);
    }
}

void TestJson::hostileInputRejected_data()
{
    QTest::addColumn<QByteArray>("json");

    QTest::newRow("empty") << QByteArray();
    QTest::newRow("only spaces") << QByteArray("   ");
    QTest::newRow("unclosed object") << QByteArray("{");
    QTest::newRow("truncated string") << QByteArray(R"({"a":"abc)");
    QTest::newRow("truncated after key") << QByteArray(R"({"a")");
    QTest::newRow("truncated array") << QByteArray("[1,2");
    QTest::newRow("trailing comma") << QByteArray("[1,]");
    QTest::newRow("trailing garbage") << QByteArray("{} x");
    QTest::newRow("two values") << QByteArray("1 2");
    QTest::newRow("single quotes") << QByteArray("{'a':1}");
    QTest::newRow("unquoted key") << QByteArray("{a:1}");
    QTest::newRow("bad literal") << QByteArray("tru");
    QTest::newRow("leading zero") << QByteArray("01");
    QTest::newRow("bare minus") << QByteArray("-");
    QTest::newRow("dot without digits") << QByteArray("1.");
    QTest::newRow("exponent without digits") << QByteArray("1e+");
    QTest::newRow("plus sign") << QByteArray("+1");
    QTest::newRow("bad escape") << QByteArray(R"("\x")");
    QTest::newRow("short unicode escape") << QByteArray(R"("\u12")");
    QTest::newRow("raw control character") << QByteArray("\"a\nb\"");
    QTest::newRow("value object under @value") << QByteArray(R"({"@value":{"a":1}})");
    QTest::newRow("nesting 10000 deep") << deepNesting(10000);
    QByteArray objects;
    for (int i = 0; i < 10000; ++i)
        objects += "{\"a\":";
    QTest::newRow("objects 10000 deep") << objects + "1" + QByteArray(10000, '}');
    QTest::newRow("one level too deep") << deepNesting(orba::json::maxJsonDepth() + 1);
    QTest::newRow("nul byte") << QByteArray("[1,\0 2]", 7);
}

void TestJson::hostileInputRejected()
{
    QFETCH(QByteArray, json);
    ModuleObject target("target");
    target.set(nullptr, "keep.#0", 1.5);
    target.setValue(nullptr, "own");
    ModuleObject snapshot;
    snapshot.copyFrom(nullptr, &target);
    QSignalSpy cleared(&target, &ModuleObject::cleared);
    QSignalSpy changed(&target, &ModuleObject::changed);

    QString error;
    QVERIFY(!target.importFromJson(this, json, &error));
    QVERIFY(!error.isEmpty());
    QVERIFY2(error.contains(QLatin1String("offset")), qPrintable(error));
    QVERIFY(target.equals(&snapshot));
    QCOMPARE(cleared.count(), 0);
    QCOMPARE(changed.count(), 0);

    // "@value" only means something to the tree reader; plain JSON readers accept that row.
    if (QByteArray(QTest::currentDataTag()) == "value object under @value")
        return;
    bool ok = true;
    QString variantError;
    QVERIFY(!orba::json::toVariant(json, &ok, &variantError).isValid());
    QVERIFY(!ok);
    QVERIFY(!variantError.isEmpty());
}

void TestJson::oversizedInputRejected()
{
    QByteArray big(int(orba::json::maxJsonBytes()) + 1, ' ');
    big[0] = '1';
    ModuleObject target;
    target.setValue(nullptr, 3);
    QString error;
    QVERIFY(!target.importFromJson(nullptr, big, &error));
    QVERIFY(error.contains(QLatin1String("exceeds")));
    QCOMPARE(target.getInt(), 3);

    // A text of exactly the limit is read.
    big.chop(1);
    QCOMPARE(qint64(big.size()), orba::json::maxJsonBytes());
    QVERIFY2(target.importFromJson(nullptr, big, &error), qPrintable(error));
    QCOMPARE(target.getInt(), 1);
    bool ok = false;
    QCOMPARE(orba::json::toVariant(big, &ok).toInt(), 1);
    QVERIFY(ok);
    big.append(' ');
    QVERIFY(!orba::json::toVariant(big, &ok).isValid());
    QVERIFY(!ok);

    // The deepest accepted nesting is exactly the limit.
    QVERIFY(target.importFromJson(nullptr, deepNesting(orba::json::maxJsonDepth() - 1).prepend("[1,").append("]")));
}

void TestJson::variantNumbers_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<int>("type");

    QTest::newRow("small int") << QByteArray("12") << int(QMetaType::Int);
    QTest::newRow("large int") << QByteArray("5000000000") << int(QMetaType::LongLong);
    QTest::newRow("beyond int64") << QByteArray("99999999999999999999") << int(QMetaType::Double);
    QTest::newRow("fraction") << QByteArray("1.0") << int(QMetaType::Double);
    QTest::newRow("exponent") << QByteArray("1e3") << int(QMetaType::Double);
    QTest::newRow("infinity string") << QByteArray("\"@-inf\"") << int(QMetaType::Double);
    QTest::newRow("string") << QByteArray("\"12\"") << int(QMetaType::QString);
}

void TestJson::variantNumbers()
{
    QFETCH(QByteArray, json);
    QFETCH(int, type);
    bool ok = false;
    const QVariant v = orba::json::toVariant(json, &ok);
    QVERIFY(ok);
    QCOMPARE(v.userType(), type);
}

void TestJson::variantRoundTrip()
{
    const QVariantMap map{{"id", 7},
                          {"method", "tray.query.one"},
                          {"params", QVariantMap{{"x", 0.1}, {"list", QVariantList{1, -0.0, "s", QVariant(), true}}}}};
    const QByteArray text = orba::json::fromVariant(map);
    QCOMPARE(text, QByteArray(R"({"id":7,"method":"tray.query.one","params":{"list":[1,-0.0,"s",null,true],"x":0.1}})"));
    bool ok = false;
    const QVariant back = orba::json::toVariant(text, &ok);
    QVERIFY(ok);
    QCOMPARE(orba::json::fromVariant(back), text);
    const double z = back.toMap().value("params").toMap().value("list").toList().at(1).toDouble();
    QVERIFY(std::signbit(z));
    QVERIFY(orba::json::fromVariant(map, false).contains("\n    \"id\": 7"));
    QCOMPARE(orba::json::fromVariant(QVariantList()), QByteArray("[]"));
    QCOMPARE(orba::json::fromVariant(QVariantMap()), QByteArray("{}"));
}

void TestJson::variantErrors()
{
    bool ok = true;
    QString error;
    QVERIFY(!orba::json::toVariant("{\"a\":}", &ok, &error).isValid());
    QVERIFY(!ok);
    QVERIFY(error.contains(QLatin1String("offset 5")));
}

void TestJson::duplicateKeysRefused_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QString>("message");

    QTest::newRow("plain key") << QByteArray(R"({"a":1,"a":2})") << R"(JSON error at offset 7: duplicate key "a")";
    QTest::newRow("array-like key") << QByteArray(R"({"#0":1,"#1":2,"#0":3})")
                                    << R"(JSON error at offset 15: duplicate key "#0")";
    QTest::newRow("value key") << QByteArray(R"({"@value":1,"x":2,"@value":3})")
                               << R"(JSON error at offset 18: duplicate key "@value")";
    QTest::newRow("same key spelled with an escape") << QByteArray(R"({"ab":1,"\u0061b":2})")
                                                     << R"(JSON error at offset 8: duplicate key "ab")";
    QTest::newRow("nested object") << QByteArray(R"({"a":[{"k":1,"j":{},"k":{}}]})")
                                   << R"(JSON error at offset 20: duplicate key "k")";
    QByteArray many = "{";
    for (int i = 0; i < 50; ++i)
        many += "\"k" + QByteArray::number(i) + "\":" + QByteArray::number(i) + ",";
    const int at = many.size();
    many += "\"k17\":0}";
    QTest::newRow("among many keys") << many << QStringLiteral("JSON error at offset %1: duplicate key \"k17\"").arg(at);
    const QByteArray longKey(1024 * 1024, 'k');
    QTest::newRow("long key quoted short")
        << "{\"" + longKey + "\":1,\"" + longKey + "\":2}"
        << QStringLiteral("JSON error at offset %1: duplicate key \"%2...\"")
               .arg(longKey.size() + 6)
               .arg(QString(QLatin1String(longKey.left(64))));
}

// Every reader refuses a repeated key in the same words: the tree reader (also what the
// controller parses requests with) and the variant reader (the client's replies).
void TestJson::duplicateKeysRefused()
{
    QFETCH(QByteArray, json);
    QFETCH(QString, message);
    ModuleObject target("target");
    target.set(nullptr, "keep", 1);
    QString error;
    QVERIFY(!orba::json::read(nullptr, &target, json, &error));
    QCOMPARE(error, message);
    QCOMPARE(target.cmobjNames(), QStringList{"keep"});

    bool ok = true;
    QString variantError;
    QVERIFY(!orba::json::toVariant(json, &ok, &variantError).isValid());
    QVERIFY(!ok);
    QCOMPARE(variantError, message);
}

void TestJson::leadingFeffKept_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("leading") << QString(QChar(0xFEFF)) + QStringLiteral("pallet");
    QTest::newRow("alone") << QString(QChar(0xFEFF));
    QTest::newRow("twice") << QString(QChar(0xFEFF)) + QChar(0xFEFF) + QStringLiteral("x");
    QTest::newRow("after an escape") << QStringLiteral("a\n") + QChar(0xFEFF) + QStringLiteral("b");
}

// A U+FEFF at the start of a name or string is text, not a byte order mark: it survives a round
// trip (a pallet named so stays addressable by its name).
void TestJson::leadingFeffKept()
{
    QFETCH(QString, text);
    ModuleObject tree;
    tree.append(nullptr, text)->setValue(nullptr, text);
    const QByteArray json = tree.exportToJson(true);
    ModuleObject back;
    QString error;
    QVERIFY2(back.importFromJson(nullptr, json, &error), qPrintable(error));
    QCOMPARE(back.c(0)->name(), text);
    QCOMPARE(back.c(0)->getString(), text);
    bool ok = false;
    const QVariantMap map = orba::json::toVariant(json, &ok).toMap();
    QVERIFY(ok);
    QCOMPARE(map.value(text).toString(), text);
}

void TestJson::negativeNanKeepsSign()
{
    const double negative = std::copysign(std::numeric_limits<double>::quiet_NaN(), -1.0);
    const double positive = std::numeric_limits<double>::quiet_NaN();
    ModuleObject node;
    node.set(nullptr, "neg", negative);
    node.set(nullptr, "pos", positive);
    node.set(nullptr, "text", QStringLiteral("@-nan"));
    const QByteArray text = node.exportToJson();
    QCOMPARE(text, QByteArray(R"({"neg":"@-nan","pos":"@nan","text":"@@-nan"})"));
    ModuleObject back;
    QVERIFY(back.importFromJson(nullptr, text));
    QVERIFY(back.equals(&node));
    const double n = back.r("neg")->getDouble();
    QVERIFY(std::memcmp(&n, &negative, sizeof n) == 0);
    QCOMPARE(back.r("text")->value(), QVariant(QStringLiteral("@-nan")));

    const QVariantMap map{{"neg", negative}, {"pos", positive}};
    const QByteArray plain = orba::json::fromVariant(map);
    QCOMPARE(plain, QByteArray(R"({"neg":"@-nan","pos":"@nan"})"));
    bool ok = false;
    const QVariantMap again = orba::json::toVariant(plain, &ok).toMap();
    QVERIFY(ok);
    const double v = again.value("neg").toDouble();
    const double w = again.value("pos").toDouble();
    QVERIFY(std::memcmp(&v, &negative, sizeof v) == 0);
    QVERIFY(std::memcmp(&w, &positive, sizeof w) == 0);
}

// The node budget on both sides, with a small budget: wide, deep and empty containers count alike.
void TestJson::nodeBudget()
{
    const qint64 budget = 100;
    auto array = [](int elements, const char *element) {
        QByteArray s = "[";
        for (int i = 0; i < elements; ++i)
            s += (i ? "," : "") + QByteArray(element);
        return s + "]";
    };
    const QByteArray deep = QByteArray(100, '[') + QByteArray(100, ']');
    struct Case
    {
        QByteArray text;
        bool fits;
    };
    const Case cases[] = {
        {array(99, "0"), true},
        {array(100, "0"), false},
        {array(99, "[]"), true},
        {array(100, "[]"), false},
        {array(49, "[0]"), true},
        {array(50, "[0]"), false},
        {deep, true},
        {"[" + deep + "]", false},
    };
    for (const Case &c : cases) {
        ModuleObject target;
        target.setValue(nullptr, 7);
        QString error;
        QCOMPARE(orba::json::read(nullptr, &target, c.text, &error, budget), c.fits);
        if (c.fits) {
            QVERIFY(error.isEmpty());
        } else {
            QVERIFY2(error.endsWith(QLatin1String("more than 100 nodes")), qPrintable(error));
            QCOMPARE(target.getInt(), 7);
        }
        bool ok = !c.fits;
        QString variantError;
        orba::json::toVariant(c.text, &ok, &variantError, budget);
        QCOMPARE(ok, c.fits);
        if (!c.fits)
            QVERIFY2(variantError.endsWith(QLatin1String("more than 100 values")), qPrintable(variantError));
    }
    // An object's members count too.
    bool ok = false;
    orba::json::toVariant(R"({"a":{},"b":{"c":1}})", &ok, nullptr, 4);
    QVERIFY(ok);
    orba::json::toVariant(R"({"a":{},"b":{"c":1}})", &ok, nullptr, 3);
    QVERIFY(!ok);
}

// A line of 16 MB of empty arrays would have made 8 M variants and more: the real budget holds.
void TestJson::variantValueBudgetAtRealLimit()
{
    const qint64 budget = orba::json::maxJsonNodes();
    QByteArray text;
    text.reserve(int(budget * 3 + 2));
    text += '[';
    for (qint64 i = 1; i < budget; ++i)
        text += i > 1 ? ",[]" : "[]";
    text += ']';
    bool ok = false;
    QString error;
    QVariant v = orba::json::toVariant(text, &ok, &error);
    QVERIFY2(ok, qPrintable(error));
    QCOMPARE(v.toList().size(), int(budget - 1));
    v = QVariant();
    text.insert(1, "[],");
    QVERIFY(!orba::json::toVariant(text, &ok, &error).isValid());
    QVERIFY(!ok);
    QVERIFY2(error.endsWith(QStringLiteral("more than %1 values").arg(budget)), qPrintable(error));
}

void TestJson::readLevelsBuildsTheTop()
{
    const QByteArray text = R"({"a":1,"b":{"c":[1,[2,3]],"d":"x"},"e":[{"f":true}]})";
    ModuleObject full;
    QVERIFY(orba::json::read(nullptr, &full, text));
    for (int levels = 0; levels <= 4; ++levels) {
        ModuleObject top;
        QString error = QStringLiteral("not cleared");
        QVERIFY(orba::json::readLevels(nullptr, &top, text, levels, &error, orba::json::maxJsonNodes()));
        QVERIFY(error.isEmpty());
        // The same nodes as a full read down to that level, none below.
        const QStringList all = full.cmobjNames(true);
        QStringList expected;
        for (const QString &path : all) {
            if (path.count(QLatin1Char('.')) < levels)
                expected << path;
        }
        QCOMPARE(top.cmobjNames(true), expected);
        for (const QString &path : expected) {
            if (top.r(path)->cmobjCount() == 0)
                QCOMPARE(top.r(path)->value(), full.r(path)->cmobjCount() ? QVariant() : full.r(path)->value());
        }
    }
    ModuleObject all;
    QVERIFY(orba::json::readLevels(nullptr, &all, text, INT_MAX, nullptr, orba::json::maxJsonNodes()));
    QVERIFY(all.equals(&full));
}

void TestJson::readLevelsChecksAsRead_data()
{
    hostileInputRejected_data();
    QTest::newRow("duplicate key deep down") << QByteArray(R"({"p":{"q":[{"x":1,"x":2}]}})");
    QTest::newRow("bad number deep down") << QByteArray(R"({"p":{"q":[[1,2,01]]}})");
    QTest::newRow("sound") << QByteArray(R"({"p":{"q":[[1,2,3]],"name":"n"}})");
}

// Not building the lower levels must not let anything through that a full read refuses: the
// same texts fail, with the same message, and the target is left as it was.
void TestJson::readLevelsChecksAsRead()
{
    QFETCH(QByteArray, json);
    const QByteArray buried = R"({"top":{"below":[)" + json + "]}}";
    for (const QByteArray &text : {json, buried}) {
        for (const qint64 budget : {orba::json::maxJsonNodes(), qint64(6)}) {
            ModuleObject full("t");
            full.set(nullptr, "keep", 1);
            QString fullError;
            const bool fullOk = orba::json::read(nullptr, &full, text, &fullError, budget);
            ModuleObject top("t");
            top.set(nullptr, "keep", 1);
            QString topError;
            const bool topOk = orba::json::readLevels(nullptr, &top, text, 1, &topError, budget);
            QCOMPARE(topOk, fullOk);
            QCOMPARE(topError, fullError);
            if (!topOk)
                QCOMPARE(top.r("keep")->getInt(), 1);
        }
    }
}

QTEST_GUILESS_MAIN(TestJson)
#include "tst_json.moc"
