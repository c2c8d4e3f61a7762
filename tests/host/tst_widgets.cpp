#include <tcore/thememanager.h>
#include <tcore/widgets.h>

#include <QLineEdit>
#include <QVBoxLayout>
#include <QtTest>

#include <memory>

class TestWidgets : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { tcore::ThemeManager::instance()->setScale(1.0); }

    void enableButtonClickToggles();
    void enableButtonSetter_data();
    void enableButtonSetter();
    void enableButtonPaintsState();
    void touchButtonMouseHold();
    void touchButtonEndsHold_data();
    void touchButtonEndsHold();
    void touchButtonTouchEvents_data();
    void touchButtonTouchEvents();
    void touchButtonDisabledDoesNotBegin();
    void doubleSpinSelectsOnFocus();
    void themeSizesAndFonts_data();
    void themeSizesAndFonts();
    void themeIconColourIsWhite();
};

void TestWidgets::enableButtonClickToggles()
{
    EnableButton button;
    button.resize(button.sizeHint());
    button.show();
    QSignalSpy spy(&button, &EnableButton::enabled);
    QVERIFY(!button.getIsEnabled());

    QTest::mouseClick(&button, Qt::LeftButton);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(0).toBool(), true);
    QVERIFY(button.getIsEnabled());

    QTest::mouseClick(&button, Qt::LeftButton);
    QCOMPARE(spy.count(), 2);
    QCOMPARE(spy.at(1).at(0).toBool(), false);
    QVERIFY(!button.getIsEnabled());
}

void TestWidgets::enableButtonSetter_data()
{
    QTest::addColumn<bool>("on");
    QTest::addColumn<bool>("emitSignal");
    QTest::newRow("on, silent") << true << false;
    QTest::newRow("on, announced") << true << true;
    QTest::newRow("off, announced") << false << true;
}

void TestWidgets::enableButtonSetter()
{
    QFETCH(bool, on);
    QFETCH(bool, emitSignal);
    EnableButton button;
    QSignalSpy spy(&button, &EnableButton::enabled);
    button.setIsEnabled(on, emitSignal);
    QCOMPARE(button.getIsEnabled(), on);
    QCOMPARE(spy.count(), emitSignal ? 1 : 0);
    if (emitSignal)
        QCOMPARE(spy.at(0).at(0).toBool(), on);
}

void TestWidgets::enableButtonPaintsState()
{
    EnableButton button;
    button.resize(button.sizeHint());
    QVERIFY(button.sizeHint().width() > button.sizeHint().height());
    button.setIsEnabled(false, false);
    const QImage off = button.grab().toImage();
    button.setIsEnabled(true, false);
    const QImage on = button.grab().toImage();
    QVERIFY(off != on);
    // The knob sits at the left when off and at the right when on.
    const QPoint left(off.width() / 4, off.height() / 2);
    QCOMPARE(QColor(off.pixel(left)), QColor(Qt::white));
    QVERIFY(QColor(on.pixel(left)) != QColor(Qt::white));
}

void TestWidgets::touchButtonMouseHold()
{
    TouchButton button;
    button.resize(120, 60);
    button.show();
    QSignalSpy begun(&button, &TouchButton::touchBegun);
    QSignalSpy ended(&button, &TouchButton::touchEnded);

    QTest::mousePress(&button, Qt::LeftButton);
    QCOMPARE(begun.count(), 1);
    QCOMPARE(ended.count(), 0);
    QVERIFY(button.isHeld());

    QTest::mouseRelease(&button, Qt::LeftButton);
    QCOMPARE(begun.count(), 1);
    QCOMPARE(ended.count(), 1);
    QVERIFY(!button.isHeld());
}

void TestWidgets::touchButtonEndsHold_data()
{
    QTest::addColumn<QString>("how");
    QTest::newRow("hidden") << "hide";
    QTest::newRow("disabled") << "disable";
    QTest::newRow("focus lost") << "focus";
}

void TestWidgets::touchButtonEndsHold()
{
    QFETCH(QString, how);
    QWidget window;
    auto *layout = new QVBoxLayout(&window);
    auto *button = new TouchButton(&window);
    auto *other = new QLineEdit(&window);
    layout->addWidget(button);
    layout->addWidget(other);
    window.show();
    QApplication::setActiveWindow(&window);
    QVERIFY(QTest::qWaitForWindowActive(&window));

    QSignalSpy ended(button, &TouchButton::touchEnded);
    button->setFocus();
    QTest::mousePress(button, Qt::LeftButton);
    QVERIFY(button->isHeld());

    if (how == QLatin1String("hide"))
        button->hide();
    else if (how == QLatin1String("disable"))
        button->setEnabled(false);
    else
        other->setFocus();

    QCOMPARE(ended.count(), 1);
    QVERIFY(!button->isHeld());
    QVERIFY(!button->isDown());
    // The release that follows does not end it a second time.
    QTest::mouseRelease(button, Qt::LeftButton);
    QCOMPARE(ended.count(), 1);
}

