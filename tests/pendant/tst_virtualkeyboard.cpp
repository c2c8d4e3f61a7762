#include "mainwindow.h"
#include "pendanttestutil.h"
#include "virtualkeyboard.h"

#include <QApplication>
#include <QDialog>
#include <QLineEdit>
#include <QScreen>
#include <QSpinBox>
#include <QVBoxLayout>
#include <QWindow>
#include <QtTest>

#ifdef TPENDANT_KEYBOARD
#include <QQuickItem>
#include <QQuickWindow>
#endif

#ifdef __SANITIZE_ADDRESS__
#include <sanitizer/lsan_interface.h>
#endif

// The on-screen keyboard: where it goes, which layout it shows, and that an operator types names
// and numbers into a modal dialog with it.
class TestVirtualKeyboard : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void placement_data();
    void placement();
    void layoutFor_data();
    void layoutFor();
    void typesIntoModalDialog();
    void numberFieldsGetNumbers();
    void followsLanguage();

private:
    bool keyboardReady(MainWindow &window);
};

namespace {

#ifdef TPENDANT_KEYBOARD
// The visible key of the keyboard that types `text`.
QQuickItem *findKey(QQuickItem *item, const QString &text)
{
    if (!item || !item->isVisible())
        return nullptr;
    const QVariant keyText = item->property("text");
    if (item->width() > 0 && keyText.isValid() && keyText.toString().compare(text, Qt::CaseInsensitive) == 0
        && item->property("key").isValid())
        return item;
    for (QQuickItem *child : item->childItems()) {
        if (QQuickItem *found = findKey(child, text))
            return found;
    }
    return nullptr;
}

bool pressKey(QWindow *keyboard, const QString &text)
{
    auto *quick = qobject_cast<QQuickWindow *>(keyboard);
    QQuickItem *key = quick ? findKey(quick->contentItem(), text) : nullptr;
    if (!key)
        return false;
    const QPoint at = key->mapToScene(QPointF(key->width() / 2, key->height() / 2)).toPoint();
#ifdef __SANITIZE_ADDRESS__
    // Qt Quick's touch area keeps a touch point of every mouse press for good (a few hundred
    // bytes); that is Qt's, not ours, and the leak check must not stop at it.
    __lsan::ScopedDisabler qtQuickKeepsTouchPoints;
#endif
    QTest::mouseClick(keyboard, Qt::LeftButton, Qt::NoModifier, at);
    QCoreApplication::processEvents();
    return true;
}
#endif

} // namespace

void TestVirtualKeyboard::init()
{
    resetHost();
}

bool TestVirtualKeyboard::keyboardReady(MainWindow &window)
{
    return window.keyboard() && window.keyboard()->isReady();
}

void TestVirtualKeyboard::placement_data()
{
    QTest::addColumn<QRect>("field");
    QTest::addColumn<QRect>("expected");
    const QRect screen(0, 0, 1280, 800);
    QTest::newRow("no field: bottom centre") << QRect() << QRect(160, 500, 960, 300);
    QTest::newRow("field above: bottom") << QRect(300, 100, 400, 40) << QRect(160, 500, 960, 300);
    QTest::newRow("field below: top") << QRect(300, 600, 400, 40) << QRect(160, 0, 960, 300);
}

void TestVirtualKeyboard::placement()
{
    QFETCH(QRect, field);
    QFETCH(QRect, expected);
    QCOMPARE(VirtualKeyboard::placement(QRect(0, 0, 1280, 800), field, 960, 300), expected);
}

void TestVirtualKeyboard::layoutFor_data()
{
    QTest::addColumn<QString>("language");
    QTest::addColumn<QString>("layout");
    QTest::newRow("en") << "en" << "en_GB";
    QTest::newRow("ru") << "ru" << "ru_RU";
    QTest::newRow("kr") << "kr" << "ko_KR";
    QTest::newRow("cn: Latin letters") << "cn" << "en_GB";
    QTest::newRow("jp: Latin letters") << "jp" << "en_GB";
}

void TestVirtualKeyboard::layoutFor()
{
    QFETCH(QString, language);
    QFETCH(QString, layout);
    QCOMPARE(VirtualKeyboard::layoutFor(language), layout);
}

