#pragma once

#include <QFrame>
#include <QPointer>

class QComboBox;
class QLabel;
class QPushButton;

namespace orba {
class ModuleObject;
}

/*
 * The top bar of the shell: controller link and identity, power switch, user level and language.
 * The level combo writes "tcore.r.level" and follows it; the language combo writes the host
 * setting "language" (which reloads the modules' translations) and follows it. The power button
 * shows what the controller reports (read on every connection, then followed through the watched
 * value "sys.power"), never what was asked of it.
 */
class StatusBar : public QFrame
{
    Q_OBJECT

public:
    explicit StatusBar(QWidget *parent = nullptr);
    ~StatusBar() override;

    bool isLinkUp() const { return m_linkUp; }
    bool isPowerOn() const { return m_powerOn; }

    // Re-reads the link state, identity and power from the service.
    void refresh();
    // Reads "sys.power" from the controller; false when it did not answer.
    bool refreshPower();
    // Asks the controller to switch the power; the shown state follows the controller's answer.
    bool requestPower(bool on);
    bool isPowerKnown() const { return m_powerKnown; }
    // "on" / "off" (any case), a bool or a number as the controller may report the power: 1 on,
    // 0 off, -1 not a power state.
    static int parsePower(const QVariant &value);

signals:
    void linkChanged(bool up);
    void powerChanged(bool on);

protected:
    void changeEvent(QEvent *event) override;

private:
    void retranslate();
    void onConnected();
    void onDisconnected();
    void showLink(bool up);
    void showPower(bool on, bool known);
    void showLevel(int level);
    void showLanguage(const QString &code);
    void onLevelChosen(int index);
    void onLanguageChosen(int index);
    void followLevelNode();

    QLabel *m_title = nullptr;
    QLabel *m_link = nullptr;
    QLabel *m_rcId = nullptr;
    QPushButton *m_power = nullptr;
    QComboBox *m_level = nullptr;
    QComboBox *m_language = nullptr;
    QPointer<orba::ModuleObject> m_levelNode;
    QPointer<orba::ModuleObject> m_powerWatch;
    bool m_linkUp = false;
    bool m_powerOn = false;
    bool m_powerKnown = false;
    bool m_updating = false;
};
