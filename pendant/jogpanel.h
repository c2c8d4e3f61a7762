#pragma once

#include <QElapsedTimer>
#include <QFrame>
#include <QVector>

class QComboBox;
class QLabel;
class QTimer;
class TouchButton;

/*
 * Jog panel: moves the simulated robot joint by joint or along the base/tool axes, one step per
 * press or continuously while a button is held, and shows the live posture (polled every 200 ms
 * while the panel is visible and the controller is connected).
 *
 * Its message line says why the robot does not move: no controller and power off for as long as
 * that lasts, and a refused step or a continuous jog stopped at the edge of the workspace, a joint
 * limit or a singularity until the next jog moves.
 */
class JogPanel : public QFrame
{
    Q_OBJECT

public:
    struct Posture
    {
        bool valid = false;
        double trans[3] = {0, 0, 0}; // m
        double rot[3] = {0, 0, 0};   // rad
        double near[6] = {0, 0, 0, 0, 0, 0};
    };

    static constexpr int PollIntervalMs = 200;
    // Jog speed at 100 %.
    static constexpr double MaxLinearSpeed = 0.25;  // m/s
    static constexpr double MaxAngularSpeed = 0.5;  // rad/s

    explicit JogPanel(QWidget *parent = nullptr);
    ~JogPanel() override;

    QString frame() const;          // "joint", "base" or "tool"
    bool isContinuous() const;      // the step selector is on "Continuous"
    double stepFor(int axis) const; // m or rad for the current frame and step
    double speedFraction() const;   // 0..1
    bool isPolling() const;

    // One step on axis (0..5) in direction (+1/-1); the controller's status.
    int jogStep(int axis, int direction);
    // Continuous jog while held.
    int startJog(int axis, int direction);
    int stopJog();

    // Reads "sys.posture" and shows it; false when the controller did not answer.
    bool refreshPosture();
    Posture posture() const { return m_posture; }

    static QString axisName(const QString &frame, int axis);
    // The operator's sentence for a refused or stopped jog: by the controller's error id
    // ("unreachable", "limit", "singular", "jump") or, without one, by its message.
    static QString describeRefusal(const QString &id, const QString &message);
    QString statusText() const;
    bool isPowerOn() const { return m_powerOn; }

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void onPressed(int axis, int direction);
    void onReleased();
    void updateAxisNames();
    void updatePolling();
    void showStatus(int status, const QString &message);
    void updateStatus();
    void retranslate();
    void onConnected();
    void onWatchEvent(const QString &name, const QVariant &data);
    void readPower();

    QComboBox *m_frame = nullptr;
    QComboBox *m_step = nullptr;
    QComboBox *m_speed = nullptr;
    QLabel *m_heading = nullptr;
    QLabel *m_frameLabel = nullptr;
    QLabel *m_stepLabel = nullptr;
    QLabel *m_speedLabel = nullptr;
    QVector<QLabel *> m_axisLabels;
    QVector<QLabel *> m_cartLabels;
    QVector<QLabel *> m_jointLabels;
    QLabel *m_status = nullptr;
    QTimer *m_poll = nullptr;
    Posture m_posture;
    bool m_jogging = false;
    bool m_powerOn = true;
    bool m_powerKnown = false;
    // The last refusal, shown until a jog moves again: the controller's id and message.
    QString m_refusalId;
    QString m_refusal;
    QElapsedTimer m_sinceJog; // since the last continuous jog ended
};
