#pragma once

#include "module/tpallet_export.h"

#include <orba/moduleobject.h>
#include <tcore/basepage.h>

#include <QPointer>

class QProgressDialog;
class QWidget;
class TPallet;

namespace orba {
class ModuleObject;
}

namespace Ui {
class PalletPage;
}

// The module's navigation page: the table of pallets and the buttons that open the dialogs.
class TPALLET_EXPORT PalletPage : public tcore::BasePage
{
    Q_OBJECT

public:
    PalletPage(QWidget *parentWidget, TPallet *module);
    ~PalletPage() override;

    void init() override;
    bool isLevelAvailable() const override;
    void updateAvailability() override;
    QWidget *wgt() override;

    QProgressDialog *progressDialog() const;

    // Replaces the working copy with the controller's pallets.
    void initPalletFromRC();

public slots:
    void loadFromRC();
    void refreshTable();

    void importPallet();
    void exportPallet();
    void addPallet();
    void editPallet();
    void cfgPallet(int mode);
    void delPallet();

signals:
    // Every value the loading progress dialog is set to, in order.
    void loadProgress(int value);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    orba::ModuleObject *selectedPallet();
    void setProgress(int value);
    void loadPerPallet();
    void loadWholeList();
    void retranslate();
    orba::ModuleObject *pallets();

    Ui::PalletPage *m_ui;
    TPallet *m_module;
    QPointer<orba::ModuleObject> m_pallets;
    QPointer<QWidget> m_widget;
    // A child of the page's widget, which the host may destroy on its own.
    QPointer<QProgressDialog> m_progress;
    bool m_initialised = false;
    bool m_loading = false;
    bool m_reloadPending = false;
    bool m_refreshPending = false;
};
