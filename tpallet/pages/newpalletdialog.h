#pragma once

#include <QDialog>
#include <QPointer>

#include <orba/moduleobject.h>

namespace Ui {
class NewPalletDialog;
}

// Creates a pallet (from the default pallet or as a clone of an existing one) or, when given a
// pallet, edits its name, description, rows and columns.
class NewPalletDialog : public QDialog
{
    Q_OBJECT

public:
    explicit NewPalletDialog(orba::ModuleObject *pallet, QWidget *parent = nullptr);
    ~NewPalletDialog() override;

    // Brings a freshly copied pallet into a complete state: toolset, way points and places.
    static void initPallet(orba::ModuleObject *pallet);

public slots:
    void onCloneChanged();
    void work();

private:
    bool refuse(const QString &message);
    bool validate();
    void addPallet();
    void editPallet();

    Ui::NewPalletDialog *m_ui;
    // Edit mode only; the node may be destroyed while the dialog is open (list reloaded).
    QPointer<orba::ModuleObject> m_pallet;
    bool m_isNew;
};