void TestWidgets::touchButtonTouchEvents_data()
{
    QTest::addColumn<bool>("cancel");
    QTest::newRow("touch released") << false;
    QTest::newRow("touch cancelled") << true;
}

void TestWidgets::touchButtonTouchEvents()
{
    QFETCH(bool, cancel);
    TouchButton button;
    button.resize(120, 60);
    button.show();
    QVERIFY(QTest::qWaitForWindowExposed(&button));
    QSignalSpy begun(&button, &TouchButton::touchBegun);
    QSignalSpy ended(&button, &TouchButton::touchEnded);

    QTouchEvent press(QEvent::TouchBegin);
    QApplication::sendEvent(&button, &press);
    QCOMPARE(begun.count(), 1);
    QVERIFY(button.isHeld());
    QVERIFY(button.isDown());

    QTouchEvent release(cancel ? QEvent::TouchCancel : QEvent::TouchEnd);
    QApplication::sendEvent(&button, &release);
    QCOMPARE(ended.count(), 1);
    QVERIFY(!button.isHeld());
    QVERIFY(!button.isDown());
}

void TestWidgets::touchButtonDisabledDoesNotBegin()
{
    TouchButton button;
    button.setEnabled(false);
    button.show();
    QSignalSpy begun(&button, &TouchButton::touchBegun);
    QTest::mousePress(&button, Qt::LeftButton);
    QTouchEvent press(QEvent::TouchBegin);
    QApplication::sendEvent(&button, &press);
    QCOMPARE(begun.count(), 0);
}

void TestWidgets::doubleSpinSelectsOnFocus()
{
    QWidget window;
    auto *layout = new QVBoxLayout(&window);
    auto *other = new QLineEdit(&window);
    auto *spin = new DoubleSpin(&window);
    layout->addWidget(other);
    layout->addWidget(spin);
    spin->setRange(-1000, 1000);
    spin->setDecimals(2);
    spin->setValue(12.5);
    QCOMPARE(spin->buttonSymbols(), QAbstractSpinBox::NoButtons);
    window.show();
    QApplication::setActiveWindow(&window);
    QVERIFY(QTest::qWaitForWindowActive(&window));
    other->setFocus();
    spin->setFocus(Qt::TabFocusReason);
    QTRY_COMPARE(spin->findChild<QLineEdit *>()->selectedText(), QStringLiteral("12.50"));
}

void TestWidgets::themeSizesAndFonts_data()
{
    QTest::addColumn<double>("scale");
    QTest::addColumn<int>("size");
    QTest::addColumn<int>("expected");
    QTest::newRow("panel scale") << 1.0 << 36 << 36;
    QTest::newRow("scaled up, rounded") << 1.5 << 15 << 23;
    QTest::newRow("scaled down") << 0.5 << 108 << 54;
}

void TestWidgets::themeSizesAndFonts()
{
    QFETCH(double, scale);
    QFETCH(int, size);
    QFETCH(int, expected);
    tcore::ThemeManager *theme = tcore::ThemeManager::instance();
    QSignalSpy changed(theme, &tcore::ThemeManager::themeChanged);
    theme->setScale(scale);
    QCOMPARE(theme->scale(), scale);
    QCOMPARE(tcore::ThemeManager::getSize(size), expected);
    const int base = tcore::ThemeManager::getFont(QStringLiteral("default")).pixelSize();
    QCOMPARE(base, tcore::ThemeManager::getSize(16));
    QVERIFY(tcore::ThemeManager::getFont(QStringLiteral("title")).pixelSize() > base);
    QVERIFY(tcore::ThemeManager::getFont(QStringLiteral("large")).pixelSize() > base);
    QVERIFY(tcore::ThemeManager::getFont(QStringLiteral("small")).pixelSize() < base);
    QCOMPARE(tcore::ThemeManager::getFont(QStringLiteral("no such font")).pixelSize(), base);
    QCOMPARE(changed.count(), qFuzzyCompare(scale, 1.0) ? 0 : 1);
    theme->setScale(-2.0); // refused
    QCOMPARE(theme->scale(), scale);
}

void TestWidgets::themeIconColourIsWhite()
{
    QCOMPARE(tcore::ThemeManager::iconColor(), QColor(Qt::white));
}

QTEST_MAIN(TestWidgets)
#include "tst_widgets.moc"
