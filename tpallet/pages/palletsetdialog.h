#pragma once

#include "module/tpallet_export.h"

#include <QDialog>
#include <QList>
#include <QPointer>

class BaseWizard;
class QLabel;
class QPushButton;

namespace orba {
class ModuleObject;
}

namespace Ui {
class PalletSetDialog;
}

namespace tpallet {
class TWMenu;
}

// The step-by-step configuration of one pallet: pattern, tool, calibration, path points and
// the point check, one page at a time, with the host's tool / work object / toolset bar.
// Mode 0 walks every step from the first; mode 4 shows the point check alone.
class TPALLET_EXPORT PalletSetDialog : public QDialog
{
    Q_OBJECT

public:
    static constexpr int kStepCount = 5;

    PalletSetDialog(orba::ModuleObject *pallet, QWidget *parent = nullptr, int mode = 0);
    ~PalletSetDialog() override;

    BaseWizard *createWizard(int step);
    void switchToStep(int step, bool single);
    void setLableSelect(QLabel *label, bool selected);
    void initToolWobj();

    int currentStep() const { return m_step; }
    BaseWizard *currentPage() const { return m_page; }
    QList<QLabel *> titleLabels() const { return m_titles; }
    // The pick menu of the tool bar, once one was opened.
    tpallet::TWMenu *menu() const { return m_menu; }

    // Untranslated step titles, in step order.
    static QStringList stepTitles();

public slots:
    void onNext();
    void onPrevious();
    void onCancel();
    void onConfirm();

protected:
    void changeEvent(QEvent *event) override;

private:
    void buildTitles();
    void retranslate();
    void refreshToolWobj();
    void showMenu(QPushButton *anchor, const QStringList &items, int width, const QString &node);

    Ui::PalletSetDialog *m_ui;
    QPointer<orba::ModuleObject> m_pallet;
    QList<QLabel *> m_titles;
    int m_step = -1;
    bool m_single = false;
    BaseWizard *m_page = nullptr;
    tpallet::TWMenu *m_menu = nullptr;
};