void TestVirtualKeyboard::typesIntoModalDialog()
{
#ifndef TPENDANT_KEYBOARD
    QSKIP("built without the on-screen keyboard");
#else
    if (!VirtualKeyboard::isAvailable())
        QSKIP("Qt's virtual keyboard is not installed (qtvirtualkeyboard-plugin)");
    MainWindow window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QVERIFY2(keyboardReady(window), qPrintable(window.keyboard() ? window.keyboard()->errorString() : QString()));
    QWindow *keyboard = window.keyboard()->window();
    QVERIFY(!keyboard->isVisible());

    QDialog dialog(&window);
    dialog.setModal(true);
    auto *layout = new QVBoxLayout(&dialog);
    auto *name = new QLineEdit(&dialog);
    layout->addWidget(name);
    dialog.resize(500, 120);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    dialog.activateWindow();
    QTest::mouseClick(name, Qt::LeftButton);
    QTRY_VERIFY(keyboard->isVisible());
    QCOMPARE(keyboard->transientParent(), dialog.windowHandle());
    // Under 40 % of the screen, on it, and away from the field.
    const QRect screen = keyboard->screen()->geometry();
    QVERIFY(screen.contains(keyboard->geometry()));
    QVERIFY(keyboard->height() <= screen.height() * 2 / 5);
    QVERIFY(!keyboard->geometry().intersects(QRect(name->mapToGlobal(QPoint(0, 0)), name->size())));

    for (const char *letter : {"p", "a", "l"})
        QVERIFY2(pressKey(keyboard, QLatin1String(letter)), letter);
    QTRY_COMPARE(name->text().toLower(), QStringLiteral("pal"));
    QVERIFY(name->hasFocus());

    dialog.close();
    QTRY_VERIFY(!keyboard->isVisible());
#endif
}

void TestVirtualKeyboard::numberFieldsGetNumbers()
{
#ifndef TPENDANT_KEYBOARD
    QSKIP("built without the on-screen keyboard");
#else
    if (!VirtualKeyboard::isAvailable())
        QSKIP("Qt's virtual keyboard is not installed (qtvirtualkeyboard-plugin)");
    MainWindow window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QVERIFY(keyboardReady(window));
    QWindow *keyboard = window.keyboard()->window();

    QDialog dialog(&window);
    dialog.setModal(true);
    auto *layout = new QVBoxLayout(&dialog);
    auto *rows = new QSpinBox(&dialog);
    rows->setRange(0, 99);
    layout->addWidget(rows);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    dialog.activateWindow();
    // A finger on the number lands on the spin box's line edit.
    QTest::mouseClick(rows->findChild<QLineEdit *>(), Qt::LeftButton);
    QTRY_VERIFY(keyboard->isVisible());
    rows->selectAll();
    QVERIFY(pressKey(keyboard, QStringLiteral("4")));
    QVERIFY(pressKey(keyboard, QStringLiteral("2")));
    QTRY_COMPARE(rows->text(), QStringLiteral("42"));
    dialog.close();
#endif
}

void TestVirtualKeyboard::followsLanguage()
{
#ifndef TPENDANT_KEYBOARD
    QSKIP("built without the on-screen keyboard");
#else
    if (!VirtualKeyboard::isAvailable())
        QSKIP("Qt's virtual keyboard is not installed (qtvirtualkeyboard-plugin)");
    MainWindow window;
    QVERIFY(keyboardReady(window));
    QCOMPARE(window.keyboard()->layout(), QStringLiteral("en_GB"));
    tcore::SettingManager::setStr(QStringLiteral("language"), QStringLiteral("ru"));
    QCOMPARE(window.keyboard()->layout(), QStringLiteral("ru_RU"));
    tcore::SettingManager::setStr(QStringLiteral("language"), QStringLiteral("en"));
    QCOMPARE(window.keyboard()->layout(), QStringLiteral("en_GB"));
#endif
}

int main(int argc, char *argv[])
{
    // As tpendant does: the input method is chosen when the platform loads.
    VirtualKeyboard::prepareEnvironment();
    QApplication app(argc, argv);
    TestVirtualKeyboard test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}

#include "tst_virtualkeyboard.moc"
