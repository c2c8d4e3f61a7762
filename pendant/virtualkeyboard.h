#pragma once

#include <QObject>
#include <QPointer>
#include <QRect>
#include <QString>

class QWindow;
class QQuickView;

/*
 * The on-screen keyboard: Qt's virtual keyboard (qtvirtualkeyboard-plugin) in a window of its own
 * that the shell shows at the bottom of the screen while a text or number field asks for input.
 *
 * The plugin's own "desktop" panel is a full-screen transparent window cut to shape by a window
 * mask; on the VNC and framebuffer platforms, which have no masks, it covers and blocks the whole
 * pendant. So the shell hosts the keyboard's InputPanel itself, in a frameless window that never
 * takes the focus, made a transient of the window being typed in so that a modal dialog does not
 * block it. The keys go through the input method to whatever widget has the focus (line edits,
 * spin boxes: numbers get the number pad).
 */
class VirtualKeyboard : public QObject
{
    Q_OBJECT

public:
    // Chooses the virtual keyboard as input method when it is installed and the environment names
    // none (QT_IM_MODULE), and turns its full-screen panel off. Call before the application exists.
    static void prepareEnvironment();
    // True when this build has keyboard support and the application runs with its input method.
    static bool isAvailable();
    // The keyboard layout for a shell language ("ru" -> "ru_RU"); English where Qt ships none.
    static QString layoutFor(const QString &language);

    explicit VirtualKeyboard(QObject *parent = nullptr);
    ~VirtualKeyboard() override;

    // The panel was loaded; otherwise errorString() says why.
    bool isReady() const;
    QString errorString() const { return m_error; }
    bool isVisible() const;
    QWindow *window() const;
    QString layout() const;
    // Where the keyboard goes for an input field at `field` (global coordinates) on `screen`:
    // bottom centre, or top centre when it would cover the field.
    static QRect placement(const QRect &screen, const QRect &field, int width, int height);

private:
    void update();
    void setLanguage(const QString &language);
    void onFocusWindowChanged(QWindow *window);

    QQuickView *m_view = nullptr;
    QPointer<QWindow> m_lastFocus;
    QString m_error;
};
