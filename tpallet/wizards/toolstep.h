#pragma once

#include "pages/basewizard.h"

#include <orba/moduleobject.h>

#include <QPointer>
#include <QStringList>

class QComboBox;
class QDoubleSpinBox;
class QLabel;
class QPushButton;
class QRadioButton;
class QStackedWidget;

// What the two forms of the tool step share: the pallet's tool frame and load shown in
// millimetres, degrees (or a quaternion) and kg.mm², imported from the host's tool lists and
// written back when the step is left. The forms differ in layout and in the lists they offer.
class TPALLET_EXPORT ToolStep : public BaseWizard
{
    Q_OBJECT

public:
    ~ToolStep() override;

    // The host lists whose robot-held tools are offered, in order.
    QStringList toolLists() const { return m_lists; }
    orba::ModuleObject *toolset() const { return m_toolset.data(); }

    void node2Dspn();
    void dspn2Node();
    void dspn2Lbl();
    void rotNode2Dspn(orba::ModuleObject *rot);
    void dspn2RotNode(orba::ModuleObject *rot);
    void quatNode2Dspn(orba::ModuleObject *quat);
    void dspn2QuatNode(orba::ModuleObject *quat);

    // Host tool records (kg, mm, kg.mm², degrees) into the toolset's units (kg, m, kg.m², radians).
    static void load2XLoad(const orba::ModuleObject *source, orba::ModuleObject *target, QObject *sender = nullptr);
    static void frame2Point(const orba::ModuleObject *source, orba::ModuleObject *target, QObject *sender = nullptr);
    // The first record named `name` in `lists` (robot-held or not), or the empty node.
    static orba::ModuleObject *findTool(const QStringList &lists, const QString &name);
    // "tool0", then the names of the robot-held tools of `lists`.
    static QStringList offeredTools(const QStringList &lists);

public slots:
    void refreshTool();
    void switchRotation();
    void importTool();
    bool tryNext() override;

protected:
    ToolStep(orba::ModuleObject *pallet, const QStringList &lists, QWidget *parent);
    // Called by the subclass once its form is built: finds the widgets by their object names.
    void bindForm();
    void changeEvent(QEvent *event) override;
    virtual void retranslateForm() = 0;

private:
    QDoubleSpinBox *spin(const char *name) const;

    QStringList m_lists;
    QPointer<orba::ModuleObject> m_toolset;
    QComboBox *m_cmbTool = nullptr;
    QRadioButton *m_rdbEuler = nullptr;
    QRadioButton *m_rdbQuat = nullptr;
    QStackedWidget *m_stack = nullptr;
    QWidget *m_pageEuler = nullptr;
    QWidget *m_pageQuat = nullptr;
};
