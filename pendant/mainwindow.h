#pragma once

#include <QPointer>
#include <QWidget>

#include <memory>

class JogPanel;
class LogView;
class NavigationView;
class QLabel;
class QPushButton;
class StatusBar;
class VirtualKeyboard;

namespace dwel {
class CenterWidget;
}

/*
 * The 1280x800 touch-style window: status bar on top, navigation on the left, the host's page
 * container in the middle with the operator log below it, and the jog panel on the right.
 *
 * While a module shows a modal dialog (a configuration step, for instance) the window is blocked;
 * a jog panel then shows in a tool window above the dialog so points can still be taught, and the
 * docked one comes back when the dialog closes.
 */
class MainWindow : public QWidget
{
    Q_OBJECT

public:
    static constexpr int Width = 1280;
    static constexpr int Height = 800;
    // The navigation is as wide as its longest entry needs, within these bounds.
    static constexpr int NavWidth = 150;
    static constexpr int NavMaxWidth = 200;
    static constexpr int JogWidth = 204;

    explicit MainWindow(QWidget *parent = nullptr);
    ~MainWindow() override;

    StatusBar *statusBar() const { return m_statusBar; }
    NavigationView *navigation() const { return m_navigation; }
    JogPanel *jogPanel() const { return m_jog; }
    LogView *logView() const { return m_log; }
    dwel::CenterWidget *centerWidget() const;
    QWidget *homePage() const { return m_home; }

    // Shows a page by navigation name or title; false when there is no such page.
    bool showPage(const QString &name);
    QString currentPage() const;
    void setHomeText(const QString &html);
    void setJogVisible(bool visible);
    bool isJogFloating() const { return m_jogFloating; }
    // The on-screen keyboard; null when the application does not run with it.
    VirtualKeyboard *keyboard() const { return m_keyboard.get(); }

signals:
    // After the window retranslated itself; texts built elsewhere follow.
    void languageChanged();

protected:
    bool event(QEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void retranslate();
    void fitNavigation();
    void onPageShown(const QString &name);
    void floatJogPanel(QWidget *modal);
    void dockJogPanel();

    StatusBar *m_statusBar = nullptr;
    NavigationView *m_navigation = nullptr;
    JogPanel *m_jog = nullptr;
    LogView *m_log = nullptr;
    QLabel *m_pageTitle = nullptr;
    QPushButton *m_jogToggle = nullptr;
    QWidget *m_home = nullptr;
    QLabel *m_homeText = nullptr;
    QWidget *m_jogDock = nullptr;
    QPointer<QWidget> m_jogWindow;
    QPointer<dwel::CenterWidget> m_center;
    bool m_jogFloating = false;
    std::unique_ptr<VirtualKeyboard> m_keyboard;
};
