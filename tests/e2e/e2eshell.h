#pragma once

#include "pendanttestutil.h"
#include "mainwindow.h"
#include "shell.h"

#include <QApplication>
#include <QDialog>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QSpinBox>
#include <QTableWidget>
#include <QtTest>

// What the end-to-end tests share: the running shell with the real module, and the operator's
// way through the page's dialogs.

// The visible top-level dialog of that object name (dialogs of the module are found by name:
// the module is loaded at run time, its classes are not known here).
inline QDialog *openDialog(const QString &objectName)
{
    for (QWidget *w : QApplication::topLevelWidgets()) {
        auto *dialog = qobject_cast<QDialog *>(w);
        if (dialog && dialog->objectName() == objectName && dialog->isVisible())
            return dialog;
    }
    return nullptr;
}

inline QTableWidget *palletTable(Shell &shell)
{
    return shell.window()->findChild<QTableWidget *>(QStringLiteral("tableWidget"));
}

// Starts the shell, waits for the controller and for the page's first load.
inline bool startShell(Shell &shell)
{
    resetHost();
    shell.start();
    if (!EmbeddedLink::waitConnected(true, 20000))
        return false;
    QElapsedTimer timer;
    timer.start();
    while (!palletTable(shell) && timer.elapsed() < 5000)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    // The page loads the pallet list on the connection; let that settle.
    QTest::qWait(200);
    return palletTable(shell) != nullptr;
}

inline QPushButton *pageButton(Shell &shell, const char *name)
{
    return shell.window()->findChild<QPushButton *>(QLatin1String(name));
}

// "Add", a name, rows and columns, "Ok".
inline void addPalletThroughDialog(Shell &shell, const QString &name, int rows, int cols)
{
    QPushButton *add = pageButton(shell, "btnAdd");
    QVERIFY(add);
    QTRY_VERIFY(add->isEnabled());
    QTest::mouseClick(add, Qt::LeftButton);
    QDialog *dialog = nullptr;
    QTRY_VERIFY((dialog = openDialog(QStringLiteral("NewPalletDialog"))) != nullptr);

    auto *edtName = dialog->findChild<QLineEdit *>(QStringLiteral("edtName"));
    auto *spnRow = dialog->findChild<QSpinBox *>(QStringLiteral("spnRow"));
    auto *spnCol = dialog->findChild<QSpinBox *>(QStringLiteral("spnCol"));
    auto *ok = dialog->findChild<QPushButton *>(QStringLiteral("btnOk"));
    QVERIFY(edtName && spnRow && spnCol && ok);
    edtName->clear();
    QTest::keyClicks(edtName, name);
    spnRow->setValue(rows);
    spnCol->setValue(cols);
    QPointer<QDialog> guard = dialog;
    QTest::mouseClick(ok, Qt::LeftButton);
    QTRY_VERIFY(guard.isNull() || !guard->isVisible());
}
